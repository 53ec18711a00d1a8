#include "render/draw_list.h"

#include <algorithm>

namespace vdpgl {

DrawVertex* CDrawList::Add(DrawPrimitive primitive, uint32_t texture, bool filtered, uint32_t vertexCount,
                           bool alone) {
    return Append({texture, filtered, 0, 0, alone, primitive, 0, 0}, vertexCount);
}

DrawVertex* CDrawList::AddPattern(DrawPrimitive primitive, uint32_t page, int pageWidth, int pageHeight,
                                  uint32_t vertexCount, bool alone) {
    return Append(
        {page, false, static_cast<uint16_t>(pageWidth), static_cast<uint16_t>(pageHeight), alone, primitive, 0, 0},
        vertexCount);
}

DrawVertex* CDrawList::AddShape(DrawPrimitive primitive, uint32_t vertexCount, bool alone) {
    if (!shapePage.texture) return Add(primitive, 0, false, vertexCount, alone);
    DrawRun state = !runs.empty() && runs.back().pageWidth ? runs.back() : shapePage;
    state.primitive = primitive;
    state.alone = alone;
    state.first = state.count = 0;
    return Append(state, vertexCount);
}

DrawVertex* CDrawList::Append(const DrawRun& state, uint32_t count) {
    const uint32_t first = static_cast<uint32_t>(vertexCount);
    const DrawRun* last = runs.empty() ? nullptr : &runs.back();
    if (!last || state.alone || last->alone || last->texture != state.texture || last->filtered != state.filtered ||
        last->pageWidth != state.pageWidth || last->pageHeight != state.pageHeight ||
        last->primitive != state.primitive) {
        runs.push_back(state);
        runs.back().first = first;
    }
    runs.back().count += count;
    vertexCount = first + count;
    if (vertices.size() < vertexCount) vertices.resize(std::max<size_t>(vertexCount, 2 * vertices.size()));
    return vertices.data() + first;
}

}  // namespace vdpgl
