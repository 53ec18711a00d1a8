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

TEST_F(RenderingResolutionTest, SizeFollowsTheEmulatedModeAndTheScale) {
    EXPECT_EQ(renderer.GetRenderingHRes(), 320);
    EXPECT_EQ(renderer.GetRenderingVRes(), 240);
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 320X240");
    struct Case {
        int h, v;
        float scale;
        int renderH, renderV;
    };
    // Low resolutions scale by the factor, truncated; high and interlaced
    // ones by half of it, and not at all for 1.0 and 1.25; other sizes keep
    // the rendering size they had (640 x 480 after the case before).
    const Case cases[] = {
        {320, 224, 3.2f, 1024, 716}, {320, 224, 1.25f, 400, 280}, {352, 240, 2.5f, 880, 600},
        {320, 256, 5.0f, 1600, 1280}, {640, 448, 1.0f, 640, 448},  {640, 448, 1.25f, 640, 448},
        {640, 448, 2.0f, 640, 448},   {640, 448, 2.5f, 800, 560},  {640, 448, 4.0f, 1280, 896},
        {704, 480, 1.25f, 704, 480},  {704, 512, 3.0f, 1056, 768}, {640, 240, 2.0f, 640, 480},
        {500, 300, 2.0f, 640, 480},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.h << "x" << c.v << " at " << c.scale);
        renderer.SetRenderingScale(c.scale);
        renderer.SetSaturnResolution(c.h, c.v);
        EXPECT_EQ(renderer.GetRenderingHRes(), c.renderH);
        EXPECT_EQ(renderer.GetRenderingVRes(), c.renderV);
    }
    renderer.SetRenderingScale(3.2f);
    renderer.SetSaturnResolution(320, 224);
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 1024X716 (320X224X3.20)");
}

TEST_F(RenderingResolutionTest, ChangesLeaveOneResizeUntilTakenAndUnchangedValuesNone) {
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());
    renderer.SetRenderingScale(1.0f);
    renderer.SetSaturnResolution(320, 240);
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());

    renderer.SetSaturnResolution(640, 448);  // several changes in one frame
    renderer.SetRenderingScale(4.0f);
    renderer.SetSaturnResolution(320, 224);
    EXPECT_TRUE(renderer.TakeRenderingResolutionChange());
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange()) << "a change is taken once";
    EXPECT_EQ(renderer.GetRenderingHRes(), 1280);
    EXPECT_EQ(renderer.GetRenderingVRes(), 896);
    renderer.SetSaturnResolution(320, 224);
    renderer.SetRenderingScale(4.0f);
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());

    EXPECT_FALSE(renderer.IsWireframe());
    renderer.SetWireframe(true);
    EXPECT_TRUE(renderer.IsWireframe());
    EXPECT_TRUE(renderer.TakeWireframeChange());
    EXPECT_FALSE(renderer.TakeWireframeChange());
}

}  // namespace
}  // namespace vdpgl
