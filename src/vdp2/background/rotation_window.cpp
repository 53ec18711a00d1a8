#include "vdp2/background/rotation_window.h"

#include "common/console_vram.h"
#include "common/module_log.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

using namespace vdp2reg;

namespace {

// Window n's registers: WPSXn, WPSYn, WPEXn, WPEYn, then LWTAnU, LWTAnL.
struct WindowRegisters {
    int32_t sx, sy, ex, ey;
    uint16_t upper, lower;
};

WindowRegisters Read(const CVdp2& v, uint32_t n) {
    const uint32_t w = WPSX0 + 8 * n, l = LWTA0U + 4 * n;
    return {v.Register(w), v.Register(w + 2), v.Register(w + 4), v.Register(w + 6), v.Register(l), v.Register(l + 2)};
}

void TraceWindow(const CModuleLog& trace, uint32_t n, const WindowRegisters& r) {
    trace.Log("window %u: xs=%d, xe=%d, ys=%d, ye=%d\n", n, r.sx, r.ex, r.sy, r.ey);
}

}  // namespace

bool RotationParameterWindow::Choose(const CVdp2& vdp2, const CModuleLog& trace) {
    const uint16_t wctld = vdp2.Register(WCTLD);
    const uint32_t n = (wctld & 0x2) ? 0 : (wctld & 0x8) ? 1 : 2;
    if (n == 2) {
        trace.Log("window mode but no window activated..\n");
        for (uint32_t i = 0; i < 2; ++i) {
            const WindowRegisters r = Read(vdp2, i);
            TraceWindow(trace, i, r);
            if (r.upper & 0x8000) trace.Log("\tline window\n");
        }
        return false;
    }
    trace.Log("\tuses window %u\n", n);
    const WindowRegisters r = Read(vdp2, n);
    startY = r.sy;
    endY = r.ey;
    lineWindow = (r.upper & 0x8000) != 0;
    if (lineWindow) {
        trace.Log("\tline window\n");
        lineTable = LineWindowTableAddress(r.upper, r.lower);
    } else {
        startX = r.sx;
        endX = r.ex;
        TraceWindow(trace, n, r);
    }
    return true;
}

bool RotationParameterWindow::Inside(const CConsoleVram& vram, int32_t x, int32_t y) const {
    if (y < startY || y > endY) return false;
    if (!lineWindow) return x >= startX && x <= endX;
    const uint32_t entry = lineTable + 4 * static_cast<uint32_t>(y);
    const int32_t start = vram.ReadWord(entry & CConsoleVram::kMask);
    const int32_t end = vram.ReadWord((entry + 2) & CConsoleVram::kMask);
    return end != 0xFFFF && x >= start && x <= end;
}

}  // namespace vdpgl
