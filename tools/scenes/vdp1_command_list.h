#pragma once
// CVdp1CommandList: a frame's VDP1 command list, built in drawing order and
// written to VRAM from address 0 as consecutive 32-byte tables ending with
// an END command.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "../common/vdp1_command.h"

namespace vdpgl::scenes {

class CSceneBuilder;

using Vdp1Command = tools::Vdp1Command;  // fields left out are 0

// CMDCTRL: flips and the zoom point of a scaled sprite.
constexpr uint16_t kFlipH = 0x0010, kFlipV = 0x0020;
constexpr uint16_t ZoomPoint(int code) { return static_cast<uint16_t>((code & 0xF) << 8); }
constexpr int kZoomUpperLeft = 5, kZoomCentre = 10, kZoomLowerRight = 15;

// CMDPMOD: colour calculation (bits 2-0) and mesh.
constexpr uint16_t kReplace = 0, kShadow = 1, kHalfLuminance = 2, kHalfTransparency = 3, kGouraud = 4;
constexpr uint16_t kMesh = 0x0100;

// A character pattern in VDP1 VRAM and the colour it is drawn with.
struct Vdp1Sprite {
    uint16_t pmod = 0;  // colour mode, CMDPMOD bits 5-3
    uint16_t colr = 0;  // colour bank, or lookup table address / 8
    uint16_t srca = 0;  // character address / 8
    uint16_t size = 0;  // CMDSIZE: width / 8 in bits 13-8, height in 7-0
    int width = 0, height = 0;
};

struct Point {
    int x = 0, y = 0;
};
using Quad = std::array<Point, 4>;

class CVdp1CommandList {
public:
    static constexpr uint32_t kTableSize = 0x20;

    void Clear() { commands.clear(); }
    size_t Size() const { return commands.size(); }

    // Each adds one command and returns it, for fields the helper leaves out
    // (a flip, mesh, a gouraud table); the reference lasts until the next add.
    Vdp1Command& Add(const Vdp1Command& command);
    Vdp1Command& NormalSprite(const Vdp1Sprite& sprite, Point topLeft, uint16_t calculation = kReplace);
    // Scaled between two inclusive corners (zoom point 0).
    Vdp1Command& ScaledSprite(const Vdp1Sprite& sprite, Point a, Point c, uint16_t calculation = kReplace);
    // Scaled to width x height around a zoom point.
    Vdp1Command& ZoomedSprite(const Vdp1Sprite& sprite, int zoomPoint, Point anchor, int width, int height,
                              uint16_t calculation = kReplace);
    // Corners A to D: the pattern's top-left, top-right, bottom-right, bottom-left.
    Vdp1Command& DistortedSprite(const Vdp1Sprite& sprite, const Quad& corners, uint16_t calculation = kReplace);
    Vdp1Command& Polygon(const Quad& corners, uint16_t rgb555, uint16_t calculation = kReplace);
    Vdp1Command& Polyline(const Quad& corners, uint16_t rgb555, uint16_t calculation = kReplace);
    Vdp1Command& Line(Point a, Point b, uint16_t rgb555, uint16_t calculation = kReplace);
    Vdp1Command& LocalCoordinates(Point origin);

    // The tables and the END command, from VRAM address 0.
    void Write(CSceneBuilder& scene) const;

private:
    std::vector<Vdp1Command> commands;
};

// The corners of a w x h rectangle centred on (cx, cy), turned by angle
// radians (clockwise on screen, y pointing down).
Quad RotatedRectangle(double cx, double cy, double halfWidth, double halfHeight, double angle);

}  // namespace vdpgl::scenes
