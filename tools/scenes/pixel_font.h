#pragma once
// A small pixel font, 5 pixels high, for the captions the scenes draw as
// sprites.
#include <string_view>

#include "vdp1_patterns.h"

namespace vdpgl::scenes {

// Width in pixels of a caption, its drop shadow included.
int CaptionWidth(std::string_view text);
inline constexpr int kCaptionHeight = 6;

// The caption as pixel codes: ink where the letters are, shadow one pixel
// down and right of them, 0 elsewhere; the width is rounded up to 8.
// Letters are upper case; characters the font lacks are left blank.
PixelCodes RenderCaption(std::string_view text, uint16_t ink, uint16_t shadow);

}  // namespace vdpgl::scenes
