// The VDP1 texture cache as the frames use it: one pattern per run of VRAM,
// one texture per palette, table mapping with overlaps, invalidation by VRAM
// writes, purge, and what the editor reads.
#include <cstring>
#include <mutex>

#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp1_fixture.h"

namespace vdpgl::test {
namespace {

class Vdp1TextureCacheTest : public Vdp1GlTest {
protected:
    // Normal sprites, one a command, drawn in one frame.
    void DrawSprites(std::initializer_list<Command> sprites) {
        WriteCommandList(Vram(), sprites);
        RunFrame();
    }
    static Command Sprite(uint32_t address, uint16_t size, uint32_t mode, uint16_t colr) {
        return {.ctrl = kNormalSpriteCmd, .pmod = static_cast<uint16_t>(mode << 3), .colr = colr,
                .srca = static_cast<uint16_t>(address / 8), .size = size};
    }
    // Distinct non-zero texture names of a pattern, over every palette kind.
    static int TextureCount(const CVdp1CharacterPattern* p) {
        int n = p->rgbModeOpenglTextureId != 0 ? 1 : 0;
        for (uint32_t id : p->cbModeOpenglTextureIds) n += id != 0;
        return n + static_cast<int>(p->lutModeOpenglTextureIds.size());
    }
    // Fills [address, address + bytes) with a non-zero byte pattern.
    void FillData(uint32_t address, uint32_t bytes, uint8_t seed = 1) {
        for (uint32_t i = 0; i < bytes; ++i) vdp1->WriteVramByte(address + i, static_cast<uint8_t>(seed + i % 7));
    }
};

TEST_F(Vdp1TextureCacheTest, OnePatternGetsOneTexturePerPalette) {
    FillData(0x1000, 32);  // 8 x 8, 16 colours
    struct Case { uint32_t mode; uint16_t bankA, bankB; int textures; };
    const Case cases[] = {
        {0, 0x0100, 0x0110, 2},  // neighbouring 16-colour banks
        {0, 0x0100, 0x0100, 1},  // the same bank shares
        {2, 0x0140, 0x0150, 1},  // the 64-colour bank ignores the low six bits
        {4, 0x0100, 0x0200, 2},
        {1, 0x0400, 0x0404, 2},  // two lookup tables
        {5, 0x0000, 0x1234, 1},  // RGB has one texture whatever CMDCOLR says
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " banks " << c.bankA << "/" << c.bankB);
        vdp1->RequestCacheClear();
        DrawSprites({Sprite(0x1000, 0x0108, c.mode, c.bankA), Sprite(0x1000, 0x0108, c.mode, c.bankB)});
        const CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(TextureCount(p), c.textures);
        EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 1);
        // The next frame reuses every texture.
        RunFrame();
        EXPECT_EQ(vdp1->GetPattern(0x1000), p);
        EXPECT_EQ(TextureCount(p), c.textures);
    }
}

TEST_F(Vdp1TextureCacheTest, PaletteIndexFilesColourBankTextures) {
    FillData(0x1000, 32);
    DrawSprites({Sprite(0x1000, 0x0108, 0, 0x0100), Sprite(0x1000, 0x0108, 0, 0x0110)});
    const CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
    ASSERT_NE(p, nullptr);
    EXPECT_NE(p->cbModeOpenglTextureIds[0x10], 0u);
    EXPECT_NE(p->cbModeOpenglTextureIds[0x11], 0u);
    EXPECT_NE(p->cbModeOpenglTextureIds[0x10], p->cbModeOpenglTextureIds[0x11]);
}

TEST_F(Vdp1TextureCacheTest, AnotherSizeOrModeAtTheSameAddressReplacesThePattern) {
    FillData(0x1000, 64);
    DrawSprites({Sprite(0x1000, 0x0108, 0, 0)});
    ASSERT_NE(vdp1->GetPattern(0x1000), nullptr);
    for (const Command& other : {Sprite(0x1000, 0x0208, 0, 0), Sprite(0x1000, 0x0208, 4, 0)}) {
        DrawSprites({other});
        const CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(p->characterSize, other.size);
        EXPECT_EQ(p->colorMode, static_cast<uint32_t>(other.pmod >> 3));
        EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 1);
    }
}

