#include "vdp1/vdp1_part_drawing.h"

#include "render/draw_list.h"
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

}  // namespace

void AppendSprite(CDrawList& list, const CVdp1SpritePart& part) {
    if (!part.textureId) return;
    // Corners A, B, C, D; a flip moves the far texture edge to the other side.
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
    DrawVertex* v = list.Add(DrawPrimitive::kQuads, part.textureId, false, 4);
    for (int i = 0; i < 4; ++i) {
        const Vdp1Rgb& c = part.colors[i];
        const Vdp1Rgb& offset = part.secondaryColors[i];
        v[i] = {list.DeviceX(part.vertices[i].x), list.DeviceY(part.vertices[i].y), s[i], t[i], c.red, c.green, c.blue,
                part.alpha, offset.red, offset.green, offset.blue};
    }
}

void AppendPolygon(CDrawList& list, const CVdp1Part& part) {
    DrawVertex* v = list.Add(DrawPrimitive::kQuads, 0, false, 4);
    for (int i = 0; i < 4; ++i) v[i] = ShapeCorner(list, part, i);
}

void AppendPolyline(CDrawList& list, const CVdp1Part& part) {
    // A closed outline: edges A-B, B-C, C-D, D-A, each drawn as a line.
    DrawVertex* v = list.Add(DrawPrimitive::kLines, 0, false, 8);
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = ShapeCorner(list, part, i);
        v[2 * i + 1] = ShapeCorner(list, part, (i + 1) % 4);
    }
}

void AppendLine(CDrawList& list, const CVdp1Part& part) {
    DrawVertex* v = list.Add(DrawPrimitive::kLines, 0, false, 2);
    v[0] = ShapeCorner(list, part, 0);
    v[1] = ShapeCorner(list, part, 1);
}

}  // namespace vdpgl
