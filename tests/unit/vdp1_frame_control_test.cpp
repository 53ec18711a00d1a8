// CVdp1::FrameControl: what VDP1 decides at each V-blank out (cache clear,
// coordinate scale, draw, swap, erase), and the part-kind switches.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;

// The actions of a V-blank out as bits (draw 4, swap 2, erase 1): failures print a number.
constexpr int D = 4, S = 2, E = 1;

class Vdp1FrameControlTest : public test::VdpTest {
protected:
    int Actions() {
        const Vdp1FrameActions a = vdp1->FrameControl();
        return a == Vdp1FrameActions{} ? 0 : (a.draw ? D : 0) | (a.swap ? S : 0) | (a.erase ? E : 0);
    }
    // Enters a pattern at table entries [first, first + count).
    CVdp1CharacterPattern* AddPattern(uint32_t first, uint32_t count) {
        auto* p = new CVdp1CharacterPattern;
        return std::fill_n(&vdp1->characterPatterns[first], count, p), p;
    }
};

TEST_F(Vdp1FrameControlTest, RequestedCacheClearRunsAtTheNextFrameOnly) {
    const int before = CVdp1CharacterPattern::PatternCount();
    vdp1->FrameControl();  // construction resets VDP1, which asks for a clear
    CVdp1CharacterPattern* kept = AddPattern(0x10, 4);
    AddPattern(0x200, 1);
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->GetPattern(0x98), kept);
    vdp1->RequestCacheClear();
    vdp1->FrameControl();
    EXPECT_EQ(vdp1->GetPattern(0x98), nullptr);
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), before) << "each pattern deleted once";
}

TEST_F(Vdp1FrameControlTest, Vdp2DoublingScalesVdp1UnlessVdp1AlreadyDoublesAndScalesReturnWhenItStops) {
    // TVMR 1: high resolution; FBCR 8, 0xC: double interlace; ownY: VDP1's own yScale, once VDP2 stops.
    struct Case { bool interlaced, verticalDoubled; uint16_t tvmr, fbcr; int32_t xScale, yScale, ownY; };
    const Case cases[] = {
        {false, false, 0x0, 0x0, 1, 1, 1}, {true, false, 0x0, 0x0, 2, 2, 1},  {false, true, 0x0, 0x0, 2, 2, 1},
        {true, true, 0x2, 0x0, 2, 2, 1},   {true, false, 0x0, 0x8, 1, 2, 2},  {false, true, 0x1, 0x0, 1, 2, 2},
        {true, false, 0x1, 0x8, 1, 1, 1},  {false, false, 0x0, 0xC, 1, 2, 2}, {false, false, 0x1, 0x0, 1, 2, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "row " << &c - cases);
        vdp1->WriteRegister(TVMR, c.tvmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        vdp2->interlaced = c.interlaced, vdp2->verticalDoubled = c.verticalDoubled;
        vdp1->FrameControl();
        EXPECT_EQ(vdp1->xScale * 10 + vdp1->yScale, c.xScale * 10 + c.yScale) << "x scale, y scale";
        vdp2->interlaced = vdp2->verticalDoubled = false;
        vdp1->FrameControl();
        EXPECT_EQ(vdp1->xScale * 10 + vdp1->yScale, 10 + c.ownY) << "x scale, y scale";
    }
}

TEST_F(Vdp1FrameControlTest, ModesGiveTheirActionsFrameAfterFrame) {
    // Registers written once, then three V-blank outs. FBCR change modes: 0 one
    // cycle, 1 invalid, 2 manual erase, 3 manual change; with VBE (TVMR 8) only 3
    // (erase and change). PTMR: 0 idle, 1 draw once, 2 automatic, 3 invalid.
    struct Case { uint16_t tvmr, ptmr, fbcr; int first, later; };
    const Case cases[] = {
        {0x0, 2, 0x0, D | S | E, D | S | E}, {0x0, 0, 0x0, S | E, S | E}, {0x0, 1, 0x0, D | S | E, S | E},
        {0x0, 3, 0x0, S | E, S | E},         {0x0, 2, 0x3, D | S, 0},     {0x0, 0, 0x3, S, 0},
        {0x0, 1, 0x3, D | S, 0},             {0x0, 5, 0x3, D | S, 0},     {0x0, 2, 0x2, E, 0},
        {0x8, 2, 0x3, D | S | E, 0},         {0x8, 1, 0x3, D | S | E, 0}, {0x8, 3, 0x3, S | E, 0},
        {0x8, 6, 0x3, D | S | E, 0},         {0x0, 2, 0x1, 0, 0},         {0x8, 2, 0x0, 0, 0},
        {0x8, 2, 0x1, 0, 0},                 {0x8, 2, 0x2, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "TVMR " << c.tvmr << " PTMR " << c.ptmr << " FBCR " << c.fbcr);
        vdp1->WriteRegister(TVMR, c.tvmr);  // the last row's V-blank outs took every request
        vdp1->WriteRegister(PTMR, c.ptmr);
        vdp1->WriteRegister(FBCR, c.fbcr);
        for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(Actions(), frame ? c.later : c.first) << "frame " << frame;
    }
}

TEST_F(Vdp1FrameControlTest, RequestsAcrossWritesAndVblankOuts) {
    // Register writes and, at kOut, a V-blank out and the actions it must give.
    constexpr uint32_t kOut = 0x100, kReset = 0x101;
    const std::pair<uint32_t, int> steps[] = {
        // Each PTMR write of 1 draws once (two in one frame too); Reset drops it.
        {TVMR, TVMR_VBE}, {FBCR, 0}, {kOut, 0}, {PTMR, 1}, {kOut, D}, {kOut, 0}, {PTMR, 1}, {PTMR, 1}, {kOut, D},
        {kOut, 0}, {PTMR, 1}, {FBCR, 3}, {kReset, 0}, {kOut, 0},
        // A manual change draws when PTMR is automatic at the FBCR write or at the V-blank out.
        {TVMR, 0}, {PTMR, 2}, {FBCR, 3}, {PTMR, 0}, {kOut, D | S}, {FBCR, 3}, {PTMR, 2}, {kOut, D | S}, {kOut, 0},
        // One-cycle mode follows the registers stored at the V-blank out, FBCR 0 written
        // under VBE too; the interlace bits do not leave it.
        {PTMR, 0}, {TVMR, TVMR_VBE}, {FBCR, 0}, {kOut, 0}, {TVMR, 0}, {kOut, S | E}, {FBCR, 8}, {kOut, S | E},
        {TVMR, TVMR_VBE}, {kOut, 0}};
    int step = 0;
    for (const auto& [reg, value] : steps) {
        SCOPED_TRACE(testing::Message() << "step " << step++);
        if (reg == kReset) vdp1->Reset();
        else if (reg != kOut) vdp1->WriteRegister(reg, static_cast<uint16_t>(value));
        else EXPECT_EQ(Actions(), value);
    }
}

TEST_F(Vdp1FrameControlTest, PartKindSwitchesOutOfRangeTouchNone) {
    for (int kind : {-1, int{kPartKindCount}}) vdp1->SetPartEnabled(kind, false);
    for (int kind = -1; kind <= kPartKindCount; ++kind)
        EXPECT_EQ(vdp1->IsPartEnabled(kind), kind >= 0 && kind < kPartKindCount) << kind;
}

}  // namespace
}  // namespace vdpgl