TEST_F(Vdp1TextureCacheTest, OverlappingPatternDeletesTheOneItMeets) {
    // 16 x 8 lookup-table patterns are 64 bytes: 8 table entries.
    FillData(0x0FE0, 0x60);
    DrawSprites({Sprite(0x1000, 0x0208, 1, 0x0400)});
    const CVdp1CharacterPattern* first = vdp1->GetPattern(0x1000);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->startAddress, 0x1000u);
    EXPECT_EQ(first->endAddress, 0x1040u);
    for (uint32_t e = 0x200; e < 0x208; ++e) EXPECT_EQ(vdp1->characterPatterns[e], first) << e;

    DrawSprites({Sprite(0x0FE0, 0x0208, 1, 0x0400)});
    const CVdp1CharacterPattern* second = vdp1->GetPattern(0x0FE0);
    ASSERT_NE(second, nullptr);
    for (uint32_t e = 0x1FC; e < 0x204; ++e) EXPECT_EQ(vdp1->characterPatterns[e], second) << e;
    for (uint32_t e = 0x204; e < 0x208; ++e) EXPECT_EQ(vdp1->characterPatterns[e], nullptr) << e;
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 1);
}

TEST_F(Vdp1TextureCacheTest, EmptyPatternStillTakesItsStartEntry) {
    DrawSprites({Sprite(0x2000, 0x0010, 0, 0)});  // width 0
    const CVdp1CharacterPattern* p = vdp1->GetPattern(0x2000);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->dataSize, 0u);
    EXPECT_EQ(vdp1->characterPatterns[0x401], nullptr);
}

TEST_F(Vdp1TextureCacheTest, VramWritesInvalidateOnlyWhenTheValueChanges) {
    FillData(0x1000, 32);
    DrawSprites({Sprite(0x1000, 0x0108, 5, 0)});  // 8 x 8 RGB: 128 bytes
    CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
    ASSERT_NE(p, nullptr);
    vdp1->WriteVramWord(0x1010, vdp1->ReadVramWord(0x1010));  // the same value
    vdp1->WriteVramLong(0x1020, vdp1->ReadVramLong(0x1020));
    EXPECT_FALSE(p->modified);
    vdp1->WriteVramByte(0x107F, static_cast<uint8_t>(vdp1->ReadVramByte(0x107F) ^ 1));  // its last byte
    EXPECT_TRUE(p->modified);
    vdp1->WriteVramByte(0x1080, 0x55);  // beyond it: nothing to mark
}

TEST_F(Vdp1TextureCacheTest, ChangedPatternIsRebuiltByItsSpriteOrPurgedWithoutOne) {
    WriteWords(Vram(), 0x1000, {0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F, 0x801F});
    DrawSprites({Sprite(0x1000, 0x0101, 5, 0)});  // 8 x 1 red
    EXPECT_EQ(At(0, 0), Rgb555(0x001F));
    // Changed during the frame: the walk rebuilds it with the new texels.
    vdp1->WriteVramWord(0x1000, 0xFC00);
    RunFrame();
    EXPECT_EQ(At(0, 0), Rgb555(0x7C00));
    EXPECT_EQ(At(1, 0), Rgb555(0x001F));
    ASSERT_NE(vdp1->GetPattern(0x1000), nullptr);
    EXPECT_FALSE(vdp1->GetPattern(0x1000)->modified);

    // Changed in a frame that does not draw: purged after it.
    vdp1->WriteRegister(vdp1reg::PTMR, 0);
    vdp1->WriteVramWord(0x1002, 0x83E0);
    RunFrame();
    EXPECT_EQ(vdp1->GetPattern(0x1000), nullptr);
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 0);
}

