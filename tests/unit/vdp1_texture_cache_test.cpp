// The VDP1 texture cache as frames use it, counted: patterns, textures and bytes kept, overlaps and invalidation, the
// memory budget, replacement sets, and what the editor reads. The pictures are the host frame tests'. Without a GL
// context the names are 0, but the cache keeps its records all the same; a part has a texture when its texture
// coordinates are set.
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/vdp1_commands.h"
#include "vdp_test.h"

namespace vdpgl::test {
namespace {

using Pattern = CVdp1CharacterPattern;

class Vdp1TextureCacheTest : public VdpTest {
protected:
    void SetUp() override { vdp1->WriteRegister(vdp1reg::PTMR, 2); }  // every frame walks
    void TearDown() override { Pattern::SetTextureBudget(CVdp1TextureStore::kDefaultBudget); }
    // One frame of these sprites; which of them got a texture.
    std::vector<bool> Draw(std::initializer_list<Command> sprites) {
        WriteCommandList([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, sprites);
        vdp2->OnVblankOut();
        vdp1->Frame();
        std::vector<bool> textured;  // each call's sprites share one priority list
        for (const auto& list : vdp1->partsListVectors)
            for (const CVdp1Part* p : list) textured.push_back(static_cast<const CVdp1SpritePart*>(p)->uMax > 0);
        return textured;
    }
    static Command Sprite(uint32_t address, uint16_t size, uint32_t mode, uint16_t colr) {
        return {.pmod = uint16_t(mode << 3), .colr = colr, .srca = uint16_t(address / 8), .size = size};
    }
    // Bytes whose nibbles are 1 to 7: no transparent dot, no end code.
    void FillData(uint32_t address, uint32_t bytes) {
        for (uint32_t i = 0; i < bytes; ++i)
            vdp1->WriteVramByte(address + i, static_cast<uint8_t>((1 + i % 7) << 4 | (1 + i % 5)));
    }
};

TEST_F(Vdp1TextureCacheTest, OneTexturePerPaletteAndOnePatternPerSizeAndModeOnAnAddress) {
    FillData(0x1000, 128);
    struct Case { uint32_t mode; uint16_t bankA, bankB; int textures; };
    // Neighbouring 16-colour banks; the same bank shares; the 64-colour bank ignores the low six bits; 256
    // colours; two lookup tables; 32K colours have one texture whatever CMDCOLR says.
    const Case cases[] = {{0, 0x0100, 0x0110, 2}, {0, 0x0100, 0x0100, 1}, {2, 0x0140, 0x0150, 1},
                          {4, 0x0100, 0x0200, 2}, {1, 0x0400, 0x0404, 2}, {5, 0x0000, 0x1234, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " banks " << c.bankA << "/" << c.bankB);
        vdp1->RequestCacheClear();
        for (int frame = 0; frame < 2; ++frame) {  // the next frame reuses every texture
            Draw({Sprite(0x1000, 0x0108, c.mode, c.bankA), Sprite(0x1000, 0x0108, c.mode, c.bankB)});
            EXPECT_EQ(Pattern::TextureCount(), c.textures);
            EXPECT_EQ(Pattern::PatternCount(), 1);
        }
    }
    EXPECT_EQ(Pattern::TextureBytes(), uint64_t{8 * 8 * 4 + CVdp1TextureStore::kOverheadBytes});
    vdp1->RequestCacheClear();  // sizes and modes on one address: each a pattern of its own, kept
    for (int frame = 0; frame < 3; ++frame) {
        Draw({Sprite(0x1000, 0x0208, 0, 0x0100), Sprite(0x1000, 0x0108, 0, 0x0100), Sprite(0x1000, 0x0108, 4, 0x0200),
              Sprite(0x1000, 0x0208, 0, 0x0110)});
        EXPECT_EQ(Pattern::PatternCount(), 3);
        EXPECT_EQ(Pattern::TextureCount(), 4);
    }
    for (uint16_t w = 4; w <= 9; ++w) Draw({Sprite(0x1000, uint16_t(w << 8 | 8), 0, 0x0100)});
    EXPECT_EQ(Pattern::PatternCount(), 1) << "a ninth pattern on one address starts the address afresh";
}

TEST_F(Vdp1TextureCacheTest, OverlapsRetireAndWritesThatChangeAValueInvalidate) {
    // 16 x 8 lookup-table patterns are 64 bytes: 8 table entries.
    FillData(0x0FE0, 0x60);
    EXPECT_EQ(Draw({Sprite(0x1000, 0x0208, 1, 0x0400), Sprite(0x0FE0, 0x0208, 1, 0x0400)}),
              (std::vector<bool>{true, true}));
    const Pattern* second = vdp1->GetPattern(0x0FE0);
    for (uint32_t e = 0x1FC; e < 0x204; ++e) EXPECT_EQ(vdp1->characterPatterns[e], second) << e;
    for (uint32_t e = 0x204; e < 0x208; ++e) EXPECT_EQ(vdp1->characterPatterns[e], nullptr) << e;
    EXPECT_EQ(Pattern::PatternCount(), 1) << "the retired pattern is gone once the frame is drawn";
    // 8 x 5 in 16 colours is 20 bytes: a pattern starting in its half-used last unit overlaps it.
    Draw({Sprite(0x1000, 0x0105, 0, 0x0100), Sprite(0x1010, 0x0101, 0, 0x0100)});
    EXPECT_EQ(Pattern::PatternCount(), 1);

    WriteWords([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, 0x1000, {0x801F, 0x801F});
    vdp1->RequestCacheClear();
    Draw({Sprite(0x1000, 0x0101, 5, 0)});  // 8 x 1 in 32K colours
    vdp1->WriteVramWord(0x1000, 0x801F);  // the same values
    vdp1->WriteVramLong(0x1008, vdp1->ReadVramLong(0x1008));
    EXPECT_FALSE(vdp1->GetPattern(0x1000)->modified);
    vdp1->WriteRegister(vdp1reg::PTMR, 0);
    vdp1->WriteVramWord(0x1002, 0x83E0);
    EXPECT_TRUE(vdp1->GetPattern(0x1000)->modified);
    Draw({});  // a frame that does not draw purges it
    EXPECT_EQ(vdp1->GetPattern(0x1000), nullptr);
    EXPECT_EQ(Pattern::PatternCount() + Pattern::TextureCount() + Pattern::TextureBytes(), 0u);
}

TEST_F(Vdp1TextureCacheTest, CrcCoversTheDataAsTheHostArrayHoldsIt) {
    // Console bytes "4321" "8765" lie in the host array as "12345678".
    const char console[] = "43218765";
    for (uint32_t i = 0; i < 8; ++i) vdp1->WriteVramByte(0x3000 + i, static_cast<uint8_t>(console[i]));
    Draw({Sprite(0x3000, 0x0101, 4, 0), Sprite(0x2000, 0x0010, 0, 0)});  // and an empty one
    EXPECT_EQ(vdp1->GetPattern(0x3000)->GetCrc(), 0x9AE0DAAFu);  // CRC-32 of "12345678"
    ASSERT_NE(vdp1->GetPattern(0x2000), nullptr) << "a pattern without data still takes its first entry";
    EXPECT_EQ(vdp1->characterPatterns[0x401], nullptr);
}

// A 16 x 8 lookup-table pattern drawn with the tables at 0x2000 + 32 n.
constexpr uint64_t kTexture = 16 * 8 * 4 + CVdp1TextureStore::kOverheadBytes;
Command Table(uint16_t n) { return {.pmod = 8, .colr = uint16_t(0x0400 + 4 * n), .srca = 0x1000 / 8, .size = 0x0208}; }
using Vdp1TextureBudgetTest = Vdp1TextureCacheTest;

TEST_F(Vdp1TextureBudgetTest, OldestTexturesGoFirstAndAFrameKeepsWhatItDrawsUpToTwiceTheBudget) {
    FillData(0x1000, 64);
    Pattern::SetTextureBudget(3 * kTexture);
    for (uint16_t n = 0; n < 8; ++n) {
        EXPECT_EQ(Draw({Table(n)}), std::vector<bool>{true}) << n;
        EXPECT_LE(Pattern::TextureBytes(), 3 * kTexture);
    }
    EXPECT_EQ(Pattern::TextureCount(), 3);
    // New textures beyond twice the budget are not made, once said.
    testing::internal::CaptureStderr();
    Draw({Table(0), Table(1), Table(2), Table(3), Table(4), Table(5), Table(6), Table(7)});
    const std::vector<bool> textured =
        Draw({Table(9), Table(10), Table(11), Table(12), Table(13), Table(14), Table(15)});
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(textured, (std::vector<bool>{true, true, true, true, true, true, false}));
    EXPECT_EQ(Pattern::TextureCount(), 6);
    EXPECT_EQ(err.find("need more than"), err.rfind("need more than")) << err;
    EXPECT_NE(err.find("the sprites of one frame need more than 0 MiB of textures"), std::string::npos) << err;
    Draw({Table(0)});
    EXPECT_EQ(Pattern::TextureCount(), 3);
}

TEST_F(Vdp1TextureBudgetTest, ATextureGivenBackUnderAReplacementSetIsGeneratedAgain) {
    // While a set is active no texture is added to a pattern: one that lost its texture is built again as it was first
    // built.
    Pattern::EnableReplacementTextures({{"unused.tif", 0x12345678, 0x0100}});
    Pattern::SetTextureBudget(2 * kTexture);
    FillData(0x1000, 64);
    const Command wide = Table(1), narrow = Sprite(0x1000, 0x0108, 1, 0x0400 + 4 * 2),
                  other = Sprite(0x1800, 0x0208, 1, 0x0400 + 4 * 3);
    FillData(0x1800, 64);
    Draw({wide, narrow});   // two patterns on one address
    Draw({narrow, other});  // the wide one's texture goes; the address keeps its patterns
    EXPECT_EQ(Draw({wide, other}), (std::vector<bool>{true, true}));  // and the narrow one's
    EXPECT_EQ(Draw({wide, narrow, Table(4)}), (std::vector<bool>{true, true, false}))
        << "a second palette of one pattern is not added while the set is on";
    Pattern::DisableReplacementTextures();
    EXPECT_EQ(Draw({wide, Table(4)}), (std::vector<bool>{true, true}));
}

TEST_F(Vdp1TextureCacheTest, EditorReadsImageAndDescriptionOfTheDrawingParts) {
    vdp2->WriteCramWord(0x125 * 2, 0x03E0);
    WriteWords([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, 0x1000,
               {0x5500, 0x00FF, 0xF0F0, 0x0505});
    Draw({{.pmod = 0x80, .colr = 0x0120, .srca = 0x1000 / 8, .size = 0x0102}});  // 8 x 2; ECD: code 15 is a colour
    Draw({});  // the walk's parts are gone after the next one; the pattern still knows
    std::lock_guard lock(vdp1->cacheMutex);
    std::vector<uint32_t> image(16, 0xABABABAB);
    vdp1->GetPattern(0x1000)->GetImage(image.data());
    const uint32_t g = 0xFF00F800u, o = 0, b = vdp2->GetSpriteColor(0x12F);
    const uint32_t expected[16] = {g, g, o, o, o, o, b, b, b, o, b, o, o, g, o, g};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(image[i], expected[i]) << i;
}

TEST_F(Vdp1TextureCacheTest, DescriptionNamesTheColourModeWithItsBankOrTable) {
    FillData(0x1000, 128);
    struct Case { uint32_t mode; uint16_t colr; const char* text; };
    const Case cases[] = {
        {1, 0x0601, "Color mode: \n16 colors lookup table\nLUT address: 0x3008\nsize: 8x8\n"},
        {2, 0x0147, "Color mode: \n64 colors color bank\ncolor bank: 0x147\nsize: 8x8\n"},  // unmasked
        {5, 0x1234, "Color mode: \n32K colors\nsize: 8x8\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        vdp1->RequestCacheClear();
        Draw({Sprite(0x1000, 0x0108, c.mode, c.colr)});
        std::lock_guard lock(vdp1->cacheMutex);
        char text[256];
        vdp1->GetPattern(0x1000)->GetInformation(text, sizeof text);
        EXPECT_STREQ(text, c.text);
    }
}

// The table as the VRAM ports, the purge, the clear and the editor's listing meet it, with patterns entered by hand.
class Vdp1PatternTableTest : public VdpTest {
protected:
    using Patterns = std::vector<CVdp1CharacterPattern*>;
    // A pattern at table entries [first, first + count), as the cache maps one.
    CVdp1CharacterPattern* AddPattern(uint32_t first, uint32_t count) {
        auto* p = new CVdp1CharacterPattern;
        p->startAddress = first << 3;
        p->endAddress = (first + count) << 3;
        for (uint32_t i = first; i < first + count; ++i) vdp1->characterPatterns[i & 0xFFFF] = p;
        return p;
    }
};

TEST_F(Vdp1PatternTableTest, ListingSkipsModifiedPatternsThePurgeDeletesThemAndVdp1TheRest) {
    // Created out of address order; b and c are adjacent, e ends the table.
    CVdp1CharacterPattern* e = AddPattern(0xFFFE, 2);
    CVdp1CharacterPattern* c = AddPattern(0x2004, 1);
    CVdp1CharacterPattern* b = AddPattern(0x2000, 4);
    CVdp1CharacterPattern* a = AddPattern(0, 3);
    CVdp1CharacterPattern* wide = AddPattern(0x4000, 8);
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c, wide, e}));
    vdp1->WriteVramByte(0x4000 * 8 + 0x3A, 0x9C);  // wide's last unit
    vdp1->WriteVramWord(0x7FFF8, 0x0102);        // e's last
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c}));
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 5) << "listing deletes nothing";
    vdp1->PurgeModifiedPatterns();  // each of them once, all of their entries
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 3);
    EXPECT_EQ(vdp1->characterPatterns[0x4007], nullptr);
    vdp1.reset();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 0) << "VDP1 deletes its patterns when it goes";
}

