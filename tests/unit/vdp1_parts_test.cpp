// Drawing parts built straight from command tables: what the host frame tests cannot show one number at a time —
// corners of every kind with local coordinates and scale, the colour arithmetic of gouraud shading and colour offsets,
// and the sprite's palette block.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "support/vdp1_commands.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using test::Command;
using Corners = std::vector<std::pair<int, int>>;

void ExpectRgb(const Vdp1Rgb& c, Vdp1Rgb e) {
    EXPECT_LT(std::abs(c.red - e.red) + std::abs(c.green - e.green) + std::abs(c.blue - e.blue), 1e-5f)
        << c.red << "," << c.green << "," << c.blue << " is not " << e.red << "," << e.green << "," << e.blue;
}

class Vdp1PartsTest : public test::VdpTest {
protected:
    std::unique_ptr<CVdp1Part> Make(int kind, const Command& c, int32_t localX = 0, int32_t localY = 0) {
        Vdp1CommandTable t;
        test::WriteCommand([&t](uint32_t a, uint16_t v) { t.words[a / 2] = v; }, 0, c);
        CVdp1Part::BeginWalk();  // as each walk does: scale and colour offset as they are now
        switch (kind) {
        case kNormalSprite: return std::make_unique<CVdp1NormalSprite>(t, localX, localY);
        case kScaledSprite: return std::make_unique<CVdp1ScaledSprite>(t, localX, localY);
        case kDistortedSprite: return std::make_unique<CVdp1DistortedSprite>(t, localX, localY);
        case kPolygon: return std::make_unique<CVdp1Polygon>(t, localX, localY);
        case kPolyline: return std::make_unique<CVdp1Polyline>(t, localX, localY);
        default: return std::make_unique<CVdp1Line>(t, localX, localY);
        }
    }
    const CVdp1SpritePart& Sprite(const std::unique_ptr<CVdp1Part>& p) { return static_cast<CVdp1SpritePart&>(*p); }
    // Sprite colour offset set A (red -0.5, green +0.25, blue 0) or set B (red +0.125, green -0.0625, blue +0.25 from a
    // value beyond 9 bits).
    void SetColorOffsets(uint16_t clofen, uint16_t clofsl) {
        for (auto [reg, value] : {std::pair{COAR, 0x180}, {COAG, 0x040}, {COAB, 0x000}, {COBR, 0x020},
                                  {COBG, 0x1F0}, {COBB, 0x0E40}, {CLOFEN, clofen}, {CLOFSL, clofsl}})
            vdp2->WriteRegisterWord(reg, static_cast<uint16_t>(value));
    }
    // Gouraud words for corners A-D at VRAM 0x800 (CMDGRDA 0x100): all +0.46875, all -0.5, neutral, red +0.46875 with
    // green and blue -0.5.
    void WriteGouraudTable() { test::WriteWords(writer, 0x800, {0x7FFF, 0x0000, 0x4210, 0x001F}); }

