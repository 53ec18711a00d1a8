// VDP1's frame on a headless context: command lists in VRAM, palettes in
// colour RAM, and the picture that the frame presents.
#include "vdp1_fixture.h"

namespace vdpgl::test {
namespace {

class Vdp1FrameTest : public Vdp1GlTest {};

// An 8 x 4 pattern in the 32K-colour mode whose every texel differs:
// texel (x, y) has red x * 3 + 1 and green y * 5 + 1.
uint16_t RgbTexel(int x, int y) { return static_cast<uint16_t>(0x8000 | (x * 3 + 1) | ((y * 5 + 1) << 5)); }
void WriteRgbPattern(const WordWriter& write, uint32_t address) {
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) write(address + static_cast<uint32_t>((y * 8 + x) * 2), RgbTexel(x, y));
}

TEST_F(Vdp1FrameTest, NormalSpriteLandsOnItsRectangleWithItsTexels) {
    WriteRgbPattern(Vram(), 0x1000);
    WriteCommandList(Vram(), {{.ctrl = kNormalSpriteCmd, .pmod = 5 << 3, .srca = 0x1000 / 8, .size = 0x0104,
                               .xa = 40, .ya = 30}});
    RunFrame();
    ASSERT_TRUE(captured);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) ASSERT_EQ(At(40 + x, 30 + y), Rgb555(RgbTexel(x, y))) << x << "," << y;
    EXPECT_EQ(Drawn(0, 0, 320, 224), 32);
}

TEST_F(Vdp1FrameTest, FlipsMirrorTheCharacter) {
    WriteRgbPattern(Vram(), 0x1000);
    struct Case { uint16_t dir; bool h, v; };
    for (const Case c : {Case{0x10, true, false}, Case{0x20, false, true}, Case{0x30, true, true}}) {
        SCOPED_TRACE(c.dir);
        WriteCommandList(Vram(), {{.ctrl = static_cast<uint16_t>(kNormalSpriteCmd | c.dir), .pmod = 5 << 3,
                                   .srca = 0x1000 / 8, .size = 0x0104, .xa = 100, .ya = 50}});
        RunFrame();
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 8; ++x)
                ASSERT_EQ(At(100 + x, 50 + y), Rgb555(RgbTexel(c.h ? 7 - x : x, c.v ? 3 - y : y))) << x << "," << y;
    }
}

TEST_F(Vdp1FrameTest, ColourBankSpriteTakesItsPaletteFromColourRam) {
    // 16-colour bank 0x0120: pixel codes 1 and 2 are colour RAM entries
    // 0x121 and 0x122; code 0 stays transparent.
    Cram(0x121, 0x001F);
    Cram(0x122, 0x7C00);
    WriteWords(Vram(), 0x2000, {0x1200, 0x0021, 0x1111, 0x2222});  // 8 x 2 pixels
    WriteCommandList(Vram(), {{.ctrl = kNormalSpriteCmd, .pmod = 0, .colr = 0x0120, .srca = 0x2000 / 8,
                               .size = 0x0102, .xa = 10, .ya = 10}});
    RunFrame();
    const Pixel red = Rgb555(0x001F), blue = Rgb555(0x7C00), none{0, 0, 0, 0};
    const Pixel row0[8] = {red, blue, none, none, none, none, blue, red};
    for (int x = 0; x < 8; ++x) EXPECT_EQ(At(10 + x, 10), row0[x]) << x;
    for (int x = 0; x < 8; ++x) EXPECT_EQ(At(10 + x, 11), x < 4 ? red : blue) << x;
}

TEST_F(Vdp1FrameTest, ColourOffsetLightensAfterTexturingAndDarkensByMultiplying) {
    // Grey texels (128 a channel); sprite colour offset set A: red +64/256,
    // blue -128/256, green none.
    WriteWords(Vram(), 0x1000, {0xC210, 0xC210, 0xC210, 0xC210, 0xC210, 0xC210, 0xC210, 0xC210});
    vdp2->WriteRegisterWord(vdp2reg::CLOFEN, vdp2reg::CLOF_SPRITE);
    vdp2->WriteRegisterWord(vdp2reg::COAR, 0x040);
    vdp2->WriteRegisterWord(vdp2reg::COAB, 0x180);
    WriteCommandList(Vram(), {{.ctrl = kNormalSpriteCmd, .pmod = 5 << 3, .srca = 0x1000 / 8, .size = 0x0101,
                               .xa = 20, .ya = 20}});
    RunFrame();
    const Pixel p = At(20, 20);
    EXPECT_NEAR(p.r, 128 + 64, 2);  // added after the texel
    EXPECT_NEAR(p.g, 128, 2);
    EXPECT_NEAR(p.b, 64, 2);  // the texel times 0.5
}

