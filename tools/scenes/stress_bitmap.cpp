// NBG0 as a 512 x 256 bitmap of 16 colours whose every dot changes every
// frame: three moving waves summed into colour bands, some dots left clear
// so what lies behind shows through.
#include <array>
#include <cmath>
#include <numbers>

#include "scene_builder.h"
#include "scene_math.h"
#include "stress_scenes.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::stress {

namespace {

using namespace vdp2;

constexpr int kWidth = 512, kHeight = 256;
constexpr uint32_t kBitmapAddress = 0x60000;  // map offset 3
constexpr uint16_t kPalette = 5;              // bitmap palette: entries 768 + 80 on

// Waves as tables of 0-63, so the dots cost a few additions.
struct Waves {
    std::array<int, 512> wave{};
    Waves() {
        for (int i = 0; i < 512; ++i)
            wave[static_cast<size_t>(i)] = static_cast<int>(std::lround(31.5 + 31.5 * std::sin(i * 2 * std::numbers::pi / 512)));
    }
    int operator()(int i) const { return wave[static_cast<size_t>(i & 511)]; }
};

// 1-15 in bands that move 3, 5 and 7 steps a frame, 0 (clear) on the band
// edges; the colour of a dot changes every frame.
uint32_t DotAt(const Waves& w, int x, int y, int frame) {
    const int v = w(2 * x + 3 * frame) + w(3 * y - 5 * frame) + w(x + y + 7 * frame) + frame;
    const int band = (v / 4) % 16;
    return static_cast<uint32_t>(band == 0 ? 0 : band);
}

}  // namespace

void SetUpBitmap(CSceneBuilder& scene, CSharedRegisters& shared) {
    for (uint32_t i = 1; i < 16; ++i)
        scene.CramWord(768 + kPalette * 16 + i, ToCramColor(Hue(static_cast<float>(i) / 15.0f)));
    // NBG0: bitmap (bit 1), 512 x 256 (bits 3-2 = 0), 16 colours (bits 6-4 = 0).
    shared.Set(CHCTLA, 0x0002);
    shared.Set(BMPNA, kPalette);
    shared.Set(MPOFN, kBitmapAddress / 0x20000);
    shared.Set(CRAOFA, 3);
    shared.Set(PRINA, 4);
    shared.Set(BGON, 0x0001);
}

void WriteBitmapFrame(CSceneBuilder& scene, int frame, int rows) {
    static const Waves waves;
    scene.Vdp2Register(SCXIN0, 0);
    scene.Vdp2Register(SCYIN0, 0);
    // Eight dots a long, the first in the top nibble.
    const int first = frame * rows % kHeight;
    for (int y = first; y < first + rows; ++y)
        for (int x = 0; x < kWidth; x += 8) {
            uint32_t value = 0;
            for (int k = 0; k < 8; ++k) value = value << 4 | DotAt(waves, x + k, y, frame);
            scene.Vdp2Long(kBitmapAddress + static_cast<uint32_t>(y * kWidth + x) / 2, value);
        }
}

void WriteStressBitmap(CSceneBuilder& scene) {
    CSharedRegisters shared;
    SetUpBitmap(scene, shared);
    StartScreen(scene, shared);
    for (int frame = 0; frame < kFrames; ++frame) {
        WriteBitmapFrame(scene, frame, kHeight);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes::stress
