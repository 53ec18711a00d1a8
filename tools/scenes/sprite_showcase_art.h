#pragma once
// The sprite showcase's pictures and palettes, drawn procedurally: a shaded
// ball, rings, gradients, a colour wheel, a glyph that shows its flips and a
// plain tile for gouraud shading.
#include <array>
#include <cstdint>

#include "scene_math.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes::showcase {

// A lit sphere; codes 1 (dark rim) to 14 (highlight).
PixelCodes BallPicture(int size);
std::array<uint16_t, 16> BallPalette(Rgb base);

// Concentric rings; codes 1-8 from the centre out, 9 the gaps between them.
PixelCodes RingsPicture(int size);
std::array<uint16_t, 16> RingsLookup();

// A diamond with a gradient from its centre, codes 1-62.
PixelCodes DiamondPicture(int size);
std::array<uint16_t, 64> DiamondPalette();

// A five-petal flower shaded from its heart, codes 1-126.
PixelCodes FlowerPicture(int size);
std::array<uint16_t, 128> FlowerPalette();

// A plasma square with rounded corners, codes 1-254.
PixelCodes PlasmaPicture(int size);
std::array<uint16_t, 256> PlasmaPalette();

// A colour wheel in direct RGB.
PixelCodes HueWheelPicture(int size);

// An outlined "F" with a dot in its lower right: its flips are told apart
// at a glance. 24 x 24.
PixelCodes GlyphPicture();
std::array<uint16_t, 16> GlyphPalette();

// A light grey bevelled tile, to be tinted by gouraud shading.
PixelCodes TilePicture(int size);
std::array<uint16_t, 16> TilePalette();

}  // namespace vdpgl::scenes::showcase
