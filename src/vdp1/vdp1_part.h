#pragma once
// CVdp1Part: one drawing part per VDP1 drawing command, rebuilt at every walk
// of the command list. These are the fields the renderer draws from; the
// command walker fills them.
#include <cstdint>

namespace vdpgl {

struct Vdp1Vertex {
    int16_t x = 0;
    int16_t y = 0;
};

struct Vdp1Rgb {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

// Flips of a part's texture.
enum Vdp1Direction : uint32_t { kNoFlip = 0, kFlipH = 1, kFlipV = 2, kFlipHV = 3 };

class CVdp1Part {
public:
    // Corners A, B, C, D in console pixels; for a sprite top-left,
    // top-right, bottom-right, bottom-left of its character. A line uses A, B.
    Vdp1Vertex vertices[4];
    Vdp1Rgb colors[4];           // primary colour of each corner
    float alpha = 1.0f;          // one alpha for the whole part
    uint32_t direction = kNoFlip;
    uint32_t characterAddress = 0;  // VDP1 VRAM byte address of the pattern
    Vdp1Rgb secondaryColors[4];  // colour offset added after texturing
};

}  // namespace vdpgl
