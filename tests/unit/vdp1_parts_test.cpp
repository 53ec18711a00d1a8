// Drawing parts built straight from command tables: corner positions (local
// coordinates, zoom points, scale), shape and sprite colours, and the
// sprite's palette block.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "render/opengl/opengl.h"
#include "support/vdp1_commands.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using test::Command;
using Corners = std::vector<std::pair<int, int>>;

Vdp1CommandTable Table(const Command& c) {
    Vdp1CommandTable t;
    test::WriteCommand([&t](uint32_t a, uint16_t v) { t.words[a / 2] = v; }, 0, c);
    return t;
}

Corners CornersOf(const CVdp1Part& p) {
    Corners corners;
    for (const Vdp1Vertex& v : p.vertices) corners.emplace_back(v.x, v.y);
    return corners;
}

void ExpectRgb(const Vdp1Rgb& c, float red, float green, float blue) {
    EXPECT_NEAR(c.red, red, 1e-5f);
    EXPECT_NEAR(c.green, green, 1e-5f);
    EXPECT_NEAR(c.blue, blue, 1e-5f);
}

class Vdp1PartsTest : public ::testing::Test {
protected:
    Vdp1PartsTest() { vdp1->Link(*vdp2); }

    std::unique_ptr<CVdp1Part> Make(int kind, const Command& c, int32_t localX = 0, int32_t localY = 0) {
        const Vdp1CommandTable t = Table(c);
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
    // Sprite colour offset set A (red -0.5, green +0.25, blue 0) or set B
    // (red +0.125, green -0.0625, blue +0.25 from a value beyond 9 bits).
    void SetColorOffsets(uint16_t clofen, uint16_t clofsl) {
        for (auto [reg, value] : {std::pair{COAR, 0x180}, {COAG, 0x040}, {COAB, 0x000}, {COBR, 0x020},
                                  {COBG, 0x1F0}, {COBB, 0x0E40}})
            vdp2->WriteRegisterWord(reg, static_cast<uint16_t>(value));
        vdp2->WriteRegisterWord(CLOFEN, clofen);
        vdp2->WriteRegisterWord(CLOFSL, clofsl);
    }
    // Gouraud words for corners A-D at VRAM 0x800 (CMDGRDA 0x100): all +0.46875,
    // all -0.5, neutral, red +0.46875 with green and blue -0.5.
    void WriteGouraudTable() {
        test::WriteWords([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, 0x800,
                         {0x7FFF, 0x0000, 0x4210, 0x001F});
    }

    test::ScopedTempDir tempDir;
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
};

TEST_F(Vdp1PartsTest, CornersFollowCommandLocalCoordinatesAndScale) {
    struct Case {
        const char* name;
        int kind;
        Command command;
        int32_t localX, localY, scale;
        Corners corners;
    };
    const Case cases[] = {
        {"normal", kNormalSprite, {.size = 0x0208, .xa = 10, .ya = 20}, 0, 0, 1, {{10, 20}, {26, 20}, {26, 28}, {10, 28}}},
        {"normal, local, x2", kNormalSprite, {.size = 0x0208, .xa = 10, .ya = 20}, -16, 4, 2,
         {{-12, 48}, {20, 48}, {20, 64}, {-12, 64}}},
        {"two-point", kScaledSprite, {.size = 0x0101, .xb = 99, .yb = 99, .xc = 15, .yc = 7}, 0, 0, 1,
         {{0, 0}, {16, 0}, {16, 8}, {0, 8}}},
        {"two-point, local", kScaledSprite, {.size = 0x0101, .xa = 1, .ya = 2, .xc = 15, .yc = 7}, 10, -10, 1,
         {{11, -8}, {26, -8}, {26, -2}, {11, -2}}},
        {"zoom centre", kScaledSprite, {.ctrl = 0xA01, .size = 0x0101, .xa = 100, .ya = 50, .xb = 20, .yb = 10}, 0, 0,
         1, {{89, 44}, {111, 44}, {111, 56}, {89, 56}}},
        {"zoom centre x2", kScaledSprite, {.ctrl = 0xA01, .size = 0x0101, .xa = 100, .ya = 50, .xb = 20, .yb = 10}, 0,
         0, 2, {{178, 88}, {222, 88}, {222, 112}, {178, 112}}},
        {"zoom centre, odd size", kScaledSprite, {.ctrl = 0xA01, .size = 0x0101, .xa = 100, .ya = 50, .xb = 21, .yb = 11},
         0, 0, 1, {{89, 44}, {111, 44}, {111, 56}, {89, 56}}},
        {"zoom upper left, local", kScaledSprite, {.ctrl = 0x501, .size = 0x0101, .xa = 90, .ya = 60, .xb = 20, .yb = 10},
         10, -10, 1, {{99, 49}, {121, 49}, {121, 61}, {99, 61}}},
        {"zoom lower right", kScaledSprite, {.ctrl = 0xF01, .size = 0x0101, .xa = 100, .ya = 50, .xb = 20, .yb = 10}, 0,
         0, 1, {{79, 39}, {101, 39}, {101, 51}, {79, 51}}},
        {"zoom, size 0xFFFF is 0", kScaledSprite, {.ctrl = 0x501, .size = 0x0101, .xa = 100, .ya = 50, .xb = -1, .yb = -1},
         0, 0, 1, {{99, 49}, {101, 49}, {101, 51}, {99, 51}}},
        {"distorted, local", kDistortedSprite,
         {.size = 0x0101, .xa = 1, .ya = 2, .xb = 30, .yb = 4, .xc = 28, .yc = 40, .xd = 0, .yd = 35}, 3, -4, 1,
         {{4, -2}, {33, 0}, {31, 36}, {3, 31}}},
        {"polygon, local, x2", kPolygon, {.colr = 1, .xa = 1, .ya = 2, .xb = 30, .yb = 4, .xc = 28, .yc = 40, .yd = 35},
         3, -4, 2, {{8, -4}, {66, 0}, {62, 72}, {6, 62}}},
        {"polyline, local", kPolyline, {.colr = 1, .xa = 1, .ya = 2, .xb = 30, .yb = 4, .xc = 28, .yc = 40, .yd = 35}, 3,
         -4, 1, {{4, -2}, {33, 0}, {31, 36}, {3, 31}}},
        {"line keeps C and D raw", kLine, {.colr = 1, .xa = 1, .ya = 2, .xb = 30, .yb = 4, .xc = 28, .yc = 40, .yd = 35},
         3, -4, 2, {{8, -4}, {66, 0}, {28, 40}, {0, 35}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        vdp1->xScale = vdp1->yScale = c.scale;
        const auto part = Make(c.kind, c.command, c.localX, c.localY);
        EXPECT_EQ(CornersOf(*part), c.corners);
        EXPECT_EQ(part->type, c.kind);
    }
}

TEST_F(Vdp1PartsTest, ZoomPointsWithoutAPositionCollapseTheSprite) {
    for (uint16_t zoom : {1, 2, 3, 4, 8, 12}) {
        SCOPED_TRACE(zoom);
        const Command c{.ctrl = static_cast<uint16_t>(zoom << 8 | 1), .size = 0x0101, .xa = 100, .ya = 50, .xb = 20,
                        .yb = 10};
        EXPECT_EQ(CornersOf(*Make(kScaledSprite, c)), (Corners{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}));
    }
}

TEST_F(Vdp1PartsTest, ShapeColourFromCmdcolrAndColourCalculation) {
    struct Case {
        uint16_t pmod, colr;
        float red, green, blue, alpha;
    };
    const float k16 = 16.0f / 31.0f;
    const Case cases[] = {
        {0x000, 0x7FFF, 1, 1, 1, 1},         {0x100, 0x7FFF, 1, 1, 1, 0.5f},  // mesh
        {0x000, 0x001F, 1, 0, 0, 1},         {0x000, 0x7C00, 0, 0, 1, 1},     {0x000, 0x4210, k16, k16, k16, 1},
        {0x001, 0x7FFF, 0, 0, 0, 0.5f},      {0x002, 0x7FFF, 0.5f, 0.5f, 0.5f, 1},  {0x003, 0x7FFF, 1, 1, 1, 0.5f},
        {0x004, 0x001F, 1, 0, 0, 1},         {0x005, 0x7FFF, 1, 1, 1, 1},     {0x102, 0x7FFF, 0.5f, 0.5f, 0.5f, 0.5f},
    };
    // A neutral gouraud table, for the modes that read one.
    test::WriteWords([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, 0x800,
                     {0x4210, 0x4210, 0x4210, 0x4210});
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "CMDPMOD 0x" << c.pmod << " CMDCOLR 0x" << c.colr);
        const auto part = Make(kPolygon, {.pmod = c.pmod, .colr = c.colr, .grda = 0x100});
        for (const Vdp1Rgb& rgb : part->colors) ExpectRgb(rgb, c.red, c.green, c.blue);
        EXPECT_FLOAT_EQ(part->alpha, c.alpha);
        EXPECT_FALSE(part->clearsScreen);
    }
    EXPECT_TRUE(Make(kPolygon, {.colr = 0})->clearsScreen);
    EXPECT_TRUE(Make(kLine, {.colr = 0})->clearsScreen);
}

TEST_F(Vdp1PartsTest, ShapeGouraudIsAddedPerCornerBeforeHalvingAndClamped) {
    WriteGouraudTable();
    // The prohibited mode 5 has the gouraud bit: shaded, and opaque as replace.
    for (uint16_t pmod : {0x004, 0x005}) {
        SCOPED_TRACE(pmod);
        const auto gouraud = Make(kPolygon, {.pmod = pmod, .colr = 0x7FFF, .grda = 0x100});
        ExpectRgb(gouraud->colors[0], 1, 1, 1);
        ExpectRgb(gouraud->colors[1], 0.5f, 0.5f, 0.5f);
        ExpectRgb(gouraud->colors[2], 1, 1, 1);
        ExpectRgb(gouraud->colors[3], 1, 0.5f, 0.5f);
        EXPECT_FLOAT_EQ(gouraud->alpha, 1.0f);
    }

    const auto halved = Make(kPolygon, {.pmod = 0x006, .colr = 0x7FFF, .grda = 0x100});
    ExpectRgb(halved->colors[0], 0.734375f, 0.734375f, 0.734375f);
    ExpectRgb(halved->colors[1], 0.25f, 0.25f, 0.25f);

    const auto dark = Make(kPolyline, {.pmod = 0x007, .colr = 0x0000, .grda = 0x100});
    ExpectRgb(dark->colors[0], 0.46875f, 0.46875f, 0.46875f);
    ExpectRgb(dark->colors[1], 0, 0, 0);
    EXPECT_FLOAT_EQ(dark->alpha, 0.5f);
}

TEST_F(Vdp1PartsTest, ShapeColourOffsetComesFromTheSelectedSet) {
    struct Case {
        uint16_t clofen, clofsl;
        float red, green, blue;
    };
    const float k16 = 16.0f / 31.0f;
    const Case cases[] = {
        {0x0040, 0x0000, k16 - 0.5f, k16 + 0.25f, k16},
        {0x007F, 0x0040, k16 + 0.125f, k16 - 0.0625f, k16 + 0.25f},
        {0x003F, 0x0040, k16, k16, k16},  // sprite offset off
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "CLOFEN 0x" << c.clofen << " CLOFSL 0x" << c.clofsl);
        SetColorOffsets(c.clofen, c.clofsl);
        const auto part = Make(kPolygon, {.colr = 0x4210});
        for (const Vdp1Rgb& rgb : part->colors) ExpectRgb(rgb, c.red, c.green, c.blue);
    }
}

TEST_F(Vdp1PartsTest, SpriteOffsetsDarkenThroughPrimaryAndLightenThroughSecondary) {
    SetColorOffsets(0x0040, 0x0000);  // red -0.5, green +0.25, blue 0
    struct Case {
        uint16_t pmod;
        Vdp1Rgb primary, secondary;
        float alpha;
    };
    const Case cases[] = {
        {0x000, {0.5f, 1, 1}, {0, 0.25f, 0}, 1},     // replace
        {0x001, {0, 0, 0}, {0, 0.25f, 0}, 0.5f},     // shadow
        {0x002, {0, 0.5f, 0.5f}, {0, 0.25f, 0}, 1},  // half luminance
        {0x003, {0.5f, 1, 1}, {0, 0.25f, 0}, 0.5f},  // half transparency
        {0x100, {0.5f, 1, 1}, {0, 0.25f, 0}, 0.5f},  // mesh
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "CMDPMOD 0x" << std::hex << c.pmod);
        const auto part = Make(kNormalSprite, {.pmod = c.pmod, .srca = 0x400, .size = 0x0101});
        const auto& sprite = static_cast<const CVdp1SpritePart&>(*part);
        ASSERT_FALSE(sprite.notDrawn);
        for (int v = 0; v < 4; ++v) {
            ExpectRgb(sprite.colors[v], c.primary.red, c.primary.green, c.primary.blue);
            ExpectRgb(sprite.secondaryColors[v], c.secondary.red, c.secondary.green, c.secondary.blue);
        }
        EXPECT_FLOAT_EQ(sprite.alpha, c.alpha);
    }
}

TEST_F(Vdp1PartsTest, ProhibitedModeColoursASpriteAsReplaceDoes) {
    SetColorOffsets(0x0040, 0x0000);
    WriteGouraudTable();
    const auto part = Make(kNormalSprite, {.pmod = 0x005, .srca = 0x400, .size = 0x0101, .grda = 0x100});
    const auto& s = static_cast<const CVdp1SpritePart&>(*part);
    for (int v = 0; v < 4; ++v) {
        SCOPED_TRACE(v);
        ExpectRgb(s.colors[v], 0.5f, 1, 1);
        ExpectRgb(s.secondaryColors[v], 0, 0.25f, 0);
    }
    EXPECT_FLOAT_EQ(s.alpha, 1.0f);
}

TEST_F(Vdp1PartsTest, SpriteGouraudAddsToTheOffsetBeforeTheSplit) {
    SetColorOffsets(0x0040, 0x0000);
    WriteGouraudTable();
    const auto part = Make(kDistortedSprite, {.pmod = 0x004, .srca = 0x400, .size = 0x0101, .grda = 0x100});
    const auto& s = static_cast<const CVdp1SpritePart&>(*part);
    ExpectRgb(s.colors[0], 0.96875f, 1, 1);  // red -0.5 + 0.46875
    ExpectRgb(s.secondaryColors[0], 0, 0.71875f, 0.46875f);
    ExpectRgb(s.colors[1], 0, 0.75f, 0.5f);
    ExpectRgb(s.secondaryColors[1], 0, 0, 0);
    ExpectRgb(s.colors[3], 0.96875f, 0.75f, 0.5f);
    ExpectRgb(s.secondaryColors[3], 0, 0, 0);
}

TEST_F(Vdp1PartsTest, CharacterlessAndBlackSpritesAreNotDrawn) {
    const auto flags = Make(kNormalSprite, {.pmod = 0x0038, .srca = 0x100, .size = 0x0101});
    EXPECT_EQ(static_cast<const CVdp1SpritePart&>(*flags).colorMode, 4u) << "modes 6 and 7 are taken as 4";
    const auto none = Make(kNormalSprite, {.srca = 0xFFFF, .size = 0x0101});
    EXPECT_TRUE(none->notDrawn);
    EXPECT_EQ(vdp1->GetPattern(0x7FFF8), nullptr) << "no pattern for a sprite without character";

    // 32K colours: words 0x8000 are opaque black, so are 0x0000 with SPD.
    test::WriteWords([this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); }, 0x1000,
                     {0x8000, 0x0000, 0x8000, 0x8000, 0x0000, 0x0000, 0x8000, 0x8000});
    EXPECT_TRUE(Make(kNormalSprite, {.pmod = 0x68, .srca = 0x200, .size = 0x0101})->notDrawn);
    vdp1->ClearPatternCache();  // the cached pattern would keep the SPD result
    EXPECT_FALSE(Make(kNormalSprite, {.pmod = 0x28, .srca = 0x200, .size = 0x0101})->notDrawn);
}

TEST_F(Vdp1PartsTest, PaletteIndexFromBankMaskedCmdcolrAndSpriteColourRamOffset) {
    struct Case {
        uint32_t colorMode, colorCtrl;
        uint16_t craofb, ramctl;
        uint32_t index;
    };
    const Case cases[] = {
        {0, 0x0123, 0x0010, 0x0000, 0x22}, {0, 0x0123, 0x0015, 0x1000, 0x22},  // R0CAOS bits ignored
        {0, 0x0123, 0x0010, 0x2000, 0x32}, {2, 0x00FF, 0x0000, 0x0000, 0x0C},
        {3, 0x00FF, 0x0000, 0x0000, 0x08}, {4, 0x0123, 0x0000, 0x0000, 0x10},
        {1, 0x0123, 0x0010, 0x0000, 0x10}, {5, 0x7FFF, 0x0020, 0x0000, 0x20},
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
