#pragma once
// CCellStaging: a plane texture's cells as a frame writes them, kept on our
// side and handed to GL a band of 8 rows at a time. A frame rewrites cells
// all over a plane, and on a software rasteriser each texture upload costs
// microseconds whatever its size: one upload a band instead of one a cell.
// The copy holds the texture's texels, so a band's span between two
// changed cells goes up as the texture already has it. Without GL: the
// renderer asks for the dirty spans and uploads them.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vdpgl {

class CCellStaging {
public:
    // A texture of this size, transparent black, as a new plane texture is.
    CCellStaging(uint32_t texture, int width, int height);

    uint32_t Texture() const { return texture; }
    int Width() const { return width; }
    // An 8 x 8 cell at (x, y) inside the texture (cells lie on multiples
    // of 8; one that does not marks the two bands it spans).
    void Write(const uint32_t* cell8x8, int x, int y);
    bool Dirty() const { return dirty; }
    // Calls upload(x, y, width, texels) for every band with changed cells
    // (8 rows; texels start at (x, y) with rows Width() apart), then forgets
    // the changes.
    template <typename Upload>
    void TakeChanges(Upload upload) {
        for (size_t band = 0; band < left.size(); ++band) {
            if (left[band] >= right[band]) continue;
            const int y = static_cast<int>(band) * 8;
            upload(left[band], y, right[band] - left[band],
                   texels.data() + static_cast<size_t>(y) * static_cast<size_t>(width) + left[band]);
            left[band] = width;
            right[band] = 0;
        }
        dirty = false;
    }

private:
    uint32_t texture;
    int width, height;
    std::vector<uint32_t> texels;
    std::vector<int> left, right;  // each band's changed span; left >= right: none
    bool dirty = false;
};

}  // namespace vdpgl
