#include "render/opengl/frame_buffers.h"

#include <cstring>
#include <vector>

#include "platform/gl_context.h"

namespace vdpgl {

namespace {

// The core name first, then the extension's (same signatures).
template <typename T>
T Lookup(platform::CGlContext& context, const char* core, const char* ext) {
    void* p = context.GetProcAddress(core);
    if (!p) p = context.GetProcAddress(ext);
    return reinterpret_cast<T>(p);
}

}  // namespace

bool CFrameBuffers::Load(platform::CGlContext& c) {
    genFramebuffers = Lookup<PFNGLGENFRAMEBUFFERSPROC>(c, "glGenFramebuffers", "glGenFramebuffersEXT");
    deleteFramebuffers = Lookup<PFNGLDELETEFRAMEBUFFERSPROC>(c, "glDeleteFramebuffers", "glDeleteFramebuffersEXT");
    bindFramebuffer = Lookup<PFNGLBINDFRAMEBUFFERPROC>(c, "glBindFramebuffer", "glBindFramebufferEXT");
    framebufferRenderbuffer = Lookup<PFNGLFRAMEBUFFERRENDERBUFFERPROC>(c, "glFramebufferRenderbuffer",
                                                                       "glFramebufferRenderbufferEXT");
    checkFramebufferStatus =
        Lookup<PFNGLCHECKFRAMEBUFFERSTATUSPROC>(c, "glCheckFramebufferStatus", "glCheckFramebufferStatusEXT");
    genRenderbuffers = Lookup<PFNGLGENRENDERBUFFERSPROC>(c, "glGenRenderbuffers", "glGenRenderbuffersEXT");
    deleteRenderbuffers =
        Lookup<PFNGLDELETERENDERBUFFERSPROC>(c, "glDeleteRenderbuffers", "glDeleteRenderbuffersEXT");
    bindRenderbuffer = Lookup<PFNGLBINDRENDERBUFFERPROC>(c, "glBindRenderbuffer", "glBindRenderbufferEXT");
    renderbufferStorage =
        Lookup<PFNGLRENDERBUFFERSTORAGEPROC>(c, "glRenderbufferStorage", "glRenderbufferStorageEXT");
    blitFramebuffer = Lookup<PFNGLBLITFRAMEBUFFERPROC>(c, "glBlitFramebuffer", "glBlitFramebufferEXT");
    return genFramebuffers && deleteFramebuffers && bindFramebuffer && framebufferRenderbuffer &&
           checkFramebufferStatus && genRenderbuffers && deleteRenderbuffers && bindRenderbuffer &&
           renderbufferStorage;
}

bool CFrameBuffers::Resize(int w, int h) {
    Release();
    width = w;
    height = h;
    genFramebuffers(2, framebuffers);
    genRenderbuffers(2, renderbuffers);
    for (int i = 0; i < 2; ++i) {
        bindRenderbuffer(GL_RENDERBUFFER, renderbuffers[i]);
        renderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, w, h);
        bindFramebuffer(GL_FRAMEBUFFER, framebuffers[i]);
        framebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffers[i]);
        if (checkFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            Release();
            return false;
        }
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    back = 0;
    BindForDrawing(back);
    return true;
}

void CFrameBuffers::BindForDrawing(int index) { bindFramebuffer(GL_FRAMEBUFFER, framebuffers[index]); }

void CFrameBuffers::Swap() {
    if (!HasBuffers()) return;
    back ^= 1;
    BindForDrawing(back);
}

void CFrameBuffers::Present(int windowWidth, int windowHeight) {
    if (!HasBuffers() || !blitFramebuffer || windowWidth <= 0 || windowHeight <= 0) return;
    // The largest rectangle of the picture's aspect that fits, centred.
    int w = windowWidth, h = windowHeight;
    if (int64_t{windowWidth} * height > int64_t{windowHeight} * width)
        w = static_cast<int>(int64_t{windowHeight} * width / height);
    else
        h = static_cast<int>(int64_t{windowWidth} * height / width);
    const int x = (windowWidth - w) / 2, y = (windowHeight - h) / 2;

    bindFramebuffer(GL_FRAMEBUFFER, 0);
    GLfloat clear[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(clear[0], clear[1], clear[2], clear[3]);
    bindFramebuffer(GL_READ_FRAMEBUFFER, framebuffers[back ^ 1]);
    const bool sameSize = w == width && h == height;
    blitFramebuffer(0, 0, width, height, x, y, x + w, y + h, GL_COLOR_BUFFER_BIT, sameSize ? GL_NEAREST : GL_LINEAR);
    BindForDrawing(back);
}

bool CFrameBuffers::ReadFront(uint8_t* rgba, int w, int h) {
    if (!HasBuffers() || w != width || h != height || !rgba) return false;
    const size_t row = static_cast<size_t>(w) * 4;
    std::vector<uint8_t> bottomUp(row * static_cast<size_t>(h));
    bindFramebuffer(GL_FRAMEBUFFER, framebuffers[back ^ 1]);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, bottomUp.data());
    BindForDrawing(back);
    // GL rows start at the bottom; the capture starts at the top.
    for (int y = 0; y < h; ++y)
        std::memcpy(rgba + static_cast<size_t>(y) * row, bottomUp.data() + static_cast<size_t>(h - 1 - y) * row, row);
    return true;
}

void CFrameBuffers::Release() {
    if (framebuffers[0]) {
        bindFramebuffer(GL_FRAMEBUFFER, 0);
        deleteFramebuffers(2, framebuffers);
        deleteRenderbuffers(2, renderbuffers);
    }
    framebuffers[0] = framebuffers[1] = 0;
    renderbuffers[0] = renderbuffers[1] = 0;
}

}  // namespace vdpgl
