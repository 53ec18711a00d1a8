#include "background_scene_sprites.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vdpgl::scenes::backgrounds {

namespace {

constexpr double kPi = std::numbers::pi;

// Distance from (x, y) to the segment from a to b.
double ToSegment(double x, double y, double ax, double ay, double bx, double by) {
    const double dx = bx - ax, dy = by - ay;
    const double t = std::clamp(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    return std::hypot(x - ax - t * dx, y - ay - t * dy);
}

// Leaf codes: the stem, the midrib, then the blade from its dark to its light side.
constexpr int kStem = 1, kRib = 2, kBlade = 3, kBladeShades = 10;

// Balloon codes: two gore colours of four shades each, then the trim.
constexpr int kRedGore = 1, kCreamGore = 5, kGoreShades = 4, kSkirt = 9, kRope = 10, kWicker = 11, kWickerDark = 12;

}  // namespace

PixelCodes LeafPicture() {
    PixelCodes p(16, 16);
    // The blade's axis runs from the base (lower left) to the tip (upper right).
    constexpr double kBaseX = 3.5, kBaseY = 12.5, kLength = 12.0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            const double dx = x + 0.5 - kBaseX, dy = y + 0.5 - kBaseY;
            const double along = (dx - dy) / std::numbers::sqrt2, across = (dx + dy) / std::numbers::sqrt2;
            if (along < 0) {
                if (along > -2.5 && std::fabs(across) < 0.6) p.At(x, y) = kStem;
                continue;
            }
            const double half = 4.3 * std::pow(std::sin(kPi * std::min(along / kLength, 1.0)), 0.8);
            if (along > kLength || std::fabs(across) > half) continue;
            if (std::fabs(across) < 0.5 && along < kLength - 1.5) {
                p.At(x, y) = kRib;
                continue;
            }
            const double light = 0.5 - 0.45 * across / half + 0.1 * std::sin(along * 1.7);
            p.At(x, y) = static_cast<uint16_t>(kBlade + std::clamp(static_cast<int>(light * kBladeShades), 0,
                                                                   kBladeShades - 1));
        }
    return p;
}

std::array<uint16_t, 16> LeafPalette(Rgb base) {
    std::array<uint16_t, 16> palette{};
    palette[kStem] = ToCramColor(Scale(base, 0.3f));
    palette[kRib] = ToCramColor(Mix(base, {1, 1, 0.8f}, 0.45f));
    for (int k = 0; k < kBladeShades; ++k) {
        const float t = k / float(kBladeShades - 1);
        palette[kBlade + k] = ToCramColor(t < 0.6f ? Mix(Scale(base, 0.45f), base, t / 0.6f)
                                                   : Mix(base, {1, 0.95f, 0.7f}, (t - 0.6f) / 0.4f * 0.5f));
    }
    return palette;
}

PixelCodes BirdPicture(int wings) {
    static constexpr double kTipY[kWingPositions] = {1.0, 4.5, 8.5}, kElbowY[kWingPositions] = {3.5, 3.2, 5.5};
    PixelCodes p(16, 10);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 16; ++x) {
            const double fx = x + 0.5, fy = y + 0.5;
            if (std::hypot((fx - 8) / 1.6, (fy - 5.2) / 1.4) < 1.0) {
                p.At(x, y) = 1;
                continue;
            }
            // Each wing: body to elbow to tip, mirrored about the body.
            const double mx = fx < 8 ? fx : 16 - fx;
            const double d = std::min(ToSegment(mx, fy, 7.5, 5.0, 4.5, kElbowY[wings]),
                                      ToSegment(mx, fy, 4.5, kElbowY[wings], 1.0, kTipY[wings]));
            if (d < 0.75) p.At(x, y) = 2;
        }
    return p;
}

std::array<uint16_t, 16> BirdPalette() {
    std::array<uint16_t, 16> palette{};
    palette[1] = ToCramColor({0.05f, 0.03f, 0.08f});
    palette[2] = ToCramColor({0.14f, 0.09f, 0.16f});
    return palette;
}

PixelCodes BalloonPicture() {
    PixelCodes p(32, 48);
    constexpr double kCentre = 16, kRadius = 15, kWidest = 15, kNeck = 35;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 32; ++x) {
            const double fx = x + 0.5 - kCentre, fy = y + 0.5;
            if (fy < kNeck) {
                // Round on top, narrowing to the mouth below.
                const double above = kWidest - fy, below = (fy - kWidest) / (kNeck - kWidest);
                const double half = fy < kWidest ? std::sqrt(std::max(0.0, kRadius * kRadius - above * above))
                                                 : 5 + (kRadius - 5) * (0.5 + 0.5 * std::cos(kPi * below));
                if (std::fabs(fx) >= half) continue;
                if (fy > kNeck - 2.5) {
                    p.At(x, y) = kSkirt;
                    continue;
                }
                const double u = fx / half;
                const double longitude = std::asin(std::clamp(u, -1.0, 1.0));
                const bool red = static_cast<int>(std::floor((longitude + kPi / 2) / (kPi / 6))) % 2 == 0;
                const double light = 0.85 - 0.45 * (u + 1) / 2 - 0.35 * fy / kNeck;
                const int shade = std::clamp(static_cast<int>(light * kGoreShades), 0, kGoreShades - 1);
                p.At(x, y) = static_cast<uint16_t>((red ? kRedGore : kCreamGore) + shade);
            } else if (fy < 41) {
                // Ropes from the mouth down to the basket's corners.
                const double t = (fy - kNeck) / 6.0;
                for (const double side : {-1.0, 1.0})
                    if (std::fabs(fx - side * (4.5 - 1.0 * t)) < 0.55) p.At(x, y) = kRope;
            } else if (std::fabs(fx) < 4.5 && fy < 47) {
                p.At(x, y) = (y % 2 == 0 || std::fabs(fx) > 3.5) ? kWickerDark : kWicker;
            }
        }
    return p;
}

std::array<uint16_t, 16> BalloonPalette() {
    std::array<uint16_t, 16> palette{};
    for (int k = 0; k < kGoreShades; ++k) {
        const float t = k / float(kGoreShades - 1);
        palette[kRedGore + k] = ToCramColor(Mix({0.35f, 0.04f, 0.08f}, {0.95f, 0.25f, 0.2f}, t));
        palette[kCreamGore + k] = ToCramColor(Mix({0.45f, 0.36f, 0.2f}, {1.0f, 0.92f, 0.62f}, t));
    }
    palette[kSkirt] = ToCramColor({0.25f, 0.12f, 0.1f});
    palette[kRope] = ToCramColor({0.55f, 0.45f, 0.35f});
    palette[kWicker] = ToCramColor({0.62f, 0.42f, 0.2f});
    palette[kWickerDark] = ToCramColor({0.36f, 0.22f, 0.1f});
    return palette;
}

}  // namespace vdpgl::scenes::backgrounds