TEST_F(Vdp1TextureCacheTest, CrcCoversTheDataAsTheHostArrayHoldsIt) {
    // Console bytes "4321" "8765" lie in the host array as "12345678".
    const char console[] = "43218765";
    for (uint32_t i = 0; i < 8; ++i) vdp1->WriteVramByte(0x3000 + i, static_cast<uint8_t>(console[i]));
    DrawSprites({Sprite(0x3000, 0x0101, 4, 0)});  // 8 x 1 x 8 bits
    ASSERT_NE(vdp1->GetPattern(0x3000), nullptr);
    EXPECT_EQ(vdp1->GetPattern(0x3000)->GetCrc(), 0x9AE0DAAFu);  // CRC-32 of "12345678"
}

TEST_F(Vdp1TextureCacheTest, ReplacementSetStopsFurtherPalettes) {
    FillData(0x1000, 32);
    CVdp1CharacterPattern::EnableReplacementTextures({{"unused.tif", 0x12345678, 0x0100}});
    EXPECT_TRUE(vdp1->clearCacheRequested);
    DrawSprites({Sprite(0x1000, 0x0108, 0, 0x0100), Sprite(0x1000, 0x0108, 0, 0x0110)});
    const CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
    ASSERT_NE(p, nullptr);
    EXPECT_NE(p->cbModeOpenglTextureIds[0x10], 0u);
    EXPECT_EQ(p->cbModeOpenglTextureIds[0x11], 0u) << "no texture is added while a set is active";
    CVdp1CharacterPattern::DisableReplacementTextures();
    EXPECT_TRUE(vdp1->clearCacheRequested);
    DrawSprites({Sprite(0x1000, 0x0108, 0, 0x0100), Sprite(0x1000, 0x0108, 0, 0x0110)});
    EXPECT_NE(vdp1->GetPattern(0x1000)->cbModeOpenglTextureIds[0x11], 0u);
}

TEST_F(Vdp1TextureCacheTest, EditorReadsImageAndDescriptionOfTheDrawingParts) {
    Cram(0x125, 0x03E0);
    WriteWords(Vram(), 0x1000, {0x5500, 0x00FF, 0xF0F0, 0x0505});  // 8 x 2 in 16 colours
    DrawSprites({Command{.ctrl = kNormalSpriteCmd, .pmod = 0x80, .colr = 0x0120, .srca = 0x1000 / 8,
                         .size = 0x0102}});  // ECD set: code 15 is a colour
    // The walk's parts are gone after the next one; the pattern still knows.
    WriteCommandList(Vram(), {});
    RunFrame();
    std::lock_guard lock(vdp1->cacheMutex);
    const CVdp1CharacterPattern* p = vdp1->GetPattern(0x1000);
    ASSERT_NE(p, nullptr);
    uint32_t image[16];
    std::memset(image, 0xAB, sizeof image);
    p->GetImage(image);
    const uint32_t green = 0xFF00F800u, none = 0;
    const uint32_t bank15 = vdp2->GetSpriteColor(0x12F);
    const uint32_t expected[16] = {green, green, none, none, none, none, bank15, bank15,
                                   bank15, none, bank15, none, none, green, none, green};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(image[i], expected[i]) << i;
    char text[256];
    p->GetInformation(text, sizeof text);
    EXPECT_STREQ(text, "Color mode: \n16 colors color bank\ncolor bank: 0x120\nsize: 8x2\n");
}

TEST_F(Vdp1TextureCacheTest, DescriptionNamesEachColourModeWithItsBankOrTable) {
    FillData(0x1000, 128);
    struct Case {
        uint32_t mode;
        uint16_t colr;
        const char* text;
    };
    const Case cases[] = {
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
        ASSERT_NE(vdp1->GetPattern(0x1000), nullptr);
        char text[256];
        vdp1->GetPattern(0x1000)->GetInformation(text, sizeof text);
        EXPECT_STREQ(text, c.text);
    }
}

}  // namespace
}  // namespace vdpgl::test
