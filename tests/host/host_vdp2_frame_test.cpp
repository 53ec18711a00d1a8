// VDP2 backgrounds as a host sees them: maps, cells, bitmaps and colour RAM written through the exports, and the
// presented picture compared pixel by pixel with one worked out here from the same bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include "../support/vdp1_commands.h"
#include "host_frame.h"

namespace {

using namespace vdpgl::host;
using namespace vdpgl::test;

// Half the colours with bit 15 set, which the colour lookup ignores.
uint16_t CramColour(int i) { return static_cast<uint16_t>((i % 2) << 15 | ((i * 2731 + 977) & 0x7FFF)); }

// Register offsets.
constexpr uint32_t BGON = 0x020, CHCTLA = 0x028, BMPNA = 0x02C, PNCN0 = 0x030, PLSZ = 0x03A, MPOFN = 0x03C,
                   MPABN0 = 0x040, SCXIN0 = 0x070, SCYIN0 = 0x074, ZMXIN0 = 0x078, SCXIN1 = 0x080, PRINA = 0x0F8,
                   PRISA = 0x0F0;

// A screen pixel's colour from the map position it shows; kClear where the background is transparent.
using Layer = std::function<Rgba(int x, int y)>;

class HostVdp2FrameTest : public HostFrameTest {
protected:
    void SetUp() override {
        HostFrameTest::SetUp();
        StartDrawing();
        for (int i = 0; i < 1024; ++i) Cram(i, CramColour(i));
        for (uint32_t r = PRISA; r < PRISA + 8; r += 2) Reg(r, 0x0303);  // every sprite at level 3
    }

    void Reg(uint32_t a, uint16_t v) { x().WriteWordVDP2Regs(a, v); }
    void Cram(int i, uint16_t v) {
        x().WriteWordVDP2CRAM(static_cast<uint32_t>(i * 2), v);
        cram[static_cast<size_t>(i)] = v;
    }
    void Byte(uint32_t a, uint8_t v) {
        x().WriteByteVDP2VRAM(a, v);
        vram[a] = v;
    }
    void Word(uint32_t a, uint16_t v) { Byte(a, static_cast<uint8_t>(v >> 8)), Byte(a + 1, static_cast<uint8_t>(v)); }
    void Long(uint32_t a, uint32_t v) {
        Word(a, static_cast<uint16_t>(v >> 16));
        Word(a + 2, static_cast<uint16_t>(v));
    }
    uint16_t WordAt(uint32_t a) const { return static_cast<uint16_t>(vram[a] << 8 | vram[a + 1]); }
    uint32_t LongAt(uint32_t a) const { return uint32_t{WordAt(a)} << 16 | WordAt(a + 2); }

    // Dot (x, y) of an 8 x 8 16-colour cell at `address`, palette p (16 colours each); dot 0 is transparent unless
    // the background shows it.
    Rgba CellDot(uint32_t address, int x, int y, int p, bool showZero = false) const {
        const uint8_t byte = vram[address + static_cast<uint32_t>(y * 4 + x / 2)];
        const int d = x % 2 ? byte & 15 : byte >> 4;
        return d || showZero ? Rgb555(cram[static_cast<size_t>(p * 16 + d)]) : kClear;
    }

    // Composes layers back to front, then what is drawn over them.
    static FramePicture Compose(std::initializer_list<Layer> layers) {
        FramePicture picture;
        for (const Layer& layer : layers)
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x) picture.Blend(x, y, layer(x, y));
        return picture;
    }

    void CheckRotationPlane(bool perDot);

    std::vector<uint8_t> vram = std::vector<uint8_t>(0x80000);
    std::vector<uint16_t> cram = std::vector<uint16_t>(2048);
};

