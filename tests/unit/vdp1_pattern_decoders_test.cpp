// Character pattern decoders: rows, data size, the all-black flag and VRAM's end. What each pixel code
// shows is checked on whole frames in host_vdp1_frame_test.
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using P = CVdp1CharacterPattern;
constexpr uint32_t kSentinel = 0xDEADBEEFu;

class Vdp1PatternDecodersTest : public test::VdpTest {
protected:
    Vdp1PatternDecodersTest() {
        // Colour RAM: 1,024 colours, none black. A lookup table of opaque black at 0x880 (CMDCOLR 0x110).
        for (uint32_t i = 0; i < 1024; ++i) vdp2->WriteCramWord(2 * i, static_cast<uint16_t>(i + 1));
        for (uint32_t i = 0; i < 16; ++i) vdp1->WriteVramWord(0x880 + 2 * i, 0x8000);
    }
    void WriteBytes(uint32_t a, std::initializer_list<uint8_t> bytes) {
        for (uint8_t b : bytes) vdp1->WriteVramByte(a++, b);
    }
    // The texture decoder of the mode over sentinels: w x h, rows `stride` texels apart.
    std::vector<uint32_t> Texture(uint32_t mode, uint16_t colr, uint32_t a, int32_t w, int32_t h, int32_t stride) {
        part.colorMode = mode, part.colorCtrl = colr, part.characterAddress = a;
        pattern.width = w, pattern.height = h, pattern.textureWidth = stride;
        std::vector<uint32_t> texels(static_cast<size_t>(stride) * h + 16, kSentinel);
        pattern.texels = texels.data();
        static constexpr void (P::*kDecoders[6])(const CVdp1SpritePart&) = {
            &P::DecodeTexture16ColorsColorBank,  &P::DecodeTexture16ColorsLut, &P::DecodeTexture64ColorsColorBank,
            &P::DecodeTexture128ColorsColorBank, &P::DecodeTexture256ColorsColorBank, &P::DecodeTexture32KColors};
        (pattern.*kDecoders[mode])(part);
        return texels;
    }

    P pattern;
    CVdp1SpritePart part;
};

TEST_F(Vdp1PatternDecodersTest, TexturesAndImagesAgreeRowByRowAcrossVramsEndAndAllBlackOnlyEverClears) {
    // 4 x 2 pixels of every kind of code (0, end codes, the unused top bits of the 64- and 128-colour
    // modes, ordinary ones), also from 2 bytes before VRAM's end; the image decodes from the pattern's
    // copies of the part's values. Only opaque black (the table; code 0 with SPD) keeps allBlack.
    for (uint32_t a : {0x1000u, 0x7FFFEu})
        WriteBytes(a, {0x00, 0xFF, 0x0F, 0xF0, 0x3F, 0x7F, 0xC0, 0x80, 0x41, 0x12, 0x7F, 0xFF, 0x80, 0x00, 0xBF, 0xC1});
    for (uint32_t mode = 0; mode < 6; ++mode)
        for (bool ecd : {false, true}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << (ecd ? " ECD" : " SPD"));
            part.endCodeDisabled = pattern.partEndCodeDisabled = ecd;
            part.transparentPixelDisabled = pattern.transparentPixelDisabled = !ecd;
            pattern.colorMode = mode, pattern.colorCtrl = 0x0110, pattern.startAddress = 0x1000;
            pattern.allBlack = 1;
            const std::vector<uint32_t> texture = Texture(mode, 0x0110, 0x1000, 4, 2, 8);
            EXPECT_EQ(pattern.allBlack, mode == 1 && !ecd);
            EXPECT_EQ(pattern.dataSize, 4u << (mode >= 2) << (mode == 5)) << "bytes of 4 x 2 pixels";
            EXPECT_EQ(Texture(mode, 0x0110, 0x7FFFE, 4, 2, 8), texture) << "from the end of VRAM";
            std::vector<uint32_t> image(8);
            pattern.GetImage(image.data());
            for (int i = 0; i < 8; ++i)  // each row, then what lies past it
                EXPECT_EQ(std::pair(texture[i / 4 * 8 + i % 4], texture[i / 4 * 8 + 4 + i % 4]),
                          std::pair(image[i], kSentinel)) << i;
        }
    // Entries 4 and 5 of a lookup table at 0x7FFF8 (CMDCOLR 0xFFFF) are the words at 0 and 2. A cleared
    // flag is never set again; an empty pattern writes nothing and has no texel that is not black.
    WriteBytes(0x2000, {0x45});
    const std::vector<uint32_t> texture = Texture(1, 0xFFFF, 0x2000, 2, 1, 2);
    EXPECT_EQ(std::pair(texture[0], texture[1]), std::pair(P::Rgb555ToRgba()[0x0FF0], P::Rgb555ToRgba()[0x3F7F]));
    pattern.allBlack = 0, part.transparentPixelDisabled = true;
    Texture(1, 0x0110, 0x1000, 2, 1, 2);  // two black texels: code 0 with SPD
    EXPECT_EQ(pattern.allBlack, 0);
    pattern.allBlack = 1;
    EXPECT_EQ(Texture(0, 0x0110, 0x1000, 0, 4, 8)[0], kSentinel);
    EXPECT_EQ(Texture(5, 0x0110, 0x1000, 8, 0, 8)[0], kSentinel);
    EXPECT_EQ(pattern.allBlack, 1);
}

}  // namespace
}  // namespace vdpgl
