// The atlas's slots: no two live textures ever share a texel, the white
// texel's block is never handed out, pages go when emptied (but page 0) and
// their number is bounded.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <tuple>
#include <vector>

#include "render/texture_atlas.h"

namespace vdpgl {
namespace {

struct Placed {
    CTextureAtlas::Slot slot;
    int width, height;
};

bool Overlap(const Placed& a, const Placed& b) {
    return a.slot.page == b.slot.page && a.slot.x < b.slot.x + b.width && b.slot.x < a.slot.x + a.width &&
           a.slot.y < b.slot.y + b.height && b.slot.y < a.slot.y + a.height;
}

TEST(TextureAtlasTest, RandomMakingAndGivingBackNeverOverlapsAndKeepsTheWhiteTexel) {
    CTextureAtlas atlas;
    std::mt19937 random(7);
    std::vector<Placed> live;
    for (int step = 0; step < 20000; ++step) {
        if (!live.empty() && (random() % 100 < 45 || live.size() > 3000)) {
            const size_t i = random() % live.size();
            atlas.Free(live[i].slot);
            live[i] = live.back();
            live.pop_back();
            continue;
        }
        const int w = 1 << (random() % 7), h = 1 << (random() % 7);
        bool newPage = false;
        const CTextureAtlas::Slot slot = atlas.Allocate(w, h, newPage);
        ASSERT_GE(slot.page, 0) << "room left for " << w << "x" << h;
        const Placed placed{slot, w, h};
        ASSERT_FALSE(slot.x < CTextureAtlas::kBlockSide && slot.y < CTextureAtlas::kBlockSide) << "the white block";
        ASSERT_LE(slot.x + w, CTextureAtlas::kPageSide);
        ASSERT_LE(slot.y + h, CTextureAtlas::kPageSide);
        for (const Placed& other : live) ASSERT_FALSE(Overlap(placed, other)) << step;
        live.push_back(placed);
    }
    EXPECT_EQ(atlas.SlotCount(), static_cast<int>(live.size()));
    for (const Placed& p : live) atlas.Free(p.slot);
    EXPECT_EQ(std::tuple(atlas.SlotCount(), atlas.PageCount()), std::tuple(0, 1)) << "page 0 stays";
}

TEST(TextureAtlasTest, SizesItCannotPlaceAndTheLastPage) {
    CTextureAtlas atlas;
    bool newPage = false;
    for (auto [w, h] : {std::pair(128, 8), std::pair(8, 128), std::pair(24, 8), std::pair(0, 8)})
        EXPECT_EQ(atlas.Allocate(w, h, newPage).page, -1) << w << "x" << h;
    // Every page full of 64 x 64 textures: the next one has no place.
    std::vector<CTextureAtlas::Slot> slots;
    int pagesMade = 0;
    for (int i = 0; i < CTextureAtlas::kMostPages * (CTextureAtlas::kBlocksPerPage - 1); ++i) {
        slots.push_back(atlas.Allocate(64, 64, newPage));
        pagesMade += newPage;
    }
    EXPECT_EQ(pagesMade, CTextureAtlas::kMostPages);
    EXPECT_EQ(atlas.Allocate(64, 64, newPage).page, -1);
    // A page emptied goes (and says so), but page 0.
    int dropped = 0;
    for (const CTextureAtlas::Slot& s : slots) dropped += atlas.Free(s);
    EXPECT_EQ(std::tuple(dropped, atlas.PageCount()), std::tuple(CTextureAtlas::kMostPages - 1, 1));
    EXPECT_FALSE(atlas.Free(slots.front())) << "a slot given back twice is ignored";
}

}  // namespace
}  // namespace vdpgl
