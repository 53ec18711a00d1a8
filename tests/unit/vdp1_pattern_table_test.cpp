// VDP1 VRAM through CVdp1's ports, and the table of cached character
// patterns that the ports invalidate: storage order, address masking, the
// modified rule, purge and clear, and the editor's views of the table.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

using Patterns = std::vector<CVdp1CharacterPattern*>;

class Vdp1PatternTableTest : public ::testing::Test {
protected:
    Vdp1PatternTableTest() {
        vdp1->Link(*vdp2);
        baseCount = CVdp1CharacterPattern::PatternCount();
    }

    // Enters a new pattern at table entries [first, first + count), as the
    // texture cache does for a pattern covering count 8-byte units.
    CVdp1CharacterPattern* AddPattern(uint32_t first, uint32_t count) {
        auto* p = new CVdp1CharacterPattern;
        p->startAddress = first << 3;
        p->endAddress = (first + count) << 3;
        for (uint32_t i = first; i < first + count; ++i) vdp1->characterPatterns[i] = p;
        return p;
    }
    int Live() const { return CVdp1CharacterPattern::PatternCount() - baseCount; }

    // First, so that the objects below are built (and delete old logs) inside it.
    test::ScopedTempDir tempDir;
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
    int baseCount = 0;
};

TEST_F(Vdp1PatternTableTest, InvalidationUsesTheMaskedAddress) {
    CVdp1CharacterPattern* p = AddPattern(2, 1);
    vdp1->WriteVramByte(0x80010, 0x01);
    EXPECT_TRUE(p->modified);
    EXPECT_EQ(vdp1->GetPattern(0x80010), p);
}

void WriteVram(CVdp1& vdp1, int width, uint32_t a, uint32_t v) {
    switch (width) {
    case 8: vdp1.WriteVramByte(a, static_cast<uint8_t>(v)); break;
    case 16: vdp1.WriteVramWord(a, static_cast<uint16_t>(v)); break;
    default: vdp1.WriteVramLong(a, v); break;
    }
}

TEST_F(Vdp1PatternTableTest, OnlyAChangedValueMarksTheCoveringPatternModified) {
    // The covering pattern holds bytes 0x100 to 0x107; the value differs
    // from the stored one in one byte only.
    struct Case { int width; uint32_t address, stored, different; };
    const Case cases[] = {
        {8, 0x105, 0x77, 0x76},
        {16, 0x106, 0x1234, 0x1235},
        {16, 0x100, 0x1234, 0x9234},
        {32, 0x104, 0x89ABCDEF, 0x88ABCDEF},
        {32, 0x100, 0x89ABCDEF, 0x89ABCDEE},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " bits at 0x" << std::hex << c.address);
        vdp1->ClearPatternCache();
        WriteVram(*vdp1, c.width, c.address, c.stored);  // before any pattern covers it
        CVdp1CharacterPattern* before = AddPattern(0x1F, 1);
        CVdp1CharacterPattern* covering = AddPattern(0x20, 1);
        CVdp1CharacterPattern* after = AddPattern(0x21, 1);
        WriteVram(*vdp1, c.width, c.address, c.stored);
        EXPECT_FALSE(covering->modified);
        WriteVram(*vdp1, c.width, c.address, c.different);
        EXPECT_TRUE(covering->modified);
        EXPECT_FALSE(before->modified);
        EXPECT_FALSE(after->modified);
    }
}

TEST_F(Vdp1PatternTableTest, WritesToUncoveredVramMarkNothing) {
    CVdp1CharacterPattern* p = AddPattern(0x40, 2);  // bytes 0x200 to 0x20F
    vdp1->WriteVramLong(0x1FC, 0xFFFFFFFF);
    vdp1->WriteVramLong(0x210, 0xFFFFFFFF);
    vdp1->WriteVramByte(0x1FF, 0xFF);
    EXPECT_FALSE(p->modified);
    vdp1->WriteVramByte(0x20F, 0xFF);  // last byte of its second unit
    EXPECT_TRUE(p->modified);
}