    test::WordWriter writer = [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
};

TEST_F(Vdp1PartsTest, CornersFollowCommandLocalCoordinatesAndScale) {
    struct Case { const char* name; int kind; Command command; int32_t localX, localY, scale; Corners corners; };
    const Command zoomed{.ctrl = 0xA01, .size = 0x0101, .xa = 100, .ya = 50, .xb = 21, .yb = 11};
    const Command quad{.colr = 1, .xa = 1, .ya = 2, .xb = 30, .yb = 4, .xc = 28, .yc = 40, .yd = 35};
    const Case cases[] = {
        {"normal, local, x2", kNormalSprite, {.size = 0x0208, .xa = 10, .ya = 20}, -16, 4, 2,
         {{-12, 48}, {20, 48}, {20, 64}, {-12, 64}}},
        {"two-point, local", kScaledSprite, {.size = 0x0101, .xa = 1, .ya = 2, .xc = 15, .yc = 7}, 10, -10, 1,
         {{11, -8}, {26, -8}, {26, -2}, {11, -2}}},
        {"zoom centre, odd size", kScaledSprite, zoomed, 0, 0, 1, {{89, 44}, {111, 44}, {111, 56}, {89, 56}}},
        {"zoom upper left, local", kScaledSprite, {.ctrl = 0x501, .size = 1, .xa = 90, .ya = 60, .xb = 20, .yb = 10},
         10, -10, 1, {{99, 49}, {121, 49}, {121, 61}, {99, 61}}},
        {"zoom, size 0xFFFF is 0", kScaledSprite, {.ctrl = 0x501, .size = 1, .xa = 100, .ya = 50, .xb = -1, .yb = -1},
         0, 0, 1, {{99, 49}, {101, 49}, {101, 51}, {99, 51}}},
        {"distorted, local", kDistortedSprite, quad, 3, -4, 1, {{4, -2}, {33, 0}, {31, 36}, {3, 31}}},
        {"polygon, local, x2", kPolygon, quad, 3, -4, 2, {{8, -4}, {66, 0}, {62, 72}, {6, 62}}},
        {"line keeps C and D raw", kLine, quad, 3, -4, 2, {{8, -4}, {66, 0}, {28, 40}, {0, 35}}},
    };
    const auto corners = [](const CVdp1Part& part) {
        Corners all;
        for (const Vdp1Vertex& v : part.vertices) all.emplace_back(v.x, v.y);
        return all;
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        vdp1->xScale = vdp1->yScale = c.scale;
        const auto part = Make(c.kind, c.command, c.localX, c.localY);
        EXPECT_EQ(corners(*part), c.corners);
        EXPECT_EQ(part->type, c.kind);
    }
    vdp1->xScale = vdp1->yScale = 1;
    for (uint16_t zoom : {1, 2, 3, 4, 8, 12}) {  // no position: collapsed
        const Command c{.ctrl = static_cast<uint16_t>(zoom << 8 | 1), .size = 0x0101, .xa = 100, .xb = 20, .yb = 10};
        EXPECT_EQ(corners(*Make(kScaledSprite, c)), (Corners{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})) << zoom;
    }
}

TEST_F(Vdp1PartsTest, ShapeGouraudAndOffsetPerCornerClampedAfterHalving) {
    WriteGouraudTable();
    struct Case { uint16_t pmod, colr; float alpha; Vdp1Rgb a, b, d; };
    const Case cases[] = {
        // The prohibited mode 5 has the gouraud bit: shaded, and opaque as replace.
        {0x004, 0x7FFF, 1, {1, 1, 1}, {0.5f, 0.5f, 0.5f}, {1, 0.5f, 0.5f}},
        {0x005, 0x7FFF, 1, {1, 1, 1}, {0.5f, 0.5f, 0.5f}, {1, 0.5f, 0.5f}},
        {0x006, 0x7FFF, 1, {0.734375f, 0.734375f, 0.734375f}, {0.25f, 0.25f, 0.25f}, {0.734375f, 0.25f, 0.25f}},
        {0x007, 0x0000, 0.5f, {0.46875f, 0.46875f, 0.46875f}, {0, 0, 0}, {0.46875f, 0, 0}},
        {0x102, 0x7FFF, 0.5f, {0.5f, 0.5f, 0.5f}, {0.5f, 0.5f, 0.5f}, {0.5f, 0.5f, 0.5f}},  // mesh, half luminance
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.pmod);
        const auto part = Make(kPolygon, {.pmod = c.pmod, .colr = c.colr, .grda = 0x100});
        ExpectRgb(part->colors[0], c.a);
        ExpectRgb(part->colors[1], c.b);
        ExpectRgb(part->colors[3], c.d);
        EXPECT_FLOAT_EQ(part->alpha, c.alpha);
    }
    const float k16 = 16.0f / 31.0f;
    struct Offset { uint16_t clofen, clofsl; Vdp1Rgb rgb; };
    for (const Offset& o : {Offset{0x0040, 0x0000, {k16 - 0.5f, k16 + 0.25f, k16}},
                            Offset{0x007F, 0x0040, {k16 + 0.125f, k16 - 0.0625f, k16 + 0.25f}},
                            Offset{0x003F, 0x0040, {k16, k16, k16}}}) {  // sprite offset off
        SCOPED_TRACE(testing::Message() << std::hex << "CLOFEN 0x" << o.clofen << " CLOFSL 0x" << o.clofsl);
        SetColorOffsets(o.clofen, o.clofsl);
        ExpectRgb(Make(kPolyline, {.colr = 0x4210})->colors[2], o.rgb);
    }
    EXPECT_TRUE(Make(kLine, {.colr = 0})->clearsScreen);
}