// NBG1: a 512 x 512 plane of one-word names (16 colours, 8 x 8 cells) at 0x20000 for all four planes, six characters
// at 0x1000 drawn with four flips and two palettes, scrolled by (37, -21). NBG0 at the same priority: a 512 x 256
// bitmap of 256 colours at 0x40000, mostly transparent, scrolled by (-5, 3). A polygon of VDP1 at that level too.
TEST_F(HostVdp2FrameTest, ScrolledCellPlaneUnderABitmapUnderAPolygonAtOneLevelAndChangesShowNextFrame) {
    constexpr uint32_t kMap = 0x20000, kCells = 0x1000, kBitmap = 0x40000;
    for (uint32_t i = 0; i < 6 * 32; ++i) Byte(kCells + i, static_cast<uint8_t>((i * 37 + i / 32 * 11) % 256));
    Byte(kCells + 5, 0);  // a transparent pair of dots in the first character
    const auto name = [](int cx, int cy) {
        const int character = (kCells / 32) + (cx * 7 + cy * 3) % 6, palette = (cx + cy) % 2 ? 5 : 2;
        const int flips = (cx * 3 + cy) % 4;  // bit 0: across (bit 10), bit 1: down (bit 11)
        return static_cast<uint16_t>(palette << 12 | flips << 10 | character);
    };
    for (int cy = 0; cy < 64; ++cy)
        for (int cx = 0; cx < 64; ++cx) Word(kMap + static_cast<uint32_t>((cy * 64 + cx) * 2), name(cx, cy));
    for (int i = 0; i < 40; ++i)
        Byte(kBitmap + static_cast<uint32_t>((50 + i % 8) * 512 + 100 + i * 3), static_cast<uint8_t>(7 + i));
    Byte(kBitmap + 511, 200);              // the last dot of the first row: shown at the screen's left edge
    Byte(kBitmap + 255 * 512 + 300, 201);  // the last row: shown at the top

    Reg(BGON, 0x0003);                            // NBG0 and NBG1
    Reg(CHCTLA, 0x0012);                          // NBG0: bitmap, 512 x 256, 256 colours; NBG1: 16 colours, 1 x 1
    Reg(BMPNA, 0);                                // bitmap palette 0
    Reg(PNCN0 + 2, 0x8000);                       // NBG1: one-word names with flips
    Reg(PLSZ, 0);                                 // 1 x 1 page planes
    Reg(MPOFN, 0x0002);                           // NBG0's bitmap at 2 x 0x20000
    Reg(MPABN0 + 4, 16 << 8 | 16);                // NBG1 planes A-D: page 16 (16 x 0x2000)
    Reg(MPABN0 + 6, 16 << 8 | 16);
    Reg(SCXIN0, 0x7FB), Reg(SCYIN0, 3);           // NBG0 scrolled by (-5, 3)
    Reg(SCXIN1, 37), Reg(SCXIN1 + 4, 0x7EB);      // NBG1 scrolled by (37, -21)
    Reg(ZMXIN0, 1), Reg(ZMXIN0 + 4, 1);           // NBG0 unzoomed
    Reg(ZMXIN0 + 0x10, 1), Reg(ZMXIN0 + 0x14, 1); // NBG1 unzoomed
    Reg(PRINA, 0x0303);                           // both at level 3
    WriteCommandList([this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); },
                     {{.ctrl = kPolygonCmd, .colr = 0x7C1F, .xa = 150, .ya = 40, .xb = 190, .yb = 40, .xc = 190,
                       .yc = 70, .xd = 150, .yd = 70}});

    bool transparentDisplay = false;
    const Layer nbg1 = [&](int x, int y) {
        const int mx = (x + 37) & 511, my = (y - 21) & 511, cx = mx / 8, cy = my / 8;
        const uint16_t pn = WordAt(kMap + static_cast<uint32_t>((cy * 64 + cx) * 2));
        int dx = mx % 8, dy = my % 8;
        if (pn & 0x400) dx = 7 - dx;
        if (pn & 0x800) dy = 7 - dy;
        return CellDot((pn & 0x3FFu) * 32, dx, dy, pn >> 12, transparentDisplay);
    };
    const Layer nbg0 = [this](int x, int y) {
        const uint8_t d = vram[kBitmap + static_cast<uint32_t>(((y + 3) & 255) * 512 + ((x - 5) & 511))];
        return d ? Rgb555(cram[d]) : kClear;
    };
    const Layer polygon = [](int x, int y) {
        return x >= 150 && x < 190 && y >= 40 && y < 70 ? ShapeColour(0x7C1F) : kClear;
    };
    ExpectFrame(Compose({nbg1, nbg0, polygon}));
    VdpglCacheCounters caches{};
    ASSERT_EQ(x().GetCacheCounters(&caches), 1);
    EXPECT_EQ(caches.vdp2Cells * 10 + caches.vdp2Pictures, 6u * 10 + 6) << "six characters, each with one palette";
    EXPECT_GT(caches.vdp2CellBytes, 6u * 256);

    // Rewritten cell data and new bitmap dots in two rows far apart show in the next frame; so does, after a frame
    // that changed a colour of a palette nothing reads, a changed colour of palette 5. The names stay as they were.
    Byte(kCells + 2 * 32 + 9, 0x5A);
    Byte(kBitmap + 10 * 512 + 20, 99);
    Byte(kBitmap + 200 * 512 + 7, 98);
    ExpectFrame(Compose({nbg1, nbg0, polygon}));
    Cram(40 * 16 + 3, 0x7FFF);  // a palette nothing shows
    ExpectFrame(Compose({nbg1, nbg0, polygon}));
    Cram(5 * 16 + 3, 0x7FFF);
    ExpectFrame(Compose({nbg1, nbg0, polygon}));

    // NBG1's transparent-display bit: its dots 0 show colour 0 of their palette.
    Reg(BGON, 0x0203);
    transparentDisplay = true;
    ExpectFrame(Compose({nbg1, nbg0, polygon}));
}