TEST_F(Vdp1PatternTableTest, PurgeDeletesEachModifiedPatternOnceAndKeepsTheOthers) {
    CVdp1CharacterPattern* wide = AddPattern(0x100, 8);
    CVdp1CharacterPattern* next = AddPattern(0x108, 3);
    CVdp1CharacterPattern* far = AddPattern(0xFFFF, 1);
    ASSERT_EQ(Live(), 3);
    vdp1->WriteVramByte(0x100 * 8 + 0x3A, 0x9C);  // inside wide's eighth unit
    vdp1->WriteVramWord(0x7FFF8, 0x0102);
    ASSERT_TRUE(wide->modified && far->modified);

    vdp1->PurgeModifiedPatterns();
    EXPECT_EQ(Live(), 1);
    for (uint32_t i = 0x100; i < 0x108; ++i) EXPECT_EQ(vdp1->characterPatterns[i], nullptr) << i;
    for (uint32_t i = 0x108; i < 0x10B; ++i) EXPECT_EQ(vdp1->characterPatterns[i], next) << i;
    EXPECT_EQ(vdp1->characterPatterns[0xFFFF], nullptr);

    vdp1->PurgeModifiedPatterns();  // nothing modified left
    EXPECT_EQ(Live(), 1);
}

TEST_F(Vdp1PatternTableTest, ClearDeletesEveryPatternOnceAndEmptiesTheTable) {
    AddPattern(0, 16);
    AddPattern(16, 1);
    AddPattern(0x8000, 200);
    AddPattern(0xFFF0, 16)->modified = true;
    ASSERT_EQ(Live(), 4);
    vdp1->ClearPatternCache();
    EXPECT_EQ(Live(), 0);
    for (uint32_t i = 0; i < CVdp1::kPatternTableSize; ++i)
        ASSERT_EQ(vdp1->characterPatterns[i], nullptr) << i;
    vdp1->ClearPatternCache();
    EXPECT_EQ(Live(), 0);
}

TEST_F(Vdp1PatternTableTest, DestroyingVdp1DeletesItsPatterns) {
    AddPattern(0x300, 4);
    AddPattern(0x304, 1);
    ASSERT_EQ(Live(), 2);
    vdp1.reset();
    EXPECT_EQ(Live(), 0);
}

TEST_F(Vdp1PatternTableTest, CachedPatternsListsValidPatternsOnceInAddressOrder) {
    EXPECT_TRUE(vdp1->GetCachedPatterns().empty());
    // Created out of address order; b and c are adjacent, e ends the table.
    CVdp1CharacterPattern* e = AddPattern(0xFFFE, 2);
    CVdp1CharacterPattern* c = AddPattern(0x2004, 1);
    CVdp1CharacterPattern* b = AddPattern(0x2000, 4);
    CVdp1CharacterPattern* a = AddPattern(0, 3);
    CVdp1CharacterPattern* d = AddPattern(0x5000, 32);
    CVdp1CharacterPattern* modified = AddPattern(0x4000, 2);
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c, modified, d, e}));

    vdp1->WriteVramByte(0x4000 * 8 + 9, 0x44);  // its second unit
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c, d, e}));
    // Listing changes nothing: the modified pattern is still in the table.
    EXPECT_EQ(vdp1->characterPatterns[0x4000], modified);
    EXPECT_EQ(Live(), 6);
}

TEST_F(Vdp1PatternTableTest, GetPatternLooksUpTheEightByteUnitOfAnAddress) {
    CVdp1CharacterPattern* p = AddPattern(0x200, 8);  // bytes 0x1000 to 0x103F
    EXPECT_EQ(vdp1->GetPattern(0x0FFF), nullptr);
    EXPECT_EQ(vdp1->GetPattern(0x1000), p);
    EXPECT_EQ(vdp1->GetPattern(0x1007), p);
    EXPECT_EQ(vdp1->GetPattern(0x103F), p);
    EXPECT_EQ(vdp1->GetPattern(0x1040), nullptr);
    // Modified patterns are still returned; the caller decides.
    vdp1->WriteVramByte(0x1020, 0x01);
    EXPECT_EQ(vdp1->GetPattern(0x1020), p);
}

}  // namespace
}  // namespace vdpgl
