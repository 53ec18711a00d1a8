// VDP1's per-frame work on the CPU: the command walk that builds a part per
// drawing command (textures already cached), and the decoding of a character
// pattern into texels in each colour mode.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "bench_chips.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_part.h"
#include "vdp2/vdp2.h"

namespace {

using vdpgl::test::Command;
using vdpgl::test::kNormalSpriteCmd;

using vdpgl::bench::Chips;

// A full colour RAM and, at 0x7F000, sixteen 16-entry lookup tables.
void FillPalettes(Chips& chips) {
    for (uint32_t i = 0; i < 1024; ++i) chips.vdp2->WriteCramWord(i * 2, static_cast<uint16_t>(0x8000 | (i * 37)));
    for (uint32_t i = 0; i < 256; ++i) chips.vdp1->WriteVramWord(0x7F000 + i * 2, static_cast<uint16_t>(i * 131 + 1));
}

constexpr int kSprites = 4000;
constexpr int kPatterns = 8;
constexpr uint32_t kPatternBase = 0x20000, kPatternStride = 0x800;  // 16 x 16, up to 512 bytes each

// 4,000 normal sprites over eight 16 x 16 patterns in all six colour modes,
// each drawn with one of four palettes, spread over the screen.
void WriteSpriteList(Chips& chips) {
    for (int k = 0; k < kPatterns; ++k) chips.FillPatternData(kPatternBase + k * kPatternStride, 512, k + 1);
    for (int i = 0; i < kSprites; ++i) {
        const int pattern = i % kPatterns;
        const uint16_t mode = static_cast<uint16_t>(pattern % 6);
        const uint16_t palette = static_cast<uint16_t>((i / kPatterns) % 4);
        const uint16_t colr = mode == 1 ? static_cast<uint16_t>(0x7F000 / 8 + palette * 4)  // LUT address / 8
                                        : static_cast<uint16_t>(palette << 8);
        vdpgl::test::WriteCommand(chips.Vram(), static_cast<uint32_t>(i) * 0x20,
                                  Command{.ctrl = kNormalSpriteCmd,
                                          .pmod = static_cast<uint16_t>(mode << 3),
                                          .colr = colr,
                                          .srca = static_cast<uint16_t>((kPatternBase + pattern * kPatternStride) / 8),
                                          .size = 0x0210,
                                          .xa = static_cast<int16_t>((i * 7) % 320),
                                          .ya = static_cast<int16_t>((i * 13) % 224)});
    }
    vdpgl::test::WriteCommand(chips.Vram(), kSprites * 0x20, Command{.ctrl = vdpgl::test::kEndCmd});
}

size_t PartCount(const vdpgl::CVdp1& vdp1) {
    size_t n = 0;
    for (const auto& list : vdp1.partsListVectors) n += list.size();
    return n;
}

void Vdp1WalkCachedSprites(benchmark::State& state) {
    setenv("VDPGL_HEADLESS", "1", 0);
    Chips chips;
    chips.renderer.InitGl(nullptr);
    if (!chips.renderer.HasContext()) {
        state.SkipWithError("no GL context: texture ids would be 0 and never cached");
        return;
    }
    FillPalettes(chips);
    WriteSpriteList(chips);
    chips.vdp1->BuildPartsListVectors();  // the first walk decodes and caches every texture
    const int patterns = vdpgl::CVdp1CharacterPattern::PatternCount();
    if (PartCount(*chips.vdp1) != kSprites || patterns != kPatterns) {
        state.SkipWithError("the list did not build one part per sprite over the cached patterns");
        return;
    }
    for (auto _ : state) {
        chips.vdp1->BuildPartsListVectors();
        benchmark::DoNotOptimize(chips.vdp1->partsListVectors.data());
    }
    if (vdpgl::CVdp1CharacterPattern::PatternCount() != patterns) state.SkipWithError("patterns were rebuilt");
    state.SetItemsProcessed(state.iterations() * kSprites);
    state.counters["time_per_part"] =
        benchmark::Counter(kSprites, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// One 64 x 64 pattern decoded into a 64 x 64 texture, in colour mode
// state.range(0).
void Vdp1DecodeTexture(benchmark::State& state) {
    constexpr int32_t kSize = 64;
    const auto mode = static_cast<uint32_t>(state.range(0));
    Chips chips;
    FillPalettes(chips);
    chips.FillPatternData(0x10000, kSize * kSize * 2, 7);

    vdpgl::CVdp1SpritePart part;
    part.colorMode = mode;
    part.characterAddress = 0x10000;
    part.characterSize = (kSize / 8) << 8 | kSize;
    part.colorCtrl = mode == 1 ? 0x7F000 / 8 : 0x0100;
    std::vector<uint32_t> texels(kSize * kSize);
    vdpgl::CVdp1CharacterPattern pattern;
    pattern.width = pattern.height = kSize;
    pattern.textureWidth = pattern.textureHeight = kSize;
    pattern.colorMode = mode;
    pattern.texels = texels.data();

    using Decoder = void (vdpgl::CVdp1CharacterPattern::*)(const vdpgl::CVdp1SpritePart&);
    static constexpr Decoder kDecoders[6] = {
        &vdpgl::CVdp1CharacterPattern::DecodeTexture16ColorsColorBank,
        &vdpgl::CVdp1CharacterPattern::DecodeTexture16ColorsLut,
        &vdpgl::CVdp1CharacterPattern::DecodeTexture64ColorsColorBank,
        &vdpgl::CVdp1CharacterPattern::DecodeTexture128ColorsColorBank,
        &vdpgl::CVdp1CharacterPattern::DecodeTexture256ColorsColorBank,
        &vdpgl::CVdp1CharacterPattern::DecodeTexture32KColors,
    };
    const Decoder decode = kDecoders[mode];
    for (auto _ : state) {
        (pattern.*decode)(part);
        benchmark::DoNotOptimize(texels.data());
        benchmark::ClobberMemory();
    }
    pattern.texels = nullptr;
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}

}  // namespace

BENCHMARK(Vdp1WalkCachedSprites)->Name("vdp1: walk of 4000 cached normal sprites");
BENCHMARK(Vdp1DecodeTexture)
    ->Name("vdp1: decode 64x64 texture, colour mode")
    ->DenseRange(0, 5)
    ->ArgName("mode");
