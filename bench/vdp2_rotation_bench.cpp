// RBG0's picture on the CPU (no GL context: handing it to the renderer costs
// nothing here): 65,536 samples of the map through a rotation parameter
// table, per parameter mode, and 71,680 sampled once per dot of a 320 x 224
// screen. And the plug-in's start-up through its export,
// which must stay light: no coefficient table is built up front.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>

#include "bench_chips.h"
#include "vdp2/background/rotation_background.h"
#include "vdp2/vdp2_registers.h"
#include "vdpgl/vdpgl.h"

namespace {

using namespace vdpgl::vdp2reg;
using vdpgl::bench::Chips;

constexpr uint32_t kTables = 0x30000, kCoefficients = 0x40000, kMap = 0x20000;

// A fixed-point long of the parameter table: value x 1023 in bits 6 on
// (negative values by the table's sign rule: all ones is 0).
uint32_t Fixed(double v, int bits) {
    const int32_t n = static_cast<int32_t>(std::lround(v * 1023.0));
    const uint32_t mask = (1u << bits) - 1;
    return ((n >= 0 ? static_cast<uint32_t>(n) : (static_cast<uint32_t>(n - 1) & mask)) & mask) << 6;
}

// RBG0 over a 512 x 512 map of 16-colour cells, turned by 30 degrees and
// zoomed; `mode` 0-3 as RPMD: 2 switches by coefficients (every fourth line
// of A's is transparent: those dots take B), 3 by a rectangle window over
// the middle of the screen.
void BM_Vdp2RotationPicture(benchmark::State& state) {
    const uint32_t mode = static_cast<uint32_t>(state.range(0));
    Chips chips;
    chips.vdp2->rotationScreenSampling = state.range(1) != 0;  // one sample per dot of the 320 x 224 screen
    const auto reg = [&](uint32_t a, uint16_t v) { chips.vdp2->WriteRegisterWord(a, v); };
    reg(TVMD, TVMD_DISP);
    for (uint32_t i = 0; i < 1024; ++i) chips.vdp2->WriteCramWord(i * 2, static_cast<uint16_t>(i * 37));
    chips.FillVdp2Data(0x1000, 512 * 32, 5);
    for (uint32_t i = 0; i < 64 * 64; ++i)
        chips.vdp2->WriteVramWord(kMap + i * 2,
                                  static_cast<uint16_t>((i % 7) << 12 | (i * 7 % 4) << 10 | (0x80 + i % 512)));
    const double angle = 0.5236, zoom = 1.5;
    for (uint32_t t = 0; t < 2; ++t) {
        const uint32_t table = kTables + t * 0x80;
        const auto put = [&](uint32_t offset, uint32_t v) { chips.vdp2->WriteVramLong(table + offset, v); };
        put(0x10, Fixed(1.0, 13));                     // delta Yst
        put(0x14, Fixed(1.0, 13));                     // delta X
        put(0x1C, Fixed(zoom * std::cos(angle), 14));  // A
        put(0x20, Fixed(-zoom * std::sin(angle), 14)); // B
        put(0x28, Fixed(zoom * std::sin(angle), 14));  // D
        put(0x2C, Fixed(zoom * std::cos(angle), 14));  // E
        put(0x44, Fixed(t ? 100.0 : 0.0, 24));         // Mx
        put(0x4C, 0xFFFF), put(0x50, 0xFFFF);          // kx = ky = 1.0
        put(0x58, Fixed(1.0, 20));                     // a coefficient a line
    }
    for (uint32_t y = 0; y < 256; ++y) chips.vdp2->WriteVramWord(kCoefficients + 2 * y, y % 4 ? 0x03FF : 0x8000);
    reg(BGON, 0x0010), reg(PRIR, 1), reg(PNCR, 0x8000);
    for (uint32_t k = 0; k < 16; ++k) reg(MPABRA + 2 * k, 16 << 8 | 16);
    reg(RPTAU, 1), reg(RPTAL, 0x8000);
    reg(RPMD, static_cast<uint16_t>(mode));
    if (mode == 2) reg(KTCTL, 0x0003), reg(KTAOF, 0x0002);
    if (mode == 3) reg(WCTLD, 0x0002), reg(WPSX0, 80), reg(WPSX0 + 2, 56), reg(WPSX0 + 4, 239), reg(WPSX0 + 6, 167);
    chips.vdp2->OnVblankOut();
    chips.vdp2->DrawBackgrounds(1);
    const auto& rbg0 = static_cast<const vdpgl::CRotationBackground&>(*chips.vdp2->Background(vdpgl::kRbg0));
    uint32_t shown = 0;
    for (uint32_t dot : rbg0.Picture()) shown += dot != 0;
    if (shown < 1000) {
        state.SkipWithError("the picture is nearly empty: not drawn?");
        return;
    }
    for (auto _ : state) chips.vdp2->DrawBackgrounds(1);
    state.counters["dots"] = shown;
}

// InitVDPPlugin then DeInitPlugin, as a host starts and ends a session.
void BM_InitVDPPlugin(benchmark::State& state) {
    for (auto _ : state) {
        InitVDPPlugin(nullptr);
        state.PauseTiming();
        DeInitPlugin();
        state.ResumeTiming();
    }
}

}  // namespace

BENCHMARK(BM_Vdp2RotationPicture)
    ->ArgNames({"mode", "per_screen_dot"})
    ->ArgsProduct({{0, 1, 2, 3}, {0}})
    ->Args({0, 1})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InitVDPPlugin)->Unit(benchmark::kMillisecond)->Iterations(20);
