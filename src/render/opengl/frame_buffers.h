#pragma once
// Double buffering with two offscreen colour buffers. Drawing goes to the
// back one; a swap exchanges them, so the picture just composed becomes the
// front one and the next frame is drawn over the picture of two swaps ago,
// as a double-buffered window with exchange would do, on every driver and
// with or without a window.
#include <cstdint>

#include "render/opengl/gl_headers.h"

namespace vdpgl {

namespace platform {
class CGlContext;
}

class CFrameBuffers {
public:
    // Looks up the framebuffer-object entry points; false if the driver has none.
    bool Load(platform::CGlContext& context);
    // (Re)creates both buffers at this size, cleared to transparent black,
    // with the back one bound for drawing.
    bool Resize(int width, int height);
    void Swap();
    // Shows the front buffer in the window's own framebuffer of this size:
    // scaled to fit with its aspect kept, black bars around it.
    void Present(int windowWidth, int windowHeight);
    // Copies the front buffer as 8-bit RGBA, top row first.
    bool ReadFront(uint8_t* rgba, int width, int height);
    // Deletes the buffers (the context must still be current).
    void Release();

    int Width() const { return width; }
    int Height() const { return height; }
    bool HasBuffers() const { return framebuffers[0] != 0; }

private:
    void BindForDrawing(int index);

    PFNGLGENFRAMEBUFFERSPROC genFramebuffers = nullptr;
    PFNGLDELETEFRAMEBUFFERSPROC deleteFramebuffers = nullptr;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer = nullptr;
    PFNGLFRAMEBUFFERRENDERBUFFERPROC framebufferRenderbuffer = nullptr;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC checkFramebufferStatus = nullptr;
    PFNGLGENRENDERBUFFERSPROC genRenderbuffers = nullptr;
    PFNGLDELETERENDERBUFFERSPROC deleteRenderbuffers = nullptr;
    PFNGLBINDRENDERBUFFERPROC bindRenderbuffer = nullptr;
    PFNGLRENDERBUFFERSTORAGEPROC renderbufferStorage = nullptr;
    PFNGLBLITFRAMEBUFFERPROC blitFramebuffer = nullptr;  // only needed to present in a window

    GLuint framebuffers[2] = {0, 0};
    GLuint renderbuffers[2] = {0, 0};
    int back = 0;
    int width = 0;
    int height = 0;
};

}  // namespace vdpgl
