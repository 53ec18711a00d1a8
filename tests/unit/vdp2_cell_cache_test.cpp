// The VDP2 cell cache: one cell per VRAM unit, one picture per palette, re-decoded only when its VRAM or its palette
// changed, and the plane texture written only where its record says it does not show the character yet.
#include <gtest/gtest.h>

#include "common/color_word.h"
#include "vdp2/background/normal_background.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;

class Vdp2CellCacheTest : public test::VdpTest {
protected:
    // NBG0 with one-word names (16 colours, 1 x 1 characters) at kMap; entry i names `name`.
    Vdp2CellCacheTest() : nbg0(static_cast<CNormalBackground&>(*vdp2->Background(kNbg0))) {
        vdp2->WriteRegisterWord(PNCN0, 0x8000);
        for (uint32_t i = 0; i < 64; ++i) vdp2->WriteVramByte(0x1000 + i, static_cast<uint8_t>(0x11 * (i % 15 + 1)));
        Frame();
    }
    void Frame() {
        vdp2->OnVblankOut();
        nbg0.UpdateFromRegisters();
    }
    // Entry 0 names character `character` with palette `palette`; drawn at plane position (x, y).
    CPatternName Draw(uint32_t character, uint32_t palette, int32_t x = 0, int32_t y = 0) {
        vdp2->WriteVramWord(kMap, static_cast<uint16_t>(palette << 12 | character));
        CPatternName request;
        request.DrawCell(nbg0, 0, kMap, 0, x, y, true);
        return request;
    }
    uint32_t Stamp(uint32_t address, uint32_t block) const { return vdp2->cells[address / 32]->Stamp(block); }

    static constexpr uint32_t kMap = 0x20000;
    CNormalBackground& nbg0;
};

TEST_F(Vdp2CellCacheTest, PalettesKeepTheirPicturesAndOnlyTheChangedOneIsDecodedAgain) {
    Draw(0x80, 1);  // character 0x80 at 0x1000
    Draw(0x80, 2);
    EXPECT_EQ(vdp2->CellCache().Cells(), 1u);
    EXPECT_EQ(vdp2->CellCache().Pictures(), 2u);
    EXPECT_EQ(vdp2->CellCache().Bytes(), sizeof(CVdp2CharacterPattern) + 2 * 256);
    EXPECT_EQ(Draw(0x80, 2).GetCellPixel(1, 0), Rgb555ToColorWord(0)) << "colour 1 of palette 2, all black";

    const uint32_t before = Stamp(0x1000, 1);
    vdp2->WriteCramWord((2 * 16 + 1) * 2, 0x001F);  // colour 1 of palette 2 turns red
    Frame();
    Draw(0x80, 1);
    EXPECT_EQ(Stamp(0x1000, 1), before) << "palette 1 did not change";
    EXPECT_EQ(Draw(0x80, 2).GetCellPixel(1, 0), Rgb555ToColorWord(0x001F));
    EXPECT_EQ(Stamp(0x1000, 2), vdp2->frameCounter);
    EXPECT_EQ(vdp2->CellCache().Pictures(), 2u) << "decoded again in place";
}

// The planes keep what they made from colours while no colour RAM block their characters read changed: the blocks a
// request says it read must be those whose changes make its picture stale, for every colour count and RAM mode.
TEST_F(Vdp2CellCacheTest, APictureIsStaleExactlyWhenAColourOfTheBlocksItReadChanged) {
    const struct { uint16_t colours, cramMode; uint32_t palette; } cases[] = {
        {0, 0, 5}, {0, 1, 9}, {0, 2, 3}, {1, 0, 6}, {1, 1, 3}, {1, 2, 1}, {2, 1, 0}, {3, 1, 0},
    };  // colours: CHCTLA bits 6-4 (16, 256, 2048, direct); cramMode: RAMCTL bits 13-12
    for (const auto& c : cases) {
        vdp2->WriteRegisterWord(RAMCTL, static_cast<uint16_t>(c.cramMode << 12));
        vdp2->WriteRegisterWord(CHCTLA, static_cast<uint16_t>(c.colours << 4));
        Frame();
        const CPatternName request = Draw(0x80, c.palette);
        ASSERT_TRUE(request.IsPrepared());
        const PaletteBlocks read = request.PaletteBlocksRead(c.cramMode);
        for (uint32_t block = 0; block < PaletteBlocks::kBlocks; ++block) {
            const uint32_t since = vdp2->frameCounter, at = (block * 16 + 7) * 2;
            vdp2->WriteCramWord(at, static_cast<uint16_t>(vdp2->ReadCramWord(at) ^ 0x1234));
            Frame();
            EXPECT_EQ(vdp2->PalettesChangedSince(read, since), vdp2->cells[0x1000 / 32]->NeedsDecoding(request))
                << "colours " << c.colours << ", mode " << c.cramMode << ", palette " << c.palette << ", block "
                << block;
            Draw(0x80, c.palette);
        }
    }
}

TEST_F(Vdp2CellCacheTest, ChangedDataReplacesTheCellAndAWiderCellTakesOverTheSlotsItCovers) {
    Draw(0x80, 0);
    Draw(0x81, 0);
    EXPECT_EQ(vdp2->CellCache().Cells(), 2u);
    const CVdp2CharacterPattern* first = vdp2->cells[0x1000 / 32];
    vdp2->WriteVramByte(0x1003, 0x00);
    EXPECT_TRUE(first->IsModified());
    EXPECT_EQ(Draw(0x80, 0).GetCellPixel(6, 0), 0u) << "dot 0 of the new data: transparent";
    EXPECT_EQ(vdp2->CellCache().Cells(), 2u);

    vdp2->WriteRegisterWord(CHCTLA, 0x0010);  // 256 colours: one cell of 64 bytes over both
    nbg0.UpdateFromRegisters();
    Draw(0x80, 0);
    EXPECT_EQ(vdp2->CellCache().Cells(), 1u);
    EXPECT_EQ(vdp2->cells[0x1000 / 32], vdp2->cells[0x1020 / 32]);
    EXPECT_EQ(vdp2->CellCache().Pictures(), 1u);
}

TEST_F(Vdp2CellCacheTest, TheRecordSaysWhatThePlaneTextureShows) {
    const CellRecord& record = nbg0.Record(0, 2, 3);
    Draw(0x80, 1, 16, 24);
    const CellRecord first = record;
    EXPECT_EQ(first.lastStamp, vdp2->frameCounter);
    Frame();
    Draw(0x80, 1, 16, 24);
    EXPECT_EQ(record.lastStamp, first.lastStamp) << "unchanged: not written again";
    EXPECT_EQ(record.shownName, first.shownName);
    Draw(0x80, 1 | 0x4, 16, 24);  // flipped across (bit 10): another picture at this position
    EXPECT_NE(record.shownName, first.shownName);

    vdp2->RequestCellCacheClear();
    Frame();  // the clear happens at V-blank-out, on the emulation thread
    EXPECT_EQ(vdp2->CellCache().Cells(), 0u);
    Draw(0x80, 1, 16, 24);
    EXPECT_EQ(record.lastStamp, vdp2->frameCounter) << "a new cell is written again";
}

}  // namespace
}  // namespace vdpgl
