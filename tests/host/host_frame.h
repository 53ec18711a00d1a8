#pragma once
// Frames as a host sees them: the presented picture captured through the
// exports, and a reference picture worked out by the test to compare it with,
// pixel by pixel. The reference mixes by source alpha and one minus source
// alpha, as the plug-in blends.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <vector>

#include "host_fixture.h"

namespace vdpgl::host {

constexpr int kWidth = 320, kHeight = 224;

struct Rgba {
    int r = 0, g = 0, b = 0, a = 0;
    bool operator==(const Rgba&) const = default;
};
inline std::ostream& operator<<(std::ostream& os, const Rgba& p) {
    return os << "(" << p.r << "," << p.g << "," << p.b << "," << p.a << ")";
}
constexpr Rgba kClear{};
// A texel word of the console: 5 bits a channel widened by a shift, opaque.
inline Rgba Rgb555(uint16_t c) { return {(c & 31) << 3, ((c >> 5) & 31) << 3, ((c >> 10) & 31) << 3, 255}; }
// A polygon's colour: each 5-bit channel scaled to the full 0-255 range.
inline Rgba ShapeColour(uint16_t c) {
    const auto ch = [](int v) { return static_cast<int>(std::lround(v * 255.0 / 31.0)); };
    return {ch(c & 31), ch((c >> 5) & 31), ch((c >> 10) & 31), 255};
}

struct FramePicture {
    std::vector<Rgba> px = std::vector<Rgba>(kWidth * kHeight);
    Rgba& At(int x, int y) { return px[static_cast<size_t>(y * kWidth + x)]; }

    void Blend(int x, int y, Rgba src, double factor = 1.0, double alpha = 1.0) {
        if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) return;
        Rgba& d = At(x, y);
        const double sa = src.a / 255.0 * alpha;
        const auto mix = [&](double s, int dst) { return static_cast<int>(std::lround(s * sa + dst * (1.0 - sa))); };
        d = {mix(src.r * factor, d.r), mix(src.g * factor, d.g), mix(src.b * factor, d.b), mix(255.0 * sa, d.a)};
    }
    void Fill(int x0, int y0, int x1, int y1, Rgba colour, double factor = 1.0, double alpha = 1.0) {
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) Blend(x, y, colour, factor, alpha);
    }
};

class HostFrameTest : public HostTest {
protected:
    // The plug-in started with the display on at 320 x 224 and VDP1 in
    // one-cycle mode, drawing automatically: every V-blank-out draws,
    // presents and erases.
    void StartDrawing() {
        Init();
        x().EmulationThreadStarting();
        x().WriteWordVDP2Regs(0x000, 0x8000);
        x().WriteWordVDP1Regs(0x00, 0x0000);
        x().WriteWordVDP1Regs(0x02, 0x0000);
        x().WriteWordVDP1Regs(0x04, 0x0002);
    }
    void TearDown() override {
        if (initialised) x().EmulationThreadStoping();
        HostTest::TearDown();
    }

    // One frame: V-blank in and out, then the presented picture.
    void Frame() {
        x().VDPOnVblankIn();
        x().VDPOnVblankOut();
        std::vector<uint8_t> rgba(kWidth * kHeight * 4);
        ASSERT_EQ(x().CaptureDisplay(rgba.data(), kWidth, kHeight), 1);
        for (size_t i = 0; i < shown.px.size(); ++i)
            shown.px[i] = {rgba[i * 4], rgba[i * 4 + 1], rgba[i * 4 + 2], rgba[i * 4 + 3]};
    }
    // One frame, every pixel against the reference, each channel within
    // tolerance; reports the first few differences.
    void ExpectFrame(const FramePicture& expected, int tolerance = 0) {
        Frame();
        int wrong = 0;
        for (size_t i = 0; i < expected.px.size(); ++i) {
            const Rgba e = expected.px[i], s = shown.px[i];
            const bool near = std::abs(e.r - s.r) <= tolerance && std::abs(e.g - s.g) <= tolerance &&
                              std::abs(e.b - s.b) <= tolerance && std::abs(e.a - s.a) <= tolerance;
            if (!near && ++wrong <= 5)
                ADD_FAILURE() << "at (" << i % kWidth << "," << i / kWidth << "): " << s << ", expected " << e;
        }
        EXPECT_EQ(wrong, 0) << "pixels that differ";
    }

    FramePicture shown;
};

}  // namespace vdpgl::host
