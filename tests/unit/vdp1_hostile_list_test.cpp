// Whatever a program leaves in VDP1 VRAM, the walk and the texture cache must neither crash, hang nor read
// outside their memories: random VRAM and registers, frame after frame (the sanitizer build checks each access).
#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using Vdp1HostileListTest = test::VdpTest;

TEST_F(Vdp1HostileListTest, RandomVramAndRegistersAreWalkedSafely) {
    size_t totalParts = 0;
    for (uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        // A command may start at any 8-byte unit. Its CMDCTRL rarely has the END bit and mostly goes on to
        // the next command, so walks run long (random jumps alone soon settle in a two-command loop); its
        // CMDSIZE (the word at 8k + 2) stays small, so the decoding stays quick. The rest is arbitrary.
        for (uint32_t a = 0; a < CConsoleVram::kSize; a += 8) {
            uint32_t ctrl = random() % 1000 ? random() & 0x7FFF : random();
            if (random() % 10) ctrl &= 0x8FFF;  // jump mode "next"
            vdp1->WriteVramLong(a, ctrl << 16 | (random() & 0x0F1F));
            vdp1->WriteVramLong(a + 4, random());
        }
        for (uint32_t r = 0; r < 0x120; r += 2) vdp2->WriteRegisterWord(r, static_cast<uint16_t>(random()));
        for (uint32_t c = 0; c < 0x1000; c += 2) vdp2->WriteCramWord(c, static_cast<uint16_t>(random()));
        vdp1->WriteRegister(vdp1reg::PTMR, 2);  // TVMR and FBCR stay 0: one-cycle mode, drawing every frame
        for (int frame = 0; frame < 3; ++frame) {  // some VRAM changes between frames, as a running program makes
            for (int i = 0; i < 64; ++i)
                vdp1->WriteVramWord(random() & CConsoleVram::kMask, static_cast<uint16_t>(random()));
            vdp2->OnVblankOut();
            vdp1->Frame();
            for (const auto& list : vdp1->partsListVectors) totalParts += list.size();
        }
    }
    EXPECT_GT(totalParts, 3000u) << "the lists should have been walked a long way";
    vdp1.reset();
    EXPECT_EQ(CVdp1CharacterPattern::PatternCount(), 0) << "every pattern went with its table";
}

}  // namespace
}  // namespace vdpgl
