// What the backgrounds read from VDP2's registers, where their planes start in VRAM, and what a pattern name names.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vdp2/background/normal_background.h"
#include "vdp2/background/plane_addresses.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using Vdp2BackgroundFieldsTest = test::VdpTest;

struct Write {
    uint32_t reg;
    uint16_t value;
};

TEST_F(Vdp2BackgroundFieldsTest, RegisterFieldsAndDerivedValues) {
    struct Case {
        const char* what;
        std::vector<Write> writes;
        int bg;
        uint32_t cramOffset, priority;
        float alpha, multiply[3], add[3];
    };
    const Case cases[] = {
        {"offset code 5 in colour RAM mode 2", {{RAMCTL, 0x2000}, {CRAOFA, 0x0005}}, kNbg0, 0x1400, 0, 1, {1, 1, 1},
         {}},
        {"offset code 5 in mode 1", {{RAMCTL, 0x1000}, {CRAOFA, 0x0005}}, kNbg0, 0xA00, 0, 1, {1, 1, 1}, {}},
        {"NBG3's offset and priority", {{CRAOFA, 0x7000}, {PRINB, 0x0500}}, kNbg3, 0xE00, 5, 1, {1, 1, 1}, {}},
        {"ratio 16: half alpha", {{CCRNA, 0x0010}}, kNbg0, 0, 0, 0.5f, {1, 1, 1}, {}},
        {"RBG1 takes NBG0's ratio and priority", {{CCRNA, 0x001F}, {PRINA, 0x0006}}, kRbg1, 0, 6, 0.03125f,
         {1, 1, 1}, {}},
        {"offsets -1, +255, -256 from set A",
         {{CLOFEN, 0x0001}, {COAR, 0x1FF}, {COAG, 0x0FF}, {COAB, 0x100}}, kNbg0, 0, 0, 1, {1, 1, 0}, {0, 1, 0}},
        {"set B when selected", {{CLOFEN, 0x0001}, {CLOFSL, 0x0001}, {COAR, 0x0FF}, {COBG, 0x180}}, kNbg0, 0, 0, 1,
         {1, 1 - 127 / 255.0f, 1}, {}},
        {"enable bit of another background", {{CLOFEN, 0x0002}, {COAR, 0x0FF}}, kNbg0, 0, 0, 1, {1, 1, 1}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        vdp2->ResetVdp2();
        for (const Write& w : c.writes) vdp2->WriteRegisterWord(w.reg, w.value);
        CBackground& bg = *vdp2->Background(c.bg);
        bg.UpdateFromRegisters();
        EXPECT_EQ(bg.cramAddressOffset, c.cramOffset);
        EXPECT_EQ(bg.GetPriority(), c.priority);
        EXPECT_FLOAT_EQ(bg.colorCalculationAlpha, c.alpha);
        for (int i = 0; i < 3; ++i) {
            EXPECT_FLOAT_EQ(bg.colorOffsetMultiply[i], c.multiply[i]) << i;
            EXPECT_FLOAT_EQ(bg.colorOffsetAdd[i], c.add[i]) << i;
        }
    }
}

TEST_F(Vdp2BackgroundFieldsTest, Rbg1FollowsNbg0ButForItsDisplayBitAndNoBitmap) {
    for (Write w : {Write{BGON, 0x0121}, {CHCTLA, 0x0023}, {PNCN0, 0xC2A5}, {PRINA, 0x0004}})
        vdp2->WriteRegisterWord(w.reg, w.value);
    vdp2->OnVblankOut();
    const CBackground &nbg0 = *vdp2->Background(kNbg0), &rbg1 = *vdp2->Background(kRbg1);
    EXPECT_EQ(nbg0.enabled + nbg0.bitmapEnabled, 2u);
    EXPECT_EQ(rbg1.enabled + rbg1.bitmapEnabled, 1u);
    for (const CBackground* bg : {&nbg0, &rbg1}) {
        EXPECT_EQ(bg->transparentDisplay + bg->characterColorNumber + bg->characterSize, 1 + 2 + 1);
        EXPECT_EQ(bg->cellDataSize + bg->charactersPerPage, 128u + 32 * 32);
        EXPECT_EQ(bg->patternNameDataSize + bg->characterNumberSupplement + bg->specialPriority, 3u);
        EXPECT_EQ(bg->specialColorCalculation * 100 + bg->supplementaryPalette * 10 + bg->supplementaryCharacterNumber,
                  0u * 100 + 5 * 10 + 5);
    }
    std::string text;
    vdp2->Background(kNbg1)->GetInformation(text);
    EXPECT_NE(text.find("cell mode\n"), std::string::npos);
    EXPECT_NE(text.find("16 colors\npriority: background not displayed\n"), std::string::npos) << text;
}

TEST(PlaneAddressesTest, PageSizeMapBitsAndTheEndOfVram) {
    struct Case {
        uint32_t characterSize, nameSize, planeSize, mapOffset, map, address;
    };
    const Case cases[] = {
        {0, 0, 1, 0, 3, 0x10000},   // two words: pages of 0x4000; odd map: the second pair
        {0, 0, 1, 0, 31, 0x78000},  // ... unless that reaches 0x80000
        {0, 1, 3, 0, 6, 0x18000},   // one word, four pages: bit 1 selects the second group
        {0, 1, 3, 0, 7, 0x18000},   // ... and bit 0 is ignored
        {1, 0, 0, 1, 5, 0x45000},   // 2 x 2 characters: the map offset takes part
        {1, 1, 0, 3, 63, 0x7F800},  // 255 pages of 0x800
        {0, 1, 0, 7, 63, 0x7E000},  // 1 x 1 characters: the offset does not
        {0, 0, 2, 0, 9, 9},         // no such plane size: the map value stays
    };
    for (const Case& c : cases) {
        uint32_t address = c.map;
        ComputePlaneAddresses(&address, 1, {c.characterSize, c.nameSize, c.planeSize, c.mapOffset});
        EXPECT_EQ(address, c.address) << c.characterSize << c.nameSize << c.planeSize << " map " << c.map;
    }
}

TEST_F(Vdp2BackgroundFieldsTest, PatternNamesWithSupplementsFlipsAndPaletteBlocks) {
    struct Case {
        const char* what;
        uint16_t chctla, pncn0, craofa, ramctl;
        uint32_t name;  // one word in the low half, or two words
        uint32_t address, palette, block;
        bool hFlip, vFlip;
    };
    const Case cases[] = {
        {"16 colours: palette 4 bits + supplement", 0x0000, 0x80A3, 0, 0, 0x5C12, 0x0C12 * 32, 0x55, 0x55, true, true},
        {"no flips: 12-bit numbers", 0x0000, 0xC01C, 0, 0, 0x5C12, 0x7C12 * 32 & 0x7FFFF, 5, 5, false, false},
        {"256 colours: 3-bit palette", 0x0010, 0x8000, 0, 0, 0x7401, 32, 7, 7 * 16, true, false},
        {"2 x 2: number x 4 + supplement", 0x0001, 0x8003, 0, 0, 0x0005, (5 * 4 + 3) * 32, 0, 0, false, false},
        {"2 x 2, no flips", 0x0001, 0xC013, 0, 0, 0x0FFF, ((0xFFF << 2 | 3) | 0x4000) * 32 & 0x7FFFF, 0, 0, false,
         false},
        {"two words, 256 colours: palette / 16", 0x0010, 0x0000, 0, 0, 0xC0353FFFu, 0x3FFF * 32, 3, 3 * 16, true, true},
        {"two words, offset 2", 0x0000, 0x0000, 0x0002, 0, 0x00110001u, 32, 0x11, 0x11 + 32, false, false},
        {"2048 colours: the offset only", 0x0020, 0x0000, 0x0003, 0, 0x007F0001u, 32, 0x7F, 48, false, false},
        {"32K colours: no colour RAM", 0x0030, 0x0000, 0x0003, 0, 0x007F0001u, 32, 0x7F, 0, false, false},
        {"mode 2, 16 colours: 32 words a palette", 0x0000, 0x0000, 0x0001, 0x2000, 0x00030001u, 32, 3,
         (512 + 3 * 32) / 16, false, false},
        {"mode 2, 256 colours: 512 words", 0x0010, 0x0000, 0, 0x2000, 0x00100001u, 32, 1, 32, false, false},
    };
    constexpr uint32_t kMap = 0x30000;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        for (Write w : {Write{CHCTLA, c.chctla}, {PNCN0, c.pncn0}, {CRAOFA, c.craofa}, {RAMCTL, c.ramctl}})
            vdp2->WriteRegisterWord(w.reg, w.value);
        CBackground& nbg0 = *vdp2->Background(kNbg0);
        nbg0.UpdateFromRegisters();
        const bool oneWord = c.pncn0 & 0x8000;
        if (oneWord)
            vdp2->WriteVramWord(kMap + 6, static_cast<uint16_t>(c.name));
        else
            vdp2->WriteVramLong(kMap + 12, c.name);
        CPatternName request;
        request.PrepareCell(nbg0, kMap, 3);
        EXPECT_EQ(request.characterAddress, c.address);
        EXPECT_EQ(request.paletteNumber, c.palette);
        EXPECT_EQ(request.paletteBlock, c.block);
        EXPECT_EQ(request.hFlip, c.hFlip);
        EXPECT_EQ(request.vFlip, c.vFlip);
    }
}

