// CVdp1::BuildPartsListVectors: the walk along the command list in VDP1
// VRAM, its jump modes and limit, the registers it leaves, and the priority
// list each part is filed in. Where the parts land, in which order, is shown
// on whole frames in host_vdp1_frame_test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support/vdp1_commands.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;
using namespace test;

constexpr uint16_t Jump(uint16_t mode, uint16_t command) { return static_cast<uint16_t>((mode << 12) | command); }

class Vdp1CommandWalkerTest : public VdpTest {
protected:
    void Write(uint32_t address, const Command& c) { WriteCommand(writer, address, c); }
    // Walks the list; the x of corner A of each part (tests tag their
    // commands with it), list 0 first, each list in order.
    std::vector<int> Walk() {
        vdp1->BuildPartsListVectors();
        std::vector<int> tags;
        for (const auto& list : vdp1->partsListVectors)
            for (const CVdp1Part* p : list) tags.push_back(p->vertices[0].x);
        return tags;
    }

    WordWriter writer = [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
};

TEST_F(Vdp1CommandWalkerTest, JumpModesDecideWhatRunsAndWhereTheWalkGoes) {
    // 0x000 calls the tested command at 0x080, which links to 0x100; the
    // command there returns. Tags: line 1, tested polygon 2, polyline at
    // 0x020 3, polyline at 0x100 4.
    struct Case { uint16_t mode; std::vector<int> tags; uint16_t copr; };
    const Case cases[] = {{0, {1, 2}, 0x0A0}, {1, {1, 2, 4, 3}, 0x040}, {2, {1, 2, 4}, 0x0A0}, {3, {1, 2, 3}, 0x040},
                          {4, {1}, 0x0A0},    {5, {1, 4, 3}, 0x040},    {6, {1, 4}, 0x0A0},    {7, {1, 3}, 0x040}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "jump mode " << c.mode);
        Write(0x000, {.ctrl = Jump(2, kLineCmd), .link = 0x10, .colr = 1, .xa = 1});
        Write(0x020, {.ctrl = kPolylineCmd, .colr = 1, .xa = 3});
        Write(0x040, {.ctrl = kEndCmd});
        Write(0x080, {.ctrl = Jump(c.mode, kPolygonCmd), .link = 0x20, .colr = 1, .xa = 2});
        Write(0x0A0, {.ctrl = kEndCmd});
        Write(0x100, {.ctrl = Jump(3, kPolylineCmd), .colr = 1, .xa = 4});
        EXPECT_EQ(Walk(), c.tags);
        EXPECT_EQ(vdp1->ReadRegister(COPR), c.copr);
    }
}

TEST_F(Vdp1CommandWalkerTest, NestedCallOverwritesTheSingleReturnAddress) {
    // Both returns go back after the inner call, so the walk cycles there
    // until the limit and never reaches the command after the outer call.
    Write(0x000, {.ctrl = Jump(2, kPolygonCmd), .link = 0x20, .colr = 1, .xa = 1});
    Write(0x020, {.ctrl = kPolygonCmd, .colr = 1, .xa = 9});
    Write(0x040, {.ctrl = kEndCmd});
    Write(0x100, {.ctrl = Jump(2, kPolygonCmd), .link = 0x40, .colr = 1, .xa = 2});
    Write(0x120, {.ctrl = kPolygonCmd, .colr = 1, .xa = 4});
    Write(0x140, {.ctrl = Jump(3, kPolygonCmd), .colr = 1, .xa = 5});
    Write(0x200, {.ctrl = Jump(3, kPolygonCmd), .colr = 1, .xa = 3});
    const std::vector<int> tags = Walk();
    ASSERT_EQ(tags.size(), 4001u);
    EXPECT_EQ(std::vector<int>(tags.begin(), tags.begin() + 7), (std::vector<int>{1, 2, 3, 4, 5, 4, 5}));
    EXPECT_EQ(std::count(tags.begin(), tags.end(), 9), 0);
}

TEST_F(Vdp1CommandWalkerTest, WalkStopsAtTheEndOrAfter4001Commands) {
    // COPR holds the low 16 bits of the byte address where the walk stopped:
    // the END, or the first command past the limit (4,001 x 0x20 = 0x1F420).
    // EDSR: bit 1 moves down to bit 0 and is set when the END was reached.
    struct Case { int commands; size_t parts; uint16_t edsr, copr; };
    vdp1->WriteRegister(EDSR, 0x0001);
    for (const Case& c : {Case{4002, 4001, 0x0001, 0xF420}, Case{4001, 4001, 0x0002, 0xF420}, Case{0, 0, 0x0003, 0}}) {
        SCOPED_TRACE(c.commands);
        for (int i = 0; i < c.commands; ++i) Write(0x20u * i, {.ctrl = kLineCmd, .colr = 1});
        Write(0x20u * c.commands, {.ctrl = kEndCmd});
        EXPECT_EQ(Walk().size(), c.parts);
        EXPECT_EQ(vdp1->ReadRegister(EDSR), c.edsr);
        EXPECT_EQ(vdp1->ReadRegister(COPR), c.copr);
    }
}

