#include "vdp2_cells.h"

#include <map>
#include <stdexcept>
#include <string>

#include "scene_builder.h"

namespace vdpgl::scenes {

namespace {

constexpr int kPlaneDots = 512;
constexpr uint32_t kVramSize = 0x80000;

// A character's dots, row by row, without their palette.
using Dots = std::vector<uint8_t>;

// Characters of one plane have one size: byte order is enough (and keeps
// an optimising compiler from warning about the standard comparison).
struct DotsOrder {
    bool operator()(const Dots& a, const Dots& b) const {
        if (a.size() != b.size()) return a.size() < b.size();
        for (size_t i = 0; i < a.size(); ++i)
            if (a[i] != b[i]) return a[i] < b[i];
        return false;
    }
};

enum Flip : int { kNoFlip = 0, kHFlip = 1, kVFlip = 2 };

Dots Flipped(const Dots& dots, int size, int flip) {
    Dots out(dots.size());
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const int sx = (flip & kHFlip) ? size - 1 - x : x, sy = (flip & kVFlip) ? size - 1 - y : y;
            out[static_cast<size_t>(y) * size + x] = dots[static_cast<size_t>(sy) * size + sx];
        }
    return out;
}

[[noreturn]] void Reject(const std::string& what, int x, int y) {
    throw std::invalid_argument("the character at (" + std::to_string(x) + ", " + std::to_string(y) + ") " + what);
}

// The dots of the character whose top-left dot is (left, top), and its palette.
Dots ReadCharacter(const PixelCodes& picture, const Vdp2CellFormat& format, int left, int top, uint32_t& palette) {
    const int size = format.twoByTwo ? 16 : 8;
    Dots dots(static_cast<size_t>(size) * size);
    bool paletteSeen = false;
    palette = 0;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const uint16_t code = picture.At(left + x, top + y);
            if (code == 0) continue;
            if (format.colors256) {
                if (code > 0xFF) Reject("has a colour beyond 255", left, top);
                dots[static_cast<size_t>(y) * size + x] = static_cast<uint8_t>(code);
                continue;
            }
            if ((code & 0xF) == 0) Reject("has a dot 0 that is not transparent", left, top);
            const uint32_t codePalette = code >> 4;
            if (paletteSeen && codePalette != palette) Reject("mixes palettes", left, top);
            palette = codePalette;
            paletteSeen = true;
            dots[static_cast<size_t>(y) * size + x] = static_cast<uint8_t>(code & 0xF);
        }
    return dots;
}

// Appends the character's cells (top-left, top-right, bottom-left,
// bottom-right for 2 x 2 characters), each row by row.
void AppendCells(std::vector<uint8_t>& out, const Dots& dots, const Vdp2CellFormat& format) {
    const int size = format.twoByTwo ? 16 : 8;
    for (int cell = 0; cell < (format.twoByTwo ? 4 : 1); ++cell) {
        const int left = (cell & 1) * 8, top = (cell >> 1) * 8;
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) {
                const uint8_t dot = dots[static_cast<size_t>(top + y) * size + left + x];
                if (format.colors256)
                    out.push_back(dot);
                else if (x % 2 == 0)
                    out.push_back(static_cast<uint8_t>(dot << 4));  // the left dot in the high nibble
                else
                    out.back() = static_cast<uint8_t>(out.back() | dot);
            }
    }
}

uint32_t CharacterBytes(const Vdp2CellFormat& format) {
    return (format.colors256 ? 64u : 32u) * (format.twoByTwo ? 4u : 1u);
}

uint32_t PatternName(const Vdp2CellFormat& format, uint32_t number, uint32_t palette, int flip, int x, int y) {
    const bool h = (flip & kHFlip) != 0, v = (flip & kVFlip) != 0;
    if (format.oneWordNames) {
        if (palette >= (format.colors256 ? 8u : 16u)) Reject("needs a palette beyond a one-word name's", x, y);
        return (palette << 12) | (v ? 0x800u : 0u) | (h ? 0x400u : 0u) | (number & 0x3FF);
    }
    const uint32_t field = format.colors256 ? palette << 4 : palette;  // 256-colour palettes count in 16s
    if (field > 0x7F) Reject("needs a palette beyond a two-word name's", x, y);
    return (v ? 0x80000000u : 0u) | (h ? 0x40000000u : 0u) | (field << 16) | (number & 0x3FFF);
}

}  // namespace