// The editor reads the cached patterns under the cache lock and the counters off it while the emulation thread
// draws frames and changes VRAM, and the control panel flips part switches and asks for clears. Run under
// ThreadSanitizer by `make test-tsan`.
using Vdp1CacheThreadsTest = VdpTest;

TEST_F(Vdp1CacheThreadsTest, EditorAndPanelMeetTheEmulationThreadSafely) {
    const WordWriter vram = [&](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
    // Eight 16 x 8 sprites over four patterns, two palettes each.
    for (uint32_t a = 0x4000; a < 0x4000 + 4 * 0x100; a += 2) vram(a, static_cast<uint16_t>(a * 37));
    for (uint16_t i = 0; i < 8; ++i)
        WriteCommand(vram, i * 0x20u, {.colr = uint16_t((i & 1) << 4), .srca = uint16_t((0x4000 + i / 2 * 0x100) / 8),
                                       .size = 0x0208, .xa = int16_t(i * 20)});
    WriteCommand(vram, 8 * 0x20, {.ctrl = kEndCmd});

    std::atomic<bool> done{false};
    std::atomic<int> seen{0};      // bit n: the pattern at 0x4000 + n x 0x100
    std::atomic<int> editorPasses{0};
    std::thread editor([&] {
        char text[256];
        while (!done.load()) {
            if (CVdp1CharacterPattern::TextureBytes() > (1u << 20)) ADD_FAILURE() << "counters read off the lock";
            std::lock_guard lock(vdp1->cacheMutex);
            editorPasses++;
            for (const CVdp1CharacterPattern* p : vdp1->GetCachedPatterns()) {
                p->GetInformation(text, sizeof text);
                ASSERT_EQ(std::strncmp(text, "Color mode: \n16 colors color bank\n", 34), 0) << text;
                seen |= 1 << ((p->GetStartAddress() - 0x4000) / 0x100 & 7);
            }
        }
    });
    std::thread panel([&] {
        for (int i = 0; !done.load(); ++i) {
            vdp1->SetPartEnabled(kNormalSprite, i % 3 != 0);
            if (i % 20 == 0) vdp1->RequestCacheClear();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    // At least 300 frames, and on until the editor has looked a few times.
    for (int frame = 0; frame < 300 || ((editorPasses.load() < 20 || seen.load() == 0) && frame < 1000000); ++frame) {
        // One pattern changes each frame; every other frame does not draw, so the purge deletes it while the editor may
        // be looking.
        vram(0x4000 + static_cast<uint32_t>(frame % 4) * 0x100, static_cast<uint16_t>(frame));
        vdp1->WriteRegister(vdp1reg::PTMR, frame % 2 ? 0 : 2);
        vdp2->OnVblankOut();
        vdp1->Frame();
    }
    done = true;
    editor.join();
    panel.join();
    EXPECT_NE(seen.load(), 0) << "the editor saw cached patterns";
    vdp1->SetPartEnabled(kNormalSprite, true);
    vdp1->WriteRegister(vdp1reg::PTMR, 2);
    vdp1->Frame();
    std::lock_guard lock(vdp1->cacheMutex);
    EXPECT_EQ(vdp1->GetCachedPatterns().size(), 4u);
}

}  // namespace
}  // namespace vdpgl::test
