#pragma once
// The backgrounds scene's sprites, drawn procedurally for 16-colour banks
// (codes 1-14): a falling leaf, a bird in three wing positions and a hot-air
// balloon.
#include <array>
#include <cstdint>

#include "scene_math.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes::backgrounds {

// A leaf along the diagonal, 16 x 16, shaded across its midrib.
PixelCodes LeafPicture();
std::array<uint16_t, 16> LeafPalette(Rgb base);

// A bird seen from behind, 16 x 10: wings up (0), level (1) or down (2).
constexpr int kWingPositions = 3;
PixelCodes BirdPicture(int wings);
std::array<uint16_t, 16> BirdPalette();

// A striped balloon with its basket, 32 x 48.
PixelCodes BalloonPicture();
std::array<uint16_t, 16> BalloonPalette();

}  // namespace vdpgl::scenes::backgrounds