TEST_F(Vdp2BackgroundFieldsTest, OnlyAWriteInsideTheBitmapMarksItForDecoding) {
    // NBG0: a 16-colour 512 x 256 bitmap at 3 x 0x20000, 0x10000 bytes.
    for (Write w : {Write{TVMD, TVMD_DISP}, {BGON, 0x0001}, {CHCTLA, 0x0002}, {MPOFN, 0x0003}, {PRINA, 0x0001}})
        vdp2->WriteRegisterWord(w.reg, w.value);
    auto& nbg0 = static_cast<CNormalBackground&>(*vdp2->Background(kNbg0));
    const auto frame = [&] {
        vdp2->OnVblankOut();
        vdp2->DrawBackgrounds(1);
    };
    frame();
    ASSERT_EQ(nbg0.bitmapAddress, 0x60000u);
    ASSERT_EQ(nbg0.bitmapDataSize, 0x10000u);
    EXPECT_EQ(nbg0.bitmapDirty, 0) << "decoded when drawn";
    vdp2->WriteVramByte(0x70000, 1);  // one past the end
    vdp2->WriteVramWord(0x5FFFF, 1);  // a word whose first byte lies before it
    vdp2->WriteCramWord(2, 0x7FFF);
    vdp2->WriteRegisterWord(BMPNA, 0x0002);
    vdp2->WriteRegisterWord(BGON, 0x0101);  // transparent display
    frame();
    EXPECT_EQ(nbg0.bitmapDirty, 0) << "colour RAM, palette and transparency keep the texture";
    EXPECT_GE(nbg0.bitmapRowsFirst, nbg0.bitmapRowsEnd) << "no row to decode";
    // A row is 256 bytes: the rows written are decoded again, and only they.
    vdp2->WriteVramByte(0x6FFFF, 1);
    vdp2->WriteVramByte(0x60A00, 1);
    EXPECT_EQ(nbg0.bitmapDirty, 0);
    EXPECT_EQ(nbg0.bitmapRowsFirst, 10u);
    EXPECT_EQ(nbg0.bitmapRowsEnd, 256u);
    frame();
    EXPECT_GE(nbg0.bitmapRowsFirst, nbg0.bitmapRowsEnd) << "decoded when drawn";
    vdp2->WriteRegisterWord(MPOFN, 0x0001);
    frame();
    EXPECT_EQ(nbg0.bitmapAddress, 0x20000u);
    vdp2->WriteVramByte(0x6FFFF, 2);
    EXPECT_EQ(nbg0.bitmapDirty, 0) << "the old place no longer counts";
    EXPECT_GE(nbg0.bitmapRowsFirst, nbg0.bitmapRowsEnd);
}

}  // namespace
}  // namespace vdpgl
