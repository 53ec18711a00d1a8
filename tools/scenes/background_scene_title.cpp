#include "background_scene_title.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "background_scene_layout.h"
#include "pixel_font.h"
#include "scene_math.h"

namespace vdpgl::scenes::backgrounds {

namespace {

constexpr std::string_view kTitle = "VDP2 BACKGROUNDS", kSubtitle = "3 CELL PLANES + BITMAP + SPRITES";
constexpr int kTitleScale = 3, kTitleTop = kPanelTop + 7, kSubtitleTop = kPanelTop + 31;
constexpr double kCornerRadius = 6;

// Colours: the panel's shading from the top, the frame, the title's ink
// from its top row down, the subtitle and the sparkle.
constexpr int kPanel = 1, kPanelShades = 16, kOutline = 17, kGold = 18, kGoldDark = 19, kGoldLight = 20,
              kTitleInk = 23, kTitleRows = 5 * kTitleScale, kTitleShadow = 39, kSubtitleInk = 40,
              kSubtitleShadow = 41, kSparkle = 42;

// How many whole dots (x, y) lies inside the panel's rounded edge; negative outside.
int Inside(int x, int y) {
    const double halfW = kPanelWidth / 2.0, halfH = kPanelHeight / 2.0;
    const double qx = std::fabs(x + 0.5 - kPanelLeft - halfW) - (halfW - kCornerRadius);
    const double qy = std::fabs(y + 0.5 - kPanelTop - halfH) - (halfH - kCornerRadius);
    const double outside = std::hypot(std::max(qx, 0.0), std::max(qy, 0.0)) + std::min(std::max(qx, qy), 0.0);
    return static_cast<int>(std::floor(kCornerRadius - outside));
}

void DrawPanel(PixelCodes& p) {
    for (int y = kPanelTop; y < kPanelTop + kPanelHeight; ++y)
        for (int x = kPanelLeft; x < kPanelLeft + kPanelWidth; ++x) {
            const int depth = Inside(x, y);
            if (depth < 0) continue;
            // The bevel is lit on its upper left half.
            const bool upperLeft = (x - kPanelLeft) * kPanelHeight + (y - kPanelTop) * kPanelWidth <
                                   kPanelWidth * kPanelHeight;
            uint16_t code;
            if (depth == 0)
                code = kOutline;
            else if (depth == 1)
                code = upperLeft ? kGoldLight : kGoldDark;
            else if (depth == 2)
                code = kGold;
            else if (depth == 3)
                code = kOutline;
            else {
                const double level = (y - kPanelTop) * (kPanelShades - 1) / double(kPanelHeight - 1);
                code = static_cast<uint16_t>(kPanel + std::clamp(static_cast<int>(level + DitherThreshold(x, y)), 0,
                                                                 kPanelShades - 1));
            }
            p.At(x, y) = code;
        }
}

// The title three times the font's size, its ink shaded by row, outlined.
void DrawTitle(PixelCodes& p) {
    const PixelCodes letters = RenderCaption(kTitle, 1, 0);
    const int width = (CaptionWidth(kTitle) - 1) * kTitleScale;
    const int left = kPanelLeft + (kPanelWidth - width) / 2;
    const auto ink = [&](int x, int y) {
        const int lx = (x - left) / kTitleScale, ly = (y - kTitleTop) / kTitleScale;
        return x >= left && y >= kTitleTop && lx < letters.width && ly < kCaptionHeight && letters.At(lx, ly) != 0;
    };
    for (int y = kTitleTop - 1; y <= kTitleTop + kTitleRows + 1; ++y)
        for (int x = left - 1; x <= left + width + 1; ++x) {
            if (ink(x, y)) {
                p.At(x, y) = static_cast<uint16_t>(kTitleInk + (y - kTitleTop));
                continue;
            }
            // An outline round the ink, thicker down and right.
            bool near = false;
            for (int dy = -1; dy <= 2 && !near; ++dy)
                for (int dx = -1; dx <= 2 && !near; ++dx)
                    near = (dx < 2 || dy < 2) && ink(x - dx, y - dy);
            if (near) p.At(x, y) = kTitleShadow;
        }
}

void DrawSubtitle(PixelCodes& p) {
    const PixelCodes text = RenderCaption(kSubtitle, kSubtitleInk, kSubtitleShadow);
    const int left = kPanelLeft + (kPanelWidth - CaptionWidth(kSubtitle)) / 2;
    for (int y = 0; y < text.height; ++y)
        for (int x = 0; x < text.width; ++x)
            if (text.At(x, y) != 0) p.At(left + x, kSubtitleTop + y) = text.At(x, y);
}

}  // namespace

PixelCodes TitlePicture() {
    PixelCodes p(kBitmapWidth, kBitmapHeight);
    DrawPanel(p);
    DrawTitle(p);
    DrawSubtitle(p);
    return p;
}

std::array<uint16_t, 256> TitlePalette() {
    std::array<uint16_t, 256> palette{};
    for (int k = 0; k < kPanelShades; ++k)
        palette[kPanel + k] =
            ToCramColor(Mix({0.13f, 0.12f, 0.32f}, {0.04f, 0.04f, 0.12f}, k / float(kPanelShades - 1)));
    palette[kOutline] = ToCramColor({0.20f, 0.10f, 0.04f});
    palette[kGold] = ToCramColor({0.80f, 0.58f, 0.20f});
    palette[kGoldDark] = ToCramColor({0.50f, 0.32f, 0.10f});
    palette[kGoldLight] = ToCramColor({1.0f, 0.88f, 0.50f});
    static constexpr Rgb kInk[] = {{1.0f, 0.98f, 0.82f}, {1.0f, 0.82f, 0.32f}, {0.96f, 0.46f, 0.14f}};
    for (int k = 0; k < kTitleRows; ++k) palette[kTitleInk + k] = ToCramColor(Ramp(kInk, k / double(kTitleRows - 1)));
    palette[kTitleShadow] = ToCramColor({0.10f, 0.03f, 0.08f});
    palette[kSubtitleInk] = ToCramColor({0.70f, 0.86f, 1.0f});
    palette[kSubtitleShadow] = ToCramColor({0.0f, 0.0f, 0.04f});
    palette[kSparkle] = ToCramColor({1.0f, 1.0f, 1.0f});
    palette[kSparkle + 1] = ToCramColor({1.0f, 1.0f, 0.72f});
    palette[kSparkle + 2] = ToCramColor({1.0f, 0.84f, 0.32f});
    palette[kSparkle + 3] = ToCramColor({1.0f, 0.55f, 0.18f});
    return palette;
}

void DrawSparkle(PixelCodes& bitmap, int step) {
    // Along the frame's bright line, clockwise from the top-left corner.
    constexpr int kLeft = kPanelLeft + 1, kTop = kPanelTop + 1;
    constexpr int kWidth = kPanelWidth - 3, kHeight = kPanelHeight - 3;
    constexpr int kStride = 6;
    int d = (step * kStride) % (2 * (kWidth + kHeight));
    int x, y;
    if (d < kWidth) {
        x = kLeft + d, y = kTop;
    } else if ((d -= kWidth) < kHeight) {
        x = kLeft + kWidth, y = kTop + d;
    } else if ((d -= kHeight) < kWidth) {
        x = kLeft + kWidth - d, y = kTop + kHeight;
    } else {
        d -= kWidth;
        x = kLeft, y = kTop + kHeight - d;
    }
    // A four-pointed star: the rays fade outwards, short diagonals.
    bitmap.At(x, y) = kSparkle;
    for (int r = 1; r <= 3; ++r) {
        const auto code = static_cast<uint16_t>(kSparkle + r);
        bitmap.At(x - r, y) = bitmap.At(x + r, y) = bitmap.At(x, y - r) = bitmap.At(x, y + r) = code;
    }
    for (int dy = -1; dy <= 1; dy += 2)
        for (int dx = -1; dx <= 1; dx += 2) bitmap.At(x + dx, y + dy) = kSparkle + 2;
}

}  // namespace vdpgl::scenes::backgrounds