// NBG1 zoomed to twice the size (0.5 map dots a screen dot) and scrolled by (-300, 100): 2 x 2 characters of 256
// colours named by two-word pattern names, on 1024 x 512 planes (two pages wide) with four different maps, so that
// the screen shows pieces of three planes; brightened in red by colour offset A.
TEST_F(HostVdp2FrameTest, ZoomedPlaneOfTwoByTwoCharactersFromFourMapsWithTwoWordNamesAndAColourOffset) {
    constexpr uint32_t kCharacters = 0x20000, kPlaneMaps[4] = {0x10000, 0x12000, 0x14000, 0x16000};
    for (uint32_t i = 0; i < 4 * 256; ++i) Byte(kCharacters + i, static_cast<uint8_t>((i * 29 + i / 64) % 251));
    for (uint32_t p = 0; p < 4; ++p)
        for (uint32_t cy = 0; cy < 32; ++cy)
            for (uint32_t cx = 0; cx < 64; ++cx) {
                const uint32_t character = kCharacters / 32 + 8 * ((cx + 2 * cy + p) % 4);
                const uint32_t palette = (cx + cy + p) % 2 ? 0x10 : 0x20, flips = (cx + cy * 3) % 4;
                const uint32_t index = (cx / 32) * 1024 + cy * 32 + cx % 32;
                Long(kPlaneMaps[p] + index * 4, flips << 30 | palette << 16 | character);
            }

    Reg(BGON, 0x0002);               // NBG1
    Reg(CHCTLA, 0x1100);             // NBG1: 256 colours, 2 x 2 characters
    Reg(PNCN0 + 2, 0x0000);          // two-word names
    Reg(PLSZ, 1 << 2);               // NBG1: planes two pages wide
    Reg(MPABN0 + 4, 18 << 8 | 16);   // plane A: map 16, B: 18 (pages of 0x1000 bytes)
    Reg(MPABN0 + 6, 22 << 8 | 20);   // C: 20, D: 22
    Reg(SCXIN1, 0x7FF & -300), Reg(SCXIN1 + 4, 100);
    Reg(ZMXIN0 + 0x10, 0), Reg(ZMXIN0 + 0x12, 0x8000);  // x: 0 + 128/256
    Reg(ZMXIN0 + 0x14, 0), Reg(ZMXIN0 + 0x16, 0x8000);  // y
    Reg(0x110, 0x0002), Reg(0x114, 0x020);              // colour offset A for NBG1: red + 32
    Reg(PRINA, 0x0200);

    FramePicture expected;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const int mx = (-300 + x / 2) & 2047, my = (100 + y / 2) & 1023;
            const int plane = (mx >= 1024 ? 1 : 0) + (my >= 512 ? 2 : 0);
            const int px = mx & 1023, py = my & 511, cx = px / 16, cy = py / 16;
            const uint32_t index = static_cast<uint32_t>((cx / 32) * 1024 + cy * 32 + cx % 32);
            const uint32_t pn = LongAt(kPlaneMaps[plane] + index * 4);
            int dx = px % 16, dy = py % 16;
            if (pn >> 30 & 1) dx = 15 - dx;
            if (pn >> 31) dy = 15 - dy;
            const uint32_t cell = (pn & 0x3FFF) * 32 + static_cast<uint32_t>((dx / 8) + 2 * (dy / 8)) * 64;
            const uint8_t d = vram[cell + static_cast<uint32_t>((dy % 8) * 8 + dx % 8)];
            if (!d) continue;
            Rgba c = Rgb555(cram[((pn >> 16 & 0x7F) / 16) * 256 + d]);
            c.r = std::min(255, c.r + 32);
            expected.At(x, y) = c;
        }
    ExpectFrame(expected, 1);
}

