// Character pattern decoders: VDP1 VRAM data of each colour mode into
// texels, through the texture decoders (row stride textureWidth, allBlack)
// and the image decoders behind GetImage (tight rows).
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

constexpr uint32_t kSentinel = 0xDEADBEEFu;
constexpr uint32_t kBlack = 0xFF000000u, kWhite = 0xFFF8F8F8u, kRed = 0xFF0000F8u, kGreen = 0xFF00F800u,
                   kBlue = 0xFFF80000u;

// An expected texel: a literal value, or the colour RAM colour of a sprite
// colour code.
struct Texel {
    bool cram;
    uint32_t value;
};
constexpr Texel L(uint32_t v) { return {false, v}; }
constexpr Texel C(uint32_t code) { return {true, code}; }
constexpr Texel kClear = L(0);

class Vdp1PatternDecodersTest : public ::testing::Test {
protected:
    Vdp1PatternDecodersTest() {
        vdp1->Link(*vdp2);
        // Colour RAM mode 0: 1,024 distinct colours, none of them black.
        for (uint32_t i = 0; i < 1024; ++i) vdp2->WriteCramWord(2 * i, static_cast<uint16_t>(i + 1));
        // Lookup table at 0x800 (CMDCOLR 0x100): entry 1 transparent, entry
        // 2 opaque black.
        const uint16_t lut[16] = {0x03E0, 0x0000, 0x8000, 0x001F, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0x7C00};
        for (uint32_t i = 0; i < 16; ++i) vdp1->WriteVramWord(0x800 + 2 * i, lut[i]);
    }

    void WriteBytes(uint32_t address, const std::vector<uint8_t>& bytes) {
        for (uint8_t b : bytes) vdp1->WriteVramByte(address++, b);
    }
    uint32_t Resolve(Texel t) const { return t.cram ? vdp2->GetSpriteColor(t.value) : t.value; }
    std::vector<uint32_t> Resolve(const std::vector<Texel>& texels) const {
        std::vector<uint32_t> out;
        for (Texel t : texels) out.push_back(Resolve(t));
        return out;
    }

    // Runs the texture decoder of the mode into a buffer of sentinels with
    // the given row stride; returns the buffer.
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
        switch (mode) {
        case 0: pattern.DecodeTexture16ColorsColorBank(part); break;
        case 1: pattern.DecodeTexture16ColorsLut(part); break;
        case 2: pattern.DecodeTexture64ColorsColorBank(part); break;
        case 3: pattern.DecodeTexture128ColorsColorBank(part); break;
        case 4: pattern.DecodeTexture256ColorsColorBank(part); break;
        default: pattern.DecodeTexture32KColors(part); break;
        }
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

    test::ScopedTempDir tempDir;
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
    CVdp1CharacterPattern pattern;
    CVdp1SpritePart part;
};

