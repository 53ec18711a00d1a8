// The VDP1 texture cache under the command lists that stress it, one whole
// VDP1 frame (walk, draw, swap, purge) per iteration on a headless context:
// - a 504 x 255 lookup-table pattern drawn with 40 new lookup tables a frame;
// - 2,000 small 16-colour characters that each move to another colour bank
//   every frame;
// - 4,000 sprites on one character address alternating two sizes, against
//   the same list with one size (off screen, so that only the cache shows).
// Each reports the time per frame, the texture memory and textures the
// cache holds at the end, and how much the process grew.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>

#include "bench_chips.h"
#include "vdp1/vdp1_registers.h"

namespace {

using vdpgl::test::Command;

long ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * 4096;
}

// The chips with a headless context, in one-cycle mode with automatic
// drawing (every frame walks and draws), and a colour RAM of distinct colours.
struct Chips : vdpgl::bench::Chips {
    Chips() {
        setenv("VDPGL_HEADLESS", "1", 0);
        renderer.InitGl(nullptr);
        vdp1->WriteRegister(vdpgl::vdp1reg::PTMR, 2);
        for (uint32_t i = 0; i < 2048; ++i) vdp2->WriteCramWord(i * 2, static_cast<uint16_t>(0x8000 | (i * 37)));
    }
    void Word(uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }
};

// What the cache holds: texels plus each texture's fixed charge.
double TextureMegabytes() {
    return static_cast<double>(vdpgl::CVdp1CharacterPattern::TextureBytes()) / (1024.0 * 1024.0);
}

bool SkipWithoutContext(benchmark::State& state, Chips& chips) {
    if (chips.renderer.HasContext()) return false;
    state.SkipWithError("no GL context");
    return true;
}

void Report(benchmark::State& state, long residentBefore) {
    state.counters["texture_MB"] = TextureMegabytes();
    state.counters["textures"] = vdpgl::CVdp1CharacterPattern::TextureCount();
    state.counters["growth_MB"] = static_cast<double>(ResidentBytes() - residentBefore) / (1024.0 * 1024.0);
}

constexpr uint32_t kPatternAddress = 0x10000;

// 40 sprites of one 504 x 255 lookup-table pattern, each with a lookup
// table never used before.
void ManyLookupTables(benchmark::State& state) {
    Chips chips;
    if (SkipWithoutContext(state, chips)) return;
    constexpr int kSprites = 40;
    constexpr uint32_t kTables = 0x50000, kTableCount = (0x7F000 - kTables) / 32;
    chips.FillPatternData(kPatternAddress, 504 * 255 / 2, 1);
    chips.FillPatternData(kTables, kTableCount * 32, 2);
    for (int i = 0; i < kSprites; ++i)
        vdpgl::test::WriteCommand(chips.Vram(), i * 0x20,
                                  Command{.pmod = 1 << 3, .srca = kPatternAddress / 8, .size = 0x3FFF, .xa = 1000});
    vdpgl::test::WriteCommand(chips.Vram(), kSprites * 0x20, Command{.ctrl = vdpgl::test::kEndCmd});
    const long before = ResidentBytes();
    uint32_t table = 0;
    for (auto _ : state) {
        for (int i = 0; i < kSprites; ++i)
            chips.Word(i * 0x20 + 6, static_cast<uint16_t>((kTables + (table++ % kTableCount) * 32) / 8));
        chips.vdp1->Frame();
    }
    Report(state, before);
}

// 2,000 sprites of 2,000 different 8 x 8 16-colour characters; each frame
// every sprite takes the next colour bank.
void ManyColorBanks(benchmark::State& state) {
    Chips chips;
    if (SkipWithoutContext(state, chips)) return;
    constexpr int kSprites = 2000;
    chips.FillPatternData(kPatternAddress, kSprites * 32, 3);
    for (int i = 0; i < kSprites; ++i)
        vdpgl::test::WriteCommand(chips.Vram(), i * 0x20,
                                  Command{.srca = static_cast<uint16_t>((kPatternAddress + i * 32) / 8),
                                          .size = 0x0108,
                                          .xa = static_cast<int16_t>(i % 40 * 8),
                                          .ya = static_cast<int16_t>(i / 40 % 28 * 8)});
    vdpgl::test::WriteCommand(chips.Vram(), kSprites * 0x20, Command{.ctrl = vdpgl::test::kEndCmd});
    const long before = ResidentBytes();
    uint32_t frame = 0;
    for (auto _ : state) {
        ++frame;
        for (int i = 0; i < kSprites; ++i) chips.Word(i * 0x20 + 6, static_cast<uint16_t>(((frame + i) % 128) << 4));
        chips.vdp1->Frame();
    }
    Report(state, before);
}

// 4,000 off-screen sprites on one character address: with range(0) set,
// every other one is 8 x 8 instead of 16 x 8.
void OneAddress(benchmark::State& state) {
    Chips chips;
    if (SkipWithoutContext(state, chips)) return;
    constexpr int kSprites = 4000;
    const bool alternate = state.range(0) != 0;
    chips.FillPatternData(kPatternAddress, 64, 4);
    for (int i = 0; i < kSprites; ++i)
        vdpgl::test::WriteCommand(
            chips.Vram(), i * 0x20,
            Command{.srca = kPatternAddress / 8, .size = static_cast<uint16_t>(alternate && i % 2 ? 0x0108 : 0x0208),
                    .xa = 1000});
    vdpgl::test::WriteCommand(chips.Vram(), kSprites * 0x20, Command{.ctrl = vdpgl::test::kEndCmd});
    chips.vdp1->Frame();
    const long before = ResidentBytes();
    for (auto _ : state) chips.vdp1->Frame();
    Report(state, before);
}

}  // namespace

BENCHMARK(ManyLookupTables)->Name("vdp1 cache: 40 new lookup tables a frame on 504x255")->Iterations(75)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ManyColorBanks)->Name("vdp1 cache: 2000 characters to a new colour bank a frame")->Iterations(100)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(OneAddress)->Name("vdp1 cache: 4000 sprites on one address")->ArgName("alternating")->Arg(0)->Arg(1)
    ->Unit(benchmark::kMillisecond);
