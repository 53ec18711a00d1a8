// CVdp2's register file: the byte/word/long ports, decoding of changed
// registers (screen size, colour RAM mode, sprite priority bits), the status
// registers and the blanking events.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using Vdp2RegistersTest = test::VdpTest;

TEST_F(Vdp2RegistersTest, PortsShareOneMaskedRegisterFileAndDecodeOnlyChangedHalves) {
    vdp2->WriteRegisterWord(0x220, 0x1234);  // BGON through the 0x1FF mask
    EXPECT_EQ(vdp2->ReadRegisterByte(BGON), 0x12);
    EXPECT_EQ(vdp2->ReadRegisterByte(BGON + 1), 0x34);
    vdp2->WriteRegisterByte(BGON, 0xAB);  // even address: high byte only
    vdp2->WriteRegisterByte(0x200 + BGON + 1, 0xCD);  // odd address: low byte only
    EXPECT_EQ(vdp2->Register(BGON), 0xABCD);
    vdp2->WriteRegisterLong(BGON, 0x11223344);  // upper half at the address, lower at +2
    EXPECT_EQ(vdp2->Register(BGON + 2), 0x3344);
    EXPECT_EQ(vdp2->ReadRegisterLong(BGON), 0x11223344u);
    vdp2->WriteRegisterLong(RAMCTL - 2, 0x00002000);  // RAMCTL is the lower half
    EXPECT_EQ(vdp2->cramMode, 2);

    vdp2->WriteRegisterByte(TVMD + 1, 0x02);  // a byte write decodes as a word write does
    EXPECT_EQ(renderer->GetSaturnHRes(), 640);
    EXPECT_EQ(renderer->GetSaturnVRes(), 448);
    // Move the renderer elsewhere: a new decode of TVMD would bring it back.
    renderer->SetSaturnResolution(704, 512);
    renderer->TakeRenderingResolutionChange();
    vdp2->WriteRegisterWord(TVMD, 0x0002);
    vdp2->WriteRegisterByte(TVMD + 1, 0x02);
    vdp2->WriteRegisterLong(TVMD, 0x00020001);  // only EXTEN changes
    EXPECT_FALSE(renderer->TakeRenderingResolutionChange());
    vdp2->WriteRegisterLong(TVMD, 0x80020001);  // TVMD changes, EXTEN does not
    EXPECT_TRUE(renderer->TakeRenderingResolutionChange());
    EXPECT_EQ(renderer->GetSaturnHRes(), 640);
}

struct TvmdCase {
    uint16_t tvmd;
    int32_t hRes, vRes, hScale, vScale;
    bool interlaced, verticalDoubled;
};

class Vdp2TvmdScreenSizeTest : public Vdp2RegistersTest, public ::testing::WithParamInterface<TvmdCase> {};

TEST_P(Vdp2TvmdScreenSizeTest, DecodesScreenSizeAndTellsTheRenderer) {
    const TvmdCase& c = GetParam();
    // From an interlaced, doubled mode: every write recomputes from scratch.
    vdp2->WriteRegisterWord(TVMD, 0x00D0);
    vdp2->WriteRegisterWord(TVMD, 0x0002);
    vdp2->WriteRegisterWord(TVMD, c.tvmd);
    EXPECT_EQ(vdp2->screenHRes, c.hRes);
    EXPECT_EQ(vdp2->screenVRes, c.vRes);
    EXPECT_EQ(vdp2->horizontalScale, c.hScale);
    EXPECT_EQ(vdp2->verticalScale, c.vScale);
    EXPECT_EQ(vdp2->interlaced, c.interlaced);
    EXPECT_EQ(vdp2->verticalDoubled, c.verticalDoubled);
    EXPECT_EQ(renderer->GetSaturnHRes(), c.hRes);
    EXPECT_EQ(renderer->GetSaturnVRes(), c.vRes);
}

INSTANTIATE_TEST_SUITE_P(Modes, Vdp2TvmdScreenSizeTest,
                         ::testing::Values(TvmdCase{0x8000, 320, 224, 1, 1, false, false},
                                           TvmdCase{0x0001, 352, 224, 1, 1, false, false},
                                           TvmdCase{0x0011, 352, 240, 1, 1, false, false},
                                           TvmdCase{0x0020, 320, 224, 1, 1, false, false},  // NTSC: 224
                                           TvmdCase{0x0030, 320, 240, 1, 1, false, false},
                                           TvmdCase{0x0004, 320, 224, 1, 1, false, false},  // bit 2 ignored
                                           TvmdCase{0x0013, 704, 480, 1, 2, false, true},
                                           TvmdCase{0x0080, 320, 224, 1, 1, false, false},
                                           TvmdCase{0x00C0, 640, 448, 2, 1, true, false},
                                           TvmdCase{0x00D0, 640, 480, 2, 1, true, false},
                                           TvmdCase{0x00C3, 704, 448, 1, 1, true, false}));

