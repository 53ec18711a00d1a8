#pragma once
// The rotation parameter window: in RBG0's parameter mode 3 a dot inside
// the window uses parameter A, outside it parameter B. Window 0 or 1, each a
// rectangle or a line window (a start and end dot per line, from a table in
// VRAM). Only the enable bits of WCTLD are read: inside always means A.
#include <cstdint>

namespace vdpgl {

class CConsoleVram;
class CModuleLog;
class CVdp2;

struct RotationParameterWindow {
    // Picks the window from the registers, window 0 first; false when
    // neither is enabled.
    bool Choose(const CVdp2& vdp2, const CModuleLog& trace);
    // Whether screen dot (x, y) is inside; bounds are inclusive, and a line
    // whose end is 0xFFFF has no window.
    bool Inside(const CConsoleVram& vram, int32_t x, int32_t y) const;

    int32_t startX = 0, endX = 0, startY = 0, endY = 0;
    bool lineWindow = false;
    uint32_t lineTable = 0;  // VRAM byte address of line 0's entry
};

// The line table address of a window from its LWTAxU and LWTAxL.
constexpr uint32_t LineWindowTableAddress(uint16_t upper, uint16_t lower) {
    return ((static_cast<uint32_t>(upper & 7) << 15) | static_cast<uint32_t>((lower & 0xFFFE) >> 1)) << 2;
}

}  // namespace vdpgl
