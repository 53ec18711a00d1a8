#include "render/draw_list.h"

namespace vdpgl {

DrawVertex* CDrawList::Add(DrawPrimitive primitive, uint32_t texture, bool filtered, uint32_t vertexCount) {
    const uint32_t first = static_cast<uint32_t>(vertices.size());
    if (runs.empty() || runs.back().texture != texture || runs.back().filtered != filtered ||
        runs.back().primitive != primitive)
        runs.push_back({texture, filtered, primitive, first, 0});
    runs.back().count += vertexCount;
    vertices.resize(first + vertexCount);
    return vertices.data() + first;
}

}  // namespace vdpgl
