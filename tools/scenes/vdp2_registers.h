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

// Rotation background registers the plug-in's list does not name yet.
constexpr uint32_t MPOFR = 0x03E;   // map offsets: parameter A bits 0-2, B bits 4-6
constexpr uint32_t MPABRA = 0x050;  // maps of planes A-P of parameter A, two a register (MPCDRA ... MPOPRA follow)
constexpr uint32_t MPABRB = 0x060;  // the same for parameter B
constexpr uint32_t RPMD = 0x0B0;    // rotation parameter mode
constexpr uint32_t RPRCTL = 0x0B2;  // which table values are read again each frame
constexpr uint32_t KTCTL = 0x0B4;   // coefficient tables: parameter A bits 0-3, B bits 8-11
constexpr uint32_t KTAOF = 0x0B6;   // coefficient table address offsets
constexpr uint32_t RPTAU = 0x0BC;   // rotation parameter table address: its top bits
constexpr uint32_t RPTAL = 0x0BE;   // and its lower bits

// Maps of planes 2k and 2k + 1 (k = 0 for A and B ... 7 for O and P) of parameter A.
constexpr uint32_t RotationMap(int pair) { return MPABRA + 2 * static_cast<uint32_t>(pair); }

// A scroll position as the 11-bit registers hold it (-1024 to 1023).
constexpr uint16_t Scroll(int dots) { return static_cast<uint16_t>(dots & 0x7FF); }

}  // namespace vdpgl::scenes::vdp2
