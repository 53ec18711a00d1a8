// Character pattern decoders: VDP1 VRAM data of each colour mode into
// texels, through the texture decoders (row stride textureWidth, allBlack)
// and the image decoders behind GetImage (tight rows). What each pixel code
// shows is checked on whole frames in host_vdp1_frame_test.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

constexpr uint32_t kSentinel = 0xDEADBEEFu;

class Vdp1PatternDecodersTest : public test::VdpTest {
protected:
    Vdp1PatternDecodersTest() {
        // Colour RAM mode 0: 1,024 distinct colours, none of them black.
        for (uint32_t i = 0; i < 1024; ++i) vdp2->WriteCramWord(2 * i, static_cast<uint16_t>(i + 1));
        // Lookup table at 0x800 (CMDCOLR 0x100): entry 1 transparent, entry 2 opaque black.
        for (uint32_t i = 0; i < 16; ++i) vdp1->WriteVramWord(0x800 + 2 * i, i == 1 ? 0 : i == 2 ? 0x8000 : 0x1111 * i);
    }
    void WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes) {
        for (uint8_t b : bytes) vdp1->WriteVramByte(address++, b);
    }
    // Runs the texture decoder of the mode into sentinels with the given row stride.
    std::vector<uint32_t> DecodeTexture(uint32_t mode, uint16_t colr, bool ecd, bool spd, uint32_t address,
                                        int32_t width, int32_t height, int32_t textureWidth) {
        part.colorMode = mode;
        part.colorCtrl = colr;
        part.endCodeDisabled = ecd;
        part.transparentPixelDisabled = spd;
        part.characterAddress = address;
        pattern.width = width;
        pattern.height = height;
        pattern.textureWidth = textureWidth;
        std::vector<uint32_t> texels(static_cast<size_t>(textureWidth) * height + 16, kSentinel);
        pattern.texels = texels.data();
        using Decoder = void (CVdp1CharacterPattern::*)(const CVdp1SpritePart&);
        static constexpr std::array<Decoder, 6> kDecoders = {
            &CVdp1CharacterPattern::DecodeTexture16ColorsColorBank,  &CVdp1CharacterPattern::DecodeTexture16ColorsLut,
            &CVdp1CharacterPattern::DecodeTexture64ColorsColorBank,  &CVdp1CharacterPattern::DecodeTexture128ColorsColorBank,
            &CVdp1CharacterPattern::DecodeTexture256ColorsColorBank, &CVdp1CharacterPattern::DecodeTexture32KColors};
        (pattern.*kDecoders[mode])(part);
        pattern.texels = nullptr;
        return texels;
    }
    // GetImage from the pattern's own copies of the part's values; the part
    // is changed first to show that the image does not read it.
    std::vector<uint32_t> DecodeImage(size_t size) {
        pattern.colorMode = part.colorMode;
        pattern.colorCtrl = part.colorCtrl;
        pattern.startAddress = part.characterAddress;
        pattern.transparentPixelDisabled = part.transparentPixelDisabled;
        pattern.partEndCodeDisabled = part.endCodeDisabled;
        part = CVdp1SpritePart();
        part.characterAddress = 0x40000;
        std::vector<uint32_t> texels(size + 16, kSentinel);
        pattern.GetImage(texels.data());
        return texels;
    }

    CVdp1CharacterPattern pattern;
    CVdp1SpritePart part;
};

TEST_F(Vdp1PatternDecodersTest, TextureRowsUseTheStrideAndImageRowsAreTightWithTheSameTexels) {
    // 8 x 2 pixels of every kind of code: 0, end codes, codes with the unused
    // top bits of the 64- and 128-colour modes, ordinary ones.
    const std::vector<uint8_t> data{0x00, 0xFF, 0x0F, 0xF0, 0x3F, 0x7F, 0xC0, 0x80, 0x41, 0x12,
                                    0x7F, 0xFF, 0xFF, 0xFF, 0x80, 0x00, 0x04, 0x21, 0xFE, 0x01,
                                    0x00, 0x00, 0x7C, 0x00, 0xBF, 0xC1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD};
    WriteBytes(0x1000, data);
    const uint32_t dataSizes[6] = {8, 8, 16, 16, 16, 32};
    for (uint32_t mode = 0; mode < 6; ++mode) {
        for (auto [ecd, spd] : {std::pair{false, false}, std::pair{true, false}, std::pair{false, true}}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " ECD " << ecd << " SPD " << spd);
            const std::vector<uint32_t> texture = DecodeTexture(mode, 0x0100, ecd, spd, 0x1000, 8, 2, 16);
            EXPECT_EQ(pattern.dataSize, dataSizes[mode]);
            const std::vector<uint32_t> image = DecodeImage(16);
            for (int i = 0; i < 16; ++i) {
                EXPECT_EQ(texture[(i / 8) * 16 + i % 8], image[i]) << "texel " << i;
                EXPECT_EQ(texture[(i / 8) * 16 + 8 + i % 8], kSentinel) << "past row " << i / 8;
            }
            EXPECT_EQ(image[16], kSentinel);
        }
    }
}

