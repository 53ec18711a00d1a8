// The showcase is a grid of captioned panels, one feature each:
//   row 0  the six colour modes
//   row 1  flips, scaled sprites between two corners and at three zoom points
//   row 2  distorted sprites, gouraud shading, half-transparency, shadow,
//          half-luminance
//   row 3  mesh, polygons, polylines, lines, local coordinates
// over a dark gouraud-shaded polygon that fills the screen.
#include "sprite_showcase.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "scene_builder.h"
#include "scene_math.h"
#include "sprite_showcase_layout.h"
#include "sprite_showcase_setup.h"
#include "vdp1_command_list.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes {

namespace {

using namespace showcase;

constexpr int kFrames = 300;

Quad Rectangle(int left, int top, int right, int bottom) {
    return {Point{left, top}, Point{right, top}, Point{right, bottom}, Point{left, bottom}};
}

// Three coloured bars for the colour calculations to show against.
void DrawBars(CVdp1CommandList& list, const Cell& cell) {
    static const uint16_t kColors[3] = {ToRgb555({0.85f, 0.85f, 0.85f}), ToRgb555({1.0f, 0.7f, 0.1f}),
                                        ToRgb555({0.2f, 0.55f, 1.0f})};
    for (int i = 0; i < 3; ++i) {
        const int left = cell.x + 9 + 13 * i;
        list.Polygon(Rectangle(left, cell.y + 4, left + 7, cell.y + 42), kColors[i]);
    }
}

// A 32-pixel sprite gliding left and right across its cell.
Point Glide(const Cell& cell, int frame, double phase) {
    return {cell.CentreX() - 16 + Wave(frame, 150, 8, phase), cell.CentreY() - 16};
}

void DrawCross(CVdp1CommandList& list, Point at, int arm, uint16_t color) {
    list.Line({at.x - arm, at.y}, {at.x + arm, at.y}, color);
    list.Line({at.x, at.y - arm}, {at.x, at.y + arm}, color);
}

void DrawColorModes(CVdp1CommandList& list, const Assets& a, int frame) {
    const Vdp1Sprite* sprites[6] = {&a.orangeBall, &a.rings, &a.diamond, &a.flower, &a.plasma, &a.wheel};
    for (int i = 0; i < 6; ++i) {
        const Cell& cell = kModeCells[i];
        const int bob = Wave(frame, 100, 2, i / 6.0);
        list.NormalSprite(*sprites[i], {cell.CentreX() - 16, cell.CentreY() - 16 + bob});
    }
}

void DrawFlipsAndScaling(CVdp1CommandList& list, const Assets& a, int frame) {
    for (int i = 0; i < 4; ++i)
        list.NormalSprite(a.glyph, kFlipCell.At(kGlyphLeft + kGlyphSpacing * i, 5)).ctrl |= kFlips[i];

    // Two inclusive corners, width and height breathing out of step.
    const int w = 24 + Wave(frame, 100, 12), h = 24 + Wave(frame, 100, 12, 0.25);
    const Point a0{kScaleCell.CentreX() - w / 2, kScaleCell.CentreY() - h / 2};
    list.ScaledSprite(a.rings, a0, {a0.x + w - 1, a0.y + h - 1});

    // The same growth around three zoom points, each marked by a cross.
    const uint16_t marker = ToRgb555({1.0f, 0.95f, 0.3f});
    const struct {
        const Cell& cell;
        const Vdp1Sprite& sprite;
        int zoomPoint;
        Point anchor;
    } zooms[3] = {
        {kZoomUpperLeftCell, a.orangeBall, kZoomUpperLeft, kZoomUpperLeftCell.At(8, 5)},
        {kZoomCentreCell, a.cyanBall, kZoomCentre, {kZoomCentreCell.CentreX(), kZoomCentreCell.CentreY()}},
        {kZoomLowerRightCell, a.limeBall, kZoomLowerRight, kZoomLowerRightCell.At(44, 41)},
    };
    for (const auto& zoom : zooms) {
        const int size = 22 + Wave(frame, 150, 14);
        list.ZoomedSprite(zoom.sprite, zoom.zoomPoint, zoom.anchor, size, size);
        DrawCross(list, zoom.anchor, 3, marker);
    }
}

void DrawDistortionAndShading(CVdp1CommandList& list, const Assets& a, int frame) {
    list.DistortedSprite(a.glyph,
                         RotatedRectangle(kRotateCell.CentreX(), kRotateCell.CentreY(), 12, 12, Turn(frame, 150)));

    // A flag turning about its vertical axis: the near edge grows, the far
    // one shrinks, and past a quarter turn its back shows, mirrored.
    const double turn = Turn(frame, 150);
    const double c = std::cos(turn) * 16, s = std::sin(turn) * 5;
    const int cx = kDistortCell.CentreX(), cy = kDistortCell.CentreY();
    const auto at = [](double x, double y) {
        return Point{static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
    };
    list.DistortedSprite(
        a.plasma, {at(cx - c, cy - 16 - s), at(cx + c, cy - 16 + s), at(cx + c, cy + 16 - s), at(cx - c, cy + 16 + s)});

    list.NormalSprite(a.tile, {kGouraudCell.CentreX() - 16, kGouraudCell.CentreY() - 16}, kGouraud).grda =
        a.tileShading;

    DrawBars(list, kHalfTransparencyCell);
    list.NormalSprite(a.cyanBall, Glide(kHalfTransparencyCell, frame, 0.0), kHalfTransparency);
    DrawBars(list, kShadowCell);
    list.NormalSprite(a.pinkBall, Glide(kShadowCell, frame, 1.0 / 3), kShadow);
    DrawBars(list, kHalfLuminanceCell);
    list.NormalSprite(a.orangeBall, Glide(kHalfLuminanceCell, frame, 2.0 / 3), kHalfLuminance);
}

void DrawShapes(CVdp1CommandList& list, const Assets& a, int frame) {
    DrawBars(list, kMeshCell);
    list.NormalSprite(a.limeBall, Glide(kMeshCell, frame, 0.5)).pmod |= kMesh;

    const int px = kPolygonCell.CentreX(), py = kPolygonCell.CentreY();
    list.Polygon(RotatedRectangle(px, py, 14, 14, Turn(frame, 300)), ToRgb555({0.5f, 0.5f, 0.5f}), kGouraud).grda =
        a.polygonShading;
    list.Polygon(RotatedRectangle(px, py, 5, 5, -Turn(frame, 100)), ToRgb555({0.95f, 0.95f, 1.0f}));

    const int lx = kPolylineCell.CentreX(), ly = kPolylineCell.CentreY();
    list.Polyline(RotatedRectangle(lx, ly, 14, 14, Turn(frame, 300)), ToRgb555({0.3f, 0.9f, 1.0f}));
    list.Polyline(RotatedRectangle(lx, ly, 16, 6, -Turn(frame, 150)), ToRgb555({1.0f, 0.4f, 0.85f}));
    list.Polyline(RotatedRectangle(lx, ly, 5, 5, Turn(frame, 75)), ToRgb555({1.0f, 0.95f, 0.3f}));

    // Spokes, each shaded from a light centre to its own colour.
    const int sx = kLineCell.CentreX(), sy = kLineCell.CentreY();
    for (int i = 0; i < 12; ++i) {
        const double angle = Turn(frame, 300, i / 12.0);
        const auto at = [&](double r) {
            return Point{sx + static_cast<int>(std::lround(r * std::cos(angle))),
                         sy + static_cast<int>(std::lround(r * std::sin(angle)))};
        };
        list.Line(at(4), at(19), ToRgb555(Hue(static_cast<float>(i) / 12.0f)), kGouraud).grda = a.lineShading;
    }
}

// Two satellites drawn from the same relative coordinates: only the local
// origin each one's command 10 sets moves them along their orbit.
void DrawLocalCoordinates(CVdp1CommandList& list, const Assets& a, int frame) {
    const int cx = kLocalCell.CentreX(), cy = kLocalCell.CentreY();
    DrawCross(list, {cx, cy}, 4, ToRgb555({0.45f, 0.5f, 0.65f}));
    struct Satellite {
        Point origin;
        const Vdp1Sprite* ball;
        uint16_t outline;
    } satellites[2];
    for (int k = 0; k < 2; ++k) {
        const double angle = Turn(frame, 150, k * 0.5);
        satellites[k] = {{cx + static_cast<int>(std::lround(36 * std::cos(angle))),
                          cy + static_cast<int>(std::lround(9 * std::sin(angle)))},
                         k == 0 ? &a.orangeBall : &a.cyanBall,
                         ToRgb555(k == 0 ? Rgb{1.0f, 0.75f, 0.4f} : Rgb{0.5f, 0.85f, 1.0f})};
    }
    // The nearer one (lower on screen) is drawn last, in front.
    if (satellites[0].origin.y > satellites[1].origin.y) std::swap(satellites[0], satellites[1]);
    for (const Satellite& s : satellites) {
        list.LocalCoordinates(s.origin);
        list.Polyline(Rectangle(-11, -11, 10, 10), s.outline);
        list.ScaledSprite(*s.ball, {-8, -8}, {7, 7});
    }
    list.LocalCoordinates({0, 0});
}

void BuildFrame(CVdp1CommandList& list, const Assets& a, int frame) {
    list.Clear();
    list.LocalCoordinates({0, 0});
    list.Polygon(Rectangle(0, 0, kScreenWidth - 1, kScreenHeight - 1), ToRgb555({0.06f, 0.07f, 0.15f}), kGouraud).grda =
        a.backgroundShading;
    for (const Panel& panel : kPanels) {
        const Cell& c = panel.cell;
        list.Polygon(Rectangle(c.x + 1, c.y + 1, c.x + c.width - 2, c.y + Cell::kHeight - 2),
                     ToRgb555({0.14f, 0.17f, 0.27f}), kGouraud)
            .grda = a.panelShading;
    }
    DrawColorModes(list, a, frame);
    DrawFlipsAndScaling(list, a, frame);
    DrawDistortionAndShading(list, a, frame);
    DrawShapes(list, a, frame);
    DrawLocalCoordinates(list, a, frame);
    for (const Caption& caption : a.captions) list.NormalSprite(caption.sprite, caption.position);
}

// The tile's corners take colours a quarter of the wheel apart, turning.
std::array<uint16_t, 4> TileShading(int frame) {
    std::array<uint16_t, 4> corners{};
    const float start = static_cast<float>(frame % 100) / 100.0f;
    for (int k = 0; k < 4; ++k) corners[k] = ToCramColor(Hue(start + 0.25f * static_cast<float>(k)));
    return corners;
}

}  // namespace

void WriteSpriteShowcase(CSceneBuilder& scene) {
    const Assets assets = SetUp(scene);
    CVdp1CommandList list;
    for (int frame = 0; frame < kFrames; ++frame) {
        BuildFrame(list, assets, frame);
        list.Write(scene);
        WriteGouraudTable(scene, assets.tileShading, TileShading(frame));
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes
