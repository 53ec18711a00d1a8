#pragma once
// The backgrounds scene's bitmap: a framed title panel on a transparent
// 512 x 256 bitmap of 256 colours, and a sparkle that runs round the
// panel's frame.
#include <array>
#include <cstdint>

#include "vdp1_patterns.h"

namespace vdpgl::scenes::backgrounds {

constexpr int kBitmapWidth = 512, kBitmapHeight = 256;

PixelCodes TitlePicture();
std::array<uint16_t, 256> TitlePalette();

// Draws the sparkle where it is after `step` steps along the frame.
void DrawSparkle(PixelCodes& bitmap, int step);

}  // namespace vdpgl::scenes::backgrounds
