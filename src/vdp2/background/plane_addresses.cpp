#include "vdp2/background/plane_addresses.h"

#include "common/console_vram.h"

namespace vdpgl {

void ComputePlaneAddresses(uint32_t* addresses, int count, const PlaneLayout& layout) {
    // Bytes of one page, and how many map bits address pages: the map offset
    // takes part only where the register alone cannot reach all of VRAM.
    uint32_t pageBytes = 0;
    bool withOffset = false;
    uint32_t mapMask = 0;
    if (layout.characterSize == 0) {
        pageBytes = layout.patternNameDataSize ? 0x2000 : 0x4000;
        mapMask = layout.patternNameDataSize ? 63 : 31;
    } else {
        pageBytes = layout.patternNameDataSize ? 0x800 : 0x1000;
        mapMask = layout.patternNameDataSize ? 255 : 127;
        withOffset = true;
    }
    for (int i = 0; i < count; ++i) {
        const uint32_t map = addresses[i];
        const uint32_t m = ((withOffset ? layout.mapOffset * 64 : 0) | map) & mapMask;
        uint32_t address = map;
        switch (layout.planeSize) {
        case 0: address = m * pageBytes; break;
        case 1: {  // two pages wide: an odd map number means the second pair
            const uint32_t base = (m & ~1u) * pageBytes;
            address = ((m & 1) && base + 2 * pageBytes < CConsoleVram::kSize) ? base + 2 * pageBytes : base;
            break;
        }
        case 3: {  // four pages: bit 1 selects the second group, bit 0 is ignored
            const uint32_t base = (m & ~3u) * pageBytes;
            address = ((m & 2) && base + 8 * pageBytes < CConsoleVram::kSize) ? base + 8 * pageBytes : base;
            break;
        }
        default: break;
        }
        addresses[i] = address & CConsoleVram::kMask;
    }
}

}  // namespace vdpgl
