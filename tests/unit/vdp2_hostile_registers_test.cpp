// Whatever a game writes to VDP2's registers and VRAM, the backgrounds draw, and the viewer's requests decode,
// without a fault and with the cell cache inside its bounds.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Vdp2HostileRegistersTest = test::VdpTest;

TEST_F(Vdp2HostileRegistersTest, RandomRegistersAndVramDrawAndDecodeWithinBounds) {
    std::mt19937 random(20261123);
    std::vector<uint32_t> pixels;
    for (int round = 0; round < 24; ++round) {
        for (uint32_t i = 0; i < 4096; ++i) vdp2->WriteVramLong(random() & 0x7FFFC, static_cast<uint32_t>(random()));
        for (uint32_t reg = 0x020; reg < 0x120; reg += 2) vdp2->WriteRegisterWord(reg, static_cast<uint16_t>(random()));
        vdp2->WriteRegisterWord(vdp2reg::TVMD, static_cast<uint16_t>(0x8000 | (random() & 0xF7)));
        vdp2->WriteCramLong(random() & 0xFFC, static_cast<uint32_t>(random()));
        vdp2->OnVblankOut();
        for (int priority = 0; priority < 8; ++priority) vdp2->DrawBackgrounds(priority);
        for (int bg = 0; bg < kBackgroundCount; ++bg) {
            uint32_t width = 0, height = 0;
            vdp2->GetBackgroundSize(bg, width, height);
            pixels.assign(static_cast<size_t>(width) * height, 0u);
            if (vdp2->IsBackgroundInCellMode(bg))
                vdp2->RenderBackgroundPlane(bg, static_cast<uint32_t>(random() % 6), pixels.data());
            else
                vdp2->DecodeBackgroundBitmap(bg, pixels.data());
            EXPECT_FALSE(vdp2->GetBackgroundInformation(bg).empty());
        }
        ASSERT_LE(vdp2->CellCache().Cells(), CVdp2::kCellTableSize);
        ASSERT_LE(vdp2->CellCache().Pictures(), vdp2->CellCache().Cells() * CVdp2CharacterPattern::kPaletteBlocks);
    }
    vdp2->ClearCellCache();
    EXPECT_EQ(vdp2->CellCache().Cells() + vdp2->CellCache().Pictures() + vdp2->CellCache().Bytes(), 0u);
}

}  // namespace
}  // namespace vdpgl
