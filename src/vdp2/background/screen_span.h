#pragma once
// The scroll planes and bitmaps are drawn as one quad per tile of the map
// that is on screen. ScreenSpan places one tile along one axis: the visible
// map range [low, high) fills the screen, map dots scaled by `scale` (map
// dots per screen dot); a tile inside it is cut at the screen's edges.
#include <cstdint>

namespace vdpgl {

struct ScreenSpan {
    int32_t from;    // screen position of the tile's first edge, before the dot ratio
    int32_t to;      // and of its far edge (the screen's edge when cut there)
    float texFrom;   // texture coordinates of those edges, fractions of the tile
    float texTo;
};

// tileLow: map position of the tile's first dot; size: tile size in dots.
inline ScreenSpan SpanOnScreen(int32_t tileLow, int32_t size, int32_t low, int32_t high, float scale,
                               int32_t screenSize) {
    const int32_t tileHigh = tileLow + size;
    const float dots = static_cast<float>(size);
    ScreenSpan span{};
    if (tileLow <= low) {
        span.from = 0;
        span.texFrom = static_cast<float>(low - tileLow) / dots;
    } else {
        span.from = static_cast<int32_t>(static_cast<float>(tileLow - low) / scale);
        span.texFrom = 0.0f;
    }
    if (tileHigh >= high) {
        span.to = screenSize;
        span.texTo = static_cast<float>(high - tileLow) / dots;
    } else {
        span.to = static_cast<int32_t>(static_cast<float>(tileHigh - low) / scale);
        span.texTo = 1.0f;
    }
    return span;
}

// Floor division for tiles left of or above the map's origin.
constexpr int32_t FloorToMultiple(int32_t v, int32_t size) {
    const int32_t q = v / size;
    return (q * size > v ? q - 1 : q) * size;
}

}  // namespace vdpgl
