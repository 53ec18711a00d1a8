#include "render/cell_staging.h"

#include <algorithm>
#include <cstring>

namespace vdpgl {

CCellStaging::CCellStaging(uint32_t texture, int width, int height)
    : texture(texture),
      width(width),
      height(height),
      texels(static_cast<size_t>(width) * static_cast<size_t>(height), 0u),
      left(static_cast<size_t>(height / 8), width),
      right(static_cast<size_t>(height / 8), 0) {}

void CCellStaging::Write(const uint32_t* cell8x8, int x, int y) {
    if (x < 0 || y < 0 || x + 8 > width || y + 8 > height) return;
    for (int row = 0; row < 8; ++row)
        std::memcpy(texels.data() + static_cast<size_t>(y + row) * static_cast<size_t>(width) + x, cell8x8 + row * 8,
                    8 * sizeof(uint32_t));
    for (size_t band = static_cast<size_t>(y / 8); band <= static_cast<size_t>((y + 7) / 8) && band < left.size();
         ++band) {
        left[band] = std::min(left[band], x);
        right[band] = std::max(right[band], x + 8);
    }
    dirty = true;
}

}  // namespace vdpgl
