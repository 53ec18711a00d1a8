#include "background_scene_art.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "background_scene_layout.h"
#include "scene_math.h"

namespace vdpgl::scenes::backgrounds {

namespace {

constexpr int kPlane = 512;
constexpr double kTau = 2 * std::numbers::pi;

uint16_t Code(uint16_t palette, int dot) { return static_cast<uint16_t>(palette * 16 + dot); }

// A level rounded up or down by the dither threshold, kept in [lo, hi].
int Dither(double level, int x, int y, int lo, int hi) {
    const double whole = std::floor(level);
    const int v = static_cast<int>(whole) + (level - whole > DitherThreshold(x, y) ? 1 : 0);
    return std::clamp(v, lo, hi);
}

// Distance from a to b along a 512-dot loop, signed, in [-256, 256).
double Around(double a, double b) { return std::remainder(a - b, static_cast<double>(kPlane)); }

// ---- the far layer ----

constexpr int kSkyLevels = 11;  // sky colours 1-11, from the top down
constexpr double kHorizon = 172.0;
constexpr double kMoonX = 250, kMoonY = 80, kMoonRadius = 15, kHaloRadius = 24;
constexpr int kMoonGlow = 9, kMoonFirst = 10;                                  // moon palette: halo, surface 10-15
constexpr int kHaze = 12, kShadedRock = 13, kLitRock = 14, kSnow = 15;  // mountain palette

double SkyLevel(int y) { return 1.0 + (kSkyLevels - 1) * std::pow(std::clamp(y / kHorizon, 0.0, 1.0), 1.1); }

struct Peak {
    double x, height, slope;
};
constexpr Peak kPeaks[] = {{30, 40, 0.9}, {95, 26, 1.1}, {170, 52, 0.8}, {250, 34, 1.0},
                           {330, 46, 0.85}, {410, 30, 1.2}, {470, 42, 0.9}};
constexpr double kMountainBase = 162;

// The ridge's height at x and the peak that forms it there.
double Ridge(int x, const Peak** owner) {
    double top = kMountainBase;
    for (const Peak& p : kPeaks) {
        const double y = kMountainBase - p.height + std::fabs(Around(x, p.x)) * p.slope;
        if (y < top) {
            top = y;
            *owner = &p;
        }
    }
    return top + 1.6 * std::sin(x * 0.9) + 0.9 * std::sin(x * 2.3 + 1.0);
}

int MountainDot(int x, int y) {
    const Peak* owner = &kPeaks[0];
    const double top = Ridge(x, &owner);
    if (y < top) return 0;
    const double depth = y - top;
    if (depth < 5 - 2 * Noise(x, 0, 3) && top < 128) return kSnow;
    // Low down the range fades into the haze over the horizon.
    if ((y - 148) / 36.0 > DitherThreshold(x, y)) return kHaze;
    return Around(x, owner->x) < 0 ? kLitRock : kShadedRock;
}

// The moon's surface dot (kMoonFirst and up), its glow, or 0 for open sky.
int MoonDot(int x, int y) {
    const double dx = x + 0.5 - kMoonX, dy = y + 0.5 - kMoonY, d = std::hypot(dx, dy);
    if (d <= kMoonRadius) {
        // Dark seas, and a rim slightly darker than the middle.
        const double sea = std::hypot(dx + 4, dy + 3) < 5.5 || std::hypot(dx - 5, dy - 1) < 4.0 ||
                           std::hypot(dx + 1, dy - 7) < 3.5;
        const double light = 1.0 - 0.35 * (d / kMoonRadius) * (d / kMoonRadius) - (sea ? 0.3 : 0.0);
        return kMoonFirst + Dither(light * 5.0, x, y, 0, 5);
    }
    if (d < kHaloRadius && 0.7 * (kHaloRadius - d) / (kHaloRadius - kMoonRadius) > DitherThreshold(x, y))
        return kMoonGlow;
    return 0;
}

uint16_t CellPalette(int cellX, int cellY) {
    bool moon = false, mountain = false;
    for (int y = cellY * 8; y < cellY * 8 + 8; ++y)
        for (int x = cellX * 8; x < cellX * 8 + 8; ++x) {
            moon = moon || MoonDot(x, y) != 0;
            mountain = mountain || MountainDot(x, y) != 0;
        }
    return moon ? kMoonPalette : mountain ? kMountainPalette : kSkyPalette;
}

void AddStars(PixelCodes& p) {
    for (int i = 0; i < 110; ++i) {
        const int x = static_cast<int>(Noise(i, 1) * kPlane);
        const int y = 3 + static_cast<int>(std::pow(Noise(i, 2), 1.5) * 100);
        const bool bright = Noise(i, 3) < 0.12;
        const int margin = bright ? 1 : 0;
        if (x < margin || x >= kPlane - margin) continue;
        // Stars keep to cells of open sky, all of the star inside one cell.
        if ((x - margin) / 8 != (x + margin) / 8 || (y - margin) / 8 != (y + margin) / 8) continue;
        if (p.At(x, y) >> 4 != kSkyPalette) continue;
        const int twinkle = kFirstStarColor + i % 3;
        if (bright) {
            p.At(x - 1, y) = p.At(x + 1, y) = p.At(x, y - 1) = p.At(x, y + 1) = Code(kSkyPalette, twinkle);
            p.At(x, y) = Code(kSkyPalette, 15);
        } else {
            p.At(x, y) = Code(kSkyPalette, twinkle);
        }
    }
}

// ---- the middle layer ----

struct Hill {
    int halfWidth;  // a multiple of 8, so that both halves are whole cells
    double peak;    // the top's height on screen
    int firs;       // 0 none, 1 one on the top, 2 a pair either side of it
};
// Half-widths add up to 256: the hills fill one plane width exactly.
constexpr Hill kHills[] = {{56, 140, 1}, {40, 160, 0}, {72, 128, 2}, {48, 152, 0}, {40, 146, 1}};
constexpr double kValley = 190;
constexpr int kHedge = 1, kGrassDark = 2, kGrassLight = 6, kRim = 7, kFir = 8, kFirEdge = 9, kTrunk = 10;

double HillTop(const Hill& hill, double fromMiddle) {
    const double t = std::min(1.0, fromMiddle / hill.halfWidth);
    return kValley - (kValley - hill.peak) * (0.5 + 0.5 * std::cos(std::numbers::pi * t));
}

// A fir whose axis is `across` dots from the dot, standing on the ground at y = base.
int FirDot(double across, int y, double base) {
    constexpr double kHeight = 24;
    const double up = base - y;
    if (up < 0 || up > kHeight) return 0;
    if (up < 3) return across < 1.0 ? kTrunk : 0;
    const double fromTop = kHeight - up;
    // Three tiers, each widening downwards.
    const double half = 0.5 + fromTop * 0.3 * (0.7 + 0.3 * std::fmod(fromTop, 7.0) / 7.0);
    if (across >= half) return 0;
    return across > half - 1.3 ? kFirEdge : kFir;
}

// The dot at k dots from the hill's middle line (0 for the two dots beside it).
int HillDot(const Hill& hill, int k, int y) {
    const double middle = k + 0.5;
    if (hill.firs == 1) {
        if (const int fir = FirDot(middle, y, HillTop(hill, 0) + 3)) return fir;
    } else if (hill.firs == 2) {
        constexpr int kFirAt = 22;
        if (const int fir = FirDot(std::fabs(k - kFirAt), y, HillTop(hill, kFirAt) + 3)) return fir;
    }
    const double depth = y - HillTop(hill, middle);
    if (depth < 0) return 0;
    if (depth < 1.5) return kRim;
    if ((depth >= 16 && depth < 18) || (depth >= 34 && depth < 36)) return kHedge;
    return Dither(kGrassLight - depth / 14.0, k, y, kGrassDark, kGrassLight);
}

// ---- the near layer ----

constexpr int kFoliage = 1, kFoliageCount = 32, kBark = 33, kBarkCount = 16, kGrass = 49, kGrassCount = 24,
              kSoil = 73, kSoilCount = 16, kRock = 89, kRockCount = 8, kWood = 97, kWoodCount = 8, kFlower = 105,
              kFlowerCount = 5;

int RampCode(int first, int count, double t) {
    return first + std::clamp(static_cast<int>(t * count), 0, count - 1);
}

double Ground(int x) {
    const double t = kTau * x / kPlane;
    return 92 + 2.5 * std::sin(3 * t + 0.5) + 1.5 * std::sin(8 * t + 2.0);
}

// Lambert light on a sphere's dot, light from above and in front.
double SphereLight(double nx, double ny) {
    const double nz = std::sqrt(std::max(0.0, 1.0 - nx * nx - ny * ny));
    return std::max(0.0, -0.7 * ny + 0.7 * nz + 0.1 * nx);
}

struct Blob {
    double x, y, r;
};
// The crown: an oval of leafy clumps around the tree's axis, the later
// clumps in front.
constexpr double kCrownY = 30, kCrownRx = 34, kCrownRy = 24;
constexpr Blob kCrown[] = {{-24, 4, 10}, {24, 2, 10},  {-14, -12, 11}, {12, -14, 11}, {0, -17, 10},
                           {-27, -6, 8}, {28, -8, 8},  {-12, 12, 11},  {13, 11, 11},  {-1, 2, 14},
                           {-20, -2, 9}, {20, -3, 10}, {1, 15, 9},     {-6, -7, 10},  {8, -6, 9}};

// The tree's dot at (dx, y), dx dots right of its axis (the axis between
// dots -1 and 0); 0 where the tree is not.
int TreeDot(int dx, int y) {
    const double fx = dx + 0.5, fy = y + 0.5;
    for (int i = static_cast<int>(std::size(kCrown)) - 1; i >= 0; --i) {
        const Blob& b = kCrown[i];
        const double nx = (fx - b.x) / b.r, ny = (fy - kCrownY - b.y) / b.r;
        if (nx * nx + ny * ny > 1.0) continue;
        // Light on the clump and on the crown as a whole; the crown's
        // underside in shadow; leafy specks by little blocks of dots.
        const double cx = fx / kCrownRx, cy = (fy - kCrownY) / kCrownRy;
        const double light =
            0.45 * SphereLight(nx, ny) + 0.55 * SphereLight(std::clamp(cx, -0.95, 0.95), std::clamp(cy, -0.95, 0.95));
        const double speck = Noise((dx + 64) / 2, y / 2, 11) - 0.5;
        return RampCode(kFoliage, kFoliageCount, 0.08 + 0.85 * light + 0.25 * speck);
    }
    // The trunk, flaring at the ground.
    const double up = 96 - fy;
    const double half = 3.5 + up * 0.02 + (up < 6 ? (6 - up) * 0.5 : 0.0);
    if (fy > kCrownY + 10 && std::fabs(fx) < half) {
        const double shade = 0.75 - 0.55 * (fx + half) / (2 * half) + 0.15 * (Noise(dx + 64, y / 4, 12) - 0.5);
        return RampCode(kBark, kBarkCount, shade);
    }
    return 0;
}

int BushDot(int x, int y) {
    static constexpr Blob kBushes[] = {{196, 0, 13}, {212, 2, 10}, {262, 0, 15}, {446, 1, 12}, {462, 3, 9}};
    for (const Blob& b : kBushes) {
        const double nx = Around(x + 0.5, b.x) / b.r, ny = (y + 0.5 - (Ground(static_cast<int>(b.x)) + b.y)) / b.r;
        if (nx * nx + ny * ny > 1.0 || ny > 0.3) continue;
        const double light = 0.1 + 0.7 * SphereLight(nx, ny) + 0.25 * (Noise(x / 2, y / 2, 13) - 0.5);
        return RampCode(kGrass, kGrassCount - 6, light);
    }
    return 0;
}

int FenceDot(int x, int y) {
    constexpr int kLeft = 288, kPostSpacing = 26, kRight = kLeft + 4 * kPostSpacing + 3;
    if (x < kLeft || x > kRight) return 0;
    const double ground = Ground(x);
    const int fromPost = (x - kLeft) % kPostSpacing;
    const double up = ground - y;
    if (fromPost < 4 && up > -2 && up < 21 - std::abs(fromPost * 2 - 3) / 2) return kWood + (fromPost < 2 ? 6 : 3);
    if ((up >= 7 && up < 9) || (up >= 15 && up < 17)) return kWood + (static_cast<int>(up) % 2 == 0 ? 5 : 2);
    return 0;
}

int RockDot(int x, int y) {
    static constexpr Blob kRocks[] = {{172, 0, 6}, {426, 0, 5}};
    for (const Blob& b : kRocks) {
        const double nx = Around(x + 0.5, b.x) / b.r, ny = (y + 0.5 - Ground(static_cast<int>(b.x)) - 2) / (b.r * 0.6);
        if (nx * nx + ny * ny <= 1.0) return RampCode(kRock, kRockCount, 0.1 + 0.65 * SphereLight(nx * 0.8, ny));
    }
    return 0;
}

int GroundDot(int x, int y) {
    const double depth = y - Ground(x);
    if (depth < 0) {
        // Blades of grass over the edge, and flowers on stems.
        const double height = Noise(x, 7) < 0.65 ? 1 + Noise(x, 8) * 6 : 0;
        if (-depth <= height) return RampCode(kGrass, kGrassCount, 0.45 + 0.5 * (-depth / 7.0));
        if (Noise(x, 9) > 0.93 && x % 2 == 0) {
            const double stem = 6 + Noise(x, 10) * 4;
            if (-depth <= stem) return RampCode(kGrass, kGrassCount, 0.3);
            if (-depth <= stem + 2) return kFlower + static_cast<int>(Noise(x, 14) * kFlowerCount);
        }
        return 0;
    }
    if (depth < 5) return RampCode(kGrass, kGrassCount, 0.85 - depth * 0.1 + 0.12 * (Noise(x, y, 15) - 0.5));
    if (depth > 7 && Noise(x, y, 16) > 0.97) return RampCode(kRock, kRockCount, 0.2);  // pebbles
    return kSoil + Dither(kSoilCount - 1 - (depth - 5) * 0.9, x, y, 0, kSoilCount - 1);
}

}  // namespace

PixelCodes FarPicture() {
    PixelCodes p(kPlane, kPlane);
    for (int cy = 0; cy < kPlane / 8; ++cy)
        for (int cx = 0; cx < kPlane / 8; ++cx) {
            const uint16_t palette = CellPalette(cx, cy);
            for (int y = cy * 8; y < cy * 8 + 8; ++y)
                for (int x = cx * 8; x < cx * 8 + 8; ++x) {
                    int dot = palette == kMoonPalette ? MoonDot(x, y) : 0;
                    if (dot == 0 && palette == kMountainPalette) dot = MountainDot(x, y);
                    if (dot == 0) dot = Dither(SkyLevel(y), x, y, 1, kSkyLevels);
                    p.At(x, y) = Code(palette, dot);
                }
        }
    AddStars(p);
    return p;
}

std::array<uint16_t, 16> SkyPalette() {
    static constexpr Rgb kStops[] = {{0.03f, 0.03f, 0.14f}, {0.16f, 0.07f, 0.32f}, {0.45f, 0.14f, 0.42f},
                                     {0.82f, 0.32f, 0.38f}, {0.98f, 0.56f, 0.30f}, {1.0f, 0.80f, 0.46f}};
    std::array<uint16_t, 16> palette{};
    for (int k = 1; k <= kSkyLevels; ++k) palette[k] = ToCramColor(Ramp(kStops, (k - 1) / double(kSkyLevels - 1)));
    const std::array<uint16_t, 3> stars = StarColors(0);
    for (int k = 0; k < 3; ++k) palette[kFirstStarColor + k] = stars[k];
    palette[15] = ToCramColor({1.0f, 1.0f, 0.95f});
    return palette;
}

std::array<uint16_t, 16> MoonPalette() {
    std::array<uint16_t, 16> palette = SkyPalette();
    palette[kMoonGlow] = ToCramColor({0.42f, 0.30f, 0.55f});
    for (int k = 0; k <= 5; ++k)
        palette[kMoonFirst + k] = ToCramColor(Mix({0.62f, 0.58f, 0.62f}, {1.0f, 0.98f, 0.88f}, k / 5.0f));
    return palette;
}

std::array<uint16_t, 16> MountainPalette() {
    std::array<uint16_t, 16> palette = SkyPalette();
    palette[kHaze] = ToCramColor({0.62f, 0.40f, 0.52f});
    palette[kShadedRock] = ToCramColor({0.24f, 0.17f, 0.34f});
    palette[kLitRock] = ToCramColor({0.40f, 0.27f, 0.46f});
    palette[kSnow] = ToCramColor({0.88f, 0.78f, 0.86f});
    return palette;
}

std::array<uint16_t, 3> StarColors(int frame) {
    std::array<uint16_t, 3> colors{};
    for (int k = 0; k < 3; ++k) {
        const double glow = 0.5 + 0.5 * std::sin(Turn(frame, 36 + 12 * k, k / 3.0));
        colors[k] = ToCramColor(Mix({0.35f, 0.35f, 0.55f}, {0.95f, 0.97f, 1.0f}, static_cast<float>(glow)));
    }
    return colors;
}

PixelCodes MidPicture() {
    PixelCodes p(kPlane, kPlane);
    int left = 0;
    for (const Hill& hill : kHills) {
        const int middle = left + hill.halfWidth;
        for (int k = 0; k < hill.halfWidth; ++k)
            for (int y = 0; y < kPlane; ++y) {
                const int dot = HillDot(hill, k, y);
                if (dot == 0) continue;
                p.At(middle - 1 - k, y) = Code(kLitHillPalette, dot);
                p.At(middle + k, y) = Code(kShadedHillPalette, dot);
            }
        left = middle + hill.halfWidth;
    }
    return p;
}

std::array<uint16_t, 16> HillPalette(bool lit) {
    std::array<uint16_t, 16> palette{};
    const auto add = [&](int k, Rgb c) {
        palette[k] = ToCramColor(lit ? c : Rgb{c.r * 0.5f + 0.03f, c.g * 0.58f + 0.02f, c.b * 0.8f + 0.07f});
    };
    add(kHedge, {0.10f, 0.20f, 0.10f});
    for (int k = kGrassDark; k <= kGrassLight; ++k)
        add(k, Mix({0.18f, 0.33f, 0.16f}, {0.50f, 0.60f, 0.24f}, (k - kGrassDark) / float(kGrassLight - kGrassDark)));
    add(kRim, {0.86f, 0.74f, 0.40f});
    add(kFir, {0.07f, 0.20f, 0.13f});
    add(kFirEdge, {0.22f, 0.40f, 0.22f});
    add(kTrunk, {0.26f, 0.15f, 0.10f});
    return palette;
}

PixelCodes NearPicture() {
    constexpr int kTreeAxis = 112, kMirroredTreeAxis = 448;  // both on 16-dot character edges
    constexpr int kRows = 128;
    PixelCodes p(kPlane, kPlane);
    for (int y = 0; y < kRows; ++y)
        for (int x = 0; x < kPlane; ++x) {
            int dot = RockDot(x, y);
            if (dot == 0) dot = GroundDot(x, y);
            if (dot == 0) dot = FenceDot(x, y);
            if (dot == 0) dot = BushDot(x, y);
            if (dot == 0) dot = TreeDot(x - kTreeAxis, y);
            if (dot == 0) dot = TreeDot(kMirroredTreeAxis - 1 - x, y);
            p.At(x, y) = static_cast<uint16_t>(dot);
        }
    return p;
}

std::array<uint16_t, 256> NearPalette() {
    std::array<uint16_t, 256> palette{};
    const auto ramp = [&](int first, int count, const auto& stops) {
        for (int k = 0; k < count; ++k) palette[first + k] = ToCramColor(Ramp(stops, k / double(count - 1)));
    };
    static constexpr Rgb kLeaves[] = {{0.16f, 0.04f, 0.05f}, {0.50f, 0.10f, 0.06f}, {0.84f, 0.32f, 0.08f},
                                      {1.0f, 0.62f, 0.18f},  {1.0f, 0.86f, 0.48f}};
    static constexpr Rgb kBarkStops[] = {{0.10f, 0.06f, 0.05f}, {0.30f, 0.19f, 0.12f}, {0.52f, 0.38f, 0.26f}};
    static constexpr Rgb kGrassStops[] = {{0.04f, 0.12f, 0.06f}, {0.16f, 0.34f, 0.10f}, {0.42f, 0.58f, 0.18f},
                                          {0.74f, 0.76f, 0.34f}};
    static constexpr Rgb kSoilStops[] = {{0.10f, 0.06f, 0.05f}, {0.28f, 0.17f, 0.10f}, {0.46f, 0.30f, 0.16f}};
    static constexpr Rgb kRockStops[] = {{0.20f, 0.19f, 0.24f}, {0.50f, 0.48f, 0.52f}, {0.82f, 0.80f, 0.78f}};
    static constexpr Rgb kWoodStops[] = {{0.22f, 0.13f, 0.08f}, {0.50f, 0.34f, 0.20f}, {0.80f, 0.62f, 0.40f}};
    ramp(kFoliage, kFoliageCount, kLeaves);
    ramp(kBark, kBarkCount, kBarkStops);
    ramp(kGrass, kGrassCount, kGrassStops);
    ramp(kSoil, kSoilCount, kSoilStops);
    ramp(kRock, kRockCount, kRockStops);
    ramp(kWood, kWoodCount, kWoodStops);
    static constexpr Rgb kFlowers[kFlowerCount] = {
        {1.0f, 0.25f, 0.2f}, {1.0f, 0.9f, 0.3f}, {0.95f, 0.95f, 1.0f}, {1.0f, 0.5f, 0.8f}, {0.5f, 0.6f, 1.0f}};
    for (int k = 0; k < kFlowerCount; ++k) palette[kFlower + k] = ToCramColor(kFlowers[k]);
    return palette;
}

}  // namespace vdpgl::scenes::backgrounds
