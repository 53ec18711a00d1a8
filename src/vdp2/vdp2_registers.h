#pragma once
// VDP2 register offsets inside the 0x200-byte register area (the ones this
// plug-in decodes or reads; every register is 16 bits).
#include <cstdint>

namespace vdpgl::vdp2reg {

constexpr uint32_t TVMD = 0x000;
constexpr uint32_t EXTEN = 0x002;
constexpr uint32_t TVSTAT = 0x004;
constexpr uint32_t VRSIZE = 0x006;
constexpr uint32_t HCNT = 0x008;
constexpr uint32_t VCNT = 0x00A;
constexpr uint32_t RAMCTL = 0x00E;
constexpr uint32_t BGON = 0x020;
constexpr uint32_t SPCTL = 0x0E0;
constexpr uint32_t CRAOFA = 0x0E4;
constexpr uint32_t CRAOFB = 0x0E6;
constexpr uint32_t PRISA = 0x0F0;
constexpr uint32_t PRISB = 0x0F2;
constexpr uint32_t PRISC = 0x0F4;
constexpr uint32_t PRISD = 0x0F6;
constexpr uint32_t CLOFEN = 0x110;
constexpr uint32_t CLOFSL = 0x112;
constexpr uint32_t COAR = 0x114;
constexpr uint32_t COAG = 0x116;
constexpr uint32_t COAB = 0x118;
constexpr uint32_t COBR = 0x11A;
constexpr uint32_t COBG = 0x11C;
constexpr uint32_t COBB = 0x11E;

constexpr uint32_t kAddressMask = 0x1FF;
constexpr uint32_t kCount = 256;

constexpr uint16_t TVMD_DISP = 0x8000;     // display enabled
constexpr uint16_t RAMCTL_CRMD = 0x3000;   // colour RAM mode
constexpr uint16_t CLOF_SPRITE = 0x0040;   // CLOFEN/CLOFSL: the sprite's bit

}  // namespace vdpgl::vdp2reg