TEST_F(Vdp1PatternDecodersTest, PixelCodesEndCodesAndTransparencyInEveryMode) {
    struct Case {
        uint32_t mode;
        uint16_t colr;
        bool ecd, spd;
        std::vector<uint8_t> data;  // one row of 8 pixels
        std::vector<Texel> expected;
    };
    const std::vector<uint8_t> m0{0xF0, 0x12, 0x00, 0x00}, m1{0xF0, 0x12, 0x30, 0x00},
        m2{0xC0, 0xFF, 0x3F, 0x41, 0x80, 0x00, 0x7E, 0x01}, m3{0x80, 0xFF, 0x7F, 0x81, 0x00, 0x40, 0xFE, 0x01},
        m4{0x00, 0xFF, 0x80, 0x01, 0x7F, 0x3F, 0x0F, 0xFE},
        m5{0x00, 0x00, 0x7F, 0xFF, 0xFF, 0xFF, 0x80, 0x00, 0x00, 0x1F, 0x7C, 0x00, 0x03, 0xE0, 0x7F, 0xFE};
    const Texel c0 = C(0x1230), c1 = C(0x1201), b0 = C(0x1200), x = L(0xFFF8F8F0);
    const Case cases[] = {
        {0, 0x1234, false, false, m0, {kClear, kClear, C(0x1231), C(0x1232), kClear, kClear, kClear, kClear}},
        {0, 0x1234, true, false, m0, {C(0x123F), kClear, C(0x1231), C(0x1232), kClear, kClear, kClear, kClear}},
        {0, 0x1234, false, true, m0, {c0, c0, C(0x1231), C(0x1232), c0, c0, c0, c0}},
        {0, 0x1234, true, true, m0, {C(0x123F), c0, C(0x1231), C(0x1232), c0, c0, c0, c0}},
        {1, 0x0100, false, false, m1, {kClear, kClear, kClear, L(kBlack), L(kRed), kClear, kClear, kClear}},
        {1, 0x0100, true, false, m1, {L(kBlue), kClear, kClear, L(kBlack), L(kRed), kClear, kClear, kClear}},
        {1, 0x0100, false, true, m1,
         {L(kGreen), L(kGreen), kClear, L(kBlack), L(kRed), L(kGreen), L(kGreen), L(kGreen)}},
        {2, 0x1234, false, false, m2, {kClear, kClear, kClear, c1, kClear, kClear, C(0x123E), c1}},
        {2, 0x1234, true, false, m2, {kClear, C(0x123F), C(0x123F), c1, kClear, kClear, C(0x123E), c1}},
        {2, 0x1234, false, true, m2, {b0, b0, b0, c1, b0, b0, C(0x123E), c1}},
        {3, 0x1234, false, false, m3, {kClear, kClear, kClear, c1, kClear, C(0x1240), C(0x127E), c1}},
        {3, 0x1234, true, false, m3, {kClear, C(0x127F), C(0x127F), c1, kClear, C(0x1240), C(0x127E), c1}},
        {4, 0x1234, false, false, m4, {kClear, kClear, C(0x1280), c1, C(0x127F), C(0x123F), C(0x120F), C(0x12FE)}},
        {4, 0x1234, true, true, m4, {b0, C(0x12FF), C(0x1280), c1, C(0x127F), C(0x123F), C(0x120F), C(0x12FE)}},
        {5, 0x1234, false, false, m5, {kClear, kClear, L(kWhite), L(kBlack), L(kRed), L(kBlue), L(kGreen), x}},
        {5, 0x1234, true, false, m5, {kClear, L(kWhite), L(kWhite), L(kBlack), L(kRed), L(kBlue), L(kGreen), x}},
        {5, 0x1234, false, true, m5, {L(kBlack), L(kBlack), L(kWhite), L(kBlack), L(kRed), L(kBlue), L(kGreen), x}},
    };
    const uint32_t dataSizes[6] = {4, 4, 8, 8, 8, 16};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " ECD " << c.ecd << " SPD " << c.spd);
        WriteBytes(0x1000, c.data);
        const std::vector<uint32_t> expected = Resolve(c.expected);
        pattern.allBlack = 1;
        std::vector<uint32_t> texture = DecodeTexture(c.mode, c.colr, c.ecd, c.spd, 0x1000, 8, 1, 8);
        EXPECT_EQ(std::vector<uint32_t>(texture.begin(), texture.begin() + 8), expected);
        EXPECT_EQ(texture[8], kSentinel);
        EXPECT_EQ(pattern.dataSize, dataSizes[c.mode]);
        EXPECT_EQ(pattern.allBlack, 0);
        std::vector<uint32_t> image = DecodeImage(8);
        EXPECT_EQ(std::vector<uint32_t>(image.begin(), image.begin() + 8), expected) << "image";
        EXPECT_EQ(image[8], kSentinel);
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
    const Case cases[] = {
        {"lookup table of black", 1, 0x0110, false, {0x12, 0x34, 0x56, 0x78}, 1},
        {"lookup table of black, transparent pixel", 1, 0x0110, false, {0x12, 0x34, 0x56, 0x70}, 0},
        {"lookup table of black, SPD", 1, 0x0110, true, {0x12, 0x34, 0x56, 0x70}, 1},
        {"32K black, SPD", 5, 0, true, {0x80, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0x7F, 0xFF, 0x80, 0}, 1},
        {"32K transparent", 5, 0, false, {0x80, 0, 0, 0, 0x80, 0, 0x80, 0, 0, 0, 0, 0, 0x7F, 0xFF, 0x80, 0}, 0},
        {"colour bank", 4, 0, false, {1, 2, 3, 4, 5, 6, 7, 8}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WriteBytes(0x1000, c.data);
        pattern.allBlack = 1;
        DecodeTexture(c.mode, c.colr, false, c.spd, 0x1000, 8, 1, 8);
        EXPECT_EQ(pattern.allBlack, c.allBlack);
    }
    // A cleared flag is never set again by a later all-black decode.
    WriteBytes(0x1000, {0x12, 0x34, 0x56, 0x78});
    pattern.allBlack = 0;
    DecodeTexture(1, 0x0110, false, false, 0x1000, 8, 1, 8);
    EXPECT_EQ(pattern.allBlack, 0);
}

