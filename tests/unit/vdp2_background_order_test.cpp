// The composition order of VDP2's backgrounds in VDP1's frame: which are drawn at each priority level,
// in what order, and when none are.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Journal = std::vector<std::string>;
using BackgroundOrderTest = test::VdpTest;

struct JournalBackground final : CBackground {  // notes "<name>@<level>" in a shared journal when drawn
    JournalBackground(uint32_t number, Journal& j) : CBackground(number), log(j) {}
    uint32_t GetPriority() const override { return priority; }
    void Draw() override { log.push_back(kBackgroundNames[bgNumber] + std::string("@") + std::to_string(priority)); }
    uint32_t priority = 0;
    Journal& log;
};

TEST_F(BackgroundOrderTest, BackToFrontWithinEachLevelOnlyWhenVdp1DrawsWithTheDisplayOn) {
    Journal drawn;
    JournalBackground bgs[kBackgroundCount] = {{0, drawn}, {1, drawn}, {2, drawn}, {3, drawn}, {4, drawn}, {5, drawn}};
    for (uint32_t n = 0; n < kBackgroundCount; ++n) vdp2->SetBackground(static_cast<int>(n), &bgs[n]);
    // What one V-blank out draws with these priorities, TVMD and PTMR (2: one cycle, automatic; 0: idle).
    const auto frame = [&](std::initializer_list<uint32_t> priorities, uint16_t tvmd, uint16_t ptmr) {
        for (JournalBackground* bg = bgs; uint32_t p : priorities) (bg++)->priority = p;
        vdp2->WriteRegisterWord(vdp2reg::TVMD, tvmd);
        vdp1->WriteRegister(vdp1reg::PTMR, ptmr);
        drawn.clear();
        vdp1->Frame();
        return drawn;
    };
    const uint16_t on = vdp2reg::TVMD_DISP;
    EXPECT_EQ(frame({3, 3, 1, 3, 3, 3}, on, 2), (Journal{"NBG2@1", "NBG3@3", "NBG1@3", "NBG0@3", "RBG0@3", "RBG1@3"}));
    EXPECT_EQ(frame({1, 0, 0, 0, 7, 3}, on, 2), (Journal{"NBG0@1", "RBG1@3", "RBG0@7"})) << "0: not displayed";
    EXPECT_TRUE(frame({2, 2, 2, 2, 2, 2}, 0, 2).empty() && frame({2, 2, 2, 2, 2, 2}, on, 0).empty())
        << "nothing with the display off, or with VDP1 idle (no walk, no backgrounds)";
}

}  // namespace
}  // namespace vdpgl
