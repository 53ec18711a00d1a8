#include "render/cell_staging.h"

#include <algorithm>
#include <cstring>

namespace vdpgl {

CCellStaging::CCellStaging(uint32_t texture, int width, int height)
    : texture(texture),
      width(width),
      height(height),
      cellsAcross((width + 7) / 8),
      wordsPerBand(static_cast<size_t>(cellsAcross + 63) / 64),
      texels(static_cast<size_t>(width) * static_cast<size_t>(height), 0u),
      dirtyCells(static_cast<size_t>(height / 8) * wordsPerBand, 0u) {}

void CCellStaging::Write(const uint32_t* cell8x8, int x, int y) {
    if (x < 0 || y < 0 || x + 8 > width || y + 8 > height) return;
    for (int row = 0; row < 8; ++row)
        std::memcpy(texels.data() + static_cast<size_t>(y + row) * static_cast<size_t>(width) + x, cell8x8 + row * 8,
                    8 * sizeof(uint32_t));
    const size_t bands = static_cast<size_t>(height / 8);
    for (size_t band = static_cast<size_t>(y / 8); band <= static_cast<size_t>((y + 7) / 8) && band < bands; ++band)
        for (int cell = x / 8; cell <= (x + 7) / 8 && cell < cellsAcross; ++cell)
            dirtyCells[band * wordsPerBand + static_cast<size_t>(cell) / 64] |= uint64_t{1} << (cell % 64);
    dirty = true;
}

void CCellStaging::TakeChanges(const Upload& upload) {
    const auto send = [&](const Rectangle& r) {
        upload(r.x0, r.y0, r.x1 - r.x0, r.rows,
               texels.data() + static_cast<size_t>(r.y0) * static_cast<size_t>(width) + static_cast<size_t>(r.x0));
    };
    // Cells this many apart, or closer, go up in one span.
    constexpr int kMostGapCells = static_cast<int>(kMostUnchangedTexels / 64);
    open.clear();
    const size_t bands = static_cast<size_t>(height / 8);
    for (size_t band = 0; band < bands; ++band) {
        next.clear();
        // The band's spans, left to right; each continues the rectangle above
        // it when that sends few enough unchanged texels.
        int cell = 0;
        while (cell < cellsAcross) {
            if (!CellDirty(band, cell)) {
                ++cell;
                continue;
            }
            int end = cell + 1, gap = 0;
            for (int c = end; c < cellsAcross && gap <= kMostGapCells; ++c) {
                if (CellDirty(band, c)) {
                    end = c + 1;
                    gap = 0;
                } else {
                    ++gap;
                }
            }
            const int x0 = cell * 8, x1 = std::min(end * 8, width);
            cell = end;
            const auto above = std::find_if(open.begin(), open.end(), [&](const Rectangle& r) {
                if (r.rows == 0) return false;  // continued already
                const long joined = static_cast<long>(std::max(r.x1, x1) - std::min(r.x0, x0)) * (r.rows + 8);
                const long apart = static_cast<long>(r.x1 - r.x0) * r.rows + static_cast<long>(x1 - x0) * 8;
                return joined - apart <= kMostUnchangedTexels;
            });
            if (above != open.end()) {
                next.push_back({std::min(above->x0, x0), std::max(above->x1, x1), above->y0, above->rows + 8});
                above->rows = 0;
            } else {
                next.push_back({x0, x1, static_cast<int>(band) * 8, 8});
            }
        }
        for (const Rectangle& r : open)
            if (r.rows) send(r);
        std::swap(open, next);
        std::fill_n(dirtyCells.begin() + static_cast<std::ptrdiff_t>(band * wordsPerBand),
                    static_cast<std::ptrdiff_t>(wordsPerBand), 0u);
    }
    for (const Rectangle& r : open) send(r);
    open.clear();
    dirty = false;
}

}  // namespace vdpgl
