#pragma once
// Backgrounds for VDP2: a picture cut into characters, identical and mirrored
// characters stored once, with the one-page map of pattern names that puts
// them back together; and bitmaps written dot by dot.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "scene_builder.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes {

class CSceneBuilder;

// How a background stores its characters and names.
struct Vdp2CellFormat {
    bool colors256 = false;     // 256 colours a dot; otherwise 16
    bool twoByTwo = false;      // characters of 2 x 2 cells (16 x 16 dots); otherwise one cell
    bool oneWordNames = true;   // 16-bit pattern names; otherwise 32-bit
    uint32_t cellAddress = 0;   // VRAM address of the first character
};

// A 512 x 512 plane of one page. Its picture's codes are colour numbers
// counted from the background's colour RAM offset: with 16 colours palette x
// 16 + dot (dots 1-15, and every dot of a character in one palette), with 256
// colours the dot; 0 is transparent.
struct Vdp2Plane {
    std::vector<uint8_t> characters;  // cell data, written from cellAddress
    std::vector<uint32_t> names;      // the page's pattern names, row by row
    int characterCount = 0;
    int flippedNames = 0;             // names that show a character mirrored
};

// Cuts the picture into characters. One-word names take one-cell characters
// only, and a 32 KB aligned cellAddress (the rest of the character number
// comes from SupplementaryCharacterNumber). Throws when the picture does not
// fit the format.
Vdp2Plane EncodePlane(const PixelCodes& picture, const Vdp2CellFormat& format);

// The pattern name control register's character number bits (4-0) that go
// with one-word names of this format.
uint16_t SupplementaryCharacterNumber(const Vdp2CellFormat& format);

// Writes the characters and the map (at mapAddress) into VDP2 VRAM.
void UploadPlane(CSceneBuilder& scene, const Vdp2Plane& plane, const Vdp2CellFormat& format, uint32_t mapAddress);

// A 256-colour bitmap, one byte a dot, row by row from address.
void WriteBitmap(CSceneBuilder& scene, uint32_t address, const PixelCodes& picture);

// Colours into colour RAM from entry `first` on.
template <size_t N>
void WritePalette(CSceneBuilder& scene, uint32_t first, const std::array<uint16_t, N>& colors) {
    for (size_t i = 0; i < N; ++i) scene.CramWord(first + static_cast<uint32_t>(i), colors[i]);
}

// The first colour RAM entry of a background's colour RAM offset code.
constexpr uint32_t ColorRamStart(uint32_t offset) { return offset * 256; }

// A map register value with one page number in both halves (bits 13-8 and
// 5-0): both planes it names at the page that holds mapAddress.
constexpr uint16_t PagePair(uint32_t mapAddress, uint32_t pageBytes) {
    return static_cast<uint16_t>((mapAddress / pageBytes) << 8 | (mapAddress / pageBytes));
}

}  // namespace vdpgl::scenes
