// The texture cache as three threads meet it: the emulation thread draws frames and changes VRAM, the editor reads the
// cached patterns under the cache lock, the control panel flips part switches and asks for cache clears. Run under
// ThreadSanitizer by `make test-tsan`.
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>

#include "support/vdp1_commands.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace test;
using Vdp1CacheThreadsTest = VdpTest;

TEST_F(Vdp1CacheThreadsTest, EditorAndPanelMeetTheEmulationThreadSafely) {
    const WordWriter vram = [&](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
    // Eight 16 x 8 sprites over four patterns, two palettes each.
    for (uint32_t a = 0x4000; a < 0x4000 + 4 * 0x100; a += 2) vram(a, static_cast<uint16_t>(a * 37));
    for (uint16_t i = 0; i < 8; ++i)
        WriteCommand(vram, i * 0x20u, {.colr = uint16_t((i & 1) << 4), .srca = uint16_t((0x4000 + i / 2 * 0x100) / 8),
                                       .size = 0x0208, .xa = int16_t(i * 20)});
    WriteCommand(vram, 8 * 0x20, {.ctrl = kEndCmd});

    std::atomic<bool> done{false};
    std::atomic<int> seen{0};      // bit n: the pattern at 0x4000 + n x 0x100
    std::atomic<int> editorPasses{0};
    std::thread editor([&] {
        char text[256];
        while (!done.load()) {
            if (CVdp1CharacterPattern::TextureBytes() > (1u << 20)) ADD_FAILURE() << "counters read off the lock";
            std::lock_guard lock(vdp1->cacheMutex);
            editorPasses++;
            for (const CVdp1CharacterPattern* p : vdp1->GetCachedPatterns()) {
                p->GetInformation(text, sizeof text);
                ASSERT_EQ(std::strncmp(text, "Color mode: \n16 colors color bank\n", 34), 0) << text;
                seen |= 1 << ((p->GetStartAddress() - 0x4000) / 0x100 & 7);
            }
        }
    });
    std::thread panel([&] {
        for (int i = 0; !done.load(); ++i) {
            vdp1->SetPartEnabled(kNormalSprite, i % 3 != 0);
            if (i % 20 == 0) vdp1->RequestCacheClear();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    // At least 300 frames, and on until the editor has looked a few times.
    for (int frame = 0; frame < 300 || ((editorPasses.load() < 20 || seen.load() == 0) && frame < 1000000); ++frame) {
        // One pattern changes each frame; every other frame does not draw, so the purge deletes it while the editor may
        // be looking.
        vram(0x4000 + static_cast<uint32_t>(frame % 4) * 0x100, static_cast<uint16_t>(frame));
        vdp1->WriteRegister(vdp1reg::PTMR, frame % 2 ? 0 : 2);
        vdp2->OnVblankOut();
        vdp1->Frame();
    }
    done = true;
    editor.join();
    panel.join();
    EXPECT_NE(seen.load(), 0) << "the editor saw cached patterns";
    vdp1->SetPartEnabled(kNormalSprite, true);
    vdp1->WriteRegister(vdp1reg::PTMR, 2);
    vdp1->Frame();
    std::lock_guard lock(vdp1->cacheMutex);
    EXPECT_EQ(vdp1->GetCachedPatterns().size(), 4u);
}

}  // namespace
}  // namespace vdpgl
