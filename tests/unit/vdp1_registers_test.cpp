// CVdp1's register file: what each write decodes into VDP1's state, what is
// stored, what reads answer, and what Reset leaves behind.
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <tuple>
#include <utility>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;

class Vdp1RegistersTest : public test::VdpTest {
protected:
    void Write(std::initializer_list<std::pair<uint32_t, uint16_t>> writes) {
        for (auto [address, value] : writes) vdp1->WriteRegister(address, value);
    }
    // The decoded screen mode as digits: high resolution, 8 bits a pixel, double interlace, yScale.
    int Mode() const {
        return vdp1->highResolution * 1000 + static_cast<int>(vdp1->eightBitsPerPixel) * 100 +
               vdp1->doubleInterlace * 10 + vdp1->yScale;
    }
};

TEST_F(Vdp1RegistersTest, TvmrAndFbcrDecodeResolutionPixelDepthAndInterlace) {
    // Each row writes TVMR `from`, TVMR, FBCR, then the invalid interlace mode 4, which changes nothing. TVMR
    // 5-7 are invalid too, HDTV (4) keeps the resolution, VBE (8) takes no part. Double interlace: y x 2 or / 2.
    struct Case { uint16_t from, tvmr, fbcr; int mode; };
    const Case cases[] = {
        {1, 0x0, 0x0, 1},   {1, 0x1, 0x0, 1102}, {1, 0x2, 0x0, 1},    {1, 0x3, 0x0, 101},  {1, 0x4, 0x0, 1002},
        {0, 0x4, 0x0, 1},   {1, 0x5, 0x0, 1102}, {1, 0x6, 0x0, 1102}, {1, 0x7, 0x0, 1102}, {1, 0x8, 0x0, 1},
        {1, 0xB, 0x0, 101}, {1, 0x0, 0x8, 12},   {1, 0x0, 0xC, 12},   {1, 0x1, 0x8, 1111}, {1, 0x1, 0xC, 1111},
    };
    for (const Case& c : cases) {
        Write({{TVMR, c.from}, {TVMR, c.tvmr}, {FBCR, c.fbcr}, {FBCR, 0x4}});
        EXPECT_EQ(Mode(), c.mode) << "row " << &c - cases;
    }
}

TEST_F(Vdp1RegistersTest, SlotsUpTo0x17KeepTheLastValueAndReadsAnswerTheNamedOnes) {
    // Odd addresses are stored in slot a / 2 undecoded (as high resolution, a draw, double interlace here)
    // and read as 0, as does 0x0E; write-only and read-only registers alike answer the last value written;
    // nothing is stored from 0x18 on. Addresses are masked with 0x1F.
    Write({{0x01, 0x0001}, {0x05, 0x0001}, {0x03, 0x0008}});
    EXPECT_EQ(vdp1->Register(TVMR), 0x0001);
    EXPECT_FALSE(vdp1->highResolution || vdp1->drawRequested || vdp1->doubleInterlace);
    for (uint32_t a = 1; a < 0x18; a += 2) vdp1->WriteRegister(a, 0xFFFF);
    for (uint32_t a = 0; a < 0x18; a += 2) vdp1->WriteRegister(0x20 + a, static_cast<uint16_t>(0x100 + a));
    for (uint32_t a = 0x18; a < 0x20; ++a) vdp1->WriteRegister(a, 0xFFFF);
    for (uint32_t a = 0; a < 0x20; ++a) {
        const bool named = a % 2 == 0 && a < 0x18 && a != 0x0E;  // MODR reads as TVMR, FBCR and PTMR give
        EXPECT_EQ(vdp1->ReadRegister(0xFFE0 + a), a == MODR ? 0x1010 : named ? 0x100 + a : 0) << std::hex << a;
    }
    EXPECT_EQ(vdp1->Register(0x0E), 0x10E);
    EXPECT_EQ(vdp1->ReadVramLong(0) | vdp1->ReadVramLong(4), 0u) << "VRAM follows the register file: nothing spilled";
}

TEST_F(Vdp1RegistersTest, ModrIsRecomputedFromTvmrFbcrAndPtmrOnEveryRead) {
    struct Case { uint16_t tvmr, fbcr, ptmr, modr; };
    const Case cases[] = {{0x0000, 0x0000, 0x0, 0x1000}, {0x0009, 0x000E, 0x2, 0x1179}, {0x00FF, 0x001F, 0x3, 0x11FF},
                          {0xFFF0, 0xFFE1, 0x1, 0x1000}, {0x0004, 0x0010, 0x6, 0x1184}};
    for (const Case& c : cases) {
        Write({{TVMR, c.tvmr}, {FBCR, c.fbcr}, {PTMR, c.ptmr}, {MODR, 0xBEEF}});  // MODR's own value is not read
        EXPECT_EQ(vdp1->ReadRegister(MODR), c.modr) << "row " << &c - cases;
    }
}

TEST_F(Vdp1RegistersTest, EraseWindowInUnitsOfThePixelDepthAndResetClearsTheStateButKeepsRegisters) {
    const auto window = [this] {
        return std::tuple(vdp1->eraseUpperLeftX, vdp1->eraseUpperLeftY, vdp1->eraseLowerRightX, vdp1->eraseLowerRightY);
    };
    Write({{TVMR, 0x0}, {EWLR, 0xFFFF}, {EWRR, 0x0000}});
    EXPECT_EQ(window(), std::tuple(1016, 511, -1, 0)) << "x in units of 8 pixels; the lower right one less";
    Write({{TVMR, 0x9}, {EWLR, 0x51DF}, {EWRR, 0x50EF}, {PTMR, 0x1}});
    EXPECT_EQ(window(), std::tuple(640, 479, 639, 239)) << "units of 16 with 8 bits a pixel";
    vdp1->SetPartEnabled(kPolygon, false);
    vdp1->FrameControl();  // consumes the cache clear asked at construction
    Write({{FBCR, 0x3 | 0x8}});
    vdp1->localX = 12, vdp1->localY = -3, vdp1->xScale = vdp1->yScale = 3;
    vdp1->Reset();
    EXPECT_EQ(Mode(), 1);
    EXPECT_FALSE(vdp1->frameChangeRequested || vdp1->eraseRequested || vdp1->drawRequested);
    EXPECT_EQ(window(), std::tuple(0, 0, 0, 0));
    EXPECT_EQ(vdp1->localX | vdp1->localY | (vdp1->xScale - 1), 0);
    EXPECT_TRUE(vdp1->clearCacheRequested);
    EXPECT_EQ(vdp1->ReadRegister(FBCR), 0xB);
    EXPECT_FALSE(vdp1->IsPartEnabled(kPolygon));
}

}  // namespace
}  // namespace vdpgl
