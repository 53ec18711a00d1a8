// GL contexts on EGL.
//
// Headless: a desktop (compatibility) GL context without a surface where the
// driver allows it, else on a 1 x 1 pbuffer; the display is chosen from what
// the EGL client offers: Mesa's surfaceless platform, then the first EGL
// device, then the default display.
// On a display window: an X11 connection of the context's own (the UI thread
// has another), EGL's X11 platform, and a window surface on the window's
// picture area, swapped without waiting for the vertical blank (the host
// paces the frames).
#include "platform/display_window.h"
#include "platform/gl_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <X11/Xlib.h>

#include <cstring>

// Xlib's None would hide the failure step of that name.
#undef None

namespace vdpgl::platform {

namespace {

bool HasExtension(const char* list, const char* name) {
    if (!list) return false;
    const size_t n = std::strlen(name);
    for (const char* p = list; (p = std::strstr(p, name)) != nullptr; p += n)
        if ((p == list || p[-1] == ' ') && (p[n] == ' ' || p[n] == '\0')) return true;
    return false;
}

PFNEGLGETPLATFORMDISPLAYEXTPROC PlatformDisplayFunction() {
    return reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
}

EGLDisplay OpenHeadlessDisplay() {
    const char* client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    auto getPlatformDisplay = PlatformDisplayFunction();
    if (getPlatformDisplay && HasExtension(client, "EGL_MESA_platform_surfaceless")) {
        EGLDisplay d = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (d != EGL_NO_DISPLAY && eglInitialize(d, nullptr, nullptr)) return d;
    }
    auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    if (getPlatformDisplay && queryDevices && HasExtension(client, "EGL_EXT_platform_device")) {
        EGLDeviceEXT devices[8];
        EGLint count = 0;
        if (queryDevices(8, devices, &count)) {
            for (EGLint i = 0; i < count; ++i) {
                EGLDisplay d = getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr);
                if (d != EGL_NO_DISPLAY && eglInitialize(d, nullptr, nullptr)) return d;
            }
        }
    }
    EGLDisplay d = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (d != EGL_NO_DISPLAY && eglInitialize(d, nullptr, nullptr)) return d;
    return EGL_NO_DISPLAY;
}

EGLDisplay OpenWindowDisplay(Display* x11) {
    auto getPlatformDisplay = PlatformDisplayFunction();
    if (!getPlatformDisplay ||
        !HasExtension(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_EXT_platform_x11"))
        return EGL_NO_DISPLAY;
    EGLDisplay d = getPlatformDisplay(EGL_PLATFORM_X11_EXT, x11, nullptr);
    if (d != EGL_NO_DISPLAY && eglInitialize(d, nullptr, nullptr)) return d;
    return EGL_NO_DISPLAY;
}

class CEglContext final : public CGlContext {
public:
    ~CEglContext() override {
        MakeNotCurrent();
        DestroyContext();
        ReleaseDisplay();
    }

    bool Create(const DisplayWindow* window, GlContextFailure* failure) {
        if (window) {
            x11 = XOpenDisplay(nullptr);
            if (!x11) return Fail(failure, GlContextFailure::DeviceContext);
            display = OpenWindowDisplay(x11);
        } else {
            display = OpenHeadlessDisplay();
        }
        if (display == EGL_NO_DISPLAY) return Fail(failure, GlContextFailure::DeviceContext);
        if (!eglBindAPI(EGL_OPENGL_API)) return Fail(failure, GlContextFailure::PixelFormat);

        const bool surfaceless =
            !window && HasExtension(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context");
        const EGLint surfaceType = window ? EGL_WINDOW_BIT : surfaceless ? 0 : EGL_PBUFFER_BIT;
        const EGLint configAttributes[] = {EGL_RED_SIZE,        8,
                                           EGL_GREEN_SIZE,      8,
                                           EGL_BLUE_SIZE,       8,
                                           EGL_ALPHA_SIZE,      window ? 0 : 8,
                                           EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                           EGL_SURFACE_TYPE,    surfaceType,
                                           EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (!eglChooseConfig(display, configAttributes, &config, 1, &count) || count < 1)
            return Fail(failure, GlContextFailure::PixelFormat);

        if (window) {
            surface = eglCreateWindowSurface(display, config, static_cast<EGLNativeWindowType>(window->pictureArea),
                                             nullptr);
            if (surface == EGL_NO_SURFACE) return Fail(failure, GlContextFailure::SetPixelFormat);
            onWindow = true;
        } else if (!surfaceless) {
            const EGLint pbufferAttributes[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
            surface = eglCreatePbufferSurface(display, config, pbufferAttributes);
            if (surface == EGL_NO_SURFACE) return Fail(failure, GlContextFailure::SetPixelFormat);
        }

        // The renderer is fixed-function: ask for a compatibility profile.
        const EGLint contextAttributes[] = {EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                            EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, EGL_NONE};
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, contextAttributes);
        if (context == EGL_NO_CONTEXT) return Fail(failure, GlContextFailure::RenderingContext);
        if (!eglMakeCurrent(display, surface, surface, context)) return Fail(failure, GlContextFailure::Activate);
        if (onWindow) eglSwapInterval(display, 0);
        return true;
    }

    void* GetProcAddress(const char* name) override { return reinterpret_cast<void*>(eglGetProcAddress(name)); }

    bool HasWindow() const override { return onWindow; }

    bool WindowSize(int& width, int& height) override {
        EGLint w = 0, h = 0;
        if (!onWindow || !eglQuerySurface(display, surface, EGL_WIDTH, &w) ||
            !eglQuerySurface(display, surface, EGL_HEIGHT, &h))
            return false;
        width = w;
        height = h;
        return w > 0 && h > 0;
    }

    void SwapWindow() override {
        if (onWindow) eglSwapBuffers(display, surface);
    }

    bool MakeNotCurrent() override {
        if (display == EGL_NO_DISPLAY) return true;
        return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }

    bool DestroyContext() override {
        bool ok = true;
        if (context != EGL_NO_CONTEXT) ok = eglDestroyContext(display, context);
        if (surface != EGL_NO_SURFACE) ok = eglDestroySurface(display, surface) && ok;
        context = EGL_NO_CONTEXT;
        surface = EGL_NO_SURFACE;
        onWindow = false;
        return ok;
    }

    bool ReleaseDisplay() override {
        bool ok = true;
        if (display != EGL_NO_DISPLAY) ok = eglTerminate(display);
        display = EGL_NO_DISPLAY;
        if (x11) XCloseDisplay(x11);
        x11 = nullptr;
        return ok;
    }

private:
    static bool Fail(GlContextFailure* failure, GlContextFailure what) {
        if (failure) *failure = what;
        return false;
    }

    Display* x11 = nullptr;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
    bool onWindow = false;
};

}  // namespace

std::unique_ptr<CGlContext> CreateGlContext(void* window, GlContextFailure* failure) {
    if (failure) *failure = GlContextFailure::None;
    auto context = std::make_unique<CEglContext>();
    if (!context->Create(static_cast<const DisplayWindow*>(window), failure)) return nullptr;
    return context;
}

}  // namespace vdpgl::platform
