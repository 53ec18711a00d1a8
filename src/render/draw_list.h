#pragma once
// CDrawList: one frame's drawing in painter's order, without GL. VDP1's parts
// and VDP2's backgrounds append their primitives; consecutive primitives that
// share texture, filtering and kind make one run, which the renderer submits
// with one draw call. A run ends where the state changes: order is never
// changed to lengthen one. A quad whose two triangulations differ (not an
// axis-aligned rectangle, or shaded corner to corner) is a run of its own:
// a draw call of many quads may split them along the other diagonal, which
// moves texels and shades on a distorted or gouraud-shaded sprite. The arrays are kept from frame to frame, so a frame
// allocates nothing once they have grown to its size.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vdpgl {

// Two whole numbers up to a page's side (1024) in one float, a + b x 2048:
// exact, and taken apart again by the pattern program.
constexpr float PackPatternPair(int a, int b) { return static_cast<float>(a + b * 2048); }

// A corner in device coordinates, with its texture coordinates, primary
// colour (which multiplies the texels) and secondary colour (added after).
// A VDP1 pattern's corner also carries where the pattern lies in its page:
// its texture's size and its place, each packed into one float, so that
// they travel with s and t as one attribute (every attribute costs the
// driver's triangle setup).
struct DrawVertex {
    float x = 0.0f, y = 0.0f;
    float s = 0.0f, t = 0.0f;
    float patternSize = PackPatternPair(1, 1), patternPlace = PackPatternPair(0, 0);
    float red = 0.0f, green = 0.0f, blue = 0.0f, alpha = 0.0f;
    float secondaryRed = 0.0f, secondaryGreen = 0.0f, secondaryBlue = 0.0f;
};

enum class DrawPrimitive : uint8_t { kQuads, kLines };

struct DrawRun {
    uint32_t texture = 0;  // 0: untextured
    bool filtered = false;  // bilinear rather than nearest sampling
    // VDP1 patterns: sampled through the pattern program, in a page of this
    // size (0: the fixed pipeline).
    uint16_t pageWidth = 0, pageHeight = 0;
    bool alone = false;  // one primitive that shares its run with no other
    DrawPrimitive primitive = DrawPrimitive::kQuads;
    uint32_t first = 0;  // the first vertex
    uint32_t count = 0;  // vertices
};

class CDrawList {
public:
    // The emulated screen, whose console pixels map onto the device square.
    void SetScreen(int width, int height) {
        screenWidth = width > 0 ? width : 1;
        screenHeight = height > 0 ? height : 1;
    }
    int ScreenWidth() const { return screenWidth; }
    int ScreenHeight() const { return screenHeight; }
    float DeviceX(int x) const { return 2.0f * static_cast<float>(x) / static_cast<float>(screenWidth) - 1.0f; }
    float DeviceY(int y) const { return 1.0f - 2.0f * static_cast<float>(y) / static_cast<float>(screenHeight); }

    // Room for one primitive's vertices (4 for a quad, 2 for a line),
    // filled in by the caller (every field) before the next Add. Quads are axis-aligned
    // rectangles unless `alone`.
    DrawVertex* Add(DrawPrimitive primitive, uint32_t texture, bool filtered, uint32_t vertexCount,
                    bool alone = false);
    // The same for a VDP1 pattern in a page of this size.
    DrawVertex* AddPattern(DrawPrimitive primitive, uint32_t page, int pageWidth, int pageHeight,
                           uint32_t vertexCount, bool alone = false);
    // A VDP1 shape: untextured, or with atlas pages drawn through the
    // pattern program with the white texel every page holds at (0, 0) (a
    // vertex's pattern fields as they start), in whichever page the run
    // before it samples, so that sprites and shapes share runs.
    DrawVertex* AddShape(DrawPrimitive primitive, uint32_t vertexCount, bool alone = false);
    // The page shapes use when the run before them is no pattern's; 0: none.
    void SetShapePage(uint32_t page, int pageWidth, int pageHeight) {
        shapePage = {page, false, static_cast<uint16_t>(pageWidth), static_cast<uint16_t>(pageHeight)};
    }

    void Clear() {
        vertexCount = 0;
        runs.clear();
    }
    bool Empty() const { return runs.empty(); }
    const DrawVertex* Vertices() const { return vertices.data(); }
    size_t VertexCount() const { return vertexCount; }
    const std::vector<DrawRun>& Runs() const { return runs; }

private:
    DrawVertex* Append(const DrawRun& state, uint32_t count);

    // Grown, never shrunk: the first vertexCount are this frame's, and Add
    // leaves the room it gives as it was (the caller fills every field).
    std::vector<DrawVertex> vertices;
    size_t vertexCount = 0;
    std::vector<DrawRun> runs;
    DrawRun shapePage;
    int screenWidth = 320;
    int screenHeight = 240;
};

}  // namespace vdpgl
