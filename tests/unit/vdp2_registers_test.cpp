// CVdp2's register file: the byte/word/long ports, decoding of changed registers (screen size, colour RAM
// mode, sprite priority bits), the status registers and the blanking events.
#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using Vdp2RegistersTest = test::VdpTest;

TEST_F(Vdp2RegistersTest, PortsShareOneMaskedRegisterFileAndDecodeOnlyChangedHalves) {
    vdp2->WriteRegisterWord(0x220, 0x1234);  // BGON through the 0x1FF mask
    EXPECT_EQ(vdp2->ReadRegisterByte(BGON) << 8 | vdp2->ReadRegisterByte(BGON + 1), 0x1234);
    vdp2->WriteRegisterByte(BGON, 0xAB);              // even address: high byte only
    vdp2->WriteRegisterByte(0x200 + BGON + 1, 0xCD);  // odd address: low byte only
    EXPECT_EQ(vdp2->Register(BGON), 0xABCD);
    vdp2->WriteRegisterLong(BGON, 0x11223344);  // upper half at the address, lower at +2
    EXPECT_EQ(vdp2->ReadRegisterLong(BGON), 0x11223344u);
    vdp2->WriteRegisterLong(RAMCTL - 2, 0x0000EFFF);  // RAMCTL is the lower half; its bits 13-12 are the mode
    EXPECT_EQ(vdp2->cramMode, 2);

    vdp2->WriteRegisterByte(TVMD + 1, 0x02);  // a byte write decodes as a word write does
    EXPECT_EQ(renderer->GetSaturnHRes() * 1000 + renderer->GetSaturnVRes(), 640448);
    renderer->SetSaturnResolution(704, 512);  // elsewhere: a new decode of TVMD would bring it back
    renderer->TakeRenderingResolutionChange();
    vdp2->WriteRegisterByte(TVMD + 1, 0x02);
    vdp2->WriteRegisterLong(TVMD, 0x00020001);  // only EXTEN changes
    EXPECT_FALSE(renderer->TakeRenderingResolutionChange());
    vdp2->WriteRegisterLong(TVMD, 0x80020001);  // TVMD changes, EXTEN does not
    EXPECT_TRUE(renderer->TakeRenderingResolutionChange());
}

TEST_F(Vdp2RegistersTest, TvmdDecodesScreenSizeAndScales) {
    // Each row from 0x00D0 (interlaced, columns doubled): every write recomputes from scratch, except that
    // LSMD 1 (0x40) leaves the interlace state as it was and doubles no lines. Bit 2 is ignored.
    struct Case { uint16_t tvmd; int32_t h, v, hScale, vScale; bool interlaced, verticalDoubled; };
    const Case cases[] = {
        {0x8000, 320, 224, 1, 1, 0, 0}, {0x0001, 352, 224, 1, 1, 0, 0}, {0x0011, 352, 240, 1, 1, 0, 0},
        {0x0020, 320, 224, 1, 1, 0, 0}, {0x0030, 320, 240, 1, 1, 0, 0}, {0x0004, 320, 224, 1, 1, 0, 0},
        {0x0013, 704, 480, 1, 2, 0, 1}, {0x0080, 320, 224, 1, 1, 0, 0}, {0x00C0, 640, 448, 2, 1, 1, 0},
        {0x00F0, 640, 480, 2, 1, 1, 0}, {0x00C3, 704, 448, 1, 1, 1, 0}, {0x0040, 320, 224, 1, 1, 1, 0},
    };
    for (const Case& c : cases) {
        vdp2->WriteRegisterWord(TVMD, 0x00D0);
        vdp2->WriteRegisterWord(TVMD, c.tvmd);
        EXPECT_EQ(std::tuple(vdp2->screenHRes, vdp2->screenVRes, vdp2->horizontalScale, vdp2->verticalScale,
                             vdp2->interlaced, vdp2->verticalDoubled),
                  std::tuple(c.h, c.v, c.hScale, c.vScale, c.interlaced, c.verticalDoubled))
            << "TVMD 0x" << std::hex << c.tvmd;
    }
}

