// CVdp1::FrameControl: what VDP1 decides at each V-blank out (cache clear,
// coordinate scale, draw, swap, erase), and the part-kind switches.
#include <gtest/gtest.h>

#include <cstdint>

#include "vdp_test.h"

namespace vdpgl {

// Lets failures print the actions as {draw, swap, erase}.
static void PrintTo(const Vdp1FrameActions& a, std::ostream* os) {
    *os << "{draw=" << a.draw << ", swap=" << a.swap << ", erase=" << a.erase << "}";
}

namespace {

using namespace vdp1reg;

constexpr Vdp1FrameActions kNothing{false, false, false}, kDraw{true, false, false}, kSwap{false, true, false},
    kErase{false, false, true}, kDrawSwap{true, true, false}, kSwapErase{false, true, true},
    kDrawSwapErase{true, true, true};

class Vdp1FrameControlTest : public test::VdpTest {
protected:
    // Enters a pattern at table entries [first, first + count).
    CVdp1CharacterPattern* AddPattern(uint32_t first, uint32_t count) {
        auto* p = new CVdp1CharacterPattern;
        for (uint32_t i = first; i < first + count; ++i) vdp1->characterPatterns[i] = p;
        return p;
    }
};

TEST_F(Vdp1FrameControlTest, RequestedCacheClearRunsAtTheNextFrameOnly) {
    const int before = CVdp1CharacterPattern::PatternCount();
    AddPattern(0x10, 4);
    AddPattern(0x200, 1);
    vdp1->FrameControl();  // construction resets VDP1, which asks for a clear
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), before);
    EXPECT_EQ(vdp1->GetPattern(0x80), nullptr);

    CVdp1CharacterPattern* kept = AddPattern(0x10, 4);
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->GetPattern(0x98), kept);
    vdp1->RequestCacheClear();
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->GetPattern(0x98), nullptr);
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), before);
}

TEST_F(Vdp1FrameControlTest, Vdp2DoublingScalesVdp1UnlessVdp1AlreadyDoubles) {
    struct Case {
        bool interlaced, verticalDoubled;
        uint16_t tvmr, fbcr;
        int32_t xScale, yScale;
    };
    const Case cases[] = {
        {false, false, 0x0, 0x0, 1, 1}, {true, false, 0x0, 0x0, 2, 2}, {false, true, 0x0, 0x0, 2, 2},
        {true, true, 0x2, 0x0, 2, 2},
        {true, false, 0x0, 0x8, 1, 2},  // VDP1 double interlace: its own yScale
        {false, true, 0x1, 0x0, 1, 2},  // VDP1 high resolution, single interlace
        {true, false, 0x1, 0x8, 1, 1},  // high resolution and double interlace
        {false, false, 0x0, 0xC, 1, 2}, {false, false, 0x1, 0x0, 1, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "interlaced=" << c.interlaced << " verticalDoubled=" << c.verticalDoubled
                                        << std::hex << " TVMR=0x" << c.tvmr << " FBCR=0x" << c.fbcr);
        vdp1->Reset();
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        vdp2->interlaced = c.interlaced;
        vdp2->verticalDoubled = c.verticalDoubled;
        vdp1->FrameControl();
        EXPECT_EQ(vdp1->xScale, c.xScale);
        EXPECT_EQ(vdp1->yScale, c.yScale);
    }
}

TEST_F(Vdp1FrameControlTest, ScalesReturnToVdp1sOwnWhenVdp2StopsDoubling) {
    vdp2->interlaced = true;
    vdp1->FrameControl();
    ASSERT_EQ(vdp1->yScale, 2);
    vdp2->interlaced = false;
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->xScale, 1);
    EXPECT_EQ(vdp1->yScale, 1) << "back to what single interlace gave";

    vdp1->WriteRegister(FBCR, 0x8);  // VDP1's own double interlace survives VDP2's changes
    vdp2->verticalDoubled = true;
    vdp1->FrameControl();
    vdp2->verticalDoubled = false;
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->yScale, 2);
}

