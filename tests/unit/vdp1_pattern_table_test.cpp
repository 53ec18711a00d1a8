// The table of cached VDP1 patterns as the VRAM ports, the purge, the clear
// and the editor's listing meet it, with patterns entered by hand.
#include <cstdint>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Patterns = std::vector<CVdp1CharacterPattern*>;

class Vdp1PatternTableTest : public test::VdpTest {
protected:
    // A pattern at table entries [first, first + count), as the cache maps one.
    CVdp1CharacterPattern* AddPattern(uint32_t first, uint32_t count) {
        auto* p = new CVdp1CharacterPattern;
        p->startAddress = first << 3;
        p->endAddress = (first + count) << 3;
        for (uint32_t i = first; i < first + count; ++i) vdp1->characterPatterns[i & 0xFFFF] = p;
        return p;
    }
};

TEST_F(Vdp1PatternTableTest, AChangedValueMarksOnlyThePatternOfItsUnit) {
    // The covering pattern holds bytes 0x100 to 0x107; the value differs
    // from the stored one in one byte only.
    struct Case { int width; uint32_t address, stored, different; };
    const Case cases[] = {
        {8, 0x105, 0x77, 0x76},          {16, 0x106, 0x1234, 0x1235},           {16, 0x100, 0x1234, 0x9234},
        {32, 0x104, 0x89ABCDEF, 0x88ABCDEF}, {32, 0x80100, 0x89ABCDEF, 0x89ABCDEE},  // masked into VRAM
    };
    const auto write = [this](int width, uint32_t a, uint32_t v) {
        if (width == 8) vdp1->WriteVramByte(a, static_cast<uint8_t>(v));
        else if (width == 16) vdp1->WriteVramWord(a, static_cast<uint16_t>(v));
        else vdp1->WriteVramLong(a, v);
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.width << " bits at 0x" << std::hex << c.address);
        vdp1->ClearPatternCache();
        write(c.width, c.address, c.stored);  // before any pattern covers it
        CVdp1CharacterPattern* before = AddPattern(0x1F, 1);
        CVdp1CharacterPattern* covering = AddPattern(0x20, 1);
        CVdp1CharacterPattern* after = AddPattern(0x21, 1);
        write(c.width, c.address, c.stored);
        EXPECT_FALSE(covering->modified);
        write(c.width, c.address, c.different);
        EXPECT_TRUE(covering->modified);
        EXPECT_FALSE(before->modified || after->modified);
        EXPECT_EQ(vdp1->GetPattern(c.address), covering);
    }
}

TEST_F(Vdp1PatternTableTest, ListingSkipsModifiedPatternsThePurgeDeletesThemOnceAndTheClearAll) {
    // Created out of address order; b and c are adjacent, e ends the table.
    CVdp1CharacterPattern* e = AddPattern(0xFFFE, 2);
    CVdp1CharacterPattern* c = AddPattern(0x2004, 1);
    CVdp1CharacterPattern* b = AddPattern(0x2000, 4);
    CVdp1CharacterPattern* a = AddPattern(0, 3);
    CVdp1CharacterPattern* wide = AddPattern(0x4000, 8);
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c, wide, e}));
    vdp1->WriteVramByte(0x4000 * 8 + 0x3A, 0x9C);  // wide's last unit
    vdp1->WriteVramWord(0x7FFF8, 0x0102);        // e's last
    EXPECT_EQ(vdp1->GetCachedPatterns(), (Patterns{a, b, c}));
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 5) << "listing deletes nothing";

    vdp1->PurgeModifiedPatterns();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 3);
    for (uint32_t i = 0x4000; i < 0x4008; ++i) EXPECT_EQ(vdp1->characterPatterns[i], nullptr) << i;
    EXPECT_EQ(vdp1->characterPatterns[0xFFFF], nullptr);
    EXPECT_EQ(vdp1->characterPatterns[0x2003], b);
    vdp1->PurgeModifiedPatterns();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 3);

    vdp1->ClearPatternCache();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 0);
    for (uint32_t i = 0; i < CVdp1::kPatternTableSize; ++i) ASSERT_EQ(vdp1->characterPatterns[i], nullptr) << i;
    AddPattern(0x300, 4);
    vdp1.reset();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 0) << "VDP1 deletes its patterns when it goes";
}

}  // namespace
}  // namespace vdpgl
