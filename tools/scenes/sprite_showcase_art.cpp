#include "sprite_showcase_art.h"

#include <cmath>
#include <numbers>

namespace vdpgl::scenes::showcase {

namespace {

constexpr Rgb kWhite{1, 1, 1};

// Offset of a pixel's centre from the middle of a size x size picture.
double Offset(int i, int size) { return i + 0.5 - size / 2.0; }

// Codes first..last spread over t in [0, 1].
uint16_t Level(double t, int first, int last) {
    const int span = last - first + 1;
    const int k = static_cast<int>(std::clamp(t, 0.0, 1.0) * span);
    return static_cast<uint16_t>(first + std::min(k, span - 1));
}

}  // namespace

PixelCodes BallPicture(int size) {
    PixelCodes p(size, size);
    const double radius = size / 2.0 - 0.5;
    // Light from the upper left, in front; the highlight halfway to the viewer.
    const double lx = -0.45, ly = -0.6, lz = 0.66;
    const double hl = std::sqrt(lx * lx + ly * ly + (lz + 1) * (lz + 1));
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double nx = Offset(x, size) / radius, ny = Offset(y, size) / radius;
            const double rr = nx * nx + ny * ny;
            if (rr > 1.0) continue;
            const double nz = std::sqrt(1.0 - rr);
            const double diffuse = std::max(0.0, nx * lx + ny * ly + nz * lz);
            const double highlight = std::pow(std::max(0.0, (nx * lx + ny * ly + nz * (lz + 1)) / hl), 24.0);
            p.At(x, y) = Level(0.08 + 0.75 * diffuse + 0.6 * highlight, 1, 14);
        }
    }
    return p;
}

std::array<uint16_t, 16> BallPalette(Rgb base) {
    std::array<uint16_t, 16> palette{};
    for (int k = 1; k <= 14; ++k) {
        const float s = static_cast<float>(k - 1) / 13.0f;
        const Rgb c = s < 0.7f ? Mix(Scale(base, 0.12f), base, s / 0.7f) : Mix(base, kWhite, (s - 0.7f) / 0.3f * 0.85f);
        palette[k] = ToCramColor(c);
    }
    return palette;
}

PixelCodes RingsPicture(int size) {
    PixelCodes p(size, size);
    const double radius = size / 2.0;
    const double width = radius / 8.0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double d = std::hypot(Offset(x, size), Offset(y, size));
            if (d > radius) continue;
            const double ring = d / width;
            const int band = std::min(static_cast<int>(ring), 7);
            const bool gap = band > 0 && ring - band < 0.3;
            p.At(x, y) = static_cast<uint16_t>(gap ? 9 : 1 + band);
        }
    }
    return p;
}

std::array<uint16_t, 16> RingsLookup() {
    // Lookup-table colours are direct RGB: bit 15 makes them opaque.
    std::array<uint16_t, 16> lut{};
    for (int k = 1; k <= 8; ++k) lut[k] = ToRgb555(Mix(Hue(0.95f - 0.1f * static_cast<float>(k)), kWhite, 0.15f));
    lut[9] = ToRgb555({0.04f, 0.04f, 0.12f});
    return lut;
}

PixelCodes DiamondPicture(int size) {
    PixelCodes p(size, size);
    const double half = size / 2.0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double d = std::fabs(Offset(x, size)) + std::fabs(Offset(y, size));
            if (d <= half) p.At(x, y) = Level(d / half, 1, 62);
        }
    }
    return p;
}

std::array<uint16_t, 64> DiamondPalette() {
    static constexpr Rgb kStops[] = {
        {0.9f, 1.0f, 1.0f}, {0.1f, 0.85f, 1.0f}, {0.15f, 0.35f, 0.95f}, {0.2f, 0.05f, 0.45f}};
    std::array<uint16_t, 64> palette{};
    for (int k = 1; k <= 62; ++k) {
        const double t = (k - 1) / 61.0;
        // Gentle bands make the 62 steps visible as contour lines.
        const float band = static_cast<float>(0.82 + 0.18 * std::cos(t * 2 * std::numbers::pi * 5));
        palette[k] = ToCramColor(Scale(Ramp(kStops, t), band));
    }
    return palette;
}

PixelCodes FlowerPicture(int size) {
    PixelCodes p(size, size);
    const double radius = size / 2.0 - 0.5;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double dx = Offset(x, size), dy = Offset(y, size);
            const double angle = std::atan2(dy, dx) + std::numbers::pi / 2;
            const double edge = radius * (0.55 + 0.45 * std::fabs(std::cos(2.5 * angle)));
            const double d = std::hypot(dx, dy);
            if (d <= edge) p.At(x, y) = Level(d / edge, 1, 126);
        }
    }
    return p;
}

std::array<uint16_t, 128> FlowerPalette() {
    static constexpr Rgb kStops[] = {{1.0f, 1.0f, 0.8f}, {1.0f, 0.85f, 0.1f}, {1.0f, 0.4f, 0.05f}, {0.7f, 0.05f, 0.4f}};
    std::array<uint16_t, 128> palette{};
    for (int k = 1; k <= 126; ++k) palette[k] = ToCramColor(Ramp(kStops, (k - 1) / 125.0));
    return palette;
}

