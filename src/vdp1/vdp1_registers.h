#pragma once
// VDP1 register addresses inside its 0x20-byte register area.
#include <cstdint>

namespace vdpgl::vdp1reg {

constexpr uint32_t TVMR = 0x00;
constexpr uint32_t FBCR = 0x02;
constexpr uint32_t PTMR = 0x04;
constexpr uint32_t EWDR = 0x06;
constexpr uint32_t EWLR = 0x08;
constexpr uint32_t EWRR = 0x0A;
constexpr uint32_t ENDR = 0x0C;
constexpr uint32_t EDSR = 0x10;
constexpr uint32_t LOPR = 0x12;
constexpr uint32_t COPR = 0x14;
constexpr uint32_t MODR = 0x16;

constexpr uint32_t kAddressMask = 0x1F;
constexpr uint32_t kCount = 12;  // slots 0x00 to 0x16

constexpr uint16_t TVMR_VBE = 0x0008;  // erase/write during V-blank

}  // namespace vdpgl::vdp1reg
