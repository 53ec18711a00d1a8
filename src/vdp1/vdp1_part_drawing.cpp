#include "vdp1/vdp1_part_drawing.h"

#include "render/draw_list.h"
#include "render/texture_atlas.h"
#include "vdp1/vdp1_part.h"

namespace vdpgl {

namespace {

// Corner i of a shape: its position and colour, no texture, no secondary
// colour (a shape carries its colour offset in the primary colour).
DrawVertex ShapeCorner(const CDrawList& list, const CVdp1Part& part, int i) {
    const Vdp1Rgb& c = part.colors[i];
    DrawVertex v;
    v.x = list.DeviceX(part.vertices[i].x);
    v.y = list.DeviceY(part.vertices[i].y);
    v.red = c.red;
    v.green = c.green;
    v.blue = c.blue;
    v.alpha = part.alpha;
    return v;
}

bool SameColour(const Vdp1Rgb& a, const Vdp1Rgb& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

// Whether a quad may share a draw call with others: one call of many quads
// splits each along the diagonal B-D, a quad alone along A-C, and the two
// give the same dots only for a rectangle along the axes whose corners have
// one colour (gouraud shading is not linear over a quad) and, textured, a
// whole number of dots a texel each way: a sprite scaled otherwise has dot
// centres on texel edges, where the two splits' roundings pick different
// texels.
bool Shareable(const CVdp1Part& part, const Vdp1Rgb* secondaryColors, int textureWidth = 0, int textureHeight = 0) {
    const Vdp1Vertex(&v)[4] = part.vertices;
    const bool across = v[0].y == v[1].y && v[1].x == v[2].x && v[2].y == v[3].y && v[3].x == v[0].x;
    if (!across) return false;
    if (textureWidth > 0 && textureHeight > 0) {
        const int dotsAcross = v[1].x - v[0].x, dotsDown = v[3].y - v[0].y;
        if (dotsAcross == 0 || dotsDown == 0 || dotsAcross % textureWidth != 0 || dotsDown % textureHeight != 0)
            return false;
    }
    for (int i = 1; i < 4; ++i) {
        if (!SameColour(part.colors[i], part.colors[0])) return false;
        if (secondaryColors && !SameColour(secondaryColors[i], secondaryColors[0])) return false;
    }
    return true;
}

// Whether the first n corners all lie past one edge of the screen, so that
// the part shows nothing: the driver need not transform and clip it. Two
// dots of margin keep the wireframe's wider lines.
bool OffScreen(const CDrawList& list, const CVdp1Part& part, int n) {
    constexpr int kMargin = 2;
    const int right = list.ScreenWidth() + kMargin, bottom = list.ScreenHeight() + kMargin;
    bool left = true, past = true, above = true, below = true;
    for (int i = 0; i < n; ++i) {
        const Vdp1Vertex& v = part.vertices[i];
        left = left && v.x < -kMargin;
        past = past && v.x > right;
        above = above && v.y < -kMargin;
        below = below && v.y > bottom;
    }
    return left || past || above || below;
}

}  // namespace

// A pattern's size and place in its page are packed two to a float.
static_assert(CTextureAtlas::kPageSide < 2048, "PackPatternPair holds numbers below 2048");

void AppendSprite(CDrawList& list, const CVdp1SpritePart& part) {
    const TextureRect& r = part.textureRect;
    if (!r.texture || OffScreen(list, part, 4)) return;
    // Corners A, B, C, D; a flip moves the far texture edge to the other
    // side. The coordinates are the pattern's own, in a page too.
    const float sMax = part.uMax, tMax = part.vMax;
    float s[4] = {}, t[4] = {};
    if (part.IsFlippedHorizontally())
        s[0] = s[3] = sMax;
    else
        s[1] = s[2] = sMax;
    if (part.IsFlippedVertically())
        t[0] = t[1] = tMax;
    else
        t[2] = t[3] = tMax;
    const int patternWidth = static_cast<int>(((part.characterSize >> 8) & 0x3F) * 8);
    const int patternHeight = static_cast<int>(part.characterSize & 0xFF);
    const bool alone = !Shareable(part, part.secondaryColors, patternWidth, patternHeight);
    DrawVertex* v = r.pageWidth
                        ? list.AddPattern(DrawPrimitive::kQuads, r.texture, r.pageWidth, r.pageHeight, 4, alone)
                        : list.Add(DrawPrimitive::kQuads, r.texture, false, 4, alone);
    const float size = PackPatternPair(r.width ? r.width : 1, r.height ? r.height : 1);
    const float place = PackPatternPair(r.x, r.y);
    for (int i = 0; i < 4; ++i) {
        const Vdp1Rgb& c = part.colors[i];
        const Vdp1Rgb& offset = part.secondaryColors[i];
        v[i] = {list.DeviceX(part.vertices[i].x), list.DeviceY(part.vertices[i].y), s[i], t[i], size, place, c.red,
                c.green, c.blue, part.alpha, offset.red, offset.green, offset.blue};
    }
}

void AppendPolygon(CDrawList& list, const CVdp1Part& part) {
    if (OffScreen(list, part, 4)) return;
    DrawVertex* v = list.AddShape(DrawPrimitive::kQuads, 4, !Shareable(part, nullptr));
    for (int i = 0; i < 4; ++i) v[i] = ShapeCorner(list, part, i);
}

void AppendPolyline(CDrawList& list, const CVdp1Part& part) {
    if (OffScreen(list, part, 4)) return;
    // A closed outline: edges A-B, B-C, C-D, D-A, each drawn as a line.
    DrawVertex* v = list.AddShape(DrawPrimitive::kLines, 8);
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = ShapeCorner(list, part, i);
        v[2 * i + 1] = ShapeCorner(list, part, (i + 1) % 4);
    }
}

void AppendLine(CDrawList& list, const CVdp1Part& part) {
    if (OffScreen(list, part, 2)) return;
    DrawVertex* v = list.AddShape(DrawPrimitive::kLines, 2);
    v[0] = ShapeCorner(list, part, 0);
    v[1] = ShapeCorner(list, part, 1);
}

}  // namespace vdpgl
