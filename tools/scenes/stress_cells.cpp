// What the stress scenes share: the registers several parts fill in, the
// screen set-up, and characters of varied shapes for the backgrounds.
#include <cstdlib>
#include <vector>

#include "scene_builder.h"
#include "stress_scenes.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::stress {

void CSharedRegisters::Write(CSceneBuilder& scene) const {
    for (const auto& [address, bits] : values) scene.Vdp2Register(address, bits);
}

void StartScreen(CSceneBuilder& scene, const CSharedRegisters& shared) {
    using namespace vdp2;
    // Colour RAM mode 0: 1,024 RGB555 colours. Sprite type 0 (RGB dots
    // allowed), every sprite at priority 6, in front of the backgrounds.
    scene.Vdp2Register(RAMCTL, 0x0000);
    scene.Vdp2Register(SPCTL, 0x0020);
    for (uint32_t i = 0; i < 4; ++i) scene.Vdp2Register(PRISA + 2 * i, 0x0606);
    // NBG0 and NBG1 at their own size (the reduction registers start at 0).
    for (const uint32_t zoom : {ZMXIN0, ZMYIN0, ZMXIN1, ZMYIN1}) scene.Vdp2Register(zoom, 1);
    shared.Write(scene);
    scene.StartDisplay();
}

namespace {

// One of eight shapes, chosen by the seed, in two colours of the seed's run.
int Dot(int x, int y, int size, int seed, int top) {
    const int a = 1 + (seed * 7) % top, b = 1 + (seed * 13 + 5) % top;
    const int c = size / 2;
    switch (seed % 8) {
    case 0: return (x + y) % 4 < 2 ? a : b;                                        // diagonal stripes
    case 1: return (x / 2 + y / 2) % 2 ? a : 0;                                    // open checker
    case 2: return (x - c) * (x - c) + (y - c) * (y - c) < c * c ? a : b;          // disc
    case 3: return x == 0 || y == 0 || x == size - 1 || y == size - 1 ? b : a;     // framed block
    case 4: return std::abs(x - c) + std::abs(y - c) < c ? b : 0;                  // diamond
    case 5: return 1 + (x * y + seed) % top;                                       // many colours
    case 6: return y % 3 == 0 ? a : (x % 5 == 0 ? b : 0);                          // grid
    default: return 1 + (x + 2 * y + seed) % top;                                  // ramp
    }
}

}  // namespace

void WriteCharacters(CSceneBuilder& scene, uint32_t address, int count, bool colors256, bool twoByTwo, int seed) {
    const int size = twoByTwo ? 16 : 8;
    const int top = colors256 ? 255 : 15;
    std::vector<uint8_t> bytes;
    for (int n = 0; n < count; ++n)
        for (int cell = 0; cell < (twoByTwo ? 4 : 1); ++cell) {
            // Cells top-left, top-right, bottom-left, bottom-right, each row by row.
            const int left = (cell & 1) * 8, upper = (cell >> 1) * 8;
            for (int y = 0; y < 8; ++y)
                for (int x = 0; x < 8; ++x) {
                    const auto dot = static_cast<uint8_t>(Dot(left + x, upper + y, size, seed + n, top));
                    if (colors256)
                        bytes.push_back(dot);
                    else if (x % 2 == 0)
                        bytes.push_back(static_cast<uint8_t>(dot << 4));
                    else
                        bytes.back() = static_cast<uint8_t>(bytes.back() | dot);
                }
        }
    for (size_t i = 0; i < bytes.size(); i += 4)
        scene.Vdp2Long(address + static_cast<uint32_t>(i), uint32_t{bytes[i]} << 24 | uint32_t{bytes[i + 1]} << 16 |
                                                                uint32_t{bytes[i + 2]} << 8 | bytes[i + 3]);
}

}  // namespace vdpgl::scenes::stress
