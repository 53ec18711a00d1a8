// CVdp1::BuildPartsListVectors: the walk along the command list in VDP1
// VRAM, its jump modes and limit, the registers it leaves, and the priority
// list each part is filed in.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support/vdp1_commands.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp1reg;
using test::Command;

constexpr uint16_t Jump(uint16_t mode, uint16_t command) { return static_cast<uint16_t>((mode << 12) | command); }

class Vdp1CommandWalkerTest : public test::VdpTest {
protected:
    void Write(uint32_t address, const Command& c) { test::WriteCommand(writer, address, c); }
    void WriteList(std::initializer_list<Command> commands) { test::WriteCommandList(writer, commands); }

    // Every part of the walk, list 0 first, each list in order.
    std::vector<CVdp1Part*> AllParts() const {
        std::vector<CVdp1Part*> parts;
        for (const auto& list : vdp1->partsListVectors) parts.insert(parts.end(), list.begin(), list.end());
        return parts;
    }
    // The x of corner A of each part: tests tag their commands with it.
    std::vector<int> Tags() const {
        std::vector<int> tags;
        for (const CVdp1Part* p : AllParts()) tags.push_back(p->vertices[0].x);
        return tags;
    }
    // The list that holds the walk's single part, -1 unless exactly one.
    int ListOfOnlyPart() const {
        int found = -1, count = 0;
        for (int i = 0; i < CVdp1::kPriorityCount; ++i) {
            count += static_cast<int>(vdp1->partsListVectors[i].size());
            if (!vdp1->partsListVectors[i].empty()) found = i;
        }
        return count == 1 ? found : -1;
    }

    test::WordWriter writer = [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
};

TEST_F(Vdp1CommandWalkerTest, EndFirstBuildsNothingAndShiftsEdsr) {
    WriteList({{.ctrl = test::kPolygonCmd, .colr = 0x7FFF}});
    vdp1->BuildPartsListVectors();
    ASSERT_EQ(AllParts().size(), 1u);

    Write(0, {.ctrl = test::kEndCmd});
    vdp1->WriteRegister(EDSR, 0x0001);
    vdp1->WriteRegister(COPR, 0x1234);
    vdp1->BuildPartsListVectors();
    EXPECT_TRUE(AllParts().empty()) << "the previous walk's parts are dropped";
    EXPECT_EQ(vdp1->ReadRegister(COPR), 0u);
    EXPECT_EQ(vdp1->ReadRegister(EDSR), 0x0002u);
    vdp1->BuildPartsListVectors();
    EXPECT_EQ(vdp1->ReadRegister(EDSR), 0x0003u);
}

TEST_F(Vdp1CommandWalkerTest, JumpModesDecideWhatRunsAndWhereTheWalkGoes) {
    // 0x000 calls the tested command at 0x080, which links to 0x100; the
    // command there returns. Tags: line 1, tested polygon 2, polyline at
    // 0x020 3, polyline at 0x100 4.
    struct Case {
        uint16_t mode;
        std::vector<int> tags;
        uint16_t copr;
    };
    const Case cases[] = {
        {0, {1, 2}, 0x0A0},       {1, {1, 2, 4, 3}, 0x040}, {2, {1, 2, 4}, 0x0A0}, {3, {1, 2, 3}, 0x040},
        {4, {1}, 0x0A0},          {5, {1, 4, 3}, 0x040},    {6, {1, 4}, 0x0A0},    {7, {1, 3}, 0x040},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "jump mode " << c.mode);
        Write(0x000, {.ctrl = Jump(2, test::kLineCmd), .link = 0x10, .colr = 1, .xa = 1});
        Write(0x020, {.ctrl = test::kPolylineCmd, .colr = 1, .xa = 3});
        Write(0x040, {.ctrl = test::kEndCmd});
        Write(0x080, {.ctrl = Jump(c.mode, test::kPolygonCmd), .link = 0x20, .colr = 1, .xa = 2});
        Write(0x0A0, {.ctrl = test::kEndCmd});
        Write(0x100, {.ctrl = Jump(3, test::kPolylineCmd), .colr = 1, .xa = 4});
        vdp1->BuildPartsListVectors();
        EXPECT_EQ(Tags(), c.tags);
        EXPECT_EQ(vdp1->ReadRegister(COPR), c.copr);
    }
}

