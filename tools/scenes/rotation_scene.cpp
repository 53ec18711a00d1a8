// Each frame moves the camera a step round the compass rose, looking at it:
// the floor's rotation matrix turns by the camera's heading and its shift
// follows the camera. The camera's height and the horizon (the tilt) swing
// gently; a coefficient a screen line gives the floor its perspective (the
// farther the line, the more map dots a screen dot covers), and the lines
// above the floor's far edge are transparent, so the sky shows there. The
// sky scrolls with the heading, its stars twinkle, and the sprite list is
// rebuilt.
#include "rotation_scene.h"

#include <cmath>
#include <numbers>

#include "background_scene_art.h"
#include "background_scene_layout.h"
#include "rotation_parameters.h"
#include "rotation_scene_layout.h"
#include "rotation_scene_setup.h"
#include "scene_builder.h"
#include "scene_math.h"
#include "vdp1_command_list.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes {

namespace {

using namespace rotation;

constexpr int kFrames = 300;  // one turn round the rose
constexpr int kTwinkleEvery = 6;

// Where the camera is and how it looks, in map dots.
struct Camera {
    double heading;  // radians, 0 looking towards -Y, growing clockwise
    double x, y;     // position on the floor
    double height;   // above the floor
    int horizon;     // screen line of the horizon
};

Camera CameraAt(int frame) {
    Camera c;
    c.heading = Turn(frame, kFrames);
    const double distance = 200 + 40 * std::sin(Turn(frame, kFrames / 2));
    c.x = kRoseX - distance * std::sin(c.heading);
    c.y = kRoseY + distance * std::cos(c.heading);
    c.height = 60 + 10 * std::sin(Turn(frame, kFrames / 3, 0.25));
    c.horizon = 70 + Wave(frame, kFrames, 8);
    return c;
}

// The dot (x, y) of a floor line lies (x - kCenterX, -kFocalLength) x k
// from the camera, turned by its heading, with k = height / lines below
// the horizon. The table turns the vector; the line's coefficient is k.
RotationTable FloorTable(const Camera& c) {
    const double s = std::sin(c.heading), co = std::cos(c.heading);
    RotationTable t;
    t.xStart = 0;
    t.yStart = 0;
    t.zStart = kFocalLength;
    t.dxStart = 0;
    t.dyStart = 1;
    t.dx = 1;
    t.dy = 0;
    // Screen x goes along the first column, the focal length (Z) along the third.
    t.a = co, t.b = 0, t.c = s;
    t.d = s, t.e = 0, t.f = -co;
    t.px = kCenterX, t.py = 0, t.pz = 0;
    t.cx = kCenterX, t.cy = 0, t.cz = 0;
    t.mx = c.x - kCenterX;
    t.my = c.y;
    t.kx = t.ky = 1;
    t.coefficientStart = 0;
    t.coefficientLineStep = 1;
    t.coefficientDotStep = 0;
    return t;
}

void WriteCoefficients(CSceneBuilder& scene, const Camera& c) {
    for (int line = 0; line < kScreenHeight; ++line) {
        const int below = line - c.horizon;
        const uint32_t k = below < kFarEdgeLines ? kTransparentLongCoefficient : LongCoefficient(c.height / below);
        scene.Vdp2Long(kCoefficientAddress + 4 * static_cast<uint32_t>(line), k);
    }
}

// The sky turns with the heading (one 512-dot repeat a turn) and follows
// the horizon, its mountains standing on the floor's far edge.
void ScrollSky(CSceneBuilder& scene, const Camera& c) {
    using namespace vdp2;
    constexpr int kMountainFoot = 160;  // the sky picture's line behind the far edge
    const int x = static_cast<int>(std::lround(c.heading * 512 / (2 * std::numbers::pi)));
    scene.Vdp2Register(SCXN3, Scroll(x));
    scene.Vdp2Register(SCYN3, Scroll(kMountainFoot - (c.horizon + kFarEdgeLines)));
}

void Twinkle(CSceneBuilder& scene, int frame) {
    using namespace backgrounds;
    const auto colors = StarColors(frame);
    for (int k = 0; k < 3; ++k)
        scene.CramWord(kSkyColorOffset * 256 + kSkyPalette * 16 + kFirstStarColor + static_cast<uint32_t>(k),
                       colors[static_cast<size_t>(k)]);
}

Point At(double x, double y) { return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))}; }

// A balloon hanging over the plaza, swaying; birds in a V crossing the sky
// against the turn, wings beating out of step.
void BuildSprites(CVdp1CommandList& list, const Assets& a, int frame) {
    list.Clear();
    list.LocalCoordinates({0, 0});
    list.NormalSprite(a.balloon, At(244 + Wave(frame, 150, 6), 74 + Wave(frame, 100, 4)));
    static constexpr Point kPlaces[] = {{0, 0}, {-15, -6}, {-15, 7}, {-30, -12}, {-30, 13}};
    static constexpr int kBeat[] = {0, 1, 2, 1};
    const double x = 380 - 440.0 * frame / kFrames;
    const double y = 40 + Wave(frame, 120, 6);
    for (int i = 0; i < 5; ++i) {
        const Vdp1Sprite& bird = a.birds[static_cast<size_t>(kBeat[(frame / 5 + i) % 4])];
        list.NormalSprite(bird, At(x - kPlaces[i].x, y + kPlaces[i].y + Wave(frame, 40, 1, i / 5.0)));
    }
}

}  // namespace

void WriteRotationScene(CSceneBuilder& scene) {
    const Assets assets = SetUp(scene);
    CVdp1CommandList list;
    for (int frame = 0; frame < kFrames; ++frame) {
        const Camera camera = CameraAt(frame);
        WriteRotationTable(scene, kParameterTableAddress, FloorTable(camera));
        WriteCoefficients(scene, camera);
        ScrollSky(scene, camera);
        if (frame % kTwinkleEvery == 0) Twinkle(scene, frame);
        BuildSprites(list, assets, frame);
        list.Write(scene);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes
