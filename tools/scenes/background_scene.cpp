// Each frame scrolls the layers at their own speeds (the further, the
// slower), lets the title float a little, twinkles the stars through colour
// RAM, moves the sparkle round the title's frame by redrawing the bitmap, and
// rebuilds the sprite list: a balloon rising and birds crossing between the
// hills and the near layer, leaves falling in front of everything.
#include "background_scene.h"

#include <cmath>

#include "background_scene_art.h"
#include "background_scene_layout.h"
#include "background_scene_setup.h"
#include "background_scene_title.h"
#include "scene_builder.h"
#include "scene_math.h"
#include "vdp1_command_list.h"
#include "vdp2_cells.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes {

namespace {

using namespace backgrounds;

constexpr int kFrames = 300;
constexpr int kTwinkleEvery = 6, kSparkleEvery = 3;

// x modulo m, in [0, m).
double Wrap(double x, double m) { return x - m * std::floor(x / m); }

void ScrollLayers(CSceneBuilder& scene, int frame) {
    using namespace vdp2;
    // Map dots a frame: far 1/4, middle 1, near 1 (shown as 2 dots at its zoom).
    scene.Vdp2Register(SCXN3, Scroll(frame / 4));
    scene.Vdp2Register(SCYN3, 0);
    scene.Vdp2Register(SCXN2, Scroll(frame));
    scene.Vdp2Register(SCYN2, 0);
    scene.Vdp2Register(SCXIN1, Scroll(frame));
    scene.Vdp2Register(SCYIN1, 0);
    scene.Vdp2Register(SCXIN0, Scroll(Wave(frame, 300, 3)));
    scene.Vdp2Register(SCYIN0, Scroll(Wave(frame, 100, 2)));
}

void Twinkle(CSceneBuilder& scene, int frame) {
    const auto colors = StarColors(frame);
    for (int k = 0; k < 3; ++k)
        scene.CramWord(kFarColorOffset * 256 + kSkyPalette * 16 + kFirstStarColor + static_cast<uint32_t>(k),
                       colors[k]);
}

// Only the dots that changed reach VRAM (the builder leaves out the rest),
// and each write inside the bitmap has it decoded again.
void RedrawBitmap(CSceneBuilder& scene, const Assets& a, int frame) {
    PixelCodes bitmap = a.title;
    DrawSparkle(bitmap, frame / kSparkleEvery);
    WriteBitmap(scene, kBitmapAddress, bitmap);
}

Point At(double x, double y) { return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))}; }

void DrawBalloon(CVdp1CommandList& list, const Assets& a, int frame) {
    list.NormalSprite(a.balloon, At(196 - 0.3 * frame, 150 - 0.36 * frame + Wave(frame, 150, 2)));
}

// A flock in a V, wings beating out of step.
void DrawBirds(CVdp1CommandList& list, const Assets& a, int frame) {
    static constexpr Point kPlaces[] = {{0, 0}, {-15, -6}, {-15, 7}, {-30, -12}, {-30, 13}};
    static constexpr int kBeat[] = {0, 1, 2, 1};
    const double x = Wrap(120 + 1.3 * frame, 420) - 60;
    const double y = 86 + Wave(frame, 120, 6);
    for (int i = 0; i < 5; ++i) {
        const Vdp1Sprite& bird = a.birds[kBeat[(frame / 5 + i) % 4]];
        list.NormalSprite(bird, At(x + kPlaces[i].x, y + kPlaces[i].y + Wave(frame, 40, 1, i / 5.0)));
    }
}

// Leaves drifting down and to the left, swaying, spinning and tumbling (the
// sprite narrows and turns over as it tumbles).
void DrawLeaves(CVdp1CommandList& list, const Assets& a, int frame) {
    constexpr int kLeaves = 10;
    for (int i = 0; i < kLeaves; ++i) {
        const double fall = 0.7 + 0.3 * (i % 4);
        const double y = Wrap(Noise(i, 20) * 256 + fall * frame, 256) - 16;
        const double sway = 10 * std::sin(Turn(frame, 90 + 10 * i, i * 0.13));
        const double x = Wrap(Noise(i, 21) * 352 - 0.6 * frame, 352) - 16 + sway;
        const double spin = Turn(frame, 120 + 17 * i, i / 10.0) * (i % 2 ? 1 : -1);
        const double tumble = std::cos(Turn(frame, 70 + 9 * i, i * 0.21));
        const double size = 7.0 + 1.5 * (i % 3);
        const double halfWidth = std::fabs(tumble) < 0.15 ? std::copysign(0.15, tumble) * size : tumble * size;
        list.DistortedSprite(i % 2 ? a.yellowLeaf : a.redLeaf, RotatedRectangle(x, y, halfWidth, size, spin));
    }
}

void BuildSprites(CVdp1CommandList& list, const Assets& a, int frame) {
    list.Clear();
    list.LocalCoordinates({0, 0});
    DrawBalloon(list, a, frame);
    DrawBirds(list, a, frame);
    DrawLeaves(list, a, frame);
}

}  // namespace

void WriteBackgroundScene(CSceneBuilder& scene) {
    const Assets assets = SetUp(scene);
    CVdp1CommandList list;
    for (int frame = 0; frame < kFrames; ++frame) {
        ScrollLayers(scene, frame);
        if (frame % kTwinkleEvery == 0) Twinkle(scene, frame);
        if (frame % kSparkleEvery == 0) RedrawBitmap(scene, assets, frame);
        BuildSprites(list, assets, frame);
        list.Write(scene);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes
