#include "rotation_scene_art.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "rotation_scene_layout.h"
#include "scene_math.h"

namespace vdpgl::scenes::rotation {

namespace {

constexpr int kPlane = 512;
constexpr int kTile = 32;  // a tile's side, its grout line included

// Ramps of eight shades (0 darkest) and single colours, by first code.
constexpr int kShades = 8;
constexpr int kCream = 1, kTeal = 9, kPaving = 20, kGold = 30, kRed = 40, kWhite = 50;
constexpr int kGrout = 17;

struct RampColors {
    int first;
    Rgb dark, light;
};
constexpr RampColors kRamps[] = {
    {kCream, {0.55f, 0.47f, 0.38f}, {0.99f, 0.95f, 0.86f}},
    {kTeal, {0.03f, 0.16f, 0.20f}, {0.20f, 0.50f, 0.52f}},
    {kPaving, {0.07f, 0.09f, 0.24f}, {0.26f, 0.33f, 0.62f}},
    {kGold, {0.42f, 0.27f, 0.04f}, {1.00f, 0.88f, 0.40f}},
    {kRed, {0.32f, 0.04f, 0.04f}, {0.96f, 0.30f, 0.20f}},
    {kWhite, {0.62f, 0.63f, 0.68f}, {1.00f, 1.00f, 1.00f}},
};

// A shade of a ramp, level in [0, 7] dithered between its neighbours.
uint16_t Shade(int first, double level, int x, int y) {
    const double whole = std::floor(level);
    const int v = static_cast<int>(whole) + (level - whole > DitherThreshold(x, y) ? 1 : 0);
    return static_cast<uint16_t>(first + std::clamp(v, 0, kShades - 1));
}

// ---- the tiles ----

// Every tile of a colour has the same dots, so the characters repeat.
uint16_t TileDot(int x, int y) {
    const int tx = x % kTile, ty = y % kTile;
    if (tx == 0 || ty == 0) return kGrout;
    const bool cream = ((x / kTile + y / kTile) & 1) == 0;
    const int ramp = cream ? kCream : kTeal;
    if (tx == 1 || ty == 1) return static_cast<uint16_t>(ramp + 7);  // bevel catching the light
    if (tx == kTile - 1 || ty == kTile - 1) return static_cast<uint16_t>(ramp + 1);
    double level = 4.6 + 0.8 * (Noise(tx / 3, ty / 3, 5) - 0.5);
    if (cream) {
        // A marble vein wandering across the tile.
        const double vein = std::sin(0.28 * tx + 0.45 * ty + 2.2 * std::sin(0.21 * ty + 0.1 * tx));
        if (std::fabs(vein) < 0.14) level -= 2.2;
    }
    return Shade(ramp, level, x, y);
}

// ---- the avenues ----

constexpr int kAvenueHalf = 40;  // half the width, trim and kerbs included
constexpr int kTrim = 4, kKerb = 4, kStripe = 16;

// The dot of an avenue `across` dots from its middle line (-40 to 39) and
// `along` it.
uint16_t AvenueDot(int across, int along, int x, int y) {
    const int side = across >= 0 ? across : -1 - across;
    if (side >= kAvenueHalf - kTrim) return Shade(kGold, side == kAvenueHalf - 1 ? 2 : 6, x, y);
    if (side >= kAvenueHalf - kTrim - kKerb) {
        const bool red = ((along + kPlane) / kStripe) % 2 == 0;
        return Shade(red ? kRed : kWhite, red ? 5 : 6, x, y);
    }
    // A dashed white line down the middle.
    if (side < 2 && ((along + kPlane) / 24) % 2 == 0) return Shade(kWhite, 7, x, y);
    // Bricks of 16 x 8 in running bond, four shades in turn.
    const int row = (across + kPlane) / 8;
    const int shifted = along + kPlane + (row % 2) * 8;
    if ((across + kPlane) % 8 == 0 || shifted % 16 == 0) return static_cast<uint16_t>(kPaving);
    const double brick = Noise((shifted / 16) % 4, row % 4, 9);
    return Shade(kPaving, 3.0 + 2.5 * brick, x, y);
}

// ---- the compass rose ----

constexpr double kRoseRadius = 100;
constexpr double kValley = 22;  // where two points of the star meet
constexpr double kLongPoint = 86, kShortPoint = 58;

// Whether (u, v), seen from the rose's middle, is inside the point along
// the u axis reaching `tip`.
bool InPoint(double u, double v, double tip) {
    const double vu = kValley * std::cos(std::numbers::pi / 8), vv = kValley * std::sin(std::numbers::pi / 8);
    if (u > tip) return false;
    if (u < vu) return true;
    return std::fabs(v) <= vv * (tip - u) / (tip - vu);
}

uint16_t RoseDot(double dx, double dy, int x, int y) {
    const double r = std::hypot(dx, dy);
    if (r < 7) return Shade(kWhite, 7, x, y);
    if (r < 10) return Shade(kGold, 3, x, y);
    // The nearest of the eight points: even ones along the avenues.
    const double step = std::numbers::pi / 4;
    const double angle = std::atan2(dy, dx);
    const int k = static_cast<int>(std::lround(angle / step));
    const double off = angle - k * step;
    const bool cardinal = (k & 1) == 0;
    const double u = r * std::cos(off), v = r * std::sin(off);
    if (InPoint(u, v, cardinal ? kLongPoint : kShortPoint)) {
        // Each point lit on one side of its ridge and shaded on the other.
        const int ramp = cardinal ? kGold : kRed;
        const double level = (v > 0 ? 6.0 : 2.5) + 1.2 * (u / kLongPoint);
        return Shade(ramp, level, x, y);
    }
    if (r >= kRoseRadius - 8) return Shade(kWhite, r >= kRoseRadius - 2 ? 3 : 6, x, y);
    if (r >= kRoseRadius - 12) return Shade(kGold, 5, x, y);
    if (std::fabs(r - 70) < 1.2) return Shade(kGold, 4, x, y);
    return Shade(kPaving, 1.5 + 0.8 * Noise(x / 4, y / 4, 3), x, y);
}

}  // namespace

PixelCodes FloorPicture() {
    PixelCodes p(kPlane, kPlane);
    const int mx = static_cast<int>(kRoseX), my = static_cast<int>(kRoseY);
    for (int y = 0; y < kPlane; ++y)
        for (int x = 0; x < kPlane; ++x) {
            const double dx = x - kRoseX + 0.5, dy = y - kRoseY + 0.5;
            uint16_t code;
            if (std::hypot(dx, dy) < kRoseRadius)
                code = RoseDot(dx, dy, x, y);
            else if (std::abs(x - mx + 0.5) < kAvenueHalf)
                code = AvenueDot(x - mx, y, x, y);
            else if (std::abs(y - my + 0.5) < kAvenueHalf)
                code = AvenueDot(y - my, x, x, y);
            else
                code = TileDot(x, y);
            p.At(x, y) = code;
        }
    return p;
}

std::array<uint16_t, 256> FloorPalette() {
    std::array<uint16_t, 256> palette{};
    for (const RampColors& ramp : kRamps)
        for (int k = 0; k < kShades; ++k)
            palette[static_cast<size_t>(ramp.first + k)] =
                ToCramColor(Mix(ramp.dark, ramp.light, static_cast<float>(k) / (kShades - 1)));
    palette[kGrout] = ToCramColor({0.08f, 0.07f, 0.07f});
    return palette;
}

}  // namespace vdpgl::scenes::rotation
