// Character pattern decoding: VDP1 VRAM data of one colour mode into colour
// words. Every mode first builds the colours its pixel codes can take (at
// most 256 lookups, end code and transparency rules folded in), so the loop
// over the pixels is one table lookup each.
#include <cstring>

#include "common/console_vram.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp1/vdp1_part.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

namespace {

struct ColorBankMode {
    uint32_t pixelMask;  // also the end code
    uint32_t bankMask;
};
constexpr ColorBankMode kColorBankModes[5] = {
    {0x0F, 0xFFF0}, {0, 0}, {0x3F, 0xFFC0}, {0x7F, 0xFF80}, {0xFF, 0xFF00}};

// Walks a run of pattern bytes in rows: bytesPerRow bytes make one row of
// destination texels, rows are stride texels apart. VRAM addresses wrap at
// the end of the 512 KB.
template <typename EmitByte>
void ForEachRowByte(uint32_t start, int32_t height, int32_t bytesPerRow, EmitByte emit) {
    uint32_t a = start;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t i = 0; i < bytesPerRow; ++i, ++a) emit(y, i, a & CConsoleVram::kMask);
    }
}

}  // namespace

CVdp1CharacterPattern::DecodeSource CVdp1CharacterPattern::SourceOf(const CVdp1SpritePart& part) {
    return {part.colorCtrl & 0xFFFF, part.characterAddress, part.endCodeDisabled != 0,
            part.transparentPixelDisabled != 0};
}

CVdp1CharacterPattern::DecodeSource CVdp1CharacterPattern::ImageSource() const {
    return {colorCtrl & 0xFFFF, startAddress, partEndCodeDisabled != 0, transparentPixelDisabled != 0};
}

bool CVdp1CharacterPattern::Decode(uint32_t mode, const DecodeSource& source, uint32_t* destination,
                                   int32_t stride) const {
    const uint8_t* vram = statics.vram->Data();
    const uint32_t* rgb = statics.rgb555ToRgba;
    const auto word = [vram](uint32_t a) {
        uint16_t w;
        std::memcpy(&w, vram + CConsoleVram::WordOffset(a), sizeof w);
        return w;
    };
    uint32_t notBlack = 0;

    if (mode == 5) {
        const uint32_t transparent = source.transparentPixelDisabled ? kOpaqueBlack : 0u;
        uint32_t a = source.startAddress;
        for (int32_t y = 0; y < height; ++y) {
            uint32_t* row = destination + static_cast<ptrdiff_t>(y) * stride;
            for (int32_t x = 0; x < width; ++x, a += 2) {
                const uint16_t w = word(a);
                const bool clear = w == 0 || (w == 0x7FFF && !source.endCodeDisabled);
                const uint32_t texel = clear ? transparent : rgb[w];
                notBlack |= texel ^ kOpaqueBlack;
                row[x] = texel;
            }
        }
        return notBlack == 0;
    }

    // Colours of every pixel code; index 0 and the end code follow the
    // transparency rules.
    uint32_t colors[256];
    uint32_t pixelMask;
    if (mode == 1) {
        pixelMask = 0x0F;
        const uint32_t lut = source.colorCtrl * 8;
        for (uint32_t p = 0; p < 16; ++p) {
            const uint16_t w = word(lut + p * 2);
            colors[p] = w ? rgb[w] : 0u;
        }
    } else {
        const ColorBankMode& m = kColorBankModes[mode];
        pixelMask = m.pixelMask;
        const uint32_t bank = source.colorCtrl & m.bankMask;
        for (uint32_t p = 0; p <= pixelMask; ++p) colors[p] = statics.vdp2->GetSpriteColor(bank | p);
    }
    const uint32_t transparent = source.transparentPixelDisabled ? colors[0] : 0u;
    colors[0] = transparent;
    if (!source.endCodeDisabled) colors[pixelMask] = transparent;

    if (mode <= 1) {
        // Two pixels a byte, the high nibble on the left.
        ForEachRowByte(source.startAddress, height, width / 2, [&](int32_t y, int32_t i, uint32_t a) {
            const uint8_t b = vram[a ^ 3];
            const uint32_t left = colors[b >> 4], right = colors[b & 0x0F];
            notBlack |= (left ^ kOpaqueBlack) | (right ^ kOpaqueBlack);
            uint32_t* out = destination + static_cast<ptrdiff_t>(y) * stride + 2 * i;
            out[0] = left;
            out[1] = right;
        });
    } else {
        // Byte values above the pixel code's range fold onto it.
        for (uint32_t b = pixelMask + 1; b < 256; ++b) colors[b] = colors[b & pixelMask];
        ForEachRowByte(source.startAddress, height, width, [&](int32_t y, int32_t i, uint32_t a) {
            const uint32_t texel = colors[vram[a ^ 3]];
            notBlack |= texel ^ kOpaqueBlack;
            destination[static_cast<ptrdiff_t>(y) * stride + i] = texel;
        });
    }
    return notBlack == 0;
}

void CVdp1CharacterPattern::DecodeTextureInMode(const CVdp1SpritePart& part, uint32_t mode) {
    dataSize = static_cast<uint32_t>(DataSize(mode, width, height));
    if (!Decode(mode, SourceOf(part), texels, textureWidth)) allBlack = 0;
}

void CVdp1CharacterPattern::DecodeTexture16ColorsColorBank(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 0); }
void CVdp1CharacterPattern::DecodeTexture16ColorsLut(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 1); }
void CVdp1CharacterPattern::DecodeTexture64ColorsColorBank(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 2); }
void CVdp1CharacterPattern::DecodeTexture128ColorsColorBank(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 3); }
void CVdp1CharacterPattern::DecodeTexture256ColorsColorBank(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 4); }
void CVdp1CharacterPattern::DecodeTexture32KColors(const CVdp1SpritePart& part) { DecodeTextureInMode(part, 5); }

void CVdp1CharacterPattern::DecodeImage16ColorsColorBank(uint32_t* d) const { Decode(0, ImageSource(), d, width); }
void CVdp1CharacterPattern::DecodeImage16ColorsLut(uint32_t* d) const { Decode(1, ImageSource(), d, width); }
void CVdp1CharacterPattern::DecodeImage64ColorsColorBank(uint32_t* d) const { Decode(2, ImageSource(), d, width); }
void CVdp1CharacterPattern::DecodeImage128ColorsColorBank(uint32_t* d) const { Decode(3, ImageSource(), d, width); }
void CVdp1CharacterPattern::DecodeImage256ColorsColorBank(uint32_t* d) const { Decode(4, ImageSource(), d, width); }
void CVdp1CharacterPattern::DecodeImage32KColors(uint32_t* d) const { Decode(5, ImageSource(), d, width); }

}  // namespace vdpgl
