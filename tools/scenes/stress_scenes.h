#pragma once
// Stress scenes: the heaviest loads a game can put on the chips, for the
// frame-time benchmark. Each load is a part that sets itself up once and
// then writes one frame; the single scenes run one part, stress-all runs
// them together. Every part keeps to its own VRAM and colour RAM:
//
// VDP1 VRAM
//   0x00000-0x1F41F  command list: 4,000 tables and the END command
//   0x20000-0x2BBFF  patterns, lookup and gouraud tables (47 KB)
// VDP2 VRAM
//   0x00000-0x0005F  RBG1's parameter table (RBG1 reads its table at 0)
//   0x00100-0x001DF  RBG0's tables, parameter A at 0x100, B at 0x180
//   0x01000-0x01FFF  RBG0's characters (256 colours, one cell)
//   0x02000-0x03FFF  RBG1's characters (16 colours, 2 x 2 cells)
//   0x04000-0x07FFF  RBG0's page (two-word names), every plane of A and B
//   0x08000-0x0BFFF  NBG1's map (2 x 2 cells, 4 pages)
//   0x0C000-0x0FFFF  NBG2's map (2 x 2 cells, 4 pages)
//   0x10000-0x1FFFF  NBG0's map (one cell, 4 pages); unused when NBG0 is the bitmap
//   0x20000-0x2FFFF  NBG3's map (one cell, 4 pages)
//   0x30000-0x3FFFF  the normal planes' characters
//   0x40000-0x40FFF  RBG1's page (map offset 1 with 2 x 2 cells)
//   0x41000-0x4FFFF  coefficients: A's and RBG1's from bank 0x40000
//   0x50000-0x5FFFF  coefficients of parameter B
//   0x60000-0x6FFFF  NBG0's bitmap, 512 x 256 dots of 16 colours
// Colour RAM (mode 0, 1,024 colours)
//   0-511     sprite colour banks (the sprite colour RAM offset is 0)
//   512-767   256-colour backgrounds (offset code 2)
//   768-1023  16-colour backgrounds and the bitmap (offset code 3)
#include <cstdint>
#include <map>
#include <vector>

#include "vdp1_command_list.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes {

class CSceneBuilder;

namespace stress {

constexpr int kFrames = 300;

// A fixed generator, so every run writes the same trace.
class CRandom {
public:
    explicit CRandom(uint32_t seed) : state(seed * 2654435761u + 1u) {}
    uint32_t Next() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    }
    // In [low, high].
    int Range(int low, int high) { return low + static_cast<int>(Next() % static_cast<uint32_t>(high - low + 1)); }

private:
    uint32_t state;
};

// Registers that several parts fill in, each its own bits: gathered while
// the parts set up and written once.
class CSharedRegisters {
public:
    void Set(uint32_t address, uint16_t bits) { values[address] |= bits; }
    void Write(CSceneBuilder& scene) const;

private:
    std::map<uint32_t, uint16_t> values;
};

// Writes `count` characters from address: varied shapes in colours 1-15
// (16 colours: palette count dots) or 1-255, with transparent dots.
void WriteCharacters(CSceneBuilder& scene, uint32_t address, int count, bool colors256, bool twoByTwo, int seed);
constexpr uint32_t CharacterBytes(bool colors256, bool twoByTwo) {
    return (colors256 ? 64u : 32u) * (twoByTwo ? 4u : 1u);
}

// (a) 4,000 VDP1 parts: half drawn from patterns that stay the same, half
// from patterns, lookup tables and colour banks rewritten every frame.
struct SpriteLoad {
    struct Part {
        int kind, pattern, calculation;
        double x, y, vx, vy, spin;
    };
    std::vector<Vdp1Sprite> stable, changing;
    std::vector<uint16_t> changingLookups, gouraud;
    std::vector<Part> parts;
};
SpriteLoad SetUpSprites(CSceneBuilder& scene, CSharedRegisters& shared);
void WriteSpritesFrame(CSceneBuilder& scene, const SpriteLoad& load, int frame);

// (b) Cell planes of 1,024 x 1,024 dots on the normal backgrounds in
// `backgrounds` (bit n: NBGn), scrolling, a tenth of their names rewritten
// every frame.
void SetUpPlanes(CSceneBuilder& scene, CSharedRegisters& shared, unsigned backgrounds);
void WritePlanesFrame(CSceneBuilder& scene, unsigned backgrounds, int frame);

// (c) RBG0 with parameters A and B chosen by coefficients, and RBG1 (which
// takes NBG0's character settings: those of the bitmap in stress-all).
void SetUpRotation(CSceneBuilder& scene, CSharedRegisters& shared);
void WriteRotationFrame(CSceneBuilder& scene, int frame);

// (d) NBG0 as a 512 x 256 bitmap of 16 colours. A frame rewrites `rows`
// of its 256 rows, from where the last frame stopped: all of them in
// stress-bitmap, a band in stress-all (where the whole bitmap every frame
// would more than double the trace).
void SetUpBitmap(CSceneBuilder& scene, CSharedRegisters& shared);
void WriteBitmapFrame(CSceneBuilder& scene, int frame, int rows);

// Writes the gathered registers and those every stress scene shares
// (colour RAM mode, sprite type and priority), then starts the display.
void StartScreen(CSceneBuilder& scene, const CSharedRegisters& shared);

void WriteStressSprites(CSceneBuilder& scene);
void WriteStressPlanes(CSceneBuilder& scene);
void WriteStressRotation(CSceneBuilder& scene);
void WriteStressBitmap(CSceneBuilder& scene);
void WriteStressAll(CSceneBuilder& scene);

}  // namespace stress

}  // namespace vdpgl::scenes
