#pragma once
// One texture of a replacement set: the image file that stands for every
// pattern with this CRC drawn with this CMDCOLR.
#include <cstdint>
#include <string>

namespace vdpgl {

struct Vdp1ReplacementTexture {
    std::string fileName;
    uint32_t crc = 0;
    uint32_t colorCtrl = 0;
};

}  // namespace vdpgl
