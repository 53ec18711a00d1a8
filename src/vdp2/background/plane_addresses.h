#pragma once
// Where a plane's pattern names start in VRAM, from its 6-bit map register
// value, the map offset, the plane size and the page size that the
// character size and pattern name size give. Shared by the scroll planes
// and the rotation planes.
#include <cstdint>

namespace vdpgl {

struct PlaneLayout {
    uint32_t characterSize;        // 0: 1 x 1 cell, 1: 2 x 2 cells
    uint32_t patternNameDataSize;  // 1: one word, 0: two words
    uint32_t planeSize;            // 0: 1 x 1 page, 1: 2 x 1, 3: 2 x 2
    uint32_t mapOffset;            // 3 bits
};

// Turns each of the count map values in addresses into the plane's VRAM
// byte address. A plane size other than 0, 1 and 3 leaves the values.
void ComputePlaneAddresses(uint32_t* addresses, int count, const PlaneLayout& layout);

}  // namespace vdpgl
