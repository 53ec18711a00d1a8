#include "vdp1_patterns.h"

#include <stdexcept>
#include <string>

#include "scene_builder.h"

namespace vdpgl::scenes {

namespace {

constexpr uint32_t kVramSize = 0x80000;
// Patterns start on 32-byte boundaries, a safe choice for every colour mode.
constexpr uint32_t kAlignment = 32;

}  // namespace

uint32_t CVdp1PatternArea::Allocate(uint32_t bytes) {
    const uint32_t address = next;
    next = (next + bytes + kAlignment - 1) & ~(kAlignment - 1);
    if (next > kVramSize) throw std::length_error("the scene's patterns do not fit in VDP1 VRAM");
    return address;
}

void CVdp1PatternArea::WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes) {
    // Long writes, big-endian as the chip sees them; the tail padded with 0.
    for (size_t i = 0; i < bytes.size(); i += 4) {
        uint32_t value = 0;
        for (size_t k = 0; k < 4; ++k) value = (value << 8) | (i + k < bytes.size() ? bytes[i + k] : 0u);
        scene.Vdp1Long(address + static_cast<uint32_t>(i), value);
    }
}

Vdp1Sprite CVdp1PatternArea::Upload(const PixelCodes& picture, ColorMode mode, uint16_t colr) {
    if (picture.width % 8 != 0 || picture.width > 504 || picture.height > 255 || picture.height <= 0)
        throw std::invalid_argument("a VDP1 pattern is 8 to 504 pixels wide in steps of 8 and 1 to 255 high, not " +
                                    std::to_string(picture.width) + " x " + std::to_string(picture.height));
    std::vector<uint8_t> bytes;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const uint16_t code = picture.At(x, y);
            switch (mode) {
            case ColorMode::Bank16:
            case ColorMode::Lookup16:
                // Two pixels a byte, the left one in the high nibble.
                if (x % 2 == 0)
                    bytes.push_back(static_cast<uint8_t>((code & 0xF) << 4));
                else
                    bytes.back() = static_cast<uint8_t>(bytes.back() | (code & 0xF));
                break;
            case ColorMode::Bank64:
            case ColorMode::Bank128:
            case ColorMode::Bank256: bytes.push_back(static_cast<uint8_t>(code)); break;
            case ColorMode::Rgb:
                bytes.push_back(static_cast<uint8_t>(code >> 8));
                bytes.push_back(static_cast<uint8_t>(code));
                break;
            }
        }
    }
    const uint32_t address = Allocate(static_cast<uint32_t>(bytes.size()));
    WriteBytes(address, bytes);

    Vdp1Sprite sprite;
    sprite.pmod = static_cast<uint16_t>(static_cast<uint16_t>(mode) << 3);
    sprite.colr = colr;
    sprite.srca = static_cast<uint16_t>(address / 8);
    sprite.size = static_cast<uint16_t>(((picture.width / 8) << 8) | picture.height);
    sprite.width = picture.width;
    sprite.height = picture.height;
    return sprite;
}

uint16_t CVdp1PatternArea::Lookup(const std::array<uint16_t, 16>& colors) {
    const uint32_t address = Allocate(32);
    for (uint32_t i = 0; i < 16; ++i) scene.Vdp1Word(address + 2 * i, colors[i]);
    return static_cast<uint16_t>(address / 8);
}

uint16_t CVdp1PatternArea::ReserveGouraud() { return static_cast<uint16_t>(Allocate(8) / 8); }

void WriteGouraudTable(CSceneBuilder& scene, uint16_t grda, const std::array<uint16_t, 4>& corners) {
    for (uint32_t i = 0; i < 4; ++i) scene.Vdp1Word(uint32_t{grda} * 8 + 2 * i, corners[i]);
}

}  // namespace vdpgl::scenes
