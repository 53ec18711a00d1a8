#pragma once
// Small helpers the scenes share: colours as a game would compute them for
// colour RAM, and periodic motion tied to the frame number (every motion
// loops over a whole number of frames, so a scene can repeat seamlessly).
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace vdpgl::scenes {

struct Rgb {
    float r = 0.0f, g = 0.0f, b = 0.0f;
};

constexpr Rgb Mix(Rgb a, Rgb b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}
constexpr Rgb Scale(Rgb c, float k) { return {c.r * k, c.g * k, c.b * k}; }

// A colour along a list of evenly spaced stops, t in [0, 1].
template <size_t N>
Rgb Ramp(const Rgb (&stops)[N], double t) {
    const double x = std::clamp(t, 0.0, 1.0) * (N - 1);
    const size_t i = std::min(static_cast<size_t>(x), N - 2);
    return Mix(stops[i], stops[i + 1], static_cast<float>(x - static_cast<double>(i)));
}

inline int Channel5(float v) { return static_cast<int>(std::lround(std::clamp(v, 0.0f, 1.0f) * 31.0f)); }

// A colour RAM entry (colour RAM mode 0: RGB555, bit 15 clear).
inline uint16_t ToCramColor(Rgb c) {
    return static_cast<uint16_t>((Channel5(c.b) << 10) | (Channel5(c.g) << 5) | Channel5(c.r));
}
// RGB555 with bit 15 set, the form sprites and polygons use for a direct colour.
inline uint16_t ToRgb555(Rgb c) { return static_cast<uint16_t>(0x8000 | ToCramColor(c)); }

// A fully saturated colour around the colour wheel, hue in turns.
inline Rgb Hue(float turns) {
    const float h = (turns - std::floor(turns)) * 6.0f;
    const float x = 1.0f - std::fabs(std::fmod(h, 2.0f) - 1.0f);
    switch (static_cast<int>(h)) {
    case 0: return {1, x, 0};
    case 1: return {x, 1, 0};
    case 2: return {0, 1, x};
    case 3: return {0, x, 1};
    case 4: return {x, 0, 1};
    default: return {1, 0, x};
    }
}

// An ordered-dither threshold in (0, 1) for a dot: a level whose fraction
// exceeds it rounds up, so flat areas between two colours mix evenly.
inline double DitherThreshold(int x, int y) {
    static constexpr int kBayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    return (kBayer[y & 3][x & 3] + 0.5) / 16.0;
}

// A repeatable pseudo-random number in [0, 1) for a position and a seed.
inline double Noise(int x, int y, uint32_t seed = 0) {
    uint32_t h = static_cast<uint32_t>(x) * 0x8DA6B343u ^ static_cast<uint32_t>(y) * 0xD8163841u ^ seed * 0xCB1AB31Fu;
    h ^= h >> 13;
    h *= 0x5BD1E995u;
    h ^= h >> 15;
    return (h & 0xFFFFFF) / static_cast<double>(0x1000000);
}

// The angle, in radians, reached at a frame by something turning once every
// period frames; offset in turns.
inline double Turn(int frame, int period, double offset = 0.0) {
    return 2.0 * std::numbers::pi * (static_cast<double>(frame % period) / period + offset);
}

// A sine swing of the given amplitude, rounded to whole pixels.
inline int Wave(int frame, int period, double amplitude, double offset = 0.0) {
    return static_cast<int>(std::lround(amplitude * std::sin(Turn(frame, period, offset))));
}

}  // namespace vdpgl::scenes
