// GL contexts on EGL. The context is a desktop (compatibility) GL context
// without a surface where the driver allows it, else on a 1 x 1 pbuffer.
// The display is chosen from what the EGL client offers: Mesa's surfaceless
// platform, then the first EGL device, then the default display.
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

#include "platform/gl_context.h"

namespace vdpgl::platform {

namespace {

bool HasExtension(const char* list, const char* name) {
    if (!list) return false;
    const size_t n = std::strlen(name);
    for (const char* p = list; (p = std::strstr(p, name)) != nullptr; p += n)
        if ((p == list || p[-1] == ' ') && (p[n] == ' ' || p[n] == '\0')) return true;
    return false;
}

EGLDisplay OpenDisplay() {
    const char* client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
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

class CEglContext final : public CGlContext {
public:
    ~CEglContext() override {
        MakeNotCurrent();
        DestroyContext();
        ReleaseDisplay();
    }

    bool Create(GlContextFailure* failure) {
        display = OpenDisplay();
        if (display == EGL_NO_DISPLAY) return Fail(failure, GlContextFailure::DeviceContext);
        if (!eglBindAPI(EGL_OPENGL_API)) return Fail(failure, GlContextFailure::PixelFormat);

        const bool surfaceless = HasExtension(eglQueryString(display, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context");
        const EGLint configAttributes[] = {EGL_RED_SIZE,        8,
                                           EGL_GREEN_SIZE,      8,
                                           EGL_BLUE_SIZE,       8,
                                           EGL_ALPHA_SIZE,      8,
                                           EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                           EGL_SURFACE_TYPE,    surfaceless ? 0 : EGL_PBUFFER_BIT,
                                           EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (!eglChooseConfig(display, configAttributes, &config, 1, &count) || count < 1)
            return Fail(failure, GlContextFailure::PixelFormat);

        if (!surfaceless) {
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
        return true;
    }

    void* GetProcAddress(const char* name) override { return reinterpret_cast<void*>(eglGetProcAddress(name)); }

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
        return ok;
    }

    bool ReleaseDisplay() override {
        bool ok = true;
        if (display != EGL_NO_DISPLAY) ok = eglTerminate(display);
        display = EGL_NO_DISPLAY;
        return ok;
    }

private:
    static bool Fail(GlContextFailure* failure, GlContextFailure what) {
        if (failure) *failure = what;
        return false;
    }

    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

}  // namespace

std::unique_ptr<CGlContext> CreateGlContext(void* /*window*/, GlContextFailure* failure) {
    if (failure) *failure = GlContextFailure::None;
    auto context = std::make_unique<CEglContext>();
    if (!context->Create(failure)) return nullptr;
    return context;
}

}  // namespace vdpgl::platform
