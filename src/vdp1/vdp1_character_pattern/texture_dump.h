#pragma once
// Texture dumps: a VDP1 character pattern saved as a TIFF image at its own
// size, top row first, 8-bit red, green, blue and an alpha channel
// (unassociated), so that image editors show transparent texels as such
// while their colours stay as decoded.
#include <cstdint>
#include <string>

namespace vdpgl {

// rgba: width x height texels, top row first, bytes red, green, blue, alpha.
// The path is used as given (no extension is added). False with `error`
// naming the file when it cannot be written.
bool WriteTextureDump(const std::string& path, const uint32_t* rgba, int width, int height, std::string& error);

}  // namespace vdpgl
