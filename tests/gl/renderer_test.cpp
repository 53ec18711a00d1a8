#include <gtest/gtest.h>

#include <vector>

#include "render/opengl/opengl.h"
#include "vdp1/vdp1_part.h"
#include "../unit/temp_dir.h"

namespace vdpgl {
namespace {

TEST(RendererSmoke, HeadlessContextDrawsAPolygon) {
    test::ScopedTempDir dir;
    COpenGl gl(nullptr);
    gl.SetSaturnResolution(320, 224);
    gl.InitGl(nullptr);
    ASSERT_TRUE(gl.HasContext());
    gl.ApplyPendingChanges();
    CVdp1Part part;
    part.vertices[0] = {10, 10}; part.vertices[1] = {26, 10}; part.vertices[2] = {26, 20}; part.vertices[3] = {10, 20};
    for (auto& c : part.colors) c = {1.0f, 0.0f, 0.0f};
    gl.DrawPolygon(part);
    gl.SwapFrameBuffers();
    std::vector<uint8_t> rgba(320 * 224 * 4);
    ASSERT_TRUE(gl.CaptureDisplay(rgba.data(), 320, 224));
    auto px = [&](int x, int y) { return rgba[(y * 320 + x) * 4]; };
    EXPECT_EQ(px(9, 15), 0);
    EXPECT_EQ(px(10, 15), 255);
    EXPECT_EQ(px(25, 15), 255);
    EXPECT_EQ(px(26, 15), 0);
    EXPECT_EQ(px(15, 9), 0);
    EXPECT_EQ(px(15, 10), 255);
    EXPECT_EQ(px(15, 19), 255);
    EXPECT_EQ(px(15, 20), 0);
}

}  // namespace
}  // namespace vdpgl
