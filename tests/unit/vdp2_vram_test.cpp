// CVdp2's VRAM ports: invalidation of cached cells and the bitmap-write hook of NBG0/NBG1. Each round
// starts with a reset, whose cell cache clear must delete the last round's cell of four slots once.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using Log = std::vector<std::pair<int, uint32_t>>;

struct RecordingListener final : CBitmapWriteListener {
    RecordingListener(int n, Log& l) : bg(n), log(l) {}
    void OnBitmapVramWrite(uint32_t address) override { log.emplace_back(bg, address); }
    int bg;
    Log& log;
};

using Vdp2VramTest = test::VdpTest;

TEST_F(Vdp2VramTest, OnlyAChangedValueMarksTheCellOfItsUnitAndTellsTheBitmapListeners) {
    Log log;
    RecordingListener nbg0(0, log), nbg1(1, log), other(9, log);  // only NBG0 and NBG1 take one
    for (int bg = -1; bg <= 6; ++bg) vdp2->SetBitmapWriteListener(bg, bg == 0 ? &nbg0 : bg == 1 ? &nbg1 : &other);
    const auto addCell = [](uint32_t start, uint32_t end) {  // puts itself in every slot it fills; the table owns it
        CPatternName request;
        request.characterAddress = start;
        request.cellDataSize = end - start;
        request.characterColorNumber = end - start == 32 ? 0 : end - start == 64 ? 1 : 2;
        return new CVdp2CharacterPattern(request, 0);
    };
    for (int width : {1, 2, 4}) {
        SCOPED_TRACE(width);
        const auto write = [&](uint32_t a, uint32_t v) {
            width == 1   ? vdp2->WriteVramByte(a, static_cast<uint8_t>(v))
            : width == 2 ? vdp2->WriteVramWord(a, static_cast<uint16_t>(v))
                         : vdp2->WriteVramLong(a, v);
        };
        vdp2->ResetVdp2();
        log.clear();
        CVdp2CharacterPattern *cell = addCell(64, 96), *next = addCell(96, 128), *wide = addCell(256, 384);
        write(0x80000 + 0x5C, 0x01020304);  // masked before the slot (2) is looked up
        EXPECT_TRUE(cell->modified && !next->modified);
        EXPECT_EQ(log, (Log{{0, 0x5C}, {1, 0x5C}})) << "NBG0 first, the masked address";
        cell->modified = false;
        write(0x5C, 0x01020304);  // equal values: the one stored, and zero over cleared VRAM
        write(0x60, 0);
        EXPECT_TRUE(!cell->modified && !next->modified && log.size() == 2);
        write(0x17C, 0xFFFFFFFF);  // the last slot of a cell that fills four
        write(0x400, 0xFFFFFFFF);  // an empty slot: listeners only
        EXPECT_TRUE(wide->modified && log.size() == 6);
    }
}

}  // namespace
}  // namespace vdpgl
