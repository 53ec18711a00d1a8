// CVdp1's register file: what each write decodes into VDP1's state, what is
// stored, what reads answer, and what Reset leaves behind.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_registers.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;

class Vdp1RegistersTest : public ::testing::Test {
protected:
    Vdp1RegistersTest() { vdp1->Link(*vdp2); }

    // First, so that the objects below are built (and delete old logs) inside it.
    test::ScopedTempDir tempDir;
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
};

TEST_F(Vdp1RegistersTest, TvmrScreenModeSetsResolutionAndPixelDepth) {
    // Each write starts from high resolution with 8-bit pixels (mode 1), so
    // that a mode leaving a flag unchanged is told apart from one clearing it.
    struct Case { uint16_t tvmr; bool highResolution; uint32_t eightBitsPerPixel; };
    const Case cases[] = {
        {0x0, false, 0}, {0x1, true, 1}, {0x2, false, 0}, {0x3, false, 1},
        {0x4, true, 0},                    // HDTV keeps highResolution
        {0x5, true, 1}, {0x6, true, 1}, {0x7, true, 1},  // invalid: nothing changes
        {0x8, false, 0}, {0xB, false, 1},  // VBE does not take part in the mode
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "TVMR=0x" << std::hex << c.tvmr);
        vdp1->WriteRegister(TVMR, 0x1);
        vdp1->WriteRegister(TVMR, c.tvmr);
        EXPECT_EQ(vdp1->highResolution, c.highResolution);
        EXPECT_EQ(vdp1->eightBitsPerPixel, c.eightBitsPerPixel);
        EXPECT_EQ(vdp1->ReadRegister(TVMR), c.tvmr);
    }
    // From normal resolution, HDTV does not switch high resolution on.
    vdp1->WriteRegister(TVMR, 0x0);
    vdp1->WriteRegister(TVMR, 0x4);
    EXPECT_FALSE(vdp1->highResolution);
}

TEST_F(Vdp1RegistersTest, FbcrChangeModeCountsTheStoredVbeBit) {
    struct Case { uint16_t tvmr; uint16_t ptmr; uint16_t fbcr; bool change, erase, draw; };
    const Case cases[] = {
        {0x0, 2, 0x0, false, false, false},  // one cycle: decided at V-blank out
        {0x0, 2, 0x1, false, false, false},  // invalid
        {0x0, 2, 0x2, false, true, false},   // manual erase
        {0x0, 2, 0x3, true, false, true},    // manual change, automatic drawing
        {0x0, 0, 0x3, true, false, false},   // manual change, idle
        {0x0, 1, 0x3, true, false, false},   // PTMR=1 is not automatic drawing
        {0x8, 2, 0x0, false, false, false},  // invalid with VBE
        {0x8, 2, 0x1, false, false, false},  // invalid with VBE
        {0x8, 2, 0x2, false, false, false},  // invalid with VBE
        {0x8, 2, 0x3, true, true, true},     // manual erase and change
        {0x8, 3, 0x3, true, true, false},    // PTMR=3 is not automatic drawing
        {0x8, 6, 0x3, true, true, true},     // only PTMR's low two bits count
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " PTMR=0x" << c.ptmr
                                        << " FBCR=0x" << c.fbcr);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(PTMR, c.ptmr);
        vdp1->Reset();  // drops the requests; registers are kept
        vdp1->WriteRegister(FBCR, c.fbcr);
        EXPECT_EQ(vdp1->frameChangeRequested, c.change);
        EXPECT_EQ(vdp1->eraseRequested, c.erase);
        EXPECT_EQ(vdp1->drawRequested, c.draw);
        EXPECT_EQ(vdp1->ReadRegister(FBCR), c.fbcr);
    }
}

TEST_F(Vdp1RegistersTest, FbcrInterlaceBitsSetDoubleInterlaceAndYScale) {
    struct Case { uint16_t tvmr; uint16_t fbcr; bool doubleInterlace; int32_t yScale; };
    const Case cases[] = {
        {0x0, 0x0, false, 1}, {0x0, 0x8, true, 2}, {0x0, 0xC, true, 2},
        {0x1, 0x0, false, 2}, {0x1, 0x8, true, 1}, {0x1, 0xC, true, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " FBCR=0x" << c.fbcr);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        EXPECT_EQ(vdp1->doubleInterlace, c.doubleInterlace);
        EXPECT_EQ(vdp1->yScale, c.yScale);
        // The invalid interlace mode leaves both as they are.
        vdp1->WriteRegister(FBCR, 0x4);
        EXPECT_EQ(vdp1->doubleInterlace, c.doubleInterlace);
        EXPECT_EQ(vdp1->yScale, c.yScale);
    }
}

