// COpenGl: the context's life, pending setting changes and the frame's end.
#include <vector>

#include "platform/display_window.h"
#include "platform/gl_context.h"
#include "platform/message_box.h"
#include "render/opengl/gl_headers.h"
#include "render/opengl/opengl.h"

namespace vdpgl {

namespace {

const char* InitFailureText(platform::GlContextFailure failure) {
    switch (failure) {
    case platform::GlContextFailure::DeviceContext: return "Can't Create A GL Device Context.";
    case platform::GlContextFailure::PixelFormat: return "Can't Find A Suitable PixelFormat.";
    case platform::GlContextFailure::SetPixelFormat: return "Can't Set The PixelFormat.";
    case platform::GlContextFailure::RenderingContext: return "Can't Create A GL Rendering Context.";
    case platform::GlContextFailure::Activate: return "Can't Activate The GL Rendering Context.";
    case platform::GlContextFailure::None: break;
    }
    return "";
}

void ShowInitError(const char* text) { platform::ShowMessageBox("ERROR", text, platform::MessageIcon::Exclamation); }

void ShowShutdownError(const char* text) {
    platform::ShowMessageBox("SHUTDOWN ERROR", text, platform::MessageIcon::Information);
}

}  // namespace

COpenGl::COpenGl(void* instance) : instanceHandle(instance) {}

COpenGl::~COpenGl() {
    // The context is tied to the thread that made it; give it up if the
    // host shuts down without stopping the emulation thread first.
    if (context) ReleaseGl();
}

void COpenGl::InitGl(void* window) {
    if (context) ReleaseGl();
    windowHandle = window;
    platform::GlContextFailure failure = platform::GlContextFailure::None;
    context = platform::CreateGlContext(window, &failure);
    if (!context) {
        ShowInitError(InitFailureText(failure));
        return;
    }
    // Drawing goes to offscreen buffers; a driver without framebuffer
    // objects cannot give us a usable context.
    if (!frameBuffers.Load(*context) || !frameBuffers.Resize(GetRenderingHRes(), GetRenderingVRes())) {
        ShowInitError(InitFailureText(platform::GlContextFailure::RenderingContext));
        context.reset();
        return;
    }
    contextThread = std::this_thread::get_id();
    swapCount = 0;

    glShadeModel(GL_SMOOTH);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
    // Without the secondary colour array, colour offsets that lighten are
    // left out.
    secondaryColorPointer =
        reinterpret_cast<SecondaryColorPointerFunction>(context->GetProcAddress("glSecondaryColorPointerEXT"));
    drawList.Clear();
    multiDrawArrays = reinterpret_cast<MultiDrawArraysFunction>(context->GetProcAddress("glMultiDrawArrays"));
    // Sprites share atlas pages when the pattern program runs; page 0 is
    // there from the start, for the shapes' white texel.
    if (patternProgram.Load(*context) && atlas.MakeFirstPage()) CreateAtlasPage(0);
    glDisable(GL_LIGHTING);
    glEnable(GL_COLOR_SUM);  // the secondary colour is added after texturing
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    ApplyPolygonMode();
    glViewport(0, 0, GetRenderingHRes(), GetRenderingVRes());
}

void COpenGl::ReleaseGl() {
    drawList.Clear();
    if (context) {
        for (auto& planes : normalBackgroundPlanesTextureIds) {
            glDeleteTextures(4, planes);
            for (uint32_t& id : planes) id = 0;
        }
        // The other textures go with the context; forget their names so a
        // new context starts clean.
        glDeleteTextures(2, normalBackgroundBitmapTextureIds);
        glDeleteTextures(2, rotationBackgroundTextureIds);
        for (const SpareTexture& spare : spareTextures) glDeleteTextures(1, &spare.id);
        spareTextures.clear();
        cellStaging.clear();
        normalBackgroundBitmapTextureIds[0] = normalBackgroundBitmapTextureIds[1] = 0;
        rotationBackgroundTextureIds[0] = rotationBackgroundTextureIds[1] = 0;
        rotationTextureWidths[0] = rotationTextureWidths[1] = rotationTextureHeights[0] = rotationTextureHeights[1] = 0;
        // VDP1's textures and atlas pages too; their handles go stale.
        patternProgram.Release();
        atlas.Reset();
        drawList.SetShapePage(0, 0, 0);
        pageTextures.clear();
        vdp1Textures.clear();
        retiredVdp1Textures.clear();
        pendingUploads.clear();
        pendingTexels.clear();
        freeHandles.clear();
        handleGeneration = (handleGeneration + 1) & 0x3FF;
        if (handleGeneration == 0) handleGeneration = 1;
        frameBuffers.Release();

        if (!context->MakeNotCurrent()) ShowShutdownError("Release Of DC And RC Failed.");
        if (!context->DestroyContext()) ShowShutdownError("Release Rendering Context Failed.");
        if (!context->ReleaseDisplay()) ShowShutdownError("Release Device Context Failed.");
        context.reset();
    }
    secondaryColorPointer = nullptr;
    multiDrawArrays = nullptr;
    swapCount = 0;
    windowHandle = nullptr;  // the window is closed after the context is gone
}

void COpenGl::ApplyPolygonMode() {
    const bool on = IsWireframe();
    glPolygonMode(GL_FRONT_AND_BACK, on ? GL_LINE : GL_FILL);
    glLineWidth(on ? 1.5f : 1.0f);
}

void COpenGl::ApplyPendingChanges() {
    FlushDrawing();
    if (TakeRenderingResolutionChange()) {
        log.Log("need to update rendering resolution\n");
        ChangeRenderingResolution();
    }
    if (TakeWireframeChange() && context) ApplyPolygonMode();
}

void COpenGl::ChangeRenderingResolution() {
    log.Log("ChangeRenderingResolution\n");
    const int w = GetRenderingHRes(), h = GetRenderingVRes();
    // The window's picture area takes the new size on the UI thread; until
    // it has, the frames are scaled to the area as it is.
    if (windowHandle)
        platform::ResizeDisplayWindow(static_cast<platform::DisplayWindow*>(windowHandle), w, h, WindowTitle());
    if (!context) return;
    // New buffers at the new size; the pictures in the old ones are dropped.
    if (frameBuffers.Width() != w || frameBuffers.Height() != h) {
        frameBuffers.Resize(w, h);
        swapCount = 0;
    }
    glViewport(0, 0, w, h);
}

void COpenGl::SwapFrameBuffers() {
    FlushDrawing();
    if (!context) return;
    frameBuffers.Swap();
    ++swapCount;
    // The window shows the picture just composed; captures read the same
    // buffer, so they are the same with or without a window.
    if (int w = 0, h = 0; context->WindowSize(w, h)) {
        frameBuffers.Present(w, h);
        context->SwapWindow();
    }
    if (screenshotRequested.exchange(false, std::memory_order_relaxed)) SaveScreenshot();
    if (clearRequested.exchange(false, std::memory_order_relaxed)) ClearFrameBuffer();
}

void COpenGl::ClearFrameBuffer() {
    FlushDrawing();
    if (!context) return;
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
}

bool COpenGl::CaptureDisplay(uint8_t* rgba, int width, int height) {
    if (!context || swapCount == 0 || std::this_thread::get_id() != contextThread) return false;
    return frameBuffers.ReadFront(rgba, width, height);
}

}  // namespace vdpgl
