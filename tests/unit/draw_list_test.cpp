// The frame's draw list: runs follow painter's order, and a run ends wherever
// texture, filtering or primitive kind changes.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "render/draw_list.h"

namespace vdpgl {
namespace {

using RunFields = std::tuple<uint32_t, bool, DrawPrimitive, uint32_t, uint32_t>;

std::vector<RunFields> Runs(const CDrawList& list) {
    std::vector<RunFields> runs;
    for (const DrawRun& r : list.Runs()) runs.emplace_back(r.texture, r.filtered, r.primitive, r.first, r.count);
    return runs;
}

TEST(DrawListTest, ConsecutivePrimitivesSharingStateMakeOneRunAndOrderIsKept) {
    constexpr auto Q = DrawPrimitive::kQuads, L = DrawPrimitive::kLines;
    CDrawList list;
    list.Add(Q, 7, false, 4);
    list.Add(Q, 7, false, 4);
    list.Add(Q, 9, false, 4);
    list.Add(Q, 7, false, 4);  // A, A, B, A: three runs, never A, A, A, B
    list.Add(Q, 7, true, 4);   // the same texture filtered
    list.Add(L, 0, false, 2);
    list.Add(L, 0, false, 8);
    list.Add(Q, 0, false, 4);
    EXPECT_EQ(Runs(list), (std::vector<RunFields>{{7, false, Q, 0, 8},
                                            {9, false, Q, 8, 4},
                                            {7, false, Q, 12, 4},
                                            {7, true, Q, 16, 4},
                                            {0, false, L, 20, 10},
                                            {0, false, Q, 30, 4}}));
    EXPECT_EQ(list.VertexCount(), 34u);
    list.Clear();
    EXPECT_TRUE(list.Empty());
    list.Add(Q, 9, false, 4);
    EXPECT_EQ(Runs(list), (std::vector<RunFields>{{9, false, Q, 0, 4}})) << "a cleared list starts a new frame";
}

TEST(DrawListTest, ConsolePixelsMapOntoTheDeviceSquare) {
    CDrawList list;
    list.SetScreen(320, 224);
    EXPECT_EQ(std::tuple(list.DeviceX(0), list.DeviceX(160), list.DeviceX(320)), std::tuple(-1.0f, 0.0f, 1.0f));
    EXPECT_EQ(std::tuple(list.DeviceY(0), list.DeviceY(112), list.DeviceY(224)), std::tuple(1.0f, 0.0f, -1.0f));
}

}  // namespace
}  // namespace vdpgl
