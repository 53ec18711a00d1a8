// Polygons, polylines and lines: CMDCOLR is always a 15-bit RGB colour here
// (a colour-bank code is not looked up), shaded, offset and clamped per
// vertex. A polygon of colour 0 clears the picture instead of drawing.
#include "render/opengl/opengl.h"
#include "vdp1/vdp1_part.h"
#include "vdp1/vdp1_part_drawing.h"

namespace vdpgl {

CVdp1ShapePart::CVdp1ShapePart(const Vdp1CommandTable& c) : CVdp1Part(c) {
    clearsScreen = colorCtrl == 0;
    const Vdp1Rgb base{static_cast<float>(colorCtrl & 0x1F) / 31.0f, static_cast<float>((colorCtrl >> 5) & 0x1F) / 31.0f,
                       static_cast<float>((colorCtrl >> 10) & 0x1F) / 31.0f};
    Vdp1Rgb gouraud[4];
    GouraudOffsets(gouraud);
    const Vdp1Rgb& offset = walk.colorOffset;
    const float scale = ApplyColorCalculation();
    for (int v = 0; v < 4; ++v) {
        colors[v].red = ClampChannel((base.red + gouraud[v].red) * scale + offset.red);
        colors[v].green = ClampChannel((base.green + gouraud[v].green) * scale + offset.green);
        colors[v].blue = ClampChannel((base.blue + gouraud[v].blue) * scale + offset.blue);
    }
}

CVdp1Polygon::CVdp1Polygon(const Vdp1CommandTable& c, int32_t localX, int32_t localY) : CVdp1ShapePart(c) {
    PlaceVertices(4, localX, localY);
    type = kPolygon;
}

void CVdp1Polygon::Draw() {
    if (!shared.renderer) return;
    if (clearsScreen)
        shared.renderer->RequestClear();
    else
        AppendPolygon(shared.renderer->Drawing(), *this);
}

CVdp1Polyline::CVdp1Polyline(const Vdp1CommandTable& c, int32_t localX, int32_t localY) : CVdp1ShapePart(c) {
    PlaceVertices(4, localX, localY);
    type = kPolyline;
}

void CVdp1Polyline::Draw() {
    if (shared.renderer) AppendPolyline(shared.renderer->Drawing(), *this);
}

CVdp1Line::CVdp1Line(const Vdp1CommandTable& c, int32_t localX, int32_t localY) : CVdp1ShapePart(c) {
    PlaceVertices(2, localX, localY);  // C and D keep the command's values
    type = kLine;
}

void CVdp1Line::Draw() {
    if (shared.renderer) AppendLine(shared.renderer->Drawing(), *this);
}

}  // namespace vdpgl
