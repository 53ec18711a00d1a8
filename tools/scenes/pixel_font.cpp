#include "pixel_font.h"

#include <cstdint>

namespace vdpgl::scenes {

namespace {

constexpr int kGlyphHeight = 5, kSpacing = 1;

struct Glyph {
    char c;
    int width;
    uint8_t rows[kGlyphHeight];  // the leftmost column in bit width - 1
};

// Three columns wide but for M, N and W, which need more to be told apart.
constexpr Glyph kGlyphs[] = {
    {'A', 3, {2, 5, 7, 5, 5}},      {'B', 3, {6, 5, 6, 5, 6}},      {'C', 3, {3, 4, 4, 4, 3}},
    {'D', 3, {6, 5, 5, 5, 6}},      {'E', 3, {7, 4, 6, 4, 7}},      {'F', 3, {7, 4, 6, 4, 4}},
    {'G', 3, {3, 4, 5, 5, 3}},      {'H', 3, {5, 5, 7, 5, 5}},      {'I', 3, {7, 2, 2, 2, 7}},
    {'J', 3, {1, 1, 1, 5, 2}},      {'K', 3, {5, 5, 6, 5, 5}},      {'L', 3, {4, 4, 4, 4, 7}},
    {'M', 5, {17, 27, 21, 17, 17}}, {'N', 4, {9, 13, 11, 9, 9}},    {'O', 3, {2, 5, 5, 5, 2}},
    {'P', 3, {6, 5, 6, 4, 4}},      {'Q', 3, {2, 5, 5, 6, 3}},      {'R', 3, {6, 5, 6, 5, 5}},
    {'S', 3, {3, 4, 2, 1, 6}},      {'T', 3, {7, 2, 2, 2, 2}},      {'U', 3, {5, 5, 5, 5, 7}},
    {'V', 3, {5, 5, 5, 5, 2}},      {'W', 5, {17, 17, 21, 27, 17}}, {'X', 3, {5, 5, 2, 5, 5}},
    {'Y', 3, {5, 5, 2, 2, 2}},      {'Z', 3, {7, 1, 2, 4, 7}},      {'0', 3, {7, 5, 5, 5, 7}},
    {'1', 3, {2, 6, 2, 2, 7}},      {'2', 3, {6, 1, 2, 4, 7}},      {'3', 3, {6, 1, 2, 1, 6}},
    {'4', 3, {5, 5, 7, 1, 1}},      {'5', 3, {7, 4, 6, 1, 6}},      {'6', 3, {3, 4, 7, 5, 7}},
    {'7', 3, {7, 1, 2, 2, 2}},      {'8', 3, {7, 5, 7, 5, 7}},      {'9', 3, {7, 5, 7, 1, 6}},
    {'-', 3, {0, 0, 7, 0, 0}},      {'+', 3, {0, 2, 7, 2, 0}},      {'.', 1, {0, 0, 0, 0, 1}},
    {'/', 3, {1, 1, 2, 4, 4}},      {' ', 2, {0, 0, 0, 0, 0}},
};
constexpr Glyph kMissing{'?', 3, {0, 0, 0, 0, 0}};

const Glyph& Find(char c) {
    for (const Glyph& g : kGlyphs)
        if (g.c == c) return g;
    return kMissing;
}

}  // namespace

int CaptionWidth(std::string_view text) {
    if (text.empty()) return 0;
    int width = 0;
    for (char c : text) width += Find(c).width + kSpacing;
    return width - kSpacing + 1;  // the last letter's shadow
}

PixelCodes RenderCaption(std::string_view text, uint16_t ink, uint16_t shadow) {
    const int width = (CaptionWidth(text) + 7) / 8 * 8;
    PixelCodes picture(width > 0 ? width : 8, kCaptionHeight);
    // Shadows first, so that a letter's ink covers its neighbour's shadow.
    for (int pass = 0; pass < 2; ++pass) {
        const int shift = pass == 0 ? 1 : 0;
        int left = 0;
        for (char c : text) {
            const Glyph& glyph = Find(c);
            for (int y = 0; y < kGlyphHeight; ++y)
                for (int x = 0; x < glyph.width; ++x)
                    if (glyph.rows[y] & (1 << (glyph.width - 1 - x)))
                        picture.At(left + x + shift, y + shift) = pass == 0 ? shadow : ink;
            left += glyph.width + kSpacing;
        }
    }
    return picture;
}

}  // namespace vdpgl::scenes
