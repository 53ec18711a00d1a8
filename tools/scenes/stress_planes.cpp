// Normal backgrounds as cell planes of 1,024 x 1,024 dots (plane size
// 2 x 2 pages, all four planes at the same map), each scrolling its own
// way, a tenth of its pattern names rewritten every frame, spread over the
// whole map. Colour counts and character sizes differ between them.
#include <array>

#include "scene_builder.h"
#include "scene_math.h"
#include "stress_scenes.h"
#include "vdp2_cells.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::stress {

namespace {

using namespace vdp2;

struct Plane {
    bool colors256, twoByTwo;
    uint32_t mapAddress, cellAddress;
    int scrollX, scrollY;  // dots a frame, in eighths
};

constexpr int kCharacters = 64;
constexpr uint32_t kCellArea = 0x30000;

// NBG0-NBG3. Two-word names throughout: a page is 0x4000 bytes with one-cell
// characters, 0x1000 with 2 x 2; a plane is four pages.
constexpr std::array<Plane, 4> kPlanes = {{
    {false, false, 0x10000, kCellArea, 12, 5},
    {true, true, 0x08000, kCellArea + 0x800, -9, 14},
    {false, true, 0x0C000, kCellArea + 0x4800, 22, -7},
    {true, false, 0x20000, kCellArea + 0x6800, -4, -17},
}};

// Each background's characters lie apart from the next one's: read with
// another colour count, they would be another background's garbage.
constexpr bool CharactersApart() {
    for (size_t n = 0; n + 1 < kPlanes.size(); ++n)
        if (kPlanes[n].cellAddress + kCharacters * CharacterBytes(kPlanes[n].colors256, kPlanes[n].twoByTwo) >
            kPlanes[n + 1].cellAddress)
            return false;
    return true;
}
static_assert(CharactersApart());

int NameCount(const Plane& p) { return p.twoByTwo ? 64 * 64 : 128 * 128; }
uint32_t PageBytes(const Plane& p) { return p.twoByTwo ? 0x1000 : 0x4000; }

// A two-word pattern name: flips in bits 31-30, palette in 22-16 (256-colour
// palettes count in 16s), character number (in 32-byte units) in 14-0.
uint32_t Name(const Plane& p, uint32_t random) {
    const uint32_t character = random % kCharacters;
    const uint32_t number = (p.cellAddress + character * CharacterBytes(p.colors256, p.twoByTwo)) / 32;
    const uint32_t palette = p.colors256 ? 0 : (random >> 8) % 16;
    const uint32_t flips = (random >> 16) & 3;
    return flips << 30 | palette << 16 | number;
}

uint32_t Hash(uint32_t a, uint32_t b) {
    uint32_t h = a * 0x9E3779B1u ^ (b + 0x7F4A7C15u) * 0x85EBCA77u;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    return h ^ (h >> 12);
}

bool On(unsigned backgrounds, int n) { return (backgrounds >> n) & 1u; }

}  // namespace

void SetUpPlanes(CSceneBuilder& scene, CSharedRegisters& shared, unsigned backgrounds) {
    // Palettes: 256 colours at offset 2 (entries 512-767), sixteen 16-colour
    // palettes at offset 3 (768-1023).
    for (uint32_t i = 0; i < 256; ++i) {
        scene.CramWord(512 + i, ToCramColor(Scale(Hue(static_cast<float>(i) / 256.0f), 0.35f + 0.65f * static_cast<float>(i % 4) / 3.0f)));
        scene.CramWord(768 + i, ToCramColor(Mix(Hue(static_cast<float>(i / 16) / 16.0f), {1, 1, 1}, static_cast<float>(i % 16) / 30.0f)));
    }
    static constexpr uint32_t kColorCount[4] = {4, 12, 1, 5}, kCellSize[4] = {0, 8, 0, 4};  // bit positions
    for (int n = 0; n < 4; ++n) {
        if (!On(backgrounds, n)) continue;
        const Plane& p = kPlanes[static_cast<size_t>(n)];
        WriteCharacters(scene, p.cellAddress, kCharacters, p.colors256, p.twoByTwo, 11 * n);
        for (int i = 0; i < NameCount(p); ++i) scene.Vdp2Long(p.mapAddress + 4 * static_cast<uint32_t>(i), Name(p, Hash(n, i)));
        // Plane size 3 (2 x 2 pages): bits 2n+1-2n of PLSZ. All four planes at the map.
        shared.Set(PLSZ, static_cast<uint16_t>(3u << (2 * n)));
        const uint16_t maps = PagePair(p.mapAddress, PageBytes(p));
        scene.Vdp2Register(MapAB(n), maps);
        scene.Vdp2Register(MapCD(n), maps);
        scene.Vdp2Register(PNCN0 + 2 * static_cast<uint32_t>(n), 0x0000);  // two-word names
        const uint32_t control = n < 2 ? CHCTLA : CHCTLB;
        if (p.colors256) shared.Set(control, static_cast<uint16_t>(1u << kColorCount[n]));
        if (p.twoByTwo) shared.Set(control, static_cast<uint16_t>(1u << kCellSize[n]));
        shared.Set(CRAOFA, static_cast<uint16_t>((p.colors256 ? 2u : 3u) << (4 * n)));
        // NBG3 farthest back (priority 1) to NBG0 in front (4).
        shared.Set(n < 2 ? PRINA : PRINB, static_cast<uint16_t>((4 - n) << (n % 2 ? 8 : 0)));
        shared.Set(BGON, static_cast<uint16_t>(1u << n));
    }
}

void WritePlanesFrame(CSceneBuilder& scene, unsigned backgrounds, int frame) {
    static constexpr uint32_t kScrollX[4] = {SCXIN0, SCXIN1, SCXN2, SCXN3}, kScrollY[4] = {SCYIN0, SCYIN1, SCYN2, SCYN3};
    for (int n = 0; n < 4; ++n) {
        if (!On(backgrounds, n)) continue;
        const Plane& p = kPlanes[static_cast<size_t>(n)];
        scene.Vdp2Register(kScrollX[n], Scroll((p.scrollX * frame / 8) & 0x3FF));
        scene.Vdp2Register(kScrollY[n], Scroll((p.scrollY * frame / 8) & 0x3FF));
        // A tenth of the names: every tenth one, starting at a place that
        // moves each frame, so the changes cover the map.
        const int count = NameCount(p);
        const int start = static_cast<int>(Hash(frame, n) % 10);
        for (int i = start; i < count; i += 10)
            scene.Vdp2Long(p.mapAddress + 4 * static_cast<uint32_t>(i), Name(p, Hash(n + 4 * (frame + 1), i)));
    }
}

void WriteStressPlanes(CSceneBuilder& scene) {
    constexpr unsigned kAll = 0xF;
    CSharedRegisters shared;
    SetUpPlanes(scene, shared, kAll);
    StartScreen(scene, shared);
    for (int frame = 0; frame < kFrames; ++frame) {
        WritePlanesFrame(scene, kAll, frame);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes::stress
