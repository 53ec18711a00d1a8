#pragma once
// The backgrounds scene's landscape, drawn procedurally as 512 x 512 planes
// whose codes are colour numbers from each background's colour RAM offset
// (16-colour planes: palette x 16 + dot). Each plane repeats every 512 dots,
// so the four planes of a map may all show it and scrolling never finds a
// seam.
#include <array>
#include <cstdint>

#include "vdp1_patterns.h"

namespace vdpgl::scenes::backgrounds {

// The far layer: a dusk sky, stars, the moon and a distant mountain range,
// in the sky, moon and mountain palettes. The stars use the sky palette's
// entries kFirstStarColor to kFirstStarColor + 2, which twinkle.
PixelCodes FarPicture();
std::array<uint16_t, 16> SkyPalette();
std::array<uint16_t, 16> MoonPalette();
std::array<uint16_t, 16> MountainPalette();
constexpr int kFirstStarColor = 12;
std::array<uint16_t, 3> StarColors(int frame);

// The middle layer: rolling hills with firs, each hill's left half in the
// lit palette and its right half the same dots mirrored in the shaded one.
PixelCodes MidPicture();
std::array<uint16_t, 16> HillPalette(bool lit);

// The near layer, in 256 colours: the ground with grass, flowers, a fence,
// bushes and two autumn trees, the second the first mirrored. Its top 112
// rows are what the screen shows at twice the size.
PixelCodes NearPicture();
std::array<uint16_t, 256> NearPalette();

}  // namespace vdpgl::scenes::backgrounds
