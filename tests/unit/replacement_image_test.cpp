// Replacement images as pack authors save them: TIFF (with and without alpha) and PNG of any size, told apart by
// content, read top row first with their colours as saved; broken and oversized files named in the message; and a
// matched pattern taking the first matching image's size rounded up to powers of two.
#include <gtest/gtest.h>
#include <tiffio.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "common/png_file.h"
#include "support/vdp1_commands.h"
#include "vdp1/vdp1_character_pattern/replacement_image.h"
#include "vdp1/vdp1_character_pattern/texture_dump.h"
#include "vdp_test.h"

namespace vdpgl::test {
namespace {

// Texel (x, y) of every test image: red across, green down, half-transparent blue in the last column.
uint32_t Texel(int x, int y, int width) {
    const uint32_t alpha = x == width - 1 ? 0x80 : 0xFF;
    return alpha << 24 | 0x40u << 16 | static_cast<uint32_t>(y * 20) << 8 | static_cast<uint32_t>(x * 10);
}
std::vector<uint32_t> Picture(int w, int h) {
    std::vector<uint32_t> texels(static_cast<size_t>(w * h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) texels[static_cast<size_t>(y * w + x)] = Texel(x, y, w);
    return texels;
}
// RGB without alpha and bottom row first: read through libtiff's general reader.
void WriteRgbTiff(const char* path, int w, int h) {
    TIFF* tiff = TIFFOpen(path, "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, w), TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, h);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3), TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB), TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTLEFT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    std::vector<uint8_t> row(static_cast<size_t>(w) * 3);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < 3; ++c) row[static_cast<size_t>(x * 3 + c)] = uint8_t(Texel(x, h - 1 - y, w) >> (8 * c));
        TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), 0);
    }
    TIFFClose(tiff);
}

TEST(ReplacementImageTest, TiffAndPngOfOddSizesReadTopRowFirstAndBrokenFilesSayWhy) {
    ScopedTempDir dir;
    std::string error;
    const auto rgba20x12 = Picture(20, 12);
    ASSERT_TRUE(WriteTextureDump("dump.tif", rgba20x12.data(), 20, 12, error)) << error;
    ASSERT_TRUE(WritePng("image.png", reinterpret_cast<const uint8_t*>(rgba20x12.data()), 20, 12, error)) << error;
    ASSERT_TRUE(WritePng("png.tif", reinterpret_cast<const uint8_t*>(rgba20x12.data()), 20, 12, error)) << error;
    WriteRgbTiff("rgb.tif", 7, 5);
    std::ofstream("text.png") << "hello";
    std::ofstream("cut.tif") << "II*\0";
    const auto wide = Picture(5000, 1);
    ASSERT_TRUE(WritePng("wide.png", reinterpret_cast<const uint8_t*>(wide.data()), 5000, 1, error)) << error;
    const struct { const char* file; int width, height; bool alpha; const char* failure; } cases[] = {
        {"dump.tif", 20, 12, true, nullptr}, {"image.png", 20, 12, true, nullptr},
        {"png.tif", 20, 12, true, nullptr},  // by content, whatever the name
        {"rgb.tif", 7, 5, false, nullptr},     {"text.png", 0, 0, false, "neither a TIFF nor a PNG"},
        {"cut.tif", 0, 0, false, "cannot be opened as a TIFF"}, {"wide.png", 0, 0, false, "5000 x 1 pixels"},
        {"absent.png", 0, 0, false, "cannot be opened"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        ReplacementPicture picture;
        const bool ok = ReadReplacementImage(c.file, picture, error);
        if (c.failure) {
            EXPECT_FALSE(ok);
            EXPECT_NE(error.find(c.failure), std::string::npos) << error;
            EXPECT_NE(error.find(c.file), std::string::npos) << error;
            continue;
        }
        ASSERT_TRUE(ok) << error;
        ASSERT_EQ(picture.width * 100 + picture.height, c.width * 100 + c.height);
        const uint32_t opaque = c.alpha ? 0 : 0xFF000000u;
        EXPECT_EQ(picture.texels.front(), Texel(0, 0, c.width) | opaque);
        EXPECT_EQ(picture.texels.back(), Texel(c.width - 1, c.height - 1, c.width) | opaque) << "colours kept, alpha too";
    }
}

TEST(ReplacementImageTest, APreloadFillsTheKeptPicturesOnItsOwnThreadAndAFileSavedOverIsReadAgain) {
    ScopedTempDir dir;
    std::string error;
    const auto picture = Picture(20, 12);
    for (const char* name : {"a.png", "b.png", "c.png"})
        ASSERT_TRUE(WritePng(name, reinterpret_cast<const uint8_t*>(picture.data()), 20, 12, error));
    CReplacementImages images;
    images.Preload({"a.png", "b.png", "missing.png", "c.png"});
    for (int i = 0; i < 200 && images.Bytes() < 3 * 960; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    images.StopPreload();
    EXPECT_EQ(images.Bytes(), 3u * 960);
    EXPECT_FALSE(images.Changed("a.png"));
    EXPECT_TRUE(images.Get("missing.png", error) == nullptr && !error.empty()) << "said by Get, not by the preload";
    const auto small = Picture(4, 4);
    ASSERT_TRUE(WritePng("a.png", reinterpret_cast<const uint8_t*>(small.data()), 4, 4, error));
    EXPECT_TRUE(images.Changed("a.png"));
    EXPECT_EQ(images.Get("a.png", error)->width, 4);
}

class ReplacementPatternTest : public VdpTest {};

TEST_F(ReplacementPatternTest, AMatchedPatternTakesTheFirstMatchingImagesSizeRoundedUpToPowersOfTwo) {
    vdp1->WriteRegister(vdp1reg::PTMR, 2);
    std::string error;
    const auto a = Picture(20, 12), b = Picture(7, 5);
    ASSERT_TRUE(WritePng("a.png", reinterpret_cast<const uint8_t*>(a.data()), 20, 12, error));
    ASSERT_TRUE(WriteTextureDump("b.tif", b.data(), 7, 5, error));
    for (uint32_t i = 0; i < 64; ++i) vdp1->WriteVramByte(0x1000 + i, static_cast<uint8_t>(0x12 + i));
    const auto draw = [&] {
        WriteCommandList([this](uint32_t ad, uint16_t v) { vdp1->WriteVramWord(ad, v); },
                         {Command{.colr = 0x0100, .srca = 0x1000 / 8, .size = 0x0108}});
        vdp2->OnVblankOut(), vdp1->Frame();
        for (const auto& list : vdp1->partsListVectors)
            for (const CVdp1Part* p : list)
                return std::pair(static_cast<const CVdp1SpritePart*>(p)->uMax, static_cast<const CVdp1SpritePart*>(p)->vMax);
        return std::pair(0.0f, 0.0f);
    };
    EXPECT_EQ(draw(), std::pair(1.0f, 1.0f)) << "8 x 8, its own";
    const uint32_t crc = vdp1->characterPatterns[0x1000 >> 3]->GetCrc();
    const std::vector<Vdp1ReplacementTexture> sets[] = {
        {{"other.png", crc, 0x0101}, {"a.png", crc, 0x0100}, {"b.tif", crc, 0x0100}},
        {{"b.tif", crc, 0x0100}, {"a.png", crc, 0x0100}}};
    const std::pair<float, float> expected[] = {{20 / 32.0f, 12 / 16.0f}, {7 / 8.0f, 5 / 8.0f}};
    for (int i = 0; i < 2; ++i) {
        CVdp1CharacterPattern::EnableReplacementTextures(sets[i]);
        EXPECT_EQ(draw(), expected[i]) << "set " << i;
    }
    CVdp1CharacterPattern::DisableReplacementTextures();
    EXPECT_EQ(draw(), std::pair(1.0f, 1.0f));
}

}  // namespace
}  // namespace vdpgl::test
