#pragma once
// VDP2 register addresses the scenes write, by their console names.
#include <cstdint>

namespace vdpgl::scenes::vdp2 {

constexpr uint32_t kTvmd = 0x000, kRamctl = 0x00E, kBgon = 0x020, kChctla = 0x028, kChctlb = 0x02A, kBmpna = 0x02C;
// Pattern name control, one register per background NBG0-NBG3.
constexpr uint32_t kPncn0 = 0x030, kPlsz = 0x03A, kMpofn = 0x03C;
// Maps of planes A and B, and of C and D, two registers per background.
constexpr uint32_t MapAB(int background) { return 0x040 + 4 * static_cast<uint32_t>(background); }
constexpr uint32_t MapCD(int background) { return 0x042 + 4 * static_cast<uint32_t>(background); }
// Scroll and zoom of NBG0 and NBG1 (integer parts; a fraction register follows each).
constexpr uint32_t kScxin0 = 0x070, kScyin0 = 0x074, kZmxin0 = 0x078, kZmyin0 = 0x07C;
constexpr uint32_t kScxin1 = 0x080, kScyin1 = 0x084, kZmxin1 = 0x088, kZmxdn1 = 0x08A, kZmyin1 = 0x08C,
                   kZmydn1 = 0x08E;
constexpr uint32_t kScxn2 = 0x090, kScyn2 = 0x092, kScxn3 = 0x094, kScyn3 = 0x096;
constexpr uint32_t kSpctl = 0x0E0, kCraofa = 0x0E4, kPrisa = 0x0F0, kPrina = 0x0F8, kPrinb = 0x0FA;

// A scroll position as the 11-bit registers hold it (-1024 to 1023).
constexpr uint16_t Scroll(int dots) { return static_cast<uint16_t>(dots & 0x7FF); }

}  // namespace vdpgl::scenes::vdp2