TEST_F(Vdp1PatternDecodersTest, DataAndLookupTablePastTheEndOfVramContinueAtZero) {
    WriteBytes(0x7FFFC, {0x01, 0x02, 0x03, 0x04});
    WriteBytes(0x0, {0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10});
    WriteBytes(0x2000, {0x45, 0x00, 0x00, 0x00});
    const uint32_t* rgb = CVdp1CharacterPattern::Rgb555ToRgba();
    struct Case {
        uint32_t mode;
        uint16_t colr;
        uint32_t address;
        std::vector<Texel> expected;
    };
    const Case cases[] = {
        {4, 0x0100, 0x7FFFC, {C(0x101), C(0x102), C(0x103), C(0x104), C(0x105), C(0x106), C(0x107), C(0x108)}},
        {0, 0x0000, 0x7FFFE, {kClear, C(3), kClear, C(4), kClear, C(5), kClear, C(6)}},
        {5, 0x0000, 0x7FFFC,
         {L(rgb[0x0102]), L(rgb[0x0304]), L(rgb[0x0506]), L(rgb[0x0708]), L(rgb[0x090A]), L(rgb[0x0B0C]),
          L(rgb[0x0D0E]), L(rgb[0x0F10])}},
        // Entries 4 and 5 of a table at 0x7FFF8 are the words at 0 and 2.
        {1, 0xFFFF, 0x2000, {L(rgb[0x0506]), L(rgb[0x0708]), kClear, kClear, kClear, kClear, kClear, kClear}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode);
        std::vector<uint32_t> texture = DecodeTexture(c.mode, c.colr, false, false, c.address, 8, 1, 8);
        EXPECT_EQ(std::vector<uint32_t>(texture.begin(), texture.begin() + 8), Resolve(c.expected));
    }
}

TEST_F(Vdp1PatternDecodersTest, TextureRowsUseTheTextureStrideAndImageRowsAreTight) {
    // 8 x 2 pixels with codes 1 to 14 (never transparent, never an end code).
    std::vector<uint32_t> codes;
    for (uint32_t i = 0; i < 16; ++i) codes.push_back(1 + i % 14);
    for (uint32_t mode : {0u, 4u, 5u}) {
        SCOPED_TRACE(testing::Message() << "mode " << mode);
        std::vector<uint8_t> data;
        std::vector<Texel> expected;
        for (uint32_t i = 0; i < 16; ++i) {
            if (mode == 0 && i % 2 == 0) data.push_back(static_cast<uint8_t>(codes[i] << 4 | codes[i + 1]));
            if (mode == 4) data.push_back(static_cast<uint8_t>(codes[i]));
            if (mode == 5) data.insert(data.end(), {0x04, static_cast<uint8_t>(codes[i])});
            expected.push_back(mode == 5 ? L(CVdp1CharacterPattern::Rgb555ToRgba()[0x0400 | codes[i]]) : C(codes[i]));
        }
        WriteBytes(0x1000, data);
        const std::vector<uint32_t> want = Resolve(expected);
        const std::vector<uint32_t> texture = DecodeTexture(mode, 0, false, false, 0x1000, 8, 2, 16);
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 16; ++x)
                EXPECT_EQ(texture[y * 16 + x], x < 8 ? want[y * 8 + x] : kSentinel) << "row " << y << " column " << x;
        }
        const std::vector<uint32_t> image = DecodeImage(16);
        EXPECT_EQ(std::vector<uint32_t>(image.begin(), image.begin() + 16), want);
        EXPECT_EQ(image[16], kSentinel);
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

TEST_F(Vdp1PatternDecodersTest, Rgb555WordsWidenIntoOpaqueTexels) {
    const uint32_t* rgb = CVdp1CharacterPattern::Rgb555ToRgba();
    const std::pair<uint16_t, uint32_t> cases[] = {
        {0x7FFF, kWhite}, {0xFFFF, kWhite}, {0x001F, kRed},         {0x03E0, kGreen},
        {0x7C00, kBlue},  {0x8000, kBlack}, {0x0000, kBlack},       {0x0421, 0xFF080808},
        {0x1234, 0xFF2088A0}, {0x4210, 0xFF808080},
    };
    for (auto [word, texel] : cases) EXPECT_EQ(rgb[word], texel) << std::hex << "0x" << word;
}

}  // namespace
}  // namespace vdpgl