// RBG0 through its rotation parameter tables, over NBG0: identity tables show the plain map, a coefficient table hides
// the upper lines, and the parameter window shows table A inside a rectangle and B (another map, shifted) outside.
// On the 256 x 256 grid stretched over the screen a pixel shows the sample whose cell its centre falls in (pixels whose
// centre lies on a sample border are left out, where the GL may take either); sampled per screen dot, its own.
void HostVdp2FrameTest::CheckRotationPlane(bool perDot) {
    static constexpr uint32_t kMaps[2] = {0x20000, 0x22000};
    constexpr uint32_t kCells = 0x1000, kTables = 0x30000, kCoefficients = 0x40000;
    constexpr uint32_t kOne = 1023u << 6;  // 1.0 in the tables' long fixed-point fields
    for (uint32_t i = 0; i < 8 * 32; ++i) Byte(kCells + i, static_cast<uint8_t>((i * 53 + i / 32 * 7) % 256));
    for (uint32_t m = 0; m < 2; ++m)
        for (uint32_t cy = 0; cy < 64; ++cy)
            for (uint32_t cx = 0; cx < 64; ++cx)
                Word(kMaps[m] + (cy * 64 + cx) * 2, static_cast<uint16_t>(((cx + cy + m) % 2 ? 0x3000 : 0x6000) |
                                                                   (kCells / 32 + (cx * 5 + cy + m * 3) % 8)));
    for (uint32_t t = 0; t < 2; ++t) {  // tables A and B: identity, B shifted right by 64 map dots
        const uint32_t table = kTables + t * 0x80;
        for (uint32_t offset : {0x10u, 0x14u, 0x1Cu, 0x2Cu}) Long(table + offset, kOne);  // delta Yst, delta X, A, E
        Long(table + 0x4C, 0xFFFF), Long(table + 0x50, 0xFFFF);                           // kx = ky = 1.0
        Long(table + 0x44, t ? 64 * kOne : 0);                                             // Mx
        Long(table + 0x58, kOne);  // delta KAst: one coefficient a line
    }
    for (uint32_t y = 0; y < 240; ++y) Word(kCoefficients + 2 * y, y < 100 ? 0x8000 : 0x03FF);  // transparent, 1.0
    // NBG0 below: a 256-colour 512 x 256 bitmap at 0x60000 of dots 1-255.
    for (uint32_t i = 0; i < 512 * 256; i += 2)
        Word(0x60000 + i, static_cast<uint16_t>(((i % 255) + 1) << 8 | (i % 251 + 1)));

    Reg(BGON, 0x0011);                                  // NBG0 and RBG0
    Reg(CHCTLA, 0x0012), Reg(MPOFN, 0x0003), Reg(ZMXIN0, 1), Reg(ZMXIN0 + 4, 1);  // the bitmap
    Reg(0x02A, 0x0000);                                 // CHCTLB: RBG0 16 colours, 1 x 1 cells
    Reg(0x038, 0x8000);                                 // PNCR: one-word names
    for (uint32_t k = 0; k < 8; ++k) Reg(0x050 + 2 * k, 16 << 8 | 16), Reg(0x060 + 2 * k, 17 << 8 | 17);  // A, B maps
    Reg(0x0BC, 0x0001), Reg(0x0BE, 0x8000);             // RPTAU, RPTAL: table A at 0x30000
    Reg(0x0FC, 0x0002), Reg(PRINA, 0x0001);             // RBG0 over NBG0
    const Layer bitmap = [this](int x, int y) {
        const uint8_t d = vram[0x60000 + static_cast<uint32_t>((y & 255) * 512 + (x & 511))];
        return d ? Rgb555(cram[d]) : kClear;
    };
    // The map seen through table t at map position (x, y).
    const auto map = [this](uint32_t t, int x, int y) {
        x = (x + (t ? 64 : 0)) & 511, y &= 511;
        const uint16_t pn = WordAt(kMaps[t] + static_cast<uint32_t>((y / 8 * 64 + x / 8) * 2));
        return CellDot((pn & 0x3FFu) * 32, x % 8, y % 8, pn >> 12);
    };
    const auto sampled = [perDot](const std::function<Rgba(int, int)>& at) {  // what the picture shows at a pixel
        return [at, perDot](int px, int py) {
            if (perDot) return at(px, py);
            const int j = (2 * px + 1) * 256 / (2 * kWidth), i = (2 * py + 1) * 256 / (2 * kHeight);
            return at(j * kWidth / 256, i * kHeight / 256);
        };
    };
    const auto expect = [&](const Layer& rotation) {
        Frame();
        const FramePicture expected = Compose({bitmap, rotation});
        int wrong = 0, compared = 0;
        for (int py = 0; py < kHeight; ++py)
            for (int px = 0; px < kWidth; ++px) {
                if (!perDot && ((2 * px + 1) * 256 % (2 * kWidth) == 0 || (2 * py + 1) * 256 % (2 * kHeight) == 0))
                    continue;
                ++compared;
                const Rgba e = expected.px[static_cast<size_t>(py * kWidth + px)], s = shown.At(px, py);
                if (!(e == s) && ++wrong <= 5)
                    ADD_FAILURE() << "at (" << px << "," << py << "): " << s << ", expected " << e;
            }
        EXPECT_EQ(wrong, 0) << "of " << compared << " pixels compared";
    };

    expect(sampled([&](int x, int y) { return map(0, x, y); }));  // the plain map
    Reg(0x0B4, 0x0003), Reg(0x0B6, 0x0002);  // KTCTL: A's one-word coefficients; KTAOF: at 2 x 0x20000
    expect(sampled([&](int x, int y) { return y < 100 ? kClear : map(0, x, y); }));
    Reg(0x0B4, 0x0000), Reg(0x0B0, 0x0003);  // RPMD: parameter window, window 0 a rectangle
    Reg(0x0D6, 0x0002), Reg(0x0C0, 100), Reg(0x0C2, 50), Reg(0x0C4, 199), Reg(0x0C6, 149);
    expect(sampled([&](int x, int y) { return map(x >= 100 && x <= 199 && y >= 50 && y <= 149 ? 0 : 1, x, y); }));
}

TEST_F(HostVdp2FrameTest, RotationPlaneOnTheGrid) { CheckRotationPlane(false); }

class HostVdp2ScreenSamplingTest : public HostVdp2FrameTest {
protected:
    void SetUp() override {
        setenv("VDPGL_ROTATION_SAMPLING", "screen", 1);
        HostVdp2FrameTest::SetUp();
    }
    void TearDown() override {
        HostVdp2FrameTest::TearDown();
        unsetenv("VDPGL_ROTATION_SAMPLING");
    }
};

TEST_F(HostVdp2ScreenSamplingTest, RotationPlaneSampledPerScreenDot) { CheckRotationPlane(true); }

}  // namespace
