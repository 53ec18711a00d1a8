#include <gtest/gtest.h>

#include "render/opengl/opengl.h"
#include "temp_dir.h"

namespace vdpgl {
namespace {

class RenderingResolutionTest : public ::testing::Test {
protected:
    test::ScopedTempDir dir;
    COpenGl renderer{nullptr};
};

TEST_F(RenderingResolutionTest, StartsAt320x240AndScale1) {
    EXPECT_EQ(renderer.GetSaturnHRes(), 320);
    EXPECT_EQ(renderer.GetSaturnVRes(), 240);
    EXPECT_EQ(renderer.GetRenderingHRes(), 320);
    EXPECT_EQ(renderer.GetRenderingVRes(), 240);
    EXPECT_EQ(renderer.GetRenderingScale(), 1.0f);
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 320X240");
}

TEST_F(RenderingResolutionTest, SizeFollowsTheEmulatedModeAndTheScale) {
    struct Case {
        int h, v;
        float scale;
        int renderH, renderV;
    };
    // Low resolutions scale by the factor, truncated; high and interlaced
    // ones by half of it, and not at all for 1.0 and 1.25.
    const Case cases[] = {
        {320, 224, 3.2f, 1024, 716}, {320, 224, 1.25f, 400, 280}, {352, 240, 2.5f, 880, 600},
        {320, 256, 5.0f, 1600, 1280}, {640, 448, 1.0f, 640, 448},  {640, 448, 1.25f, 640, 448},
        {640, 448, 2.0f, 640, 448},   {640, 448, 2.5f, 800, 560},  {640, 448, 4.0f, 1280, 896},
        {704, 480, 1.25f, 704, 480},  {704, 512, 3.0f, 1056, 768}, {640, 240, 2.0f, 640, 480},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.h << "x" << c.v << " at " << c.scale);
        COpenGl r(nullptr);
        r.SetRenderingScale(c.scale);
        r.SetSaturnResolution(c.h, c.v);
        EXPECT_EQ(r.GetRenderingHRes(), c.renderH);
        EXPECT_EQ(r.GetRenderingVRes(), c.renderV);
    }
}

TEST_F(RenderingResolutionTest, UnknownSizesKeepTheCurrentRenderingSize) {
    renderer.SetRenderingScale(2.0f);  // 640 x 480 from 320 x 240
    renderer.SetSaturnResolution(500, 300);
    EXPECT_EQ(renderer.GetRenderingHRes(), 640);
    EXPECT_EQ(renderer.GetRenderingVRes(), 480);
}

TEST_F(RenderingResolutionTest, UnchangedValuesRequestNoResize) {
    renderer.SetRenderingScale(1.0f);
    renderer.SetSaturnResolution(320, 240);
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());

    renderer.SetSaturnResolution(320, 224);
    EXPECT_TRUE(renderer.TakeRenderingResolutionChange());
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange()) << "a change is taken once";
    renderer.SetSaturnResolution(320, 224);
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());
}

TEST_F(RenderingResolutionTest, SeveralChangesInAFrameLeaveOneResizeWithTheLastValues) {
    renderer.SetSaturnResolution(640, 448);
    renderer.SetRenderingScale(4.0f);
    renderer.SetSaturnResolution(320, 224);
    EXPECT_TRUE(renderer.TakeRenderingResolutionChange());
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());
    EXPECT_EQ(renderer.GetRenderingHRes(), 1280);
    EXPECT_EQ(renderer.GetRenderingVRes(), 896);
}

TEST_F(RenderingResolutionTest, TitleShowsTheScaleUnlessOriginal) {
    renderer.SetRenderingScale(3.2f);
    renderer.SetSaturnResolution(320, 224);
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 1024X716 (320X224X3.20)");
    renderer.SetRenderingScale(2.0f);
    renderer.SetSaturnResolution(320, 240);
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 640X480 (320X240X2.00)");
}

TEST_F(RenderingResolutionTest, WireframeSwitchIsPendingUntilTaken) {
    EXPECT_FALSE(renderer.IsWireframe());
    renderer.SetWireframe(true);
    EXPECT_TRUE(renderer.IsWireframe());
    EXPECT_TRUE(renderer.TakeWireframeChange());
    EXPECT_FALSE(renderer.TakeWireframeChange());
}

}  // namespace
}  // namespace vdpgl
