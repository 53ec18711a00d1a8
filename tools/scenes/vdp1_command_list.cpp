#include "vdp1_command_list.h"

#include <cmath>

#include "scene_builder.h"

namespace vdpgl::scenes {

namespace {

// Command codes, CMDCTRL bits 3-0, and the END bit.
constexpr uint16_t kNormalSpriteCode = 0x0, kScaledSpriteCode = 0x1, kDistortedSpriteCode = 0x2, kPolygonCode = 0x4,
                   kPolylineCode = 0x5, kLineCode = 0x6, kLocalCoordinatesCode = 0xA;
constexpr uint16_t kEnd = 0x8000;

int16_t S16(int v) { return static_cast<int16_t>(v); }

Vdp1Command SpriteCommand(uint16_t code, const Vdp1Sprite& sprite, uint16_t calculation) {
    Vdp1Command c;
    c.ctrl = code;
    c.pmod = static_cast<uint16_t>(sprite.pmod | calculation);
    c.colr = sprite.colr;
    c.srca = sprite.srca;
    c.size = sprite.size;
    return c;
}

Vdp1Command ShapeCommand(uint16_t code, const Quad& corners, uint16_t rgb555, uint16_t calculation) {
    Vdp1Command c;
    c.ctrl = code;
    c.pmod = calculation;
    c.colr = rgb555;
    c.xa = S16(corners[0].x), c.ya = S16(corners[0].y);
    c.xb = S16(corners[1].x), c.yb = S16(corners[1].y);
    c.xc = S16(corners[2].x), c.yc = S16(corners[2].y);
    c.xd = S16(corners[3].x), c.yd = S16(corners[3].y);
    return c;
}

}  // namespace

Vdp1Command& CVdp1CommandList::Add(const Vdp1Command& command) {
    commands.push_back(command);
    return commands.back();
}

Vdp1Command& CVdp1CommandList::NormalSprite(const Vdp1Sprite& sprite, Point topLeft, uint16_t calculation) {
    Vdp1Command c = SpriteCommand(kNormalSpriteCode, sprite, calculation);
    c.xa = S16(topLeft.x);
    c.ya = S16(topLeft.y);
    return Add(c);
}

Vdp1Command& CVdp1CommandList::ScaledSprite(const Vdp1Sprite& sprite, Point a, Point c, uint16_t calculation) {
    Vdp1Command command = SpriteCommand(kScaledSpriteCode, sprite, calculation);
    command.xa = S16(a.x), command.ya = S16(a.y);
    command.xc = S16(c.x), command.yc = S16(c.y);
    return Add(command);
}

Vdp1Command& CVdp1CommandList::ZoomedSprite(const Vdp1Sprite& sprite, int zoomPoint, Point anchor, int width,
                                            int height, uint16_t calculation) {
    Vdp1Command c = SpriteCommand(kScaledSpriteCode, sprite, calculation);
    c.ctrl |= ZoomPoint(zoomPoint);
    c.xa = S16(anchor.x), c.ya = S16(anchor.y);
    c.xb = S16(width), c.yb = S16(height);
    return Add(c);
}

Vdp1Command& CVdp1CommandList::DistortedSprite(const Vdp1Sprite& sprite, const Quad& corners, uint16_t calculation) {
    Vdp1Command c = ShapeCommand(kDistortedSpriteCode, corners, 0, 0);
    const Vdp1Command s = SpriteCommand(kDistortedSpriteCode, sprite, calculation);
    c.pmod = s.pmod, c.colr = s.colr, c.srca = s.srca, c.size = s.size;
    return Add(c);
}

Vdp1Command& CVdp1CommandList::Polygon(const Quad& corners, uint16_t rgb555, uint16_t calculation) {
    return Add(ShapeCommand(kPolygonCode, corners, rgb555, calculation));
}

Vdp1Command& CVdp1CommandList::Polyline(const Quad& corners, uint16_t rgb555, uint16_t calculation) {
    return Add(ShapeCommand(kPolylineCode, corners, rgb555, calculation));
}

Vdp1Command& CVdp1CommandList::Line(Point a, Point b, uint16_t rgb555, uint16_t calculation) {
    return Add(ShapeCommand(kLineCode, {a, b, Point{}, Point{}}, rgb555, calculation));
}

Vdp1Command& CVdp1CommandList::LocalCoordinates(Point origin) {
    Vdp1Command c;
    c.ctrl = kLocalCoordinatesCode;
    c.xa = S16(origin.x);
    c.ya = S16(origin.y);
    return Add(c);
}

void CVdp1CommandList::Write(CSceneBuilder& scene) const {
    uint32_t address = 0;
    for (const Vdp1Command& c : commands) {
        uint32_t a = address;
        for (uint16_t w : c.Words()) {
            scene.Vdp1Word(a, w);
            a += 2;
        }
        address += kTableSize;
    }
    scene.Vdp1Word(address, kEnd);
}

Quad RotatedRectangle(double cx, double cy, double halfWidth, double halfHeight, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    const double corners[4][2] = {
        {-halfWidth, -halfHeight}, {halfWidth, -halfHeight}, {halfWidth, halfHeight}, {-halfWidth, halfHeight}};
    Quad quad;
    for (int i = 0; i < 4; ++i) {
        const double x = corners[i][0] * c - corners[i][1] * s;
        const double y = corners[i][0] * s + corners[i][1] * c;
        quad[i] = {static_cast<int>(std::lround(cx + x)), static_cast<int>(std::lround(cy + y))};
    }
    return quad;
}

}  // namespace vdpgl::scenes
