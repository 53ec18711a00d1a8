// A plane texture's cells kept on our side: each band of 8 rows with changed
// cells goes up once, as one span from its leftmost to its rightmost change,
// with the texels between as they were.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "render/cell_staging.h"

namespace vdpgl {
namespace {

struct Upload {
    int x, y, width;
    std::vector<uint32_t> firstRow;
    bool operator==(const Upload&) const = default;
};

std::vector<Upload> Take(CCellStaging& staging) {
    std::vector<Upload> uploads;
    staging.TakeChanges([&](int x, int y, int width, const uint32_t* texels) {
        uploads.push_back({x, y, width, std::vector<uint32_t>(texels, texels + width)});
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
    EXPECT_EQ(Take(staging), (std::vector<Upload>{{8, 0, 32, band0}, {56, 16, 8, std::vector<uint32_t>(8, 0xBBu)}}));
    EXPECT_FALSE(staging.Dirty());
    EXPECT_TRUE(Take(staging).empty()) << "changes are handed over once";

    // Written over later, a cell goes up with what was kept beside it; one off the band grid marks both bands;
    // one outside the texture is ignored.
    staging.Write(a.data(), 32, 0);
    staging.Write(a.data(), 0, 4);
    staging.Write(a.data(), 60, 0);
    const std::vector<Upload> again = Take(staging);
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(std::tuple(again[0].x, again[0].y, again[0].width), std::tuple(0, 0, 40));
    EXPECT_EQ(std::tuple(again[1].x, again[1].y, again[1].width), std::tuple(0, 8, 8));
    EXPECT_EQ(again[0].firstRow[8], 0xAAu) << "the first cell, kept from before";
}

}  // namespace
}  // namespace vdpgl
