#include "render/opengl/opengl.h"

#include <cstdio>

namespace vdpgl {

namespace {

enum class SizeClass { Low, High, Other };

SizeClass ClassifyWidth(int w) {
    if (w == 320 || w == 352) return SizeClass::Low;
    if (w == 640 || w == 704) return SizeClass::High;
    return SizeClass::Other;
}

SizeClass ClassifyHeight(int h) {
    if (h == 224 || h == 240 || h == 256) return SizeClass::Low;
    if (h == 448 || h == 480 || h == 512) return SizeClass::High;
    return SizeClass::Other;
}

// Low-resolution sizes scale by the factor. High-resolution and interlaced
// sizes are already twice as large: they scale by half the factor, and not at
// all for "original" and "x 1.25". Other sizes keep the current value.
// Products are float, truncated towards zero (224 x 3.2 gives 716).
int ScaledDimension(SizeClass kind, int emulated, int current, float scale) {
    switch (kind) {
    case SizeClass::Low: return static_cast<int>(static_cast<float>(emulated) * scale);
    case SizeClass::High:
        if (scale == 1.0f || scale == 1.25f) return emulated;
        return static_cast<int>(static_cast<float>(emulated) * (scale / 2.0f));
    case SizeClass::Other: break;
    }
    return current;
}

}  // namespace

void COpenGl::SetSaturnResolution(int hRes, int vRes) {
    log.Log("SetSaturnResolution(%d, %d)\n", hRes, vRes);
    drawList.SetScreen(hRes, vRes);
    if (hRes == GetSaturnHRes() && vRes == GetSaturnVRes()) return;
    saturnHRes.store(hRes, std::memory_order_relaxed);
    saturnVRes.store(vRes, std::memory_order_relaxed);
    AdjustRenderingResolution();
}

void COpenGl::SetRenderingScale(float scale) {
    if (scale == GetRenderingScale()) return;
    renderingScale.store(scale, std::memory_order_relaxed);
    AdjustRenderingResolution();
}

void COpenGl::AdjustRenderingResolution() {
    log.Log("AdjustRenderingResolution\n");
    const float scale = GetRenderingScale();
    const int saturnH = GetSaturnHRes(), saturnV = GetSaturnVRes();
    const int h = ScaledDimension(ClassifyWidth(saturnH), saturnH, GetRenderingHRes(), scale);
    const int v = ScaledDimension(ClassifyHeight(saturnV), saturnV, GetRenderingVRes(), scale);
    renderingHRes.store(h, std::memory_order_relaxed);
    renderingVRes.store(v, std::memory_order_relaxed);
    log.Log("hRes: %d, vRes: %d\n", h, v);
    renderingResolutionChanged.store(true, std::memory_order_release);
}

void COpenGl::SetWireframe(bool on) {
    wireframe.store(on, std::memory_order_relaxed);
    wireframeChanged.store(true, std::memory_order_release);
}

std::string COpenGl::WindowTitle() const {
    char text[96];
    const float scale = GetRenderingScale();
    if (scale == 1.0f)
        std::snprintf(text, sizeof text, "Resolution: %dX%d", GetSaturnHRes(), GetSaturnVRes());
    else
        std::snprintf(text, sizeof text, "Resolution: %dX%d (%dX%dX%.2f)", GetRenderingHRes(), GetRenderingVRes(),
                      GetSaturnHRes(), GetSaturnVRes(), static_cast<double>(scale));
    return text;
}

}  // namespace vdpgl
