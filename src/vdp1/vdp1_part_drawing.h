#pragma once
// A part's primitive, appended to the frame's draw list: a sprite as a
// textured quad mirrored as its direction says, a polygon as a quad, a
// polyline as its four edges and a line as one.
namespace vdpgl {

class CDrawList;
class CVdp1Part;
class CVdp1SpritePart;

// Nothing for a sprite without a texture (the cache gave it none).
void AppendSprite(CDrawList& list, const CVdp1SpritePart& part);
void AppendPolygon(CDrawList& list, const CVdp1Part& part);
void AppendPolyline(CDrawList& list, const CVdp1Part& part);
void AppendLine(CDrawList& list, const CVdp1Part& part);

}  // namespace vdpgl