TEST_F(Vdp2RegistersTest, SpctlSelectsPriorityBitsOfTheSpriteColourAndEachPrisByteHoldsOneNumber) {
    // Priority register n holds 7 - n; the upper bits of each byte are not
    // part of it. PRISA and PRISB come in one long write, which decodes both.
    vdp2->WriteRegisterLong(PRISA, 0xF6F7FCFD);
    vdp2->WriteRegisterWord(PRISC, 0xFAFB);
    vdp2->WriteRegisterWord(PRISD, 0xF8F9);
    vdp2->WriteRegisterWord(SPCTL, 0);  // no change: type 0 (bits 15-14) must hold from the start
    EXPECT_EQ(vdp2->SpritePriority(0x8000), 5);
    struct Case { uint16_t type, mask; uint32_t shift; };
    const Case cases[] = {{0, 0xC000, 14}, {1, 0xE000, 13}, {2, 0x4000, 14}, {3, 0x6000, 13}, {4, 0x6000, 13},
                          {5, 0x7000, 12}, {6, 0x7000, 12}, {7, 0x7000, 12}, {8, 0x80, 7},     {9, 0x80, 7},
                          {10, 0xC0, 6},   {11, 0, 0},      {15, 0, 0}};
    for (const Case& c : cases) {
        vdp2->WriteRegisterWord(SPCTL, static_cast<uint16_t>(0x3730 | c.type));  // other SPCTL bits set
        EXPECT_EQ(vdp2->SpritePriority(c.mask), 7 - (c.mask >> c.shift)) << "type " << c.type;
        EXPECT_EQ(vdp2->SpritePriority(static_cast<uint16_t>(~c.mask)), 7) << "type " << c.type << ", other bits";
    }
    vdp2->WriteRegisterWord(PRISC, 0x0503);
    vdp2->WriteRegisterByte(PRISC, 0x06);      // high byte: odd entry
    vdp2->WriteRegisterByte(PRISD + 1, 0x0F);  // low byte: even entry, 3 bits
    EXPECT_EQ(std::vector<int>(vdp2->spritePriorities + 4, vdp2->spritePriorities + 8), (std::vector<int>{3, 6, 7, 0}));
}

TEST_F(Vdp2RegistersTest, StatusRegistersFollowTheBlankingEvents) {
    vdp2->WriteRegisterWord(TVSTAT, 0xFFF0);            // stored bits do not survive a read
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x0008);  // display off reads as V-blank
    vdp2->WriteRegisterWord(TVMD, 0x8000);
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x0000);
    vdp2->OnVblankIn();
    vdp2->OnHblankIn();
    EXPECT_EQ(vdp2->ReadRegisterByte(TVSTAT + 1), 0x0C);
    EXPECT_EQ(vdp2->ReadRegisterWord(HCNT), 50);  // HCNT advances by 50 a read
    EXPECT_EQ(vdp2->ReadRegisterByte(HCNT + 1), 100);
    for (int line = 0; line < 3; ++line) vdp2->OnHblankOut();  // leaves H-blank, toggles the field
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x000A);
    EXPECT_EQ(vdp2->ReadRegisterLong(HCNT), 50u << 16 | 3u) << "HCNT restarts at H-blank-out (other reads leave it)";
    for (int i = 0; i < 1309; ++i) vdp2->ReadRegisterWord(HCNT);  // up to 65,500
    EXPECT_EQ(vdp2->ReadRegisterWord(HCNT), 14);                   // low 16 bits of 65,550
    vdp2->OnVblankOut();
    EXPECT_EQ(vdp2->ReadRegisterLong(TVSTAT) >> 16, 0x0002u) << "V-blank-out does not touch the field";
    EXPECT_EQ(vdp2->ReadRegisterWord(VCNT), 0);
}

TEST_F(Vdp2RegistersTest, ResetClearsStateButKeepsFrameCounterAndSpriteTypeDecoding) {
    for (auto [reg, value] : {std::pair<uint32_t, uint16_t>{TVMD, 0x00D0}, {SPCTL, 0x0005}, {PRISA, 0x0707}})
        vdp2->WriteRegisterWord(reg, value);
    vdp2->WriteCramWord(0x020, 0x7FFF);
    vdp2->OnVblankOut();  // stamps the CRAM change, makes buffer B active
    vdp2->OnHblankOut();  // line 1, odd field
    vdp2->vblank = vdp2->hblank = true, vdp2->hCounter = 50;
    CPatternName request;
    request.characterAddress = 96;
    request.cellDataSize = 32;
    new CVdp2CharacterPattern(request, 0);  // fills slot 3
    renderer->TakeRenderingResolutionChange();

    vdp2->ResetVdp2();
    EXPECT_FALSE(vdp2->oddField || vdp2->vblank || vdp2->hblank || vdp2->interlaced || vdp2->verticalDoubled);
    EXPECT_EQ(vdp2->hCounter | vdp2->lineCounter | vdp2->activeCramBuffer | vdp2->paletteAllStamp, 0u);
    EXPECT_EQ(vdp2->palette16Stamps[1] | vdp2->spritePriorities[0] | vdp2->Register(SPCTL), 0u);
    EXPECT_EQ(std::tie(vdp2->screenHRes, vdp2->screenVRes, vdp2->horizontalScale, vdp2->verticalScale),
              std::make_tuple(320, 240, 1, 1));
    EXPECT_TRUE(vdp2->cram == vdp2->CramBuffer(0) && (vdp2->CramBuffer(0)[0x10] | vdp2->CramBuffer(1)[0x10]) == 0);
    EXPECT_EQ(vdp2->cells[3], nullptr);
    EXPECT_FALSE(renderer->TakeRenderingResolutionChange()) << "the renderer keeps its size until TVMD is written";
    EXPECT_EQ(std::tie(vdp2->frameCounter, vdp2->spriteType, vdp2->spritePriorityMask, vdp2->spritePriorityShift),
              std::make_tuple(1u, 5u, uint16_t{0x7000}, 12u));
}

}  // namespace
}  // namespace vdpgl
