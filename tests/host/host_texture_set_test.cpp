// Replacement texture sets as a pack author uses them: a game's pattern harvested while it plays, a set built on
// disk beside it, activated at start-up and through the export, the frames showing the set's image, a file saved
// over while the set is active, a broken image, and the set switched off again.
#include <gtest/gtest.h>
#include <tiffio.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../support/vdp1_commands.h"
#include "common/png_file.h"
#include "host_frame.h"

namespace vdpgl::host {
namespace {

namespace fs = std::filesystem;
using test::Command;

constexpr uint32_t kPattern = 0x1000;
constexpr int kX = 40, kY = 30;  // where the 16 x 8 sprite is drawn
constexpr uint16_t kOwnColour = 0x801F;

// Texel (x, y) of the replacement's 2 x 2 blocks, so that each screen dot of the sprite samples one block.
Rgba Block(int x, int y, int shade) { return {x * 15, y * 30, shade, 255}; }

void WriteReplacement(const fs::path& path, int shade) {
    std::vector<uint8_t> rgba(32 * 16 * 4);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x) {
            const Rgba c = Block(x / 2, y / 2, shade);
            uint8_t* p = &rgba[static_cast<size_t>(y * 32 + x) * 4];
            p[0] = static_cast<uint8_t>(c.r), p[1] = static_cast<uint8_t>(c.g), p[2] = static_cast<uint8_t>(c.b), p[3] = 255;
        }
    std::string error;
    ASSERT_TRUE(WritePng(path.string(), rgba.data(), 32, 16, error)) << error;
}

class HostTextureSetTest : public HostFrameTest {
protected:
    void Start() {
        StartDrawing();
        // A 16 x 8 sprite of 32K colours, one colour throughout.
        for (int i = 0; i < 16 * 8; ++i) x().WriteWordVDP1VRAM(kPattern + static_cast<uint32_t>(i * 2), kOwnColour);
        test::WriteCommandList([this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); },
                               {Command{.pmod = 0xE8, .srca = kPattern / 8, .size = 0x0208, .xa = kX, .ya = kY}});
    }
    // Whether the sprite shows the replacement of this shade (else its own colour) after a frame or two.
    bool Shows(int shade) {
        Frame(), Frame();
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 16; ++x)
                if (shown.At(kX + x, kY + y) != (shade < 0 ? Rgb555(kOwnColour) : Block(x, y, shade))) return false;
        return true;
    }
    void WriteSet(const std::string& crcText, const std::string& image) {
        fs::create_directories(set);
        std::ofstream(set / "pack.ini") << "[infos]\ndescription=a test pack\n[" << image
                                        << "]\nreplacedTexture=none\ncrc=" << crcText << "\ncolorCtrl=0x00000000\n";
    }
    const fs::path set = fs::path("replacement_texture_set") / "pack";
};

TEST_F(HostTextureSetTest, AHarvestedPatternIsReplacedByTheSetsImageAtStartUpThroughTheExportAndWhenSavedOver) {
    setenv("VDPGL_DUMP_TEXTURES", "harvest", 1);
    Start();
    ASSERT_TRUE(Shows(-1));
    unsetenv("VDPGL_DUMP_TEXTURES");
    // The harvest: one dump named by CRC and CMDCOLR, read back with libtiff's own RGBA reader.
    std::vector<fs::path> dumps;
    for (const auto& e : fs::directory_iterator("harvest")) dumps.push_back(e.path());
    ASSERT_EQ(dumps.size(), 1u);
    const std::string name = dumps[0].filename().string();
    ASSERT_EQ(name.substr(8), "_00000000.tif");
    TIFF* tiff = TIFFOpen(dumps[0].c_str(), "r");
    ASSERT_NE(tiff, nullptr);
    uint32_t w = 0, h = 0, raster[16 * 8];
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &w), TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &h);
    EXPECT_EQ(w * 100 + h, 16u * 100 + 8);
    ASSERT_TRUE(TIFFReadRGBAImageOriented(tiff, 16, 8, raster, ORIENTATION_TOPLEFT, 0));
    TIFFClose(tiff);
    const Rgba own = Rgb555(kOwnColour);
    EXPECT_EQ(raster[0], uint32_t(own.r | own.g << 8 | own.b << 16 | 0xFF000000u)) << std::hex << raster[0];

    // A set naming that pattern, activated through the export: the image from the next frame, off again with null.
    WriteSet("0x" + name.substr(0, 8), "replacement.png");
    WriteReplacement(set / "replacement.png", 100);
    EXPECT_EQ(x().ActivateTextureSet("missing"), 0);
    ASSERT_TRUE(Shows(-1)) << "a set that is not there changes nothing";
    ASSERT_EQ(x().ActivateTextureSet("pack"), 1);
    EXPECT_TRUE(Shows(100));
    // Saved over while active (a later time, as an editor's save gives): shown within a second of frames.
    WriteReplacement(set / "replacement.png", 200);
    fs::last_write_time(set / "replacement.png", fs::last_write_time(set / "replacement.png") + std::chrono::seconds(2));
    bool reloaded = false;
    for (int i = 0; i < 40 && !reloaded; ++i) reloaded = Shows(200);
    EXPECT_TRUE(reloaded);
    // A broken save keeps the last good picture.
    std::ofstream(set / "replacement.png", std::ios::trunc) << "not yet";
    fs::last_write_time(set / "replacement.png", fs::last_write_time(set / "replacement.png") + std::chrono::seconds(4));
    for (int i = 0; i < 40; ++i) Frame();
    EXPECT_TRUE(Shows(200));
    ASSERT_EQ(x().ActivateTextureSet(nullptr), 1);
    EXPECT_TRUE(Shows(-1));

    // At start-up from the environment, and a set whose image cannot be read: the game's own pattern.
    x().EmulationThreadStoping(), x().DeInitPlugin(), initialised = false;
    WriteReplacement(set / "replacement.png", 50);
    setenv("VDPGL_TEXTURE_SET", "pack", 1);
    Start();
    unsetenv("VDPGL_TEXTURE_SET");
    EXPECT_TRUE(Shows(50));
    WriteSet("0x" + name.substr(0, 8), "broken.tif");
    std::ofstream(set / "broken.tif") << "II*\0 broken";
    ASSERT_EQ(x().ActivateTextureSet("pack"), 1);
    EXPECT_TRUE(Shows(-1));
}

}  // namespace
}  // namespace vdpgl::host
