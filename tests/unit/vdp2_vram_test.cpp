// CVdp2's VRAM ports: invalidation of cached cells, the bitmap-write hook of
// NBG0/NBG1, and clearing the cell cache.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Log = std::vector<std::pair<int, uint32_t>>;

class Vdp2VramTest : public test::VdpTest {
protected:
    // Puts a cell covering [start, end) into every slot it fills; the table owns it.
    CVdp2CharacterPattern* AddCell(uint32_t start, uint32_t end) {
        auto* cell = new CVdp2CharacterPattern(start, end);
        for (uint32_t slot = start / 32; slot < end / 32; ++slot) vdp2->cells[slot] = cell;
        return cell;
    }
};

class RecordingListener final : public CBitmapWriteListener {
public:
    RecordingListener(int bg, Log& log) : bg(bg), log(log) {}
    void OnBitmapVramWrite(uint32_t address) override { log.emplace_back(bg, address); }

private:
    int bg;
    Log& log;
};

using WritePort = void (*)(CVdp2&, uint32_t address, uint32_t value);
const WritePort kWritePorts[] = {
    [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramByte(a, static_cast<uint8_t>(x)); },
    [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramWord(a, static_cast<uint16_t>(x)); },
    [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramLong(a, x); },
};

TEST_F(Vdp2VramTest, OnlyAChangedValueMarksTheCellOfItsUnitAndTellsTheBitmapListeners) {
    Log log;
    RecordingListener nbg0(0, log), nbg1(1, log), other(9, log);
    vdp2->SetBitmapWriteListener(kNbg0, &nbg0);
    vdp2->SetBitmapWriteListener(kNbg1, &nbg1);
    for (int bg : {-1, 2, 3, 4, 5, 6}) vdp2->SetBitmapWriteListener(bg, &other);  // ignored
    for (const WritePort& write : kWritePorts) {
        SCOPED_TRACE(&write - kWritePorts);
        vdp2->ResetVdp2();
        log.clear();
        CVdp2CharacterPattern* cell = AddCell(64, 96);    // slot 2
        CVdp2CharacterPattern* next = AddCell(96, 128);   // slot 3
        CVdp2CharacterPattern* wide = AddCell(256, 384);  // slots 8-11

        write(*vdp2, 0x80000 + 0x5C, 0x01020304);  // masked before the slot is looked up
        EXPECT_TRUE(cell->modified);
        EXPECT_FALSE(next->modified);
        EXPECT_EQ(log, (Log{{0, 0x5C}, {1, 0x5C}})) << "NBG0 first, the masked address";

        // Equal values: the one already stored, and zero over the cleared VRAM.
        cell->modified = false;
        log.clear();
        write(*vdp2, 0x5C, 0x01020304);
        write(*vdp2, 0x60, 0);
        EXPECT_FALSE(cell->modified);
        EXPECT_FALSE(next->modified);
        EXPECT_TRUE(log.empty());

        write(*vdp2, 0x17C, 0xFFFFFFFF);  // last slot of a cell that fills four
        EXPECT_TRUE(wide->modified);
        write(*vdp2, 0x400, 0xFFFFFFFF);  // an empty slot: listeners only
        EXPECT_EQ(log.size(), 4u);
    }
    vdp2->SetBitmapWriteListener(kNbg1, nullptr);
    log.clear();
    vdp2->WriteVramWord(0x7FFFE, 0x0001);
    EXPECT_EQ(log, (Log{{0, 0x7FFFE}}));
}

TEST_F(Vdp2VramTest, ClearCellCacheDeletesEachCellOnceAndEmptiesItsSlots) {
    CVdp2CharacterPattern* wide = AddCell(128, 256);  // slots 4-7
    AddCell(320, 352);                                // slot 10
    AddCell(3200, 3264);                              // slots 100-101
    vdp2->WriteVramByte(0xC3, 0x01);                  // slot 6 belongs to the wide cell
    EXPECT_TRUE(wide->modified);

    // Deleting a cell once per slot would abort the allocator (double free).
    vdp2->ClearCellCache();
    for (uint32_t slot = 0; slot < CVdp2::kCellTableSize; ++slot) ASSERT_EQ(vdp2->cells[slot], nullptr) << slot;

    // The emptied table is harmless for later writes and clears.
    vdp2->WriteVramByte(0xC3, 0x02);
    vdp2->ClearCellCache();
    EXPECT_EQ(vdp2->ReadVramByte(0xC3), 0x02);
}

}  // namespace
}  // namespace vdpgl
