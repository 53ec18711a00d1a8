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
constexpr uint32_t CHCTLA = 0x028;
constexpr uint32_t CHCTLB = 0x02A;
constexpr uint32_t BMPNA = 0x02C;
constexpr uint32_t PNCN0 = 0x030;  // PNCN1-PNCN3 follow, a word apart
constexpr uint32_t PNCR = 0x038;
constexpr uint32_t PLSZ = 0x03A;
constexpr uint32_t MPOFN = 0x03C;
constexpr uint32_t MPOFR = 0x03E;
constexpr uint32_t MPABN0 = 0x040;  // MPCDN0, MPABN1, ... MPCDN3 follow
constexpr uint32_t MPABRA = 0x050;  // MPCDRA ... MPOPRA, then MPABRB ... MPOPRB follow
constexpr uint32_t MPABRB = 0x060;
constexpr uint32_t SCXIN0 = 0x070;
constexpr uint32_t SCYIN0 = 0x074;
constexpr uint32_t ZMXIN0 = 0x078;
constexpr uint32_t ZMXDN0 = 0x07A;
constexpr uint32_t ZMYIN0 = 0x07C;
constexpr uint32_t ZMYDN0 = 0x07E;
constexpr uint32_t SCXIN1 = 0x080;
constexpr uint32_t SCYIN1 = 0x084;
constexpr uint32_t ZMXIN1 = 0x088;
constexpr uint32_t ZMXDN1 = 0x08A;
constexpr uint32_t ZMYIN1 = 0x08C;
constexpr uint32_t ZMYDN1 = 0x08E;
constexpr uint32_t SCXN2 = 0x090;
constexpr uint32_t SCYN2 = 0x092;
constexpr uint32_t SCXN3 = 0x094;
constexpr uint32_t SCYN3 = 0x096;
constexpr uint32_t RPMD = 0x0B0;
constexpr uint32_t RPRCTL = 0x0B2;
constexpr uint32_t KTCTL = 0x0B4;
constexpr uint32_t KTAOF = 0x0B6;
constexpr uint32_t RPTAU = 0x0BC;
constexpr uint32_t RPTAL = 0x0BE;
constexpr uint32_t WPSX0 = 0x0C0;  // WPSY0, WPEX0, WPEY0, then window 1's four follow
constexpr uint32_t WCTLA = 0x0D0;
constexpr uint32_t WCTLB = 0x0D2;
constexpr uint32_t WCTLC = 0x0D4;
constexpr uint32_t WCTLD = 0x0D6;
constexpr uint32_t LWTA0U = 0x0D8;  // LWTA0L, LWTA1U, LWTA1L follow
constexpr uint32_t SPCTL = 0x0E0;
constexpr uint32_t CRAOFA = 0x0E4;
constexpr uint32_t CRAOFB = 0x0E6;
constexpr uint32_t PRISA = 0x0F0;
constexpr uint32_t PRISB = 0x0F2;
constexpr uint32_t PRISC = 0x0F4;
constexpr uint32_t PRISD = 0x0F6;
constexpr uint32_t PRINA = 0x0F8;
constexpr uint32_t PRINB = 0x0FA;
constexpr uint32_t PRIR = 0x0FC;
constexpr uint32_t CCRNA = 0x108;
constexpr uint32_t CCRNB = 0x10A;
constexpr uint32_t CCRR = 0x10C;
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
