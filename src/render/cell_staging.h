#pragma once
// CCellStaging: a plane texture's cells as a frame writes them, kept on our
// side and handed to GL as a few rectangles. A frame rewrites cells all over
// a plane, and on a software rasteriser each texture upload costs
// microseconds whatever its size, about as much as copying 2,048 texels:
// changed cells close to each other go up together, with the unchanged
// texels between them as the texture already has them, and those far apart
// (the two ends of a view that wraps round the plane) apart.
// Without GL: the renderer asks for the rectangles and uploads them.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace vdpgl {

class CCellStaging {
public:
    // A texture of this size, transparent black, as a new plane texture is.
    CCellStaging(uint32_t texture, int width, int height);

    uint32_t Texture() const { return texture; }
    int Width() const { return width; }
    // An 8 x 8 cell at (x, y) inside the texture (cells lie on multiples
    // of 8; one that does not marks the cells it overlaps).
    void Write(const uint32_t* cell8x8, int x, int y);
    bool Dirty() const { return dirty; }
    // Calls upload(x, y, width, height, texels) for rectangles that hold
    // every changed cell (texels start at (x, y) with rows Width() apart),
    // then forgets the changes.
    using Upload = std::function<void(int x, int y, int width, int height, const uint32_t* texels)>;
    void TakeChanges(const Upload& upload);

    // Unchanged texels that one upload may carry rather than make two.
    static constexpr long kMostUnchangedTexels = 2048;

private:
    struct Rectangle {
        int x0, x1, y0, rows;
    };
    bool CellDirty(size_t band, int cell) const {
        return (dirtyCells[band * wordsPerBand + static_cast<size_t>(cell) / 64] >> (cell % 64)) & 1;
    }

    uint32_t texture;
    int width, height;
    int cellsAcross;
    size_t wordsPerBand;
    std::vector<uint32_t> texels;
    std::vector<uint64_t> dirtyCells;  // a bit a cell, band after band of 8 rows
    bool dirty = false;
    // Kept between calls so that taking the changes allocates nothing.
    std::vector<Rectangle> open, next;
};

}  // namespace vdpgl
