// COpenGl's rendering size: from the emulated mode and the scale, with the
// window title that shows it, the resize it leaves and the wireframe switch.
#include <gtest/gtest.h>

#include "render/opengl/opengl.h"
#include "temp_dir.h"

namespace vdpgl {
namespace {

TEST(RenderingResolutionTest, SizeFollowsTheEmulatedModeAndTheScaleAndLeavesOneResize) {
    test::ScopedTempDir dir;
    COpenGl renderer{nullptr};
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 320X240");
    // Low resolutions scale by the factor, truncated; high and interlaced ones by half of it, and not at
    // all for 1.0 and 1.25; other sizes keep the rendering size they had (640 x 480 after the row before).
    struct Case { int h, v; float scale; int renderH, renderV; };
    const Case cases[] = {
        {320, 240, 1.0f, 320, 240},   {320, 224, 3.2f, 1024, 716}, {320, 224, 1.25f, 400, 280},
        {352, 240, 2.5f, 880, 600},   {320, 256, 5.0f, 1600, 1280}, {640, 448, 1.0f, 640, 448},
        {640, 448, 1.25f, 640, 448},  {640, 448, 2.0f, 640, 448},  {640, 448, 2.5f, 800, 560},
        {640, 448, 4.0f, 1280, 896},  {704, 480, 1.25f, 704, 480}, {704, 512, 3.0f, 1056, 768},
        {640, 240, 2.0f, 640, 480},   {500, 300, 2.0f, 640, 480},
    };
    for (const Case& c : cases) {
        renderer.SetRenderingScale(c.scale);
        renderer.SetSaturnResolution(c.h, c.v);
        EXPECT_EQ(renderer.GetRenderingHRes() * 10000 + renderer.GetRenderingVRes(), c.renderH * 10000 + c.renderV)
            << c.h << "x" << c.v << " at " << c.scale;
        EXPECT_EQ(renderer.TakeRenderingResolutionChange(), &c != cases) << "a change unless nothing moved";
        EXPECT_FALSE(renderer.TakeRenderingResolutionChange()) << "a change is taken once";
    }
    renderer.SetSaturnResolution(640, 448);  // several changes in one frame leave one resize
    renderer.SetRenderingScale(3.2f);
    renderer.SetSaturnResolution(320, 224);
    EXPECT_EQ(renderer.WindowTitle(), "Resolution: 1024X716 (320X224X3.20)");
    EXPECT_TRUE(renderer.TakeRenderingResolutionChange());
    EXPECT_FALSE(renderer.TakeRenderingResolutionChange());

    EXPECT_FALSE(renderer.IsWireframe());
    renderer.SetWireframe(true);
    EXPECT_TRUE(renderer.IsWireframe() && renderer.TakeWireframeChange());
    EXPECT_FALSE(renderer.TakeWireframeChange());
}

}  // namespace
}  // namespace vdpgl
