#pragma once
// An OpenGL context made current on the calling thread. The renderer draws
// into framebuffer objects of its own, so the context needs no visible
// surface: headless it has none, and with a display window the window's
// surface only shows the picture the renderer presents at each swap.
#include <memory>

namespace vdpgl::platform {

// Which step of the context's creation failed.
enum class GlContextFailure {
    None,
    DeviceContext,     // no display connection to create a context on
    PixelFormat,       // no configuration with RGBA colour and desktop GL
    SetPixelFormat,    // the configuration could not be given a surface
    RenderingContext,  // the context could not be created
    Activate,          // it could not be made current on this thread
};

class CGlContext {
public:
    virtual ~CGlContext() = default;

    // GL and extension entry points ("glSecondaryColor3fEXT", "glGenFramebuffers", ...).
    virtual void* GetProcAddress(const char* name) = 0;
    // The window surface, when the context was made on a display window:
    // its size now (it follows the window) and the swap that shows what was
    // drawn into it. Without a window: no size, and the swap does nothing.
    virtual bool HasWindow() const = 0;
    virtual bool WindowSize(int& width, int& height) = 0;
    virtual void SwapWindow() = 0;
    // The three release steps; each reports whether it worked.
    virtual bool MakeNotCurrent() = 0;
    virtual bool DestroyContext() = 0;
    virtual bool ReleaseDisplay() = 0;
};

// Creates a context for the given window (a DisplayWindow, display_window.h;
// null: headless) and makes it current on the calling thread. On failure
// returns null and says which step.
std::unique_ptr<CGlContext> CreateGlContext(void* window, GlContextFailure* failure);

}  // namespace vdpgl::platform
