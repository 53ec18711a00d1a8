// The frame's draw list: runs follow painter's order, and a run ends wherever
// texture, filtering or primitive kind changes.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "render/draw_list.h"
#include "vdp1/vdp1_part_drawing.h"
#include "vdp1/vdp1_part.h"

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

TEST(DrawListTest, APartBeyondOneEdgeOfTheScreenIsLeftOutAndOneThatReachesItIsKept) {
    struct Case {
        const char* what;
        int corners[4][2];
        size_t polygonVertices, lineVertices;  // the line joins the first two corners
    };
    const Case cases[] = {
        {"left", {{-50, 10}, {-3, 10}, {-3, 40}, {-50, 40}}, 0, 0},
        {"right", {{323, 10}, {400, 10}, {400, 40}, {323, 40}}, 0, 0},
        {"above", {{10, -40}, {40, -40}, {40, -3}, {10, -3}}, 0, 0},
        {"below", {{10, 227}, {40, 227}, {40, 300}, {10, 300}}, 0, 0},
        {"across the left edge", {{-50, 10}, {1, 10}, {1, 40}, {-50, 40}}, 4, 2},
        {"within the margin", {{-2, 10}, {-1, 10}, {-1, 40}, {-2, 40}}, 4, 2},
        {"corners past different edges", {{160, -100}, {500, 112}, {160, 400}, {-200, 112}}, 4, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CVdp1Part part;
        for (int i = 0; i < 4; ++i)
            part.vertices[i] = {static_cast<int16_t>(c.corners[i][0]), static_cast<int16_t>(c.corners[i][1])};
        CDrawList list;
        list.SetScreen(320, 224);
        AppendPolygon(list, part);
        EXPECT_EQ(list.VertexCount(), c.polygonVertices);
        list.Clear();
        AppendLine(list, part);
        EXPECT_EQ(list.VertexCount(), c.lineVertices);
    }
}

}  // namespace
}  // namespace vdpgl
