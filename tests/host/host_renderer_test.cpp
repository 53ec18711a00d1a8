// The renderer as a host sees it: a headless start, frames presented at
// V-blank-outs, captures of the rendering size, start-stop-start.
#include <gtest/gtest.h>

#include <vector>

#include "host_fixture.h"

namespace {

class HostRendererTest : public vdpgl::host::HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        Init();
    }
    // VDP2 display on at 320 x 224; VDP1 in one-cycle mode, drawing
    // automatically (PTMR 2) or idle (0).
    void ProgramOneCycleFrames(uint16_t ptmr = 2) {
        x().WriteWordVDP2Regs(0x000, 0x8000);
        x().WriteWordVDP1Regs(0x00, 0x0000);
        x().WriteWordVDP1Regs(0x02, 0x0000);
        x().WriteWordVDP1Regs(0x04, ptmr);
    }
    int Capture(int w, int h) {
        std::vector<unsigned char> rgba(static_cast<size_t>(w) * static_cast<size_t>(h) * 4 + 1);
        return x().CaptureDisplay(rgba.data(), w, h);
    }
};

TEST_F(HostRendererTest, OneCycleFramesAreCapturedAtTheRenderingSizeRunAfterRun) {
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run);
        x().EmulationThreadStarting();
        int w = 0, h = 0;
        x().GetDisplaySize(&w, &h);
        EXPECT_EQ(w, 320);
        EXPECT_EQ(h, run ? 224 : 240) << "the size of the last TVMD decoding";
        EXPECT_EQ(Capture(w, h), 0) << "nothing presented yet";

        ProgramOneCycleFrames();
        x().VDPOnVblankIn();
        x().VDPOnVblankOut();
        x().GetDisplaySize(&w, &h);
        EXPECT_EQ(w, 320);
        EXPECT_EQ(h, 224);
        EXPECT_EQ(Capture(320, 224), 1);
        EXPECT_EQ(Capture(320, 240), 0) << "a size that does not match";
        x().EmulationThreadStoping();
        EXPECT_EQ(Capture(320, 224), 0) << "no picture without a context";
        x().VDPOnVblankOut();  // harmless while stopped
    }
}

TEST_F(HostRendererTest, Vdp1ThatChangesNoFrameBufferPresentsNothing) {
    x().EmulationThreadStarting();
    ProgramOneCycleFrames();
    x().WriteWordVDP1Regs(0x00, 0x0008);  // VBE set: not one-cycle mode, and no change asked for
    x().VDPOnVblankOut();
    EXPECT_EQ(Capture(320, 224), 0);
    x().EmulationThreadStoping();
}

}  // namespace
