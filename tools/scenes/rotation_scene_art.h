#pragma once
// The rotation scene's floor, drawn procedurally: a plaza of marble tiles in
// a checkerboard, crossed by two paved avenues with striped kerbs that meet
// at a compass rose. One 512 x 512 repeat, in 256 colours (codes 1-255 of
// the floor's colour RAM block; none is transparent).
#include <array>
#include <cstdint>

#include "vdp1_patterns.h"

namespace vdpgl::scenes::rotation {

PixelCodes FloorPicture();
std::array<uint16_t, 256> FloorPalette();

}  // namespace vdpgl::scenes::rotation