TEST_F(Vdp2RegistersTest, LsmdOneLeavesTheInterlaceStateWithoutDoublingTheLines) {
    vdp2->WriteRegisterWord(TVMD, 0x00C0);
    vdp2->WriteRegisterWord(TVMD, 0x0040);
    EXPECT_TRUE(vdp2->interlaced);
    EXPECT_EQ(vdp2->screenVRes, 224);
    vdp2->WriteRegisterWord(TVMD, 0x0080);
    EXPECT_FALSE(vdp2->interlaced);
}

TEST_F(Vdp2RegistersTest, RamctlSetsCramModeFromBits13And12Only) {
    const struct { uint16_t ramctl; uint16_t mode; } cases[] = {
        {0x1000, 1}, {0x2000, 2}, {0x3000, 3}, {0xC3FF, 0}, {0x1301, 1}, {0xEFFF, 2}};
    for (const auto& c : cases) {
        vdp2->WriteRegisterWord(RAMCTL, c.ramctl);
        EXPECT_EQ(vdp2->cramMode, c.mode) << std::hex << c.ramctl;
    }
}

struct SpriteTypeCase {
    uint16_t type, mask;
    uint32_t shift;
};

class Vdp2SpriteTypeTest : public Vdp2RegistersTest, public ::testing::WithParamInterface<SpriteTypeCase> {};

TEST_P(Vdp2SpriteTypeTest, SpctlSelectsPriorityBitsOfTheSpriteColour) {
    const SpriteTypeCase& c = GetParam();
    // Priority register n holds 7 - n; the upper bits of each byte are not
    // part of it. PRISA and PRISB come in one long write, which decodes both.
    vdp2->WriteRegisterLong(PRISA, 0xF6F7FCFD);
    vdp2->WriteRegisterWord(PRISC, 0xFAFB);
    vdp2->WriteRegisterWord(PRISD, 0xF8F9);
    vdp2->WriteRegisterWord(SPCTL, static_cast<uint16_t>(0x3730 | c.type));  // other SPCTL bits set
    EXPECT_EQ(vdp2->spriteType, c.type);
    EXPECT_EQ(vdp2->SpritePriority(c.mask), 7 - (c.mask >> c.shift));
    EXPECT_EQ(vdp2->SpritePriority(static_cast<uint16_t>(~c.mask)), 7);  // bits outside the mask: register 0
}

INSTANTIATE_TEST_SUITE_P(
    Types, Vdp2SpriteTypeTest,
    ::testing::Values(SpriteTypeCase{0, 0xC000, 14}, SpriteTypeCase{1, 0xE000, 13}, SpriteTypeCase{2, 0x4000, 14},
                      SpriteTypeCase{3, 0x6000, 13}, SpriteTypeCase{4, 0x6000, 13}, SpriteTypeCase{5, 0x7000, 12},
                      SpriteTypeCase{6, 0x7000, 12}, SpriteTypeCase{7, 0x7000, 12}, SpriteTypeCase{8, 0x80, 7},
                      SpriteTypeCase{9, 0x80, 7}, SpriteTypeCase{10, 0xC0, 6}, SpriteTypeCase{11, 0, 0},
                      SpriteTypeCase{15, 0, 0}));

TEST_F(Vdp2RegistersTest, SpritePrioritiesFromType0AtTheStartAndFromByteWrites) {
    // SPCTL starts at 0, and writing 0 changes nothing, so type 0's bits must
    // hold from the start: bits 15-14 of the sprite colour.
    vdp2->WriteRegisterWord(SPCTL, 0);
    vdp2->WriteRegisterWord(PRISB, 0x0005);  // priority number 2
    EXPECT_EQ(vdp2->SpritePriority(0x8000), 5);
    EXPECT_EQ(vdp2->SpritePriority(0x3FFF), 0);
    vdp2->WriteRegisterWord(PRISC, 0x0503);
    vdp2->WriteRegisterByte(PRISC, 0x06);  // high byte: odd entry
    vdp2->WriteRegisterByte(PRISD + 1, 0x0F);  // low byte: even entry, 3 bits
    EXPECT_EQ((std::vector<int>(vdp2->spritePriorities + 4, vdp2->spritePriorities + 8)), (std::vector<int>{3, 6, 7, 0}));
}

