// CVdp1's register file: what each write decodes into VDP1's state, what is
// stored, what reads answer, and what Reset leaves behind. What the requests
// lead to at V-blank-out is in vdp1_frame_control_test.
#include <gtest/gtest.h>

#include <cstdint>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;
using Vdp1RegistersTest = test::VdpTest;

TEST_F(Vdp1RegistersTest, TvmrAndFbcrDecodeResolutionPixelDepthAndInterlace) {
    // Each write starts from high resolution with 8-bit pixels (mode 1), so
    // that a mode leaving a flag unchanged is told apart from one clearing it.
    struct Mode { uint16_t tvmr; bool highResolution; uint32_t eightBitsPerPixel; };
    const Mode modes[] = {
        {0x0, false, 0}, {0x1, true, 1}, {0x2, false, 0}, {0x3, false, 1},
        {0x4, true, 0},                                  // HDTV keeps highResolution
        {0x5, true, 1},  {0x6, true, 1}, {0x7, true, 1},  // invalid: nothing changes
        {0x8, false, 0}, {0xB, false, 1},                 // VBE does not take part in the mode
    };
    for (const Mode& c : modes) {
        SCOPED_TRACE(testing::Message() << "TVMR=0x" << std::hex << c.tvmr);
        vdp1->WriteRegister(TVMR, 0x1);
        vdp1->WriteRegister(TVMR, c.tvmr);
        EXPECT_EQ(vdp1->highResolution, c.highResolution);
        EXPECT_EQ(vdp1->eightBitsPerPixel, c.eightBitsPerPixel);
    }
    vdp1->WriteRegister(TVMR, 0x0);
    vdp1->WriteRegister(TVMR, 0x4);
    EXPECT_FALSE(vdp1->highResolution) << "from normal resolution, HDTV does not switch high resolution on";

    // Double interlace halves the lines of high resolution and doubles the others.
    struct Interlace { uint16_t tvmr, fbcr; bool doubleInterlace; int32_t yScale; };
    const Interlace interlaces[] = {
        {0x0, 0x0, false, 1}, {0x0, 0x8, true, 2}, {0x0, 0xC, true, 2},
        {0x1, 0x0, false, 2}, {0x1, 0x8, true, 1}, {0x1, 0xC, true, 1},
    };
    for (const Interlace& c : interlaces) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " FBCR=0x" << c.fbcr);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        vdp1->WriteRegister(FBCR, 0x4);  // the invalid interlace mode leaves both as they are
        EXPECT_EQ(vdp1->doubleInterlace, c.doubleInterlace);
        EXPECT_EQ(vdp1->yScale, c.yScale);
    }
}

TEST_F(Vdp1RegistersTest, EraseWindowCornersCountXInUnitsOfThePixelDepth) {
    struct Case { uint16_t tvmr; uint32_t reg; uint16_t value; int32_t x, y; };
    const Case cases[] = {
        {0x0, EWLR, 0x0000, 0, 0},      {0x0, EWLR, 0x51DF, 320, 479}, {0x1, EWLR, 0x51DF, 640, 479},
        {0x3, EWLR, 0xFFFF, 2032, 511}, {0x2, EWLR, 0xFFFF, 1016, 511},
        {0x0, EWRR, 0x5000, 319, 0},    {0x1, EWRR, 0x5000, 639, 0},   {0x3, EWRR, 0x50EF, 639, 239},
        {0x0, EWRR, 0x0000, -1, 0},     {0x4, EWRR, 0x0201, 7, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " reg=0x" << c.reg
                                        << " value=0x" << c.value);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(c.reg, c.value);
        const bool upperLeft = c.reg == EWLR;
        EXPECT_EQ(upperLeft ? vdp1->eraseUpperLeftX : vdp1->eraseLowerRightX, c.x);
        EXPECT_EQ(upperLeft ? vdp1->eraseUpperLeftY : vdp1->eraseLowerRightY, c.y);
    }
}

