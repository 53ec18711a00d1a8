#pragma once
// VDP1 and VDP2 linked as the plug-in links them, for the benchmarks; the GL
// context is the benchmark's to make.
#include <cstdint>
#include <memory>

#include "../tests/support/vdp1_commands.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl::bench {

struct Chips {
    COpenGl renderer{nullptr};
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(renderer);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(renderer);
    Chips() {
        vdp1->Link(*vdp2);
        vdp2->Link(*vdp1);
    }
    ~Chips() {
        vdp1.reset();  // patterns delete their textures while the context exists
        renderer.ReleaseGl();
    }
    test::WordWriter Vram() {
        return [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
    }
    // Pattern data that uses every pixel code: a simple generator, no zeros only.
    void FillPatternData(uint32_t address, uint32_t bytes, uint32_t seed) {
        Generate(bytes, seed, [&](uint32_t i, uint16_t v) { vdp1->WriteVramWord(address + i, v); });
    }
    // The same kind of data in VDP2's VRAM, for cells and maps.
    void FillVdp2Data(uint32_t address, uint32_t bytes, uint32_t seed) {
        Generate(bytes, seed, [&](uint32_t i, uint16_t v) { vdp2->WriteVramWord(address + i, v); });
    }

private:
    template <typename Write>
    static void Generate(uint32_t bytes, uint32_t seed, Write write) {
        uint32_t x = seed * 2654435761u + 1;
        for (uint32_t i = 0; i < bytes; i += 2) {
            x = x * 1664525u + 1013904223u;
            write(i, static_cast<uint16_t>(x >> 16));
        }
    }
};

}  // namespace vdpgl::bench