TEST_F(Vdp1PatternDecodersTest, AllBlackSurvivesOnlyOpaqueBlackTexels) {
    struct Case {
        const char* name;
        uint32_t mode;
        uint16_t colr;
        bool spd;
        std::vector<uint8_t> data;
        uint8_t allBlack;
    };
    for (uint32_t i = 0; i < 16; ++i) vdp1->WriteVramWord(0x880 + 2 * i, 0x8000);  // CMDCOLR 0x110
    const std::vector<uint8_t> black32k{0x80, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0x7F, 0xFF, 0x80, 0};
    const Case cases[] = {
        {"lookup table of black", 1, 0x0110, false, {0x12, 0x34, 0x56, 0x78}, 1},
        {"lookup table of black, transparent pixel", 1, 0x0110, false, {0x12, 0x34, 0x56, 0x70}, 0},
        {"lookup table of black, SPD", 1, 0x0110, true, {0x12, 0x34, 0x56, 0x70}, 1},
        {"32K black, SPD", 5, 0, true, black32k, 1},
        {"32K transparent", 5, 0, false, black32k, 0},
        {"colour bank", 4, 0, false, {1, 2, 3, 4, 5, 6, 7, 8}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WriteBytes(0x1000, c.data);
        pattern.allBlack = 1;
        DecodeTexture(c.mode, c.colr, false, c.spd, 0x1000, 8, 1, 8);
        EXPECT_EQ(pattern.allBlack, c.allBlack);
    }
    WriteBytes(0x1000, {0x12, 0x34, 0x56, 0x78});
    pattern.allBlack = 0;
    DecodeTexture(1, 0x0110, false, false, 0x1000, 8, 1, 8);
    EXPECT_EQ(pattern.allBlack, 0) << "a cleared flag is never set again";
}

TEST_F(Vdp1PatternDecodersTest, DataAndLookupTablePastTheEndOfVramContinueAtZero) {
    WriteBytes(0x7FFFC, {0x01, 0x02, 0x03, 0x04});
    WriteBytes(0x0, {0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10});
    WriteBytes(0x2000, {0x45, 0x00, 0x00, 0x00});
    const uint32_t* rgb = CVdp1CharacterPattern::Rgb555ToRgba();
    const auto cram = [this](uint32_t code) { return vdp2->GetSpriteColor(code); };
    struct Case {
        uint32_t mode;
        uint16_t colr;
        uint32_t address;
        std::vector<uint32_t> expected;
    };
    const Case cases[] = {
        {4, 0x0100, 0x7FFFC, {cram(0x101), cram(0x102), cram(0x103), cram(0x104), cram(0x105), cram(0x106),
                              cram(0x107), cram(0x108)}},
        {0, 0x0000, 0x7FFFE, {0, cram(3), 0, cram(4), 0, cram(5), 0, cram(6)}},
        {5, 0x0000, 0x7FFFC, {rgb[0x0102], rgb[0x0304], rgb[0x0506], rgb[0x0708], rgb[0x090A], rgb[0x0B0C],
                              rgb[0x0D0E], rgb[0x0F10]}},
        // Entries 4 and 5 of a table at 0x7FFF8 are the words at 0 and 2.
        {1, 0xFFFF, 0x2000, {rgb[0x0506], rgb[0x0708], 0, 0, 0, 0, 0, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode);
        const std::vector<uint32_t> texture = DecodeTexture(c.mode, c.colr, false, false, c.address, 8, 1, 8);
        EXPECT_EQ(std::vector<uint32_t>(texture.begin(), texture.begin() + 8), c.expected);
    }
}

TEST_F(Vdp1PatternDecodersTest, EmptyPatternsWriteNothing) {
    WriteBytes(0x1000, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
    for (uint32_t mode = 0; mode < 6; ++mode) {
        for (auto [width, height] : {std::pair{0, 4}, std::pair{8, 0}}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " size " << width << "x" << height);
            pattern.allBlack = 1;
            const std::vector<uint32_t> texture = DecodeTexture(mode, 0x0100, false, false, 0x1000, width, height, 8);
            EXPECT_EQ(texture, std::vector<uint32_t>(texture.size(), kSentinel));
            EXPECT_EQ(pattern.dataSize, 0u);
            EXPECT_EQ(pattern.allBlack, 1);
        }
    }
}

}  // namespace
}  // namespace vdpgl
