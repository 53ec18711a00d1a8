// CVdp2's VRAM ports: console byte order, address masking, invalidation of
// cached cells, the bitmap-write hook of NBG0/NBG1, and clearing the cell
// cache.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

class Vdp2VramTest : public ::testing::Test {
protected:
    // Puts a cell covering [start, end) into every slot it fills; the table owns it.
    CVdp2CharacterPattern* AddCell(uint32_t start, uint32_t end) {
        auto* cell = new CVdp2CharacterPattern(start, end);
        for (uint32_t slot = start / 32; slot < end / 32; ++slot) vdp2->cells[slot] = cell;
        return cell;
    }

    test::ScopedTempDir tempDir;  // VDP2 deletes old logs in the current directory
    COpenGl renderer{nullptr};
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(renderer);
};

using Log = std::vector<std::pair<int, uint32_t>>;

class RecordingListener final : public CBitmapWriteListener {
public:
    RecordingListener(int bg, Log& log) : bg(bg), log(log) {}
    void OnBitmapVramWrite(uint32_t address) override { log.emplace_back(bg, address); }

private:
    int bg;
    Log& log;
};

struct WritePort {
    const char* name;
    void (*write)(CVdp2&, uint32_t address, uint32_t value);
};

const WritePort kWritePorts[] = {
    {"byte", [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramByte(a, static_cast<uint8_t>(x)); }},
    {"word", [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramWord(a, static_cast<uint16_t>(x)); }},
    {"long", [](CVdp2& v, uint32_t a, uint32_t x) { v.WriteVramLong(a, x); }},
};

TEST_F(Vdp2VramTest, ChangedValueMarksTheCellOfItsUnitModified) {
    for (const WritePort& port : kWritePorts) {
        SCOPED_TRACE(port.name);
        vdp2->ResetVdp2();
        CVdp2CharacterPattern* cell = AddCell(64, 96);     // slot 2
        CVdp2CharacterPattern* next = AddCell(96, 128);    // slot 3
        CVdp2CharacterPattern* wide = AddCell(256, 384);   // slots 8-11

        port.write(*vdp2, 0x80000 + 0x5C, 0x01020304);  // masked before the slot is looked up
        EXPECT_TRUE(cell->modified);
        EXPECT_FALSE(next->modified);

        cell->modified = false;
        port.write(*vdp2, 0x5C, 0x01020304);  // the value already stored
        EXPECT_FALSE(cell->modified);

        port.write(*vdp2, 0x17C, 0xFFFFFFFF);  // last slot of a cell that fills four
        EXPECT_TRUE(wide->modified);
        port.write(*vdp2, 0x400, 0xFFFFFFFF);  // an empty slot
        EXPECT_FALSE(next->modified);
    }
}

TEST_F(Vdp2VramTest, BitmapListenersHearEveryChangingWriteNbg0First) {
    Log log;
    RecordingListener nbg0(0, log), nbg1(1, log);
    vdp2->SetBitmapWriteListener(kNbg0, &nbg0);
    vdp2->SetBitmapWriteListener(kNbg1, &nbg1);
    for (const WritePort& port : kWritePorts) {
        SCOPED_TRACE(port.name);
        log.clear();
        port.write(*vdp2, 0x80000 + 0x1230, 0xA5A5A5A5);
        EXPECT_EQ(log, (Log{{0, 0x1230}, {1, 0x1230}}));
        log.clear();
        port.write(*vdp2, 0x1230, 0xA5A5A5A5);  // equal value: no notification
        EXPECT_TRUE(log.empty());
    }

    vdp2->SetBitmapWriteListener(kNbg1, nullptr);
    log.clear();
    vdp2->WriteVramWord(0x7FFFE, 0x0001);
    EXPECT_EQ(log, (Log{{0, 0x7FFFE}}));
}

TEST_F(Vdp2VramTest, BitmapListenersForOtherBackgroundsAreIgnored) {
    Log log;
    RecordingListener nbg0(0, log), other(9, log);
    vdp2->SetBitmapWriteListener(kNbg0, &nbg0);
    for (int bg : {-1, 2, 3, 4, 5, 6}) vdp2->SetBitmapWriteListener(bg, &other);
    vdp2->WriteVramByte(0x40, 0x77);
    EXPECT_EQ(log, (Log{{0, 0x40}}));
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