TEST_F(Vdp1RegistersTest, OnlyPtmrOneRequestsADraw) {
    const bool expected[] = {false, true, false, false, false, true};  // PTMR 0..5
    for (uint16_t v = 0; v < 6; ++v) {
        vdp1->Reset();
        vdp1->WriteRegister(PTMR, v);
        EXPECT_EQ(vdp1->drawRequested, expected[v]) << "PTMR=" << v;
        EXPECT_FALSE(vdp1->frameChangeRequested);
        EXPECT_FALSE(vdp1->eraseRequested);
    }
}

TEST_F(Vdp1RegistersTest, EraseWindowCornersCountXInUnitsOfThePixelDepth) {
    struct Case { uint16_t tvmr; uint32_t reg; uint16_t value; int32_t x, y; };
    const Case cases[] = {
        {0x0, EWLR, 0x0000, 0, 0},     {0x0, EWLR, 0x51DF, 320, 479}, {0x1, EWLR, 0x51DF, 640, 479},
        {0x3, EWLR, 0xFFFF, 2032, 511}, {0x2, EWLR, 0xFFFF, 1016, 511},
        {0x0, EWRR, 0x5000, 319, 0},   {0x1, EWRR, 0x5000, 639, 0},   {0x3, EWRR, 0x50EF, 639, 239},
        {0x0, EWRR, 0x0000, -1, 0},    {0x4, EWRR, 0x0201, 7, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "TVMR=0x" << c.tvmr << " reg=0x" << c.reg
                                        << " value=0x" << c.value);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(c.reg, c.value);
        if (c.reg == EWLR) {
            EXPECT_EQ(vdp1->eraseUpperLeftX, c.x);
            EXPECT_EQ(vdp1->eraseUpperLeftY, c.y);
        } else {
            EXPECT_EQ(vdp1->eraseLowerRightX, c.x);
            EXPECT_EQ(vdp1->eraseLowerRightY, c.y);
        }
        EXPECT_EQ(vdp1->ReadRegister(c.reg), c.value);
    }
}

