// The composition order of VDP2's backgrounds: which are drawn at each
// priority level of VDP1's frame, in what order, and when none are.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_registers.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

// A background that notes "<name>@<level>" in a shared journal when drawn.
class JournalBackground : public CBackground {
public:
    JournalBackground(uint32_t number, std::vector<std::string>& journal) : CBackground(number), journal(journal) {}
    uint32_t GetPriority() const override { return priority; }
    void Draw() override { journal.push_back(std::string(kBackgroundNames[bgNumber]) + "@" + std::to_string(priority)); }
    uint32_t priority = 0;

private:
    std::vector<std::string>& journal;
};

class BackgroundOrderTest : public ::testing::Test {
protected:
    BackgroundOrderTest() {
        vdp1->Link(*vdp2);
        vdp2->Link(*vdp1);
        for (uint32_t n = 0; n < kBackgroundCount; ++n) {
            backgrounds.push_back(std::make_unique<JournalBackground>(n, journal));
            vdp2->SetBackground(static_cast<int>(n), backgrounds.back().get());
        }
        vdp2->WriteRegisterWord(vdp2reg::TVMD, vdp2reg::TVMD_DISP);
    }
    void SetPriorities(std::initializer_list<uint32_t> priorities) {
        uint32_t n = 0;
        for (uint32_t p : priorities) backgrounds[n++]->priority = p;
    }

    test::ScopedTempDir tempDir;
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
    std::vector<std::string> journal;
    std::vector<std::unique_ptr<JournalBackground>> backgrounds;
};

TEST_F(BackgroundOrderTest, DrawnFromBackToFrontWithinEachLevel) {
    SetPriorities({3, 3, 1, 3, 3, 3});
    for (int level = 0; level < 8; ++level) vdp2->DrawBackgrounds(level);
    EXPECT_EQ(journal, (std::vector<std::string>{"NBG2@1", "NBG3@3", "NBG1@3", "NBG0@3", "RBG0@3", "RBG1@3"}));
}

TEST_F(BackgroundOrderTest, NothingAtLevelZeroOrWithTheDisplayOff) {
    SetPriorities({0, 0, 0, 0, 0, 0});
    vdp2->DrawBackgrounds(0);
    EXPECT_TRUE(journal.empty()) << "priority 0 means not displayed";

    SetPriorities({2, 2, 2, 2, 2, 2});
    vdp2->WriteRegisterWord(vdp2reg::TVMD, 0);
    vdp2->DrawBackgrounds(2);
    EXPECT_TRUE(journal.empty());
}

TEST_F(BackgroundOrderTest, Vdp1FrameDrawsBackgroundsOnlyWhenItDraws) {
    SetPriorities({1, 0, 0, 0, 7, 0});
    // One-cycle mode, drawing automatically; the command list is empty.
    vdp1->WriteRegister(vdp1reg::PTMR, 2);
    vdp1->Frame();
    EXPECT_EQ(journal, (std::vector<std::string>{"NBG0@1", "RBG0@7"}));

    journal.clear();
    vdp1->WriteRegister(vdp1reg::PTMR, 0);  // idle: no walk, no backgrounds
    vdp1->Frame();
    EXPECT_TRUE(journal.empty());
}

}  // namespace
}  // namespace vdpgl