TEST_F(Vdp1CommandWalkerTest, NestedCallOverwritesTheSingleReturnAddress) {
    // Both returns go back after the inner call, so the walk cycles there
    // until the limit and never reaches the command after the outer call.
    Write(0x000, {.ctrl = Jump(2, test::kPolygonCmd), .link = 0x20, .colr = 1, .xa = 1});
    Write(0x020, {.ctrl = test::kPolygonCmd, .colr = 1, .xa = 9});
    Write(0x040, {.ctrl = test::kEndCmd});
    Write(0x100, {.ctrl = Jump(2, test::kPolygonCmd), .link = 0x40, .colr = 1, .xa = 2});
    Write(0x120, {.ctrl = test::kPolygonCmd, .colr = 1, .xa = 4});
    Write(0x140, {.ctrl = Jump(3, test::kPolygonCmd), .colr = 1, .xa = 5});
    Write(0x200, {.ctrl = Jump(3, test::kPolygonCmd), .colr = 1, .xa = 3});
    vdp1->WriteRegister(EDSR, 0x0001);
    vdp1->BuildPartsListVectors();
    const std::vector<int> tags = Tags();
    ASSERT_EQ(tags.size(), 4001u);
    EXPECT_EQ(std::vector<int>(tags.begin(), tags.begin() + 7), (std::vector<int>{1, 2, 3, 4, 5, 4, 5}));
    EXPECT_EQ(std::count(tags.begin(), tags.end(), 9), 0);
    EXPECT_EQ(vdp1->ReadRegister(EDSR), 0x0001u);
}

TEST_F(Vdp1CommandWalkerTest, WalkStopsAfter4001CommandsWithoutEnd) {
    // COPR holds the low 16 bits of the byte address where the walk stopped:
    // the END, or the first command past the limit (4,001 x 0x20 = 0x1F420).
    struct Case {
        int commands;
        uint16_t edsr;
    };
    for (const Case& c : {Case{4001, 0x0002}, Case{4002, 0x0001}}) {
        SCOPED_TRACE(c.commands);
        for (int i = 0; i < c.commands; ++i) Write(0x20u * i, {.ctrl = test::kLineCmd, .colr = 1});
        Write(0x20u * c.commands, {.ctrl = test::kEndCmd});
        vdp1->WriteRegister(EDSR, 0x0001);
        vdp1->BuildPartsListVectors();
        EXPECT_EQ(vdp1->partsListVectors[0].size(), 4001u);
        EXPECT_EQ(vdp1->ReadRegister(EDSR), c.edsr) << "shifted only when the END was reached";
        EXPECT_EQ(vdp1->ReadRegister(COPR), 0xF420u);
    }
}

TEST_F(Vdp1CommandWalkerTest, LocalCoordinatesLastIntoLaterWalksAndASkippedOneSetsNothing) {
    // Where they move the later parts of a walk is shown on frames (host_vdp1_frame_test).
    WriteList({{.ctrl = test::kLocalCoordinatesCmd, .xa = -16, .ya = 32},
               {.ctrl = Jump(4, test::kLocalCoordinatesCmd), .xa = 100, .ya = 100}});
    vdp1->BuildPartsListVectors();
    WriteList({{.ctrl = test::kPolygonCmd, .colr = 1, .xa = 5, .ya = 5}});
    vdp1->BuildPartsListVectors();
    ASSERT_EQ(AllParts().size(), 1u);
    EXPECT_EQ(AllParts()[0]->vertices[0].x, -11);
    EXPECT_EQ(AllParts()[0]->vertices[0].y, 37);
}

TEST_F(Vdp1CommandWalkerTest, DisabledPartKindsBuildNothing) {
    WriteList({{.ctrl = test::kNormalSpriteCmd, .size = 0x0101}, {.ctrl = test::kScaledSpriteCmd, .size = 0x0101},
               {.ctrl = test::kDistortedSpriteCmd, .size = 0x0101}, {.ctrl = test::kPolygonCmd, .colr = 1},
               {.ctrl = test::kPolylineCmd, .colr = 1}, {.ctrl = test::kLineCmd, .colr = 1}});
    for (int kind = 0; kind < kPartKindCount; ++kind) {
        SCOPED_TRACE(kind);
        vdp1->SetPartEnabled(kind, false);
        vdp1->BuildPartsListVectors();
        vdp1->SetPartEnabled(kind, true);
        std::vector<int> types;
        for (const CVdp1Part* p : AllParts()) types.push_back(p->type);
        std::sort(types.begin(), types.end());
        std::vector<int> expected = {0, 1, 2, 3, 4, 5};
        expected.erase(expected.begin() + kind);
        EXPECT_EQ(types, expected);
    }
}

