#pragma once
// CDrawList: one frame's drawing in painter's order, without GL. VDP1's parts
// and VDP2's backgrounds append their primitives; consecutive primitives that
// share texture, filtering and kind make one run, which the renderer submits
// with one draw call. A run ends where the state changes: order is never
// changed to lengthen one. The arrays are kept from frame to frame, so a
// frame allocates nothing once they have grown to its size.
#include <cstdint>
#include <vector>

namespace vdpgl {

// A corner in device coordinates, with its texture coordinates, primary
// colour (which multiplies the texels) and secondary colour (added after).
struct DrawVertex {
    float x = 0.0f, y = 0.0f;
    float s = 0.0f, t = 0.0f;
    float red = 0.0f, green = 0.0f, blue = 0.0f, alpha = 0.0f;
    float secondaryRed = 0.0f, secondaryGreen = 0.0f, secondaryBlue = 0.0f;
};

enum class DrawPrimitive : uint8_t { kQuads, kLines };

struct DrawRun {
    uint32_t texture = 0;  // 0: untextured
    bool filtered = false;  // bilinear rather than nearest sampling
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
    float DeviceX(int x) const { return 2.0f * static_cast<float>(x) / static_cast<float>(screenWidth) - 1.0f; }
    float DeviceY(int y) const { return 1.0f - 2.0f * static_cast<float>(y) / static_cast<float>(screenHeight); }

    // Room for one primitive's vertices (4 for a quad, 2 for a line),
    // filled in by the caller before the next Add.
    DrawVertex* Add(DrawPrimitive primitive, uint32_t texture, bool filtered, uint32_t vertexCount);

    void Clear() {
        vertices.clear();
        runs.clear();
    }
    bool Empty() const { return runs.empty(); }
    const std::vector<DrawVertex>& Vertices() const { return vertices; }
    const std::vector<DrawRun>& Runs() const { return runs; }

private:
    std::vector<DrawVertex> vertices;
    std::vector<DrawRun> runs;
    int screenWidth = 320;
    int screenHeight = 240;
};

}  // namespace vdpgl
