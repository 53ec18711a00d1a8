// The same port operations called on the VDP objects directly, without the
// call through the library's export: what the port itself costs.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>

#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace {

constexpr uint32_t kWindow = 0xFFFF;

struct Chips {
    vdpgl::COpenGl renderer{nullptr};
    std::unique_ptr<vdpgl::CVdp1> vdp1 = std::make_unique<vdpgl::CVdp1>(renderer);
    std::unique_ptr<vdpgl::CVdp2> vdp2 = std::make_unique<vdpgl::CVdp2>(renderer);
    Chips() { vdp1->Link(*vdp2); }
};

void CoreVdp1VramWriteWord(benchmark::State& state) {
    Chips chips;
    uint32_t i = 0;
    for (auto _ : state) {
        chips.vdp1->WriteVramWord((i << 1) & kWindow, static_cast<uint16_t>(i >> 2));
        ++i;
    }
}

void CoreVdp1VramReadWord(benchmark::State& state) {
    Chips chips;
    uint32_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(chips.vdp1->ReadVramWord((i << 1) & kWindow));
        ++i;
    }
}

void CoreVdp2VramWriteWord(benchmark::State& state) {
    Chips chips;
    uint32_t i = 0;
    for (auto _ : state) {
        chips.vdp2->WriteVramWord((i << 1) & kWindow, static_cast<uint16_t>(i >> 2));
        ++i;
    }
}

void CoreVdp2CramWriteWord(benchmark::State& state) {
    Chips chips;
    uint32_t i = 0;
    for (auto _ : state) {
        chips.vdp2->WriteCramWord((i << 1) & 0xFFF, static_cast<uint16_t>(i));
        ++i;
    }
}

}  // namespace

BENCHMARK(CoreVdp1VramWriteWord)->Name("core: VDP1 VRAM write word");
BENCHMARK(CoreVdp1VramReadWord)->Name("core: VDP1 VRAM read word");
BENCHMARK(CoreVdp2VramWriteWord)->Name("core: VDP2 VRAM write word");
BENCHMARK(CoreVdp2CramWriteWord)->Name("core: VDP2 CRAM write word");
