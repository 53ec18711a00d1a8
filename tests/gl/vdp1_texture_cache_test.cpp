// The VDP1 texture cache as frames use it: what it keeps (patterns, textures,
// bytes), overlaps and invalidation, the memory budget, replacement sets, and
// what the editor reads. The pictures of odd sizes and shared addresses are
// the host tests'.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "../support/vdp1_commands.h"
#include "../unit/temp_dir.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_registers.h"
#include "vdp2/vdp2.h"

namespace vdpgl::test {
namespace {

using Pattern = CVdp1CharacterPattern;
struct Pixel {
    int r, g, b, a;
    bool operator==(const Pixel&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Pixel& p) {
    return os << "(" << p.r << "," << p.g << "," << p.b << "," << p.a << ")";
}
constexpr Pixel kNone{0, 0, 0, 0};
Pixel Rgb555(uint16_t c) { return {(c & 0x1F) << 3, ((c >> 5) & 0x1F) << 3, ((c >> 10) & 0x1F) << 3, 255}; }

// VDP1 and VDP2 on a headless context in one-cycle mode, drawing every frame.
class Vdp1TextureCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        vdp1->Link(*vdp2);
        vdp2->Link(*vdp1);
        renderer->InitGl(nullptr);
        ASSERT_TRUE(renderer->HasContext());
        vdp2->WriteRegisterWord(vdp2reg::TVMD, 0x8000);  // display on, 320 x 224
        vdp1->WriteRegister(vdp1reg::PTMR, 2);
    }
    void TearDown() override {
        Pattern::SetTextureBudget(CVdp1TextureStore::kDefaultBudget);
        vdp1.reset();  // patterns delete their textures while the context exists
        renderer->ReleaseGl();
    }
    WordWriter Vram() {
        return [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
    }
    // One V-blank-out as the plug-in runs it, then the presented picture.
    void RunFrame() {
        renderer->ApplyPendingChanges();
        vdp2->OnVblankOut();
        vdp1->Frame();
        pixels.assign(320 * 224 * 4, 0);
        ASSERT_TRUE(renderer->CaptureDisplay(pixels.data(), 320, 224));
    }
    Pixel At(int x, int y) const {
        const uint8_t* p = &pixels[static_cast<size_t>(y * 320 + x) * 4];
        return {p[0], p[1], p[2], p[3]};
    }
    void DrawSprites(std::initializer_list<Command> sprites) {
        WriteCommandList(Vram(), sprites);
        RunFrame();
    }
    static Command Sprite(uint32_t address, uint16_t size, uint32_t mode, uint16_t colr, int16_t x = 0) {
        return {.pmod = static_cast<uint16_t>(mode << 3), .colr = colr, .srca = static_cast<uint16_t>(address / 8),
                .size = size, .xa = x};
    }
    // Bytes whose nibbles are 1 to 7: no transparent dot, no end code.
    void FillData(uint32_t address, uint32_t bytes) {
        for (uint32_t i = 0; i < bytes; ++i)
            vdp1->WriteVramByte(address + i, static_cast<uint8_t>((1 + i % 7) << 4 | (1 + i % 5)));
    }

    ScopedTempDir dir;  // first: the modules delete their old logs when built
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::vector<uint8_t> pixels;
};

TEST_F(Vdp1TextureCacheTest, OneTexturePerPaletteAndOnePatternPerSizeAndModeOnAnAddress) {
    FillData(0x1000, 128);
    struct Case { uint32_t mode; uint16_t bankA, bankB; int textures; };
    const Case cases[] = {
        {0, 0x0100, 0x0110, 2}, {0, 0x0100, 0x0100, 1},  // neighbouring 16-colour banks; the same bank shares
        {2, 0x0140, 0x0150, 1},                          // the 64-colour bank ignores the low six bits
        {4, 0x0100, 0x0200, 2}, {1, 0x0400, 0x0404, 2},  // two lookup tables
        {5, 0x0000, 0x1234, 1},                          // RGB has one texture whatever CMDCOLR says
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " banks " << c.bankA << "/" << c.bankB);
        vdp1->RequestCacheClear();
        for (int frame = 0; frame < 2; ++frame) {  // the next frame reuses every texture
            DrawSprites({Sprite(0x1000, 0x0108, c.mode, c.bankA), Sprite(0x1000, 0x0108, c.mode, c.bankB)});
            EXPECT_EQ(Pattern::TextureCount(), c.textures);
            EXPECT_EQ(Pattern::PatternCount(), 1);
        }
    }
    EXPECT_EQ(Pattern::TextureBytes(), uint64_t{8 * 8 * 4 + CVdp1TextureStore::kOverheadBytes});
    // Sizes and modes on one address: each a pattern of its own, kept.
    vdp1->RequestCacheClear();
    for (int frame = 0; frame < 3; ++frame) {
        DrawSprites({Sprite(0x1000, 0x0208, 0, 0x0100), Sprite(0x1000, 0x0108, 0, 0x0100, 40),
                     Sprite(0x1000, 0x0108, 4, 0x0200, 80), Sprite(0x1000, 0x0208, 0, 0x0110, 120)});
        EXPECT_EQ(Pattern::PatternCount(), 3);
        EXPECT_EQ(Pattern::TextureCount(), 4);
    }
}

TEST_F(Vdp1TextureCacheTest, OverlappedPatternIsRetiredYetStillDrawsInItsFrame) {
    // 16 x 8 lookup-table patterns are 64 bytes: 8 table entries.
    FillData(0x0FE0, 0x60);
    for (uint32_t i = 0; i < 16; ++i) vdp1->WriteVramWord(0x2000 + i * 2, static_cast<uint16_t>(i * 0x421));
    WriteCommandList(Vram(), {Sprite(0x1000, 0x0208, 1, 0x0400), Sprite(0x0FE0, 0x0208, 1, 0x0400)});
    vdp1->WriteVramWord(0x20 + 14, 20);  // the second at y 20
    RunFrame();
    for (int x = 0; x < 16; ++x) {
        const uint8_t byte = vdp1->ReadVramByte(0x1000 + x / 2);
        ASSERT_EQ(At(x, 0), Rgb555((x % 2 ? byte & 0xF : byte >> 4) * 0x421)) << x;
    }
    EXPECT_EQ(At(0, 20), Rgb555((vdp1->ReadVramByte(0x0FE0) >> 4) * 0x421)) << "drawn at y 20";
    const Pattern* second = vdp1->GetPattern(0x0FE0);
    for (uint32_t e = 0x1FC; e < 0x204; ++e) EXPECT_EQ(vdp1->characterPatterns[e], second) << e;
    for (uint32_t e = 0x204; e < 0x208; ++e) EXPECT_EQ(vdp1->characterPatterns[e], nullptr) << e;
    EXPECT_EQ(Pattern::PatternCount(), 1) << "the retired pattern is gone once the frame is drawn";
    // 8 x 5 in 16 colours is 20 bytes: a pattern starting in its half-used last unit overlaps it.
    DrawSprites({Sprite(0x1000, 0x0105, 0, 0x0100), Sprite(0x1010, 0x0101, 0, 0x0100)});
    EXPECT_EQ(Pattern::PatternCount(), 1);
}

TEST_F(Vdp1TextureCacheTest, EqualWritesKeepAPatternChangedOnesPurgeItWithoutADrawingFrame) {
    WriteWords(Vram(), 0x1000, {0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F});
    DrawSprites({Sprite(0x1000, 0x0101, 5, 0)});  // 8 x 1 red
    vdp1->WriteVramWord(0x1004, 0x801F);  // the same value
    vdp1->WriteVramLong(0x1008, 0x801F801F);
    EXPECT_FALSE(vdp1->GetPattern(0x1000)->modified);
    vdp1->WriteRegister(vdp1reg::PTMR, 0);
    vdp1->WriteVramWord(0x1002, 0x83E0);
    EXPECT_TRUE(vdp1->GetPattern(0x1000)->modified);
    RunFrame();
    EXPECT_EQ(vdp1->GetPattern(0x1000), nullptr);
    EXPECT_EQ(Pattern::PatternCount() + Pattern::TextureCount() + Pattern::TextureBytes(), 0u);
}

TEST_F(Vdp1TextureCacheTest, CrcCoversTheDataAsTheHostArrayHoldsIt) {
    // Console bytes "4321" "8765" lie in the host array as "12345678".
    const char console[] = "43218765";
    for (uint32_t i = 0; i < 8; ++i) vdp1->WriteVramByte(0x3000 + i, static_cast<uint8_t>(console[i]));
    DrawSprites({Sprite(0x3000, 0x0101, 4, 0), Sprite(0x2000, 0x0010, 0, 0)});  // and an empty one
    EXPECT_EQ(vdp1->GetPattern(0x3000)->GetCrc(), 0x9AE0DAAFu);  // CRC-32 of "12345678"
    ASSERT_NE(vdp1->GetPattern(0x2000), nullptr) << "a pattern without data still takes its first entry";
    EXPECT_EQ(vdp1->characterPatterns[0x401], nullptr);
}

// A 16 x 8 lookup-table pattern whose every dot is code 1, and tables at
// 0x2000 + 32 n in which code 1 shows colour n + 1.
class Vdp1TextureBudgetTest : public Vdp1TextureCacheTest {
protected:
    static constexpr uint64_t kTexture = 16 * 8 * 4 + CVdp1TextureStore::kOverheadBytes;
    void SetUp() override {
        Vdp1TextureCacheTest::SetUp();
        for (uint32_t i = 0; i < 64; ++i) vdp1->WriteVramByte(0x1000 + i, 0x11);
        for (uint16_t n = 0; n < 16; ++n) vdp1->WriteVramWord(0x2000 + 32 * n + 2, static_cast<uint16_t>(n + 1));
    }
    static Command Table(uint16_t n, int16_t x = 0) { return Sprite(0x1000, 0x0208, 1, 0x0400 + 4 * n, x); }
    static Pixel Shown(uint16_t n) { return Rgb555(n + 1); }
};

TEST_F(Vdp1TextureBudgetTest, OldestTexturesGoFirstAndComeBackAsTheyWere) {
    Pattern::SetTextureBudget(3 * kTexture);
    for (uint16_t n = 0; n < 8; ++n) {
        DrawSprites({Table(n)});
        EXPECT_EQ(At(0, 0), Shown(n)) << n;
        EXPECT_LE(Pattern::TextureBytes(), 3 * kTexture);
    }
    // A frame that needs more than the budget keeps all it draws, up to
    // twice the budget; new textures beyond are not made, once said.
    testing::internal::CaptureStderr();
    DrawSprites({Table(0, 0), Table(1, 20), Table(2, 40), Table(3, 60), Table(4, 80), Table(5, 100), Table(6, 120),
                 Table(7, 140)});
    DrawSprites({Table(9, 0), Table(10, 20), Table(11, 40), Table(12, 60), Table(13, 80), Table(14, 100),
                 Table(15, 120)});
    const std::string err = testing::internal::GetCapturedStderr();
    for (uint16_t n = 9; n < 15; ++n) EXPECT_EQ(At(20 * (n - 9), 0), Shown(n)) << n;
    EXPECT_EQ(At(120, 0), kNone);
    EXPECT_EQ(Pattern::TextureCount(), 6);
    EXPECT_EQ(err.find("need more than"), err.rfind("need more than")) << err;
    EXPECT_NE(err.find("the sprites of one frame need more than 0 MiB of textures"), std::string::npos) << err;
    DrawSprites({Table(0)});
    EXPECT_EQ(Pattern::TextureCount(), 3);
}

TEST_F(Vdp1TextureBudgetTest, ATextureGivenBackUnderAReplacementSetIsGeneratedAgain) {
    // While a set is active no texture is added to a pattern: one that lost
    // its texture is built again as it was first built.
    Pattern::EnableReplacementTextures({{"unused.tif", 0x12345678, 0x0100}});
    Pattern::SetTextureBudget(2 * kTexture);
    const Command wide = Table(1), narrow = Sprite(0x1000, 0x0108, 1, 0x0400 + 4 * 2, 20),
                  other = Sprite(0x1800, 0x0208, 1, 0x0400 + 4 * 3, 40);
    FillData(0x1800, 64);
    DrawSprites({wide, narrow});   // two patterns on one address
    DrawSprites({narrow, other});  // the wide one's texture goes; the address keeps its patterns
    DrawSprites({wide, other});    // and the narrow one's
    EXPECT_EQ(At(0, 0), Shown(1));
    EXPECT_EQ(At(20, 0), kNone);
    DrawSprites({wide, narrow, Table(4, 60)});
    EXPECT_EQ(At(0, 0), Shown(1));
    EXPECT_EQ(At(20, 0), Shown(2));
    EXPECT_EQ(At(60, 0), kNone) << "a second palette of one pattern is not added while the set is on";
    Pattern::DisableReplacementTextures();
    DrawSprites({wide, Table(4, 60)});
    EXPECT_EQ(At(60, 0), Shown(4));
}

TEST_F(Vdp1TextureCacheTest, EditorReadsImageAndDescriptionOfTheDrawingParts) {
    vdp2->WriteCramWord(0x125 * 2, 0x03E0);
    WriteWords(Vram(), 0x1000, {0x5500, 0x00FF, 0xF0F0, 0x0505});  // 8 x 2 in 16 colours
    DrawSprites({{.pmod = 0x80, .colr = 0x0120, .srca = 0x1000 / 8, .size = 0x0102}});  // ECD: code 15 is a colour
    WriteCommandList(Vram(), {});  // the walk's parts are gone after the next one; the pattern still knows
    RunFrame();
    std::lock_guard lock(vdp1->cacheMutex);
    uint32_t image[16];
    std::memset(image, 0xAB, sizeof image);
    vdp1->GetPattern(0x1000)->GetImage(image);
    const uint32_t g = 0xFF00F800u, o = 0, b = vdp2->GetSpriteColor(0x12F);
    const uint32_t expected[16] = {g, g, o, o, o, o, b, b, b, o, b, o, o, g, o, g};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(image[i], expected[i]) << i;
}

TEST_F(Vdp1TextureCacheTest, DescriptionNamesEachColourModeWithItsBankOrTable) {
    FillData(0x1000, 128);
    struct Case { uint32_t mode; uint16_t colr; const char* text; };
    const Case cases[] = {
        {0, 0x0120, "Color mode: \n16 colors color bank\ncolor bank: 0x120\nsize: 8x8\n"},
        {1, 0x0601, "Color mode: \n16 colors lookup table\nLUT address: 0x3008\nsize: 8x8\n"},
        {2, 0x0147, "Color mode: \n64 colors color bank\ncolor bank: 0x147\nsize: 8x8\n"},  // unmasked
        {3, 0x0280, "Color mode: \n128 colors color bank\ncolor bank: 0x280\nsize: 8x8\n"},
        {4, 0x0300, "Color mode: \n256 colors color bank\ncolor bank: 0x300\nsize: 8x8\n"},
        {5, 0x1234, "Color mode: \n32K colors\nsize: 8x8\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        vdp1->RequestCacheClear();
        DrawSprites({Sprite(0x1000, 0x0108, c.mode, c.colr)});
        std::lock_guard lock(vdp1->cacheMutex);
        char text[256];
        vdp1->GetPattern(0x1000)->GetInformation(text, sizeof text);
        EXPECT_STREQ(text, c.text);
    }
}

}  // namespace
}  // namespace vdpgl::test