TEST_F(Vdp1PartsTest, SpriteOffsetsDarkenThroughPrimaryAndLightenThroughSecondary) {
    SetColorOffsets(0x0040, 0x0000);  // red -0.5, green +0.25, blue 0
    struct Case { uint16_t pmod; Vdp1Rgb primary, secondary; float alpha; };
    const Case cases[] = {
        {0x000, {0.5f, 1, 1}, {0, 0.25f, 0}, 1},     {0x001, {0, 0, 0}, {0, 0.25f, 0}, 0.5f},  // replace, shadow
        {0x002, {0, 0.5f, 0.5f}, {0, 0.25f, 0}, 1},  {0x003, {0.5f, 1, 1}, {0, 0.25f, 0}, 0.5f},
        {0x100, {0.5f, 1, 1}, {0, 0.25f, 0}, 0.5f},  // mesh
        {0x005, {0.5f, 1, 1}, {0, 0.25f, 0}, 1},     // prohibited: replace, its gouraud bit ignored
    };
    WriteGouraudTable();
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "CMDPMOD 0x" << std::hex << c.pmod);
        const auto part = Make(kNormalSprite, {.pmod = c.pmod, .srca = 0x400, .size = 0x0101, .grda = 0x100});
        ASSERT_FALSE(part->notDrawn);
        for (int v = 0; v < 4; ++v) {
            ExpectRgb(Sprite(part).colors[v], c.primary);
            ExpectRgb(Sprite(part).secondaryColors[v], c.secondary);
        }
        EXPECT_FLOAT_EQ(part->alpha, c.alpha);
    }
    // Gouraud adds to the offset before the split.
    const auto shaded = Make(kDistortedSprite, {.pmod = 0x004, .srca = 0x400, .size = 0x0101, .grda = 0x100});
    ExpectRgb(Sprite(shaded).colors[0], {0.96875f, 1, 1});  // red -0.5 + 0.46875
    ExpectRgb(Sprite(shaded).secondaryColors[0], {0, 0.71875f, 0.46875f});
    ExpectRgb(Sprite(shaded).colors[1], {0, 0.75f, 0.5f});
    ExpectRgb(Sprite(shaded).secondaryColors[1], {0, 0, 0});
}

TEST_F(Vdp1PartsTest, CharacterlessAndBlackSpritesAreNotDrawn) {
    EXPECT_EQ(Sprite(Make(kNormalSprite, {.pmod = 0x0038, .srca = 0x100, .size = 0x0101})).colorMode, 4u)
        << "modes 6 and 7 are taken as 4";
    EXPECT_TRUE(Make(kNormalSprite, {.srca = 0xFFFF, .size = 0x0101})->notDrawn);
    EXPECT_EQ(vdp1->GetPattern(0x7FFF8), nullptr) << "no pattern for a sprite without character";
    // 32K colours: words 0x8000 are opaque black, so are 0x0000 with SPD.
    test::WriteWords(writer, 0x1000, {0x8000, 0x0000, 0x8000, 0x8000, 0x0000, 0x0000, 0x8000, 0x8000});
    EXPECT_TRUE(Make(kNormalSprite, {.pmod = 0x68, .srca = 0x200, .size = 0x0101})->notDrawn);
    vdp1->ClearPatternCache();  // the cached pattern would keep the SPD result
    EXPECT_FALSE(Make(kNormalSprite, {.pmod = 0x28, .srca = 0x200, .size = 0x0101})->notDrawn);
}

TEST_F(Vdp1PartsTest, PaletteIndexFromBankMaskedCmdcolrAndSpriteColourRamOffset) {
    struct Case { uint32_t colorMode, colorCtrl; uint16_t craofb, ramctl; uint32_t index; };
    const Case cases[] = {
        {0, 0x0123, 0x0010, 0x0000, 0x22}, {0, 0x0123, 0x0015, 0x1000, 0x22},  // R0CAOS bits ignored
        {0, 0x0123, 0x0010, 0x2000, 0x32}, {2, 0x00FF, 0x0000, 0x0000, 0x0C}, {3, 0x00FF, 0x0000, 0x0000, 0x08},
        {4, 0x0123, 0x0000, 0x0000, 0x10}, {1, 0x0123, 0x0010, 0x0000, 0x10}, {5, 0x7FFF, 0x0020, 0x0000, 0x20},
        {4, 0x0700, 0x0070, 0x0000, 0x60},  // 11 bits only
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.colorMode << std::hex << " CMDCOLR 0x" << c.colorCtrl
                                        << " CRAOFB 0x" << c.craofb << " RAMCTL 0x" << c.ramctl);
        vdp2->WriteRegisterWord(CRAOFB, c.craofb);
        vdp2->WriteRegisterWord(RAMCTL, c.ramctl);
        CVdp1SpritePart part;
        part.colorMode = c.colorMode;
        part.colorCtrl = c.colorCtrl;
        EXPECT_EQ(part.ComputeVdp2PaletteIndex(), c.index);
    }
}

}  // namespace
}  // namespace vdpgl