uint16_t SupplementaryCharacterNumber(const Vdp2CellFormat& format) {
    return static_cast<uint16_t>((format.cellAddress / 32) >> 10 & 0x1F);
}

Vdp2Plane EncodePlane(const PixelCodes& picture, const Vdp2CellFormat& format) {
    if (picture.width != kPlaneDots || picture.height != kPlaneDots)
        throw std::invalid_argument("a plane picture is 512 x 512 dots");
    if (format.oneWordNames && (format.twoByTwo || format.cellAddress % 0x8000 != 0))
        throw std::invalid_argument("one-word names here take one-cell characters from a 32 KB boundary");
    if (format.cellAddress % 32 != 0) throw std::invalid_argument("characters start on a 32-byte boundary");

    const int size = format.twoByTwo ? 16 : 8;
    const int perLine = kPlaneDots / size;
    const uint32_t first = format.cellAddress / 32, step = CharacterBytes(format) / 32;

    Vdp2Plane plane;
    std::map<Dots, uint32_t, DotsOrder> stored;  // dots of each stored character -> its number
    for (int cy = 0; cy < perLine; ++cy)
        for (int cx = 0; cx < perLine; ++cx) {
            uint32_t palette = 0;
            const Dots dots = ReadCharacter(picture, format, cx * size, cy * size, palette);
            // A stored character shown with flip f looks like ours when it
            // holds our dots flipped by f.
            uint32_t number = 0;
            int flip = kNoFlip;
            for (; flip <= (kHFlip | kVFlip); ++flip) {
                const auto found = stored.find(flip == kNoFlip ? dots : Flipped(dots, size, flip));
                if (found != stored.end()) {
                    number = found->second;
                    break;
                }
            }
            if (flip > (kHFlip | kVFlip)) {
                flip = kNoFlip;
                number = first + static_cast<uint32_t>(plane.characterCount) * step;
                // One-word names reach 1024 characters from the first; the
                // 14 bits of two-word names reach the end of VRAM.
                if ((format.oneWordNames && number - first >= 0x400) || (number + step) * 32 > kVramSize)
                    Reject("does not fit: too many different characters", cx * size, cy * size);
                stored.emplace(dots, number);
                AppendCells(plane.characters, dots, format);
                ++plane.characterCount;
            }
            if (flip != kNoFlip) ++plane.flippedNames;
            plane.names.push_back(PatternName(format, number, palette, flip, cx * size, cy * size));
        }
    return plane;
}

void UploadPlane(CSceneBuilder& scene, const Vdp2Plane& plane, const Vdp2CellFormat& format, uint32_t mapAddress) {
    const std::vector<uint8_t>& bytes = plane.characters;
    for (size_t i = 0; i < bytes.size(); i += 4) {
        uint32_t value = 0;
        for (size_t k = 0; k < 4; ++k) value = (value << 8) | (i + k < bytes.size() ? bytes[i + k] : 0u);
        scene.Vdp2Long(format.cellAddress + static_cast<uint32_t>(i), value);
    }
    for (size_t i = 0; i < plane.names.size(); ++i) {
        const uint32_t index = static_cast<uint32_t>(i);
        if (format.oneWordNames)
            scene.Vdp2Word(mapAddress + index * 2, static_cast<uint16_t>(plane.names[i]));
        else
            scene.Vdp2Long(mapAddress + index * 4, plane.names[i]);
    }
}

void WriteBitmap(CSceneBuilder& scene, uint32_t address, const PixelCodes& picture) {
    const size_t dots = picture.codes.size();
    for (size_t i = 0; i < dots; i += 4) {
        uint32_t value = 0;
        for (size_t k = 0; k < 4; ++k) value = (value << 8) | (i + k < dots ? (picture.codes[i + k] & 0xFFu) : 0u);
        scene.Vdp2Long(address + static_cast<uint32_t>(i), value);
    }
}

}  // namespace vdpgl::scenes