TEST_F(Vdp2RegistersTest, StatusRegistersFollowTheBlankingEvents) {
    vdp2->WriteRegisterWord(TVSTAT, 0xFFF0);  // stored bits do not survive a read
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x0008);  // display off reads as V-blank
    vdp2->WriteRegisterWord(TVMD, 0x8000);
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x0000);
    vdp2->OnVblankIn();
    vdp2->OnHblankIn();
    EXPECT_EQ(vdp2->ReadRegisterByte(TVSTAT + 1), 0x0C);
    EXPECT_EQ(vdp2->ReadRegisterWord(HCNT), 50);  // HCNT advances by 50 a read
    EXPECT_EQ(vdp2->ReadRegisterByte(HCNT + 1), 100);
    vdp2->ReadRegisterWord(BGON);  // reading another register leaves HCNT alone
    for (int line = 0; line < 3; ++line) vdp2->OnHblankOut();  // leaves H-blank, toggles the field
    EXPECT_EQ(vdp2->ReadRegisterWord(TVSTAT), 0x000A);
    EXPECT_EQ(vdp2->ReadRegisterLong(HCNT), 50u << 16 | 3u) << "HCNT restarts at H-blank-out, VCNT counts lines";
    for (int i = 0; i < 1309; ++i) vdp2->ReadRegisterWord(HCNT);  // up to 65,500
    EXPECT_EQ(vdp2->ReadRegisterWord(HCNT), 14);                   // low 16 bits of 65,550
    vdp2->OnVblankOut();
    vdp2->OnVblankOut();
    EXPECT_EQ(vdp2->frameCounter, 2u);
    EXPECT_EQ(vdp2->ReadRegisterLong(TVSTAT) >> 16, 0x0002u) << "V-blank-out does not touch the field";
    EXPECT_EQ(vdp2->ReadRegisterWord(VCNT), 0);
}

TEST_F(Vdp2RegistersTest, ResetClearsStateButKeepsFrameCounterAndModeDecoding) {
    vdp2->WriteRegisterWord(TVMD, 0x00D0);
    vdp2->WriteRegisterWord(RAMCTL, 0x1000);
    vdp2->WriteRegisterWord(SPCTL, 0x0005);
    vdp2->WriteRegisterWord(PRISA, 0x0707);
    vdp2->WriteVramWord(0x100, 0xBEEF);
    vdp2->WriteCramWord(0x020, 0x7FFF);
    vdp2->OnVblankOut();  // stamps the CRAM change, makes buffer B active
    vdp2->OnHblankOut();  // line 1, odd field
    vdp2->OnVblankIn();
    vdp2->OnHblankIn();
    vdp2->ReadRegisterWord(HCNT);
    vdp2->cells[3] = new CVdp2CharacterPattern(96, 128);
    renderer->TakeRenderingResolutionChange();

    vdp2->ResetVdp2();
    EXPECT_FALSE(vdp2->oddField || vdp2->vblank || vdp2->hblank || vdp2->interlaced || vdp2->verticalDoubled);
    EXPECT_EQ(vdp2->hCounter | vdp2->lineCounter | vdp2->activeCramBuffer | vdp2->paletteAllStamp, 0u);
    EXPECT_EQ(vdp2->palette16Stamps[1], 0u);
    EXPECT_EQ(vdp2->screenHRes * 1000 + vdp2->screenVRes, 320240);
    EXPECT_EQ(vdp2->horizontalScale * 10 + vdp2->verticalScale, 11);
    for (uint32_t r = 0; r < 0x200; r += 2) EXPECT_EQ(vdp2->Register(r), 0) << std::hex << r;
    EXPECT_EQ(vdp2->ReadVramWord(0x100), 0);
    EXPECT_EQ(vdp2->cram, vdp2->CramBuffer(0));
    EXPECT_EQ(vdp2->CramBuffer(0)[0x10] | vdp2->CramBuffer(1)[0x10], 0);
    EXPECT_EQ(vdp2->spritePriorities[0], 0);
    EXPECT_EQ(vdp2->cells[3], nullptr);
    // The renderer keeps its size until TVMD is written again.
    EXPECT_FALSE(renderer->TakeRenderingResolutionChange());
    EXPECT_EQ(renderer->GetSaturnVRes(), 480);

    EXPECT_EQ(vdp2->frameCounter, 1u);
    EXPECT_EQ(vdp2->cramMode, 1);
    EXPECT_EQ(vdp2->spriteType, 5u);
    EXPECT_EQ(vdp2->spritePriorityMask, 0x7000);
    EXPECT_EQ(vdp2->spritePriorityShift, 12u);
}

}  // namespace
}  // namespace vdpgl
