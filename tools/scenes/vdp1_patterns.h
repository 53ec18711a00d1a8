#pragma once
// Character patterns for VDP1: a picture as pixel codes, packed for one of
// the six colour modes and uploaded to VDP1 VRAM; also the small tables a
// command points at (colour lookup tables, gouraud tables).
#include <array>
#include <cstdint>
#include <vector>

#include "vdp1_command_list.h"

namespace vdpgl::scenes {

class CSceneBuilder;

// Colour modes, CMDPMOD bits 5-3.
enum class ColorMode : uint16_t {
    Bank16 = 0,
    Lookup16 = 1,
    Bank64 = 2,
    Bank128 = 3,
    Bank256 = 4,
    Rgb = 5,
};

// A picture as codes, row by row: a colour-bank or lookup-table index, or an
// RGB555 word in RGB mode. Code 0 is transparent.
struct PixelCodes {
    PixelCodes(int w, int h) : width(w), height(h), codes(static_cast<size_t>(w) * h) {}
    uint16_t& At(int x, int y) { return codes[static_cast<size_t>(y) * width + x]; }
    uint16_t At(int x, int y) const { return codes[static_cast<size_t>(y) * width + x]; }

    int width, height;
    std::vector<uint16_t> codes;
};

// Hands out VDP1 VRAM from a start address upwards and writes what it holds.
class CVdp1PatternArea {
public:
    explicit CVdp1PatternArea(CSceneBuilder& target, uint32_t start = 0x4000) : scene(target), next(start) {}

    // Packs and uploads a picture whose width is a multiple of 8; colr is the
    // colour bank (bank modes) or lookup table (from Lookup()), unused in RGB.
    Vdp1Sprite Upload(const PixelCodes& picture, ColorMode mode, uint16_t colr = 0);
    // A 16-colour lookup table; returns its CMDCOLR value.
    uint16_t Lookup(const std::array<uint16_t, 16>& colors);
    // Room for a gouraud table (four RGB555 words); returns its CMDGRDA value.
    // Its words are written with WriteGouraudTable, as often as they change.
    uint16_t ReserveGouraud();

    uint32_t Used() const { return next; }

private:
    uint32_t Allocate(uint32_t bytes);
    void WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes);

    CSceneBuilder& scene;
    uint32_t next;
};

// The corner colours A to D of the gouraud table at CMDGRDA grda; per
// channel, 16 leaves a colour as it is.
void WriteGouraudTable(CSceneBuilder& scene, uint16_t grda, const std::array<uint16_t, 4>& corners);

}  // namespace vdpgl::scenes
