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
    void Draw() override {
        log.push_back(kBackgroundNames[bgNumber] + std::string("@") + std::to_string(GetPriority()));
    }
    Journal& log;
};

TEST_F(BackgroundOrderTest, BackToFrontWithinEachLevelOnlyWhenVdp1DrawsWithTheDisplayOn) {
    Journal drawn;
    for (uint32_t n = 0; n < kBackgroundCount; ++n)
        vdp2->ReplaceBackground(static_cast<int>(n), std::make_unique<JournalBackground>(n, drawn));
    // What one V-blank out draws with these priorities (NBG0-NBG3 and RBG0 as PRINA, PRINB and PRIR hold them;
    // RBG1 shares NBG0's), TVMD and PTMR (2: one cycle, automatic; 0: idle).
    const auto frame = [&](std::initializer_list<uint16_t> priorities, uint16_t tvmd, uint16_t ptmr) {
        const uint16_t* p = priorities.begin();
        vdp2->WriteRegisterWord(vdp2reg::PRINA, static_cast<uint16_t>(p[0] | p[1] << 8));
        vdp2->WriteRegisterWord(vdp2reg::PRINB, static_cast<uint16_t>(p[2] | p[3] << 8));
        vdp2->WriteRegisterWord(vdp2reg::PRIR, p[4]);
        vdp2->WriteRegisterWord(vdp2reg::TVMD, tvmd);
        for (int n = 0; n < kBackgroundCount; ++n) vdp2->Background(n)->UpdateFromRegisters();
        vdp1->WriteRegister(vdp1reg::PTMR, ptmr);
        drawn.clear();
        vdp1->Frame();
        return drawn;
    };
    const uint16_t on = vdp2reg::TVMD_DISP;
    EXPECT_EQ(frame({3, 3, 1, 3, 3}, on, 2), (Journal{"NBG2@1", "NBG3@3", "NBG1@3", "NBG0@3", "RBG0@3", "RBG1@3"}));
    EXPECT_EQ(frame({1, 0, 0, 6, 7}, on, 2), (Journal{"NBG0@1", "RBG1@1", "NBG3@6", "RBG0@7"})) << "0: not displayed";
    EXPECT_TRUE(frame({2, 2, 2, 2, 2}, 0, 2).empty() && frame({2, 2, 2, 2, 2}, on, 0).empty())
        << "nothing with the display off, or with VDP1 idle (no walk, no backgrounds)";
}

}  // namespace
}  // namespace vdpgl
