// The renderer as a host sees it: a headless start, a capture of the rendering size once a frame was
// presented, start-stop-start. Whole pictures are compared in host_vdp1_frame_test.
#include <gtest/gtest.h>

#include <vector>

#include "host_fixture.h"

namespace {

class HostRendererTest : public vdpgl::host::HostTest {
protected:
    int Capture(int w, int h) { return x().CaptureDisplay(rgba.data(), w, h); }
    int Size() {  // the rendering size as width * 1000 + height
        int w = 0, h = 0;
        x().GetDisplaySize(&w, &h);
        return w * 1000 + h;
    }

    std::vector<unsigned char> rgba = std::vector<unsigned char>(640 * 480 * 4);
};

TEST_F(HostRendererTest, OnlyAPresentedFrameIsCapturedAtTheRenderingSizeRunAfterRun) {
    Init();
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run);
        x().EmulationThreadStarting();
        EXPECT_EQ(Size(), run ? 320224 : 320240) << "the size of the last TVMD decoding";
        EXPECT_EQ(Capture(320, run ? 224 : 240), 0) << "nothing presented yet";
        x().WriteWordVDP2Regs(0x000, 0x8000);  // display on, 320 x 224
        x().WriteWordVDP1Regs(0x04, 0x0002);    // drawing automatically
        x().WriteWordVDP1Regs(0x00, 0x0008);    // VBE: not one-cycle mode, and no change asked for
        x().VDPOnVblankOut();
        EXPECT_EQ(Capture(320, 224), 0) << "VDP1 changed no frame buffer";
        x().WriteWordVDP1Regs(0x00, 0x0000);  // one-cycle mode
        x().VDPOnVblankOut();
        EXPECT_EQ(Capture(320, 224), 1);
        EXPECT_EQ(Capture(320, 240), 0) << "a size that does not match";
        x().EmulationThreadStoping();
        EXPECT_EQ(Capture(320, 224), 0) << "no picture without a context";
        x().VDPOnVblankOut();  // harmless while stopped
    }
}

}  // namespace
