#pragma once
// VDP2's registers as the scenes write them: the plug-in's own addresses, and
// the map registers and scroll values of a background.
#include <cstdint>

#include "vdp2/vdp2_registers.h"

namespace vdpgl::scenes::vdp2 {

using namespace vdp2reg;

// Maps of planes A and B, and of C and D, of background NBG0-NBG3.
constexpr uint32_t MapAB(int background) { return MPABN0 + 4 * static_cast<uint32_t>(background); }
constexpr uint32_t MapCD(int background) { return MapAB(background) + 2; }

// Maps of planes 2k and 2k + 1 (k = 0 for A and B ... 7 for O and P) of parameter A.
constexpr uint32_t RotationMap(int pair) { return MPABRA + 2 * static_cast<uint32_t>(pair); }

// A scroll position as the 11-bit registers hold it (-1024 to 1023).
constexpr uint16_t Scroll(int dots) { return static_cast<uint16_t>(dots & 0x7FF); }

}  // namespace vdpgl::scenes::vdp2
