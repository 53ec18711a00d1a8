// A plane texture's cells kept on our side: each band of 8 rows with changed
// cells goes up once, as one span from its leftmost to its rightmost change,
// with the texels between as they were; neighbouring bands go up together
// unless that sends too many unchanged texels.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "render/cell_staging.h"

namespace vdpgl {
namespace {

struct Upload {
    int x, y, width, height;
    std::vector<uint32_t> firstRow;
    bool operator==(const Upload&) const = default;
};

std::vector<Upload> Take(CCellStaging& staging) {
    std::vector<Upload> uploads;
    staging.TakeChanges([&](int x, int y, int width, int height, const uint32_t* texels) {
        uploads.push_back({x, y, width, height, std::vector<uint32_t>(texels, texels + width)});
    });
    return uploads;
}

TEST(CellStagingTest, EachChangedBandGoesUpOnceAsTheSpanOfItsChanges) {
    CCellStaging staging(7, 64, 32);
    std::vector<uint32_t> a(64, 0xAAu), b(64, 0xBBu);
    staging.Write(a.data(), 8, 0);
    staging.Write(b.data(), 32, 0);
    staging.Write(b.data(), 56, 16);
    EXPECT_TRUE(staging.Dirty());
    std::vector<uint32_t> band0(32, 0u);  // x 8 to 40: a, the untouched texels between, b
    std::fill(band0.begin(), band0.begin() + 8, 0xAAu);
    std::fill(band0.begin() + 24, band0.end(), 0xBBu);
    EXPECT_EQ(Take(staging),
              (std::vector<Upload>{{8, 0, 32, 8, band0}, {56, 16, 8, 8, std::vector<uint32_t>(8, 0xBBu)}}))
        << "bands 0 and 2 are not neighbours";
    EXPECT_FALSE(staging.Dirty());
    EXPECT_TRUE(Take(staging).empty()) << "changes are handed over once";

    // Written over later, a cell goes up with what was kept beside it; one off the band grid marks both bands,
    // which go up together; one outside the texture is ignored.
    staging.Write(a.data(), 32, 0);
    staging.Write(a.data(), 0, 4);
    staging.Write(a.data(), 60, 0);
    const std::vector<Upload> again = Take(staging);
    ASSERT_EQ(again.size(), 1u);
    EXPECT_EQ(std::tuple(again[0].x, again[0].y, again[0].width, again[0].height), std::tuple(0, 0, 40, 16));
    EXPECT_EQ(again[0].firstRow[8], 0xAAu) << "the first cell, kept from before";
}

TEST(CellStagingTest, ChangesGoUpTogetherUnlessTooMuchBetweenThemIsUnchanged) {
    // Each case: the x of the changed cells in each of bands 0, 1 and 2 of a texture 4096 wide; the rectangles
    // (x, y, width, height) that go up.
    struct Case {
        const char* what;
        std::vector<int> xs[3];
        std::vector<std::tuple<int, int, int, int>> rectangles;
    };
    const Case cases[] = {
        {"side by side", {{0}, {8}, {16}}, {{0, 0, 24, 24}}},
        {"a little apart", {{0}, {64}, {}}, {{0, 0, 72, 16}}},
        {"far apart: two calls cost less", {{0}, {3000}, {}}, {{0, 0, 8, 8}, {3000, 8, 8, 8}}},
        {"a clean band between", {{0}, {}, {8}}, {{0, 0, 8, 8}, {8, 16, 8, 8}}},
        {"one band, 24 cells between", {{0, 200}, {}, {}}, {{0, 0, 208, 8}}},
        {"one band, far apart", {{0, 3000}, {}, {}}, {{0, 0, 8, 8}, {3000, 0, 8, 8}}},
        {"both ends of a view round the edge", {{0, 8, 4080}, {0, 4088}, {8}},
         {{4080, 0, 16, 16}, {0, 0, 16, 24}}},
    };
    const std::vector<uint32_t> cell(64, 0x11u);
    for (const Case& c : cases) {
        CCellStaging staging(1, 4096, 32);
        for (int band = 0; band < 3; ++band)
            for (int x : c.xs[band]) staging.Write(cell.data(), x, band * 8);
        std::vector<std::tuple<int, int, int, int>> rectangles;
        staging.TakeChanges([&](int x, int y, int width, int height, const uint32_t*) {
            rectangles.emplace_back(x, y, width, height);
        });
        EXPECT_EQ(rectangles, c.rectangles) << c.what;
    }
}

}  // namespace
}  // namespace vdpgl