TEST_F(Vdp1RegistersTest, PlainRegistersReadBackTheLastValueWritten) {
    // Write-only EWDR and ENDR and the read-only EDSR, LOPR and COPR are
    // stored all the same; none of them requests anything.
    for (uint32_t a : {EWDR, ENDR, EDSR, LOPR, COPR}) {
        for (uint16_t v : {uint16_t{0x0000}, uint16_t{0xA5C3}, uint16_t{0xFFFF}}) {
            vdp1->WriteRegister(a, v);
            EXPECT_EQ(vdp1->ReadRegister(a), v) << "address 0x" << std::hex << a;
        }
    }
    EXPECT_FALSE(vdp1->drawRequested || vdp1->frameChangeRequested || vdp1->eraseRequested);
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

TEST_F(Vdp1RegistersTest, AddressesAreMaskedWith0x1F) {
    vdp1->WriteRegister(0x20 + TVMR, 0x1);  // TVMR, decoded
    EXPECT_TRUE(vdp1->highResolution);
    vdp1->WriteRegister(0xFFE0 + PTMR, 0x1);
    EXPECT_TRUE(vdp1->drawRequested);
    EXPECT_EQ(vdp1->ReadRegister(0x40 + TVMR), 0x1);
    EXPECT_EQ(vdp1->ReadRegister(0x20 + MODR), 0x1001);
}

TEST_F(Vdp1RegistersTest, UnknownAddressesAreNotDecodedAndReadAsZero) {
    // 0x0E and odd addresses up to 0x17 are stored in slot a / 2 without decoding.
    vdp1->WriteRegister(0x0E, 0x1234);
    EXPECT_EQ(vdp1->Register(0x0E), 0x1234);
    EXPECT_EQ(vdp1->ReadRegister(0x0E), 0);

    vdp1->WriteRegister(0x01, 0x0001);  // would be high resolution as TVMR
    EXPECT_FALSE(vdp1->highResolution);
    EXPECT_EQ(vdp1->Register(TVMR), 0x0001);
    vdp1->WriteRegister(0x05, 0x0001);  // would request a draw as PTMR
    EXPECT_FALSE(vdp1->drawRequested);
    vdp1->WriteRegister(0x03, 0x0008);  // would be double interlace as FBCR
    EXPECT_FALSE(vdp1->doubleInterlace);
    for (uint32_t a = 0x01; a < 0x20; a += 2) EXPECT_EQ(vdp1->ReadRegister(a), 0) << "address " << a;
}

TEST_F(Vdp1RegistersTest, WritesBeyond0x17AreNotStored) {
    for (uint32_t a = 0; a < 0x18; a += 2) vdp1->WriteRegister(a, static_cast<uint16_t>(0x100 + a));
    uint16_t before[kCount];
    for (uint32_t slot = 0; slot < kCount; ++slot) before[slot] = vdp1->registers[slot];

    for (uint32_t a = 0x18; a < 0x20; ++a) vdp1->WriteRegister(a, 0xFFFF);
    for (uint32_t slot = 0; slot < kCount; ++slot) EXPECT_EQ(vdp1->registers[slot], before[slot]) << "slot " << slot;
    for (uint32_t a = 0x18; a < 0x20; ++a) EXPECT_EQ(vdp1->ReadRegister(a), 0);
    // VRAM follows the register file: nothing spilled into it.
    for (uint32_t a = 0; a < 8; ++a) EXPECT_EQ(vdp1->ReadVramByte(a), 0);
}

TEST_F(Vdp1RegistersTest, ResetClearsTheStateButKeepsRegistersVramAndSwitches) {
    vdp1->WriteRegister(TVMR, 0x9);
    vdp1->WriteRegister(EWLR, 0x51DF);
    vdp1->WriteRegister(EWRR, 0x50EF);
    vdp1->WriteRegister(FBCR, 0x3 | 0x8);
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

    EXPECT_EQ(vdp1->eightBitsPerPixel, 0u);
    EXPECT_FALSE(vdp1->highResolution);
    EXPECT_FALSE(vdp1->doubleInterlace);
    EXPECT_FALSE(vdp1->frameChangeRequested);
    EXPECT_FALSE(vdp1->eraseRequested);
    EXPECT_FALSE(vdp1->drawRequested);
    EXPECT_EQ(vdp1->eraseUpperLeftX, 0);
    EXPECT_EQ(vdp1->eraseUpperLeftY, 0);
    EXPECT_EQ(vdp1->eraseLowerRightX, 0);
    EXPECT_EQ(vdp1->eraseLowerRightY, 0);
    EXPECT_EQ(vdp1->localX, 0);
    EXPECT_EQ(vdp1->localY, 0);
    EXPECT_EQ(vdp1->xScale, 1);
    EXPECT_EQ(vdp1->yScale, 1);
    EXPECT_TRUE(vdp1->clearCacheRequested);

    EXPECT_EQ(vdp1->ReadRegister(TVMR), 0x9);
    EXPECT_EQ(vdp1->ReadRegister(EWLR), 0x51DF);
    EXPECT_EQ(vdp1->ReadRegister(FBCR), 0xB);
    EXPECT_EQ(vdp1->ReadVramWord(0x100), 0xCAFE);
    EXPECT_FALSE(vdp1->IsPartEnabled(kPolygon));
    EXPECT_TRUE(vdp1->IsPartEnabled(kLine));
}

TEST_F(Vdp1RegistersTest, ConstructionDeletesItsStaleLogOnly) {
    vdp1.reset();
    std::ofstream("vdp1.log") << "old run";
    std::ofstream("common.log") << "shared";
    vdp1 = std::make_unique<CVdp1>(*renderer);
    EXPECT_FALSE(std::filesystem::exists("vdp1.log"));
    EXPECT_TRUE(std::filesystem::exists("common.log"));
    EXPECT_TRUE(vdp1->clearCacheRequested);
}

}  // namespace
}  // namespace vdpgl