TEST_F(Vdp1FrameControlTest, ModesGiveTheirActionsFrameAfterFrame) {
    // Registers written once, then three V-blank outs without further writes.
    struct Case {
        const char* name;
        uint16_t tvmr, ptmr, fbcr;
        Vdp1FrameActions first, later;
    };
    const Case cases[] = {
        {"one cycle, automatic drawing", 0x0, 2, 0x0, kDrawSwapErase, kDrawSwapErase},
        {"one cycle, idle", 0x0, 0, 0x0, kSwapErase, kSwapErase},
        {"one cycle, draw once", 0x0, 1, 0x0, kDrawSwapErase, kSwapErase},
        {"one cycle, invalid drawing mode", 0x0, 3, 0x0, kSwapErase, kSwapErase},
        {"manual change, automatic drawing", 0x0, 2, 0x3, kDrawSwap, kNothing},
        {"manual change, idle", 0x0, 0, 0x3, kSwap, kNothing},
        {"manual change, draw once", 0x0, 1, 0x3, kDrawSwap, kNothing},
        {"manual erase, automatic drawing", 0x0, 2, 0x2, kErase, kNothing},
        {"manual erase and change, automatic drawing", 0x8, 2, 0x3, kDrawSwapErase, kNothing},
        {"manual erase and change, draw once", 0x8, 1, 0x3, kDrawSwapErase, kNothing},
        {"manual erase and change, invalid drawing mode", 0x8, 3, 0x3, kSwapErase, kNothing},
        {"only PTMR's low two bits count", 0x8, 6, 0x3, kDrawSwapErase, kNothing},
        {"change mode 1 is invalid", 0x0, 2, 0x1, kNothing, kNothing},
        {"VBE with change mode 0 is invalid", 0x8, 2, 0x0, kNothing, kNothing},
        {"VBE with change mode 1 is invalid", 0x8, 2, 0x1, kNothing, kNothing},
        {"VBE with manual erase is invalid", 0x8, 2, 0x2, kNothing, kNothing},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(PTMR, 0);
        vdp1->WriteRegister(FBCR, 0x1);
        vdp1->Reset();
        vdp1->WriteRegister(PTMR, c.ptmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        EXPECT_EQ(vdp1->FrameControl(), c.first);
        EXPECT_EQ(vdp1->FrameControl(), c.later);
        EXPECT_EQ(vdp1->FrameControl(), c.later);
    }
}

TEST_F(Vdp1FrameControlTest, EachPtmrOneWriteDrawsExactlyOnceAndResetDropsIt) {
    vdp1->WriteRegister(TVMR, TVMR_VBE);
    vdp1->WriteRegister(FBCR, 0x0);  // invalid with VBE: no change, no erase
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
    vdp1->WriteRegister(PTMR, 0x1);
    EXPECT_EQ(vdp1->FrameControl(), kDraw);
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
    vdp1->WriteRegister(PTMR, 0x1);  // two writes within one frame still give one draw
    vdp1->WriteRegister(PTMR, 0x1);
    EXPECT_EQ(vdp1->FrameControl(), kDraw);
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
    vdp1->WriteRegister(PTMR, 0x1);
    vdp1->WriteRegister(FBCR, 0x3);
    vdp1->Reset();
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
}

TEST_F(Vdp1FrameControlTest, ManualChangeDrawsWhenPtmrIsAutomaticAtEitherTime) {
    // PTMR automatic when FBCR is written: the draw is requested by the
    // write and kept even if PTMR changes before the V-blank out.
    vdp1->WriteRegister(PTMR, 0x2);
    vdp1->WriteRegister(FBCR, 0x3);
    vdp1->WriteRegister(PTMR, 0x0);
    EXPECT_EQ(vdp1->FrameControl(), kDrawSwap);
    // PTMR made automatic after the FBCR write: the V-blank out draws
    // because a change is due.
    vdp1->WriteRegister(FBCR, 0x3);
    vdp1->WriteRegister(PTMR, 0x2);
    EXPECT_EQ(vdp1->FrameControl(), kDrawSwap);
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
}

TEST_F(Vdp1FrameControlTest, OneCycleModeDependsOnTheStoredRegistersAtVblankOut) {
    // FBCR = 0 written while VBE was set is invalid, but clearing VBE
    // afterwards makes the stored registers select one-cycle mode.
    vdp1->WriteRegister(TVMR, TVMR_VBE);
    vdp1->WriteRegister(FBCR, 0x0);
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
    vdp1->WriteRegister(TVMR, 0x0);
    EXPECT_EQ(vdp1->FrameControl(), kSwapErase);
    vdp1->WriteRegister(FBCR, 0x8);  // the interlace bits do not leave one-cycle mode
    EXPECT_EQ(vdp1->FrameControl(), kSwapErase);
    vdp1->WriteRegister(TVMR, TVMR_VBE);
    EXPECT_EQ(vdp1->FrameControl(), kNothing);
}

TEST_F(Vdp1FrameControlTest, PartKindSwitchesOutOfRangeTouchNone) {
    vdp1->SetPartEnabled(-1, false);
    vdp1->SetPartEnabled(kPartKindCount, false);
    for (int kind = 0; kind < kPartKindCount; ++kind) EXPECT_TRUE(vdp1->IsPartEnabled(kind)) << kind;
    EXPECT_FALSE(vdp1->IsPartEnabled(-1));
    EXPECT_FALSE(vdp1->IsPartEnabled(kPartKindCount));
}

}  // namespace
}  // namespace vdpgl