TEST_F(Vdp1CommandWalkerTest, DisabledCommandsAndUnknownCodesStillJump) {
    // The command at 0x000 jumps over a polyline at 0x020 to a line at 0x040.
    struct Case {
        uint16_t command;
        bool disablePolygons;
    };
    const Case cases[] = {{test::kPolygonCmd, true}, {3, false}, {7, false}, {8, false}, {9, false},
                          {11, false}, {12, false}, {13, false}, {14, false}, {15, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "command " << c.command);
        vdp1->SetPartEnabled(kPolygon, !c.disablePolygons);
        Write(0x000, {.ctrl = Jump(1, c.command), .link = 0x08, .colr = 1, .xa = 1});
        Write(0x020, {.ctrl = test::kPolylineCmd, .colr = 1, .xa = 2});
        Write(0x040, {.ctrl = test::kLineCmd, .colr = 1, .xa = 3});
        Write(0x060, {.ctrl = test::kEndCmd});
        vdp1->BuildPartsListVectors();
        EXPECT_EQ(Tags(), std::vector<int>{3});
        EXPECT_EQ(vdp1->ReadRegister(COPR), 0x0060u);
    }
}

TEST_F(Vdp1CommandWalkerTest, PartsAreFiledByVdp2SpritePriority) {
    // Sprite type 0 (with another SPCTL bit set so that the write is a
    // change): the priority number is CMDCOLR bits 15-14.
    vdp2->WriteRegisterWord(vdp2reg::SPCTL, 0x0020);
    struct Case {
        uint16_t prisa;  // priorities of numbers 0 (low byte) and 1
        uint16_t ctrl, pmod, colr;
        int list;
    };
    // Number 2 has priority 3, number 3 has 0.
    const Case cases[] = {
        {0x0500, test::kNormalSpriteCmd, 0x00, 0x4000, 5},
        {0x0500, test::kScaledSpriteCmd, 0x20, 0x8000, 3},   // 256 colours
        {0x0500, test::kDistortedSpriteCmd, 0x38, 0x8000, 3},  // mode 7 is a palette mode
        {0x0500, test::kNormalSpriteCmd, 0x00, 0xC000, 7},  // looked-up 0 falls back to 7
        {0x0500, test::kNormalSpriteCmd, 0x00, 0x0000, 7},
        {0x0500, test::kNormalSpriteCmd, 0x08, 0x4000, 0},  // lookup table: number 0's, even 0
        {0x0500, test::kNormalSpriteCmd, 0x28, 0x4000, 0},  // RGB
        {0x0500, test::kPolygonCmd, 0x00, 0x4000, 0},
        {0x0506, test::kNormalSpriteCmd, 0x00, 0x0000, 6},
        {0x0506, test::kNormalSpriteCmd, 0x08, 0x8000, 6},
        {0x0506, test::kDistortedSpriteCmd, 0x28, 0x4000, 6},
        {0x0506, test::kPolygonCmd, 0x00, 0x8000, 6},
        {0x0506, test::kPolylineCmd, 0x00, 0x4000, 6},
        {0x0506, test::kLineCmd, 0x00, 0xC000, 6},
    };
    vdp2->WriteRegisterWord(vdp2reg::PRISB, 0x0003);
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "PRISA 0x" << c.prisa << " command 0x" << c.ctrl << " CMDPMOD 0x"
                                        << c.pmod << " CMDCOLR 0x" << c.colr);
        vdp2->WriteRegisterWord(vdp2reg::PRISA, c.prisa);
        WriteList({{.ctrl = c.ctrl, .pmod = c.pmod, .colr = c.colr, .srca = 0x100, .size = 0x0101}});
        vdp1->BuildPartsListVectors();
        EXPECT_EQ(ListOfOnlyPart(), c.list);
    }
}

}  // namespace
}  // namespace vdpgl
