// The composition order of VDP2's backgrounds: which are drawn at each
// priority level of VDP1's frame, in what order, and when none are.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Journal = std::vector<std::string>;

// A background that notes "<name>@<level>" in a shared journal when drawn.
class JournalBackground : public CBackground {
public:
    JournalBackground(uint32_t number, Journal& journal) : CBackground(number), journal(journal) {}
    uint32_t GetPriority() const override { return priority; }
    void Draw() override { journal.push_back(std::string(kBackgroundNames[bgNumber]) + "@" + std::to_string(priority)); }
    uint32_t priority = 0;

private:
    Journal& journal;
};

class BackgroundOrderTest : public test::VdpTest {
protected:
    BackgroundOrderTest() {
        for (uint32_t n = 0; n < kBackgroundCount; ++n) vdp2->SetBackground(static_cast<int>(n), &backgrounds[n]);
        vdp2->WriteRegisterWord(vdp2reg::TVMD, vdp2reg::TVMD_DISP);
    }
    void SetPriorities(std::initializer_list<uint32_t> priorities) {
        uint32_t n = 0;
        for (uint32_t p : priorities) backgrounds[n++].priority = p;
    }

    Journal journal;
    JournalBackground backgrounds[kBackgroundCount] = {{0, journal}, {1, journal}, {2, journal},
                                                       {3, journal}, {4, journal}, {5, journal}};
};

TEST_F(BackgroundOrderTest, BackToFrontWithinEachLevelNothingAtZeroOrWithTheDisplayOff) {
    SetPriorities({3, 3, 1, 3, 3, 3});
    for (int level = 0; level < 8; ++level) vdp2->DrawBackgrounds(level);
    EXPECT_EQ(journal, (Journal{"NBG2@1", "NBG3@3", "NBG1@3", "NBG0@3", "RBG0@3", "RBG1@3"}));

    journal.clear();
    SetPriorities({0, 0, 0, 0, 0, 0});
    vdp2->DrawBackgrounds(0);
    EXPECT_TRUE(journal.empty()) << "priority 0 means not displayed";
    SetPriorities({2, 2, 2, 2, 2, 2});
    vdp2->WriteRegisterWord(vdp2reg::TVMD, 0);
    vdp2->DrawBackgrounds(2);
    EXPECT_TRUE(journal.empty());
}

TEST_F(BackgroundOrderTest, Vdp1FrameDrawsBackgroundsOnlyWhenItDraws) {
    SetPriorities({1, 0, 0, 0, 7, 3});
    vdp1->WriteRegister(vdp1reg::PTMR, 2);  // one-cycle mode, drawing automatically; empty list
    vdp1->Frame();
    EXPECT_EQ(journal, (Journal{"NBG0@1", "RBG1@3", "RBG0@7"}));

    journal.clear();
    vdp1->WriteRegister(vdp1reg::PTMR, 0);  // idle: no walk, no backgrounds
    vdp1->Frame();
    EXPECT_TRUE(journal.empty());
}

}  // namespace
}  // namespace vdpgl