TEST_F(Vdp1CommandWalkerTest, LocalCoordinatesLastIntoLaterWalksAndASkippedOneSetsNothing) {
    WriteCommandList(writer, {{.ctrl = kLocalCoordinatesCmd, .xa = -16, .ya = 32},
                              {.ctrl = Jump(4, kLocalCoordinatesCmd), .xa = 100, .ya = 100}});
    Walk();
    WriteCommandList(writer, {{.ctrl = kPolygonCmd, .colr = 1, .xa = 5, .ya = 5}});
    EXPECT_EQ(Walk(), std::vector<int>{-11});
    EXPECT_EQ(vdp1->partsListVectors[0][0]->vertices[0].y, 37);
}

TEST_F(Vdp1CommandWalkerTest, EachKindHasItsSwitchAndEveryCommandStillJumps) {
    // The command at 0x000 (tag 1) jumps over a polyline at 0x020 to a line
    // (a polygon when a line is tested; tag 3) at 0x040: only drawing commands
    // of a kind switched on build a part; clipping, switched-off kinds and
    // unknown codes jump all the same.
    for (uint16_t command = 0; command < 16; ++command) {
        if (command == kLocalCoordinatesCmd) continue;  // it would move the line
        const int kind = command < 3 ? command : command >= 4 && command <= 6 ? command - 1 : -1;
        for (bool enabled : {false, true}) {
            SCOPED_TRACE(testing::Message() << "command " << command << (enabled ? "" : ", its kind off"));
            vdp1->SetPartEnabled(kind, enabled);
            Write(0x000, {.ctrl = Jump(1, command), .link = 0x08, .pmod = 5 << 3, .colr = 1, .size = 0x0101, .xa = 1});
            Write(0x020, {.ctrl = kPolylineCmd, .colr = 1, .xa = 2});
            Write(0x040, {.ctrl = command == kLineCmd ? kPolygonCmd : kLineCmd, .colr = 1, .xa = 3});
            Write(0x060, {.ctrl = kEndCmd});
            EXPECT_EQ(Walk(), (kind >= 0 && enabled ? std::vector<int>{1, 3} : std::vector<int>{3}));
            EXPECT_EQ(vdp1->ReadRegister(COPR), 0x0060u);
        }
    }
}

TEST_F(Vdp1CommandWalkerTest, PartsAreFiledByVdp2SpritePriority) {
    // Sprite type 0 (with another SPCTL bit set so that the write is a
    // change): colour-bank sprites take the priority of number CMDCOLR bits
    // 15-14, a looked-up 0 falling back to 7; lookup-table and RGB sprites
    // and the untextured parts take number 0's, even 0. PRISB: number 2 has
    // priority 3, number 3 has 0.
    vdp2->WriteRegisterWord(vdp2reg::SPCTL, 0x0020);
    vdp2->WriteRegisterWord(vdp2reg::PRISB, 0x0003);
    struct Case { uint16_t prisa, ctrl, pmod, colr; int list; };
    const Case cases[] = {
        {0x0500, kNormalSpriteCmd, 0x00, 0x4000, 5}, {0x0500, kScaledSpriteCmd, 0x20, 0x8000, 3},
        {0x0500, kDistortedSpriteCmd, 0x38, 0x8000, 3},  // mode 7 is a palette mode
        {0x0500, kNormalSpriteCmd, 0x00, 0xC000, 7},     {0x0500, kNormalSpriteCmd, 0x08, 0x4000, 0},
        {0x0500, kNormalSpriteCmd, 0x28, 0x4000, 0},     {0x0506, kNormalSpriteCmd, 0x00, 0x0000, 6},
        {0x0506, kDistortedSpriteCmd, 0x28, 0x4000, 6},  {0x0506, kPolygonCmd, 0x00, 0x8000, 6},
        {0x0506, kPolylineCmd, 0x00, 0x4000, 6},         {0x0506, kLineCmd, 0x00, 0xC000, 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "PRISA, command, CMDPMOD, CMDCOLR: " << c.prisa << " " << c.ctrl
                                        << " " << c.pmod << " " << c.colr);
        vdp2->WriteRegisterWord(vdp2reg::PRISA, c.prisa);
        WriteCommandList(writer, {{.ctrl = c.ctrl, .pmod = c.pmod, .colr = c.colr, .srca = 0x100, .size = 0x0101}});
        EXPECT_EQ(Walk().size(), 1u);
        EXPECT_EQ(vdp1->partsListVectors[c.list].size(), 1u);
    }
}

}  // namespace
}  // namespace vdpgl