PixelCodes PlasmaPicture(int size) {
    PixelCodes p(size, size);
    const double corner = size / 5.0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            // Rounded corners: outside the circle that rounds each corner.
            const double cx = std::clamp(x + 0.5, corner, size - corner),
                         cy = std::clamp(y + 0.5, corner, size - corner);
            if (std::hypot(x + 0.5 - cx, y + 0.5 - cy) > corner) continue;
            const double v = std::sin(x / 3.1) + std::sin(y / 2.7) + std::sin((x + y) / 4.3) +
                             std::sin(std::hypot(Offset(x, size), Offset(y, size)) / 2.2);
            p.At(x, y) = Level((v + 4.0) / 8.0, 1, 254);
        }
    }
    return p;
}

std::array<uint16_t, 256> PlasmaPalette() {
    std::array<uint16_t, 256> palette{};
    for (int k = 1; k <= 254; ++k) {
        const double t = 1.5 * (k - 1) / 253.0 * 2 * std::numbers::pi;
        const auto wave = [t](double shift) { return static_cast<float>(0.5 + 0.5 * std::sin(t + shift)); };
        palette[k] = ToCramColor({wave(0), wave(2.1), wave(4.2)});
    }
    return palette;
}

PixelCodes HueWheelPicture(int size) {
    PixelCodes p(size, size);
    const double radius = size / 2.0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double dx = Offset(x, size), dy = Offset(y, size);
            const double d = std::hypot(dx, dy);
            if (d > radius) continue;
            const float hue = static_cast<float>(std::atan2(dy, dx) / (2 * std::numbers::pi));
            Rgb c = Mix(kWhite, Hue(hue), static_cast<float>(std::min(1.0, d / (radius - 2))));
            if (d > radius - 1.2) c = Scale(c, 0.55f);  // a darker rim sets the disc off
            p.At(x, y) = ToRgb555(c);
        }
    }
    return p;
}

PixelCodes GlyphPicture() {
    // Each character is a 2 x 2 block: '#' the letter, 'o' the dot.
    static constexpr const char* kMap[12] = {
        "............", ".#########..", ".#########..", ".##.........", ".##.........", ".#######....",
        ".#######....", ".##.........", ".##.........", ".##......oo.", ".##......oo.", "............",
    };
    PixelCodes p(24, 24);
    const auto cell = [](int x, int y) { return kMap[y / 2][x / 2]; };
    for (int y = 0; y < 24; ++y) {
        for (int x = 0; x < 24; ++x) {
            const char c = cell(x, y);
            if (c == '#')
                p.At(x, y) = static_cast<uint16_t>(2 + y * 10 / 24);  // lighter at the top
            else if (c == 'o')
                p.At(x, y) = 13;
        }
    }
    // A dark outline around both shapes.
    PixelCodes outlined = p;
    for (int y = 0; y < 24; ++y) {
        for (int x = 0; x < 24; ++x) {
            if (p.At(x, y)) continue;
            bool touches = false;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int nx = x + dx, ny = y + dy;
                    touches = touches || (nx >= 0 && ny >= 0 && nx < 24 && ny < 24 && p.At(nx, ny));
                }
            if (touches) outlined.At(x, y) = 1;
        }
    }
    return outlined;
}

std::array<uint16_t, 16> GlyphPalette() {
    std::array<uint16_t, 16> palette{};
    palette[1] = ToCramColor({0.02f, 0.05f, 0.08f});
    for (int k = 2; k <= 11; ++k)
        palette[k] = ToCramColor(Mix({0.7f, 1.0f, 0.85f}, {0.05f, 0.55f, 0.45f}, static_cast<float>(k - 2) / 9.0f));
    palette[13] = ToCramColor({1.0f, 0.3f, 0.25f});
    return palette;
}

PixelCodes TilePicture(int size) {
    PixelCodes p(size, size);
    const double corner = 6.0;
    const auto inside = [size, corner](int x, int y) {
        if (x < 0 || y < 0 || x >= size || y >= size) return false;
        const double cx = std::clamp(x + 0.5, corner, size - corner), cy = std::clamp(y + 0.5, corner, size - corner);
        return std::hypot(x + 0.5 - cx, y + 0.5 - cy) <= corner;
    };
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            if (!inside(x, y)) continue;
            uint16_t code = 11;  // the face
            if (!inside(x - 1, y) || !inside(x + 1, y) || !inside(x, y - 1) || !inside(x, y + 1))
                code = 4;
            else if (!inside(x - 3, y - 3))
                code = 14;  // bevel towards the light
            else if (!inside(x + 3, y + 3))
                code = 7;  // bevel away from it
            else if (std::hypot(Offset(x, size), Offset(y, size)) < size / 5.0)
                code = 13;
            p.At(x, y) = code;
        }
    }
    return p;
}

std::array<uint16_t, 16> TilePalette() {
    std::array<uint16_t, 16> palette{};
    for (int k = 1; k <= 14; ++k) {
        const float v = 0.1f + 0.9f * static_cast<float>(k) / 14.0f;
        palette[k] = ToCramColor({v, v, v});
    }
    return palette;
}

}  // namespace vdpgl::scenes::showcase
