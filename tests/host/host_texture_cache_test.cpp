// The VDP1 texture cache as a host meets it, through the exports: lists that
// are legal but unusual, and the memory the process keeps over many frames.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "../support/vdp1_commands.h"
#include "host_fixture.h"

namespace {

using namespace vdpgl::test;

constexpr int kWidth = 320, kHeight = 224;

long ResidentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * 4096 / (1024 * 1024);
}

// Opaque colour words as the picture shows them: 5 bits widened by a shift.
uint32_t Shown(uint16_t c) {
    return 0xFF000000u | uint32_t((c >> 10) & 31) << 19 | uint32_t((c >> 5) & 31) << 11 | uint32_t(c & 31) << 3;
}
uint16_t CramColour(uint32_t i) { return static_cast<uint16_t>((i * 2731 + 977) & 0x7FFF); }

class HostTextureCacheTest : public vdpgl::host::HostTest {
protected:
    void Start() {
        Init();
        x().EmulationThreadStarting();
        x().WriteWordVDP2Regs(0x000, 0x8000);  // display on, 320 x 224
        x().WriteWordVDP1Regs(0x04, 0x0002);    // one-cycle mode, drawing every frame
        for (uint32_t i = 0; i < 1024; ++i) x().WriteWordVDP2CRAM(i * 2, CramColour(i));
    }
    void TearDown() override {
        if (initialised) x().EmulationThreadStoping();
        unsetenv("VDPGL_TEXTURE_MEMORY_MB");
        HostTest::TearDown();
    }
    WordWriter Vram() {
        return [this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); };
    }
    void Frame() {
        x().VDPOnVblankIn();
        x().VDPOnVblankOut();
        picture.resize(kWidth * kHeight);
        ASSERT_EQ(x().CaptureDisplay(reinterpret_cast<uint8_t*>(picture.data()), kWidth, kHeight), 1);
    }
    uint32_t At(int px, int py) const { return picture[static_cast<size_t>(py * kWidth + px)]; }
    // Dot (dx, dy) of a 16-colour pattern of this width drawn with bank 0x100.
    uint32_t BankDot(uint32_t address, int width, int dx, int dy) {
        const int n = dy * width + dx;
        const uint8_t byte = x().ReadByteVDP1VRAM(address + static_cast<uint32_t>(n / 2));
        const uint32_t code = n % 2 ? byte & 0xF : byte >> 4;
        return code == 0 || code == 0xF ? 0 : Shown(CramColour(0x100 | code));  // 0 and the end code: none
    }
    void ExpectPattern(int px, uint32_t address, int width, int height) {
        for (int dy = 0; dy < height; ++dy)
            for (int dx = 0; dx < width; ++dx)
                ASSERT_EQ(At(px + dx, dy), BankDot(address, width, dx, dy)) << "dot " << dx << "," << dy;
    }
    static Command Sprite(uint32_t address, uint16_t size, int16_t x, uint16_t pmod = 0, uint16_t colr = 0x100) {
        return {.pmod = pmod, .colr = colr, .srca = static_cast<uint16_t>(address / 8), .size = size, .xa = x};
    }

    std::vector<uint32_t> picture;
};

TEST_F(HostTextureCacheTest, EveryByteOfAnOddSizedPatternAndTwoSizesOnOneAddress) {
    Start();
    for (uint32_t a = 0x1000; a < 0x1040; a += 2) x().WriteWordVDP1VRAM(a, static_cast<uint16_t>(a * 0x3517 + 0x1111));
    // 8 x 5 in 16 colours is 20 bytes; a 16 x 8 and an 8 x 8 sprite share its address.
    WriteCommandList(Vram(), {Sprite(0x1000, 0x0105, 0), Sprite(0x1000, 0x0208, 20), Sprite(0x1000, 0x0108, 40)});
    Frame();
    ExpectPattern(0, 0x1000, 8, 5);
    ExpectPattern(20, 0x1000, 16, 8);
    ExpectPattern(40, 0x1000, 8, 8);
    for (uint32_t a : {0x1013u, 0x1010u, 0x1000u}) {  // the last byte, its 8-byte unit, the first
        SCOPED_TRACE(a);
        x().WriteByteVDP1VRAM(a, static_cast<uint8_t>(x().ReadByteVDP1VRAM(a) + 0x35));
        Frame();
        ExpectPattern(0, 0x1000, 8, 5);
        ExpectPattern(20, 0x1000, 16, 8);
        ExpectPattern(40, 0x1000, 8, 8);
    }
}