TEST_F(Vdp1RegistersTest, SlotsUpTo0x17KeepTheLastValueAndReadsAnswerTheNamedOnes) {
    // Write-only and read-only registers alike answer the last value written;
    // 0x0E and odd addresses are stored in slot a / 2 without decoding and read
    // as 0; nothing is stored from 0x18 on. Addresses are masked with 0x1F.
    for (uint32_t a = 1; a < 0x18; a += 2) vdp1->WriteRegister(a, 0xFFFF);
    for (uint32_t a = 0; a < 0x18; a += 2) vdp1->WriteRegister(0x20 + a, static_cast<uint16_t>(0x100 + a));
    for (uint32_t a = 0x18; a < 0x20; ++a) vdp1->WriteRegister(a, 0xFFFF);
    for (uint32_t a = 0; a < 0x20; ++a) {
        if (a == MODR) continue;
        const bool named = a % 2 == 0 && a < 0x18 && a != 0x0E;
        EXPECT_EQ(vdp1->ReadRegister(0xFFE0 + a), named ? 0x100 + a : 0) << "address 0x" << std::hex << a;
    }
    EXPECT_EQ(vdp1->Register(0x0E), 0x10E);
    EXPECT_EQ(vdp1->ReadVramLong(0) | vdp1->ReadVramLong(4), 0u) << "VRAM follows the register file: nothing spilled";
    // Odd addresses are not decoded as the register below them.
    vdp1->Reset();
    vdp1->WriteRegister(TVMR, 0);
    vdp1->WriteRegister(0x01, 0x0001);  // would be high resolution as TVMR
    EXPECT_EQ(vdp1->Register(TVMR), 0x0001);
    vdp1->WriteRegister(0x05, 0x0001);  // would request a draw as PTMR
    vdp1->WriteRegister(0x03, 0x0008);  // would be double interlace as FBCR
    EXPECT_FALSE(vdp1->highResolution || vdp1->drawRequested || vdp1->doubleInterlace);
    // PTMR requests a draw for 1 and for 5: only its low two bits count.
    for (uint16_t v : {1, 5}) {
        vdp1->Reset();
        vdp1->WriteRegister(0x24, v);
        EXPECT_TRUE(vdp1->drawRequested) << v;
    }
}

TEST_F(Vdp1RegistersTest, ModrIsRecomputedFromTvmrFbcrAndPtmrOnEveryRead) {
    struct Case { uint16_t tvmr, fbcr, ptmr, modr; };
    const Case cases[] = {
        {0x0000, 0x0000, 0x0, 0x1000}, {0x0009, 0x000E, 0x2, 0x1179}, {0x00FF, 0x001F, 0x3, 0x11FF},
        {0xFFF0, 0xFFE1, 0x1, 0x1000}, {0x0004, 0x0010, 0x6, 0x1184},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " FBCR=0x" << c.fbcr
                                        << " PTMR=0x" << c.ptmr);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        vdp1->WriteRegister(PTMR, c.ptmr);
        vdp1->WriteRegister(MODR, 0xBEEF);  // stored, then overwritten by the read
        EXPECT_EQ(vdp1->Register(MODR), 0xBEEF);
        EXPECT_EQ(vdp1->ReadRegister(MODR), c.modr);
        EXPECT_EQ(vdp1->Register(MODR), c.modr);
    }
}

TEST_F(Vdp1RegistersTest, ResetClearsTheStateButKeepsRegistersVramAndSwitches) {
    vdp1->WriteRegister(TVMR, 0x9);
    vdp1->WriteRegister(EWLR, 0x51DF);
    vdp1->WriteRegister(EWRR, 0x50EF);
    vdp1->WriteRegister(PTMR, 0x1);
    vdp1->WriteVramWord(0x100, 0xCAFE);
    vdp1->SetPartEnabled(kPolygon, false);
    vdp1->FrameControl();  // consumes the cache clear asked at construction
    ASSERT_FALSE(vdp1->clearCacheRequested);
    vdp1->WriteRegister(FBCR, 0x3 | 0x8);
    vdp1->localX = 12;
    vdp1->localY = -3;
    vdp1->xScale = 2;
    vdp1->yScale = 3;

    vdp1->Reset();
    EXPECT_FALSE(vdp1->eightBitsPerPixel || vdp1->highResolution || vdp1->doubleInterlace ||
                 vdp1->frameChangeRequested || vdp1->eraseRequested || vdp1->drawRequested);
    EXPECT_EQ(vdp1->eraseUpperLeftX | vdp1->eraseUpperLeftY | vdp1->eraseLowerRightX | vdp1->eraseLowerRightY, 0);
    EXPECT_EQ(vdp1->localX | vdp1->localY, 0);
    EXPECT_EQ(vdp1->xScale, 1);
    EXPECT_EQ(vdp1->yScale, 1);
    EXPECT_TRUE(vdp1->clearCacheRequested);
    EXPECT_EQ(vdp1->ReadRegister(TVMR), 0x9);
    EXPECT_EQ(vdp1->ReadRegister(FBCR), 0xB);
    EXPECT_EQ(vdp1->ReadVramWord(0x100), 0xCAFE);
    EXPECT_FALSE(vdp1->IsPartEnabled(kPolygon));
}

}  // namespace
}  // namespace vdpgl