TEST_F(Vdp1FrameTest, LaterPartCoversEarlierOneAndHalfTransparencyBlends) {
    // Polygon colours are RGB555 whatever the colour mode.
    WriteCommandList(Vram(), {{.ctrl = kPolygonCmd, .colr = 0x001F, .xa = 0, .ya = 0, .xb = 100, .yb = 0,
                               .xc = 100, .yc = 50, .xd = 0, .yd = 50},
                              {.ctrl = kPolygonCmd, .colr = 0x03E0, .xa = 20, .ya = 0, .xb = 40, .yb = 0,
                               .xc = 40, .yc = 50, .xd = 20, .yd = 50},
                              {.ctrl = kPolygonCmd, .pmod = 3, .colr = 0x7C00, .xa = 60, .ya = 0, .xb = 80,
                               .yb = 0, .xc = 80, .yc = 50, .xd = 60, .yd = 50}});
    RunFrame();
    EXPECT_EQ(At(10, 10), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(At(30, 10), (Pixel{0, 255, 0, 255}));
    const Pixel mixed = At(70, 10);
    EXPECT_NEAR(mixed.r, 128, 2);
    EXPECT_EQ(mixed.g, 0);
    EXPECT_NEAR(mixed.b, 128, 2);
}

TEST_F(Vdp1FrameTest, GouraudPolygonShadesFromCornerToCorner) {
    // Grey polygon; gouraud words darken A fully (0x0000 = -0.5 a channel)
    // and brighten C (0x7FFF = +0.47); B and D are neutral (16 each).
    const uint16_t neutral = 16 | 16 << 5 | 16 << 10;
    WriteWords(Vram(), 0x3000, {0x0000, neutral, 0x7FFF, neutral});
    WriteCommandList(Vram(), {{.ctrl = kPolygonCmd, .pmod = 4, .colr = 0x4210, .xa = 0, .ya = 0, .xb = 320,
                               .yb = 0, .xc = 320, .yc = 224, .xd = 0, .yd = 224, .grda = 0x3000 / 8}});
    RunFrame();
    const float grey = 16.0f / 31.0f;
    const int a = static_cast<int>((grey - 0.5f) * 255 + 0.5f), c = 255;  // C clamps at 1.0
    EXPECT_NEAR(At(0, 0).r, a, 3);
    EXPECT_GE(At(319, 223).g, c - 6);  // sampled at the pixel centre, just inside the corner
    EXPECT_NEAR(At(160, 112).b, (a + c) / 2, 6);  // the middle is halfway along the diagonal
    EXPECT_LT(At(80, 56).r, At(240, 168).r);
}

TEST_F(Vdp1FrameTest, DrawOnDemandDrawsExactlyOnce) {
    // Manual change without erase: PTMR = 1 draws once; later frames change
    // buffers but do not draw again.
    WriteCommandList(Vram(), {{.ctrl = kPolygonCmd, .colr = 0x7FFF, .xa = 0, .ya = 0, .xb = 10, .yb = 0, .xc = 10,
                               .yc = 10, .xd = 0, .yd = 10}});
    vdp1->WriteRegister(vdp1reg::PTMR, 1);
    vdp1->WriteRegister(vdp1reg::FBCR, 3);  // change frame buffers at the next V-blank-out
    RunFrame();
    ASSERT_TRUE(captured);
    EXPECT_EQ(Drawn(0, 0, 320, 224), 100);
    const uint16_t edsr = vdp1->ReadRegister(vdp1reg::EDSR);
    EXPECT_EQ(edsr & 2, 2);
    vdp1->WriteRegister(vdp1reg::FBCR, 3);
    RunFrame();  // the other buffer: nothing was drawn there
    EXPECT_EQ(Drawn(0, 0, 320, 224), 0);
    vdp1->WriteRegister(vdp1reg::FBCR, 3);
    RunFrame();  // back to the drawn one, still as it was
    EXPECT_EQ(Drawn(0, 0, 320, 224), 100);
    EXPECT_EQ(vdp1->ReadRegister(vdp1reg::EDSR), edsr) << "no walk since";
}

TEST_F(Vdp1FrameTest, AllBlackSpriteClearsThePictureInsteadOfDrawing) {
    // Manual changes without erase, each drawing once (PTMR = 1), so that a
    // buffer keeps its picture unless something clears it.
    const auto drawAndChange = [this] {
        vdp1->WriteRegister(vdp1reg::PTMR, 1);
        vdp1->WriteRegister(vdp1reg::FBCR, 3);
        RunFrame();
    };
    WriteCommandList(Vram(), {{.ctrl = kPolygonCmd, .colr = 0x7FFF, .xa = 200, .ya = 200, .xb = 210, .yb = 200,
                               .xc = 210, .yc = 210, .xd = 200, .yd = 210}});
    drawAndChange();  // buffer 1: a square at (200, 200)
    EXPECT_EQ(Drawn(200, 200, 210, 210), 100);

    WriteWords(Vram(), 0x1000, {0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000});  // 8 x 1, black
    WriteCommandList(Vram(), {{.ctrl = kPolygonCmd, .colr = 0x7FFF, .xa = 0, .ya = 0, .xb = 10, .yb = 0, .xc = 10,
                               .yc = 10, .xd = 0, .yd = 10},
                              {.ctrl = kNormalSpriteCmd, .pmod = 5 << 3, .srca = 0x1000 / 8, .size = 0x0101,
                               .xa = 50, .ya = 50}});
    drawAndChange();  // buffer 2: a square at (0, 0); the black sprite is not drawn
    EXPECT_EQ(Drawn(0, 0, 320, 224), 100);
    EXPECT_EQ(Drawn(0, 0, 10, 10), 100);

    // Right after that swap buffer 1 was cleared: changing back shows nothing.
    vdp1->WriteRegister(vdp1reg::PTMR, 0);
    vdp1->WriteRegister(vdp1reg::FBCR, 3);
    RunFrame();
    EXPECT_EQ(Drawn(0, 0, 320, 224), 0);
}

}  // namespace
}  // namespace vdpgl::test