TEST_F(HostTextureCacheTest, NewLookupTablesEveryFrameStayWithinTheBudgetAndOldOnesComeBackAsTheyWere) {
    setenv("VDPGL_TEXTURE_MEMORY_MB", "32", 1);
    Start();
    // 504 x 255, every dot code 1; lookup table n at 0x20000 + 32 n shows colour n + 1.
    constexpr uint32_t kPattern = 0x40000, kTables = 0x20000;
    for (uint32_t a = kPattern; a < kPattern + 504 * 255 / 2; a += 2) x().WriteWordVDP1VRAM(a, 0x1111);
    const auto table = [](uint32_t n) { return static_cast<uint16_t>((kTables + 32 * n) / 8); };
    const auto colour = [](uint32_t n) { return static_cast<uint16_t>(n % 0x7FFF + 1); };
    constexpr int kFrames = 75, kPerFrame = 40;
    for (uint32_t n = 0; n < kFrames * kPerFrame; ++n) x().WriteWordVDP1VRAM(kTables + 32 * n + 2, colour(n));

    long settled = 0;
    for (int frame = 0; frame < kFrames; ++frame) {
        // 40 tables never used before, off the screen; the first table and
        // this frame's last on it.
        std::vector<Command> list;
        for (int i = 0; i < kPerFrame; ++i)
            list.push_back(Sprite(kPattern, 0x3FFF, 400, 1 << 3, table(static_cast<uint32_t>(frame * kPerFrame + i))));
        list.push_back(Sprite(kPattern, 0x3FFF, 0, 1 << 3, table(0)));
        list.push_back(Sprite(kPattern, 0x3FFF, 160, 1 << 3, table(static_cast<uint32_t>(frame * kPerFrame + 39))));
        for (size_t i = 0; i < list.size(); ++i) WriteCommand(Vram(), static_cast<uint32_t>(i) * 0x20, list[i]);
        WriteCommand(Vram(), static_cast<uint32_t>(list.size()) * 0x20, Command{.ctrl = kEndCmd});
        Frame();
        ASSERT_EQ(At(10, 10), Shown(colour(0))) << frame;
        ASSERT_EQ(At(200, 10), Shown(colour(static_cast<uint32_t>(frame * kPerFrame + 39)))) << frame;
        if (frame == 10) settled = ResidentMegabytes();
    }
    // Without a bound the 3,000 textures of 512 KiB would take 1.5 GB.
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer keeps freed memory in quarantine: growth not measured";
#else
    EXPECT_LT(ResidentMegabytes() - settled, 64) << "the process grew over 65 frames of new lookup tables";
#endif
}

TEST_F(HostTextureCacheTest, TextureMemoryThatIsNoCountOfMegabytesIsReportedAndTheDefaultUsed) {
    for (const char* value : {"lots", "0", "-5", "12MB"}) {
        SCOPED_TRACE(value);
        setenv("VDPGL_TEXTURE_MEMORY_MB", value, 1);
        testing::internal::CaptureStderr();
        Init();
        x().DeInitPlugin();
        initialised = false;
        const std::string err = testing::internal::GetCapturedStderr();
        EXPECT_NE(err.find(std::string("VDPGL_TEXTURE_MEMORY_MB=") + value + " is not a number of megabytes"),
                  std::string::npos)
            << err;
        EXPECT_NE(err.find("using 256"), std::string::npos) << err;
    }
}

}  // namespace
