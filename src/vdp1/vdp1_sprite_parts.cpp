// Sprites: the textured parts. The base works out the texture (through the
// pattern cache) and the colours; each concrete sprite places its corners.
#include "render/opengl/opengl.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp1/vdp1_part.h"
#include "vdp1/vdp1_part_drawing.h"

namespace vdpgl {

namespace {

constexpr uint32_t kNoCharacter = 0x7FFF8;  // CMDSRCA 0xFFFF

// Splits base + term into a multiplied primary and an added secondary: a
// negative term darkens the texels, a positive one adds light after them.
void SplitChannel(float base, float term, float& primary, float& secondary) {
    if (term < 0.0f) {
        primary = ClampChannel(base + term);
        secondary = 0.0f;
    } else {
        primary = ClampChannel(base);
        secondary = ClampChannel(term);
    }
}

}  // namespace

CVdp1SpritePart::CVdp1SpritePart(const Vdp1CommandTable& c) : CVdp1Part(c) {
    using F = Vdp1CommandTable;
    const uint16_t ctrl = c[F::CMDCTRL];
    const uint16_t pmod = c[F::CMDPMOD];
    zoomPoint = (ctrl & 0xF00) >> 8;
    direction = (ctrl & 0x30) >> 4;
    endCodeDisabled = (pmod >> 7) & 1;
    transparentPixelDisabled = (pmod >> 6) & 1;
    colorMode = (pmod >> 3) & 7;
    if (colorMode > 5) colorMode = 4;
    characterAddress = uint32_t{c[F::CMDSRCA]} * 8;
    characterSize = c[F::CMDSIZE];

    if (characterAddress == kNoCharacter) {
        notDrawn = 1;
        return;
    }
    const CVdp1CharacterPattern* pattern = CVdp1CharacterPattern::UseTexture(*this);
    if (pattern && pattern->allBlack) {
        // An all-black character clears the picture after the next swap
        // instead of drawing a black sprite.
        notDrawn = 1;
        if (shared.renderer) shared.renderer->RequestClear();
        return;
    }

    // The prohibited mode 5 colours a sprite as replace, without shading.
    Vdp1Rgb gouraud[4];
    if (colorCalculation != kProhibited) GouraudOffsets(gouraud);
    const Vdp1Rgb& offset = walk.colorOffset;
    // The texels are multiplied by base: the shadow's base of 0 keeps only
    // the light its offset adds.
    const float base = ApplyColorCalculation();
    for (int v = 0; v < 4; ++v) {
        const Vdp1Rgb term{offset.red + gouraud[v].red, offset.green + gouraud[v].green,
                           offset.blue + gouraud[v].blue};
        SplitChannel(base, term.red, colors[v].red, secondaryColors[v].red);
        SplitChannel(base, term.green, colors[v].green, secondaryColors[v].green);
        SplitChannel(base, term.blue, colors[v].blue, secondaryColors[v].blue);
    }
}

void CVdp1SpritePart::DrawTextured() {
    if (!notDrawn && shared.renderer) AppendSprite(shared.renderer->Drawing(), *this);
}

CVdp1NormalSprite::CVdp1NormalSprite(const Vdp1CommandTable& c, int32_t localX, int32_t localY)
    : CVdp1SpritePart(c) {
    const int32_t x0 = vertices[0].x, y0 = vertices[0].y;
    const int32_t w = static_cast<int32_t>(((characterSize & 0x3F00) >> 8) * 8);
    const int32_t h = static_cast<int32_t>(characterSize & 0xFF);
    vertices[1] = {static_cast<int16_t>(x0 + w), static_cast<int16_t>(y0)};
    vertices[2] = {static_cast<int16_t>(x0 + w), static_cast<int16_t>(y0 + h)};
    vertices[3] = {static_cast<int16_t>(x0), static_cast<int16_t>(y0 + h)};
    PlaceVertices(4, localX, localY);
    type = kNormalSprite;
}

CVdp1DistortedSprite::CVdp1DistortedSprite(const Vdp1CommandTable& c, int32_t localX, int32_t localY)
    : CVdp1SpritePart(c) {
    PlaceVertices(4, localX, localY);
    type = kDistortedSprite;
}

CVdp1ScaledSprite::CVdp1ScaledSprite(const Vdp1CommandTable& c, int32_t localX, int32_t localY)
    : CVdp1SpritePart(c) {
    using F = Vdp1CommandTable;
    int32_t left = 0, right = 0, top = 0, bottom = 0;
    if (zoomPoint == 0) {
        // Two corners, inclusive: the far edges are one pixel further.
        left = c.Signed(F::CMDXA) + localX;
        top = c.Signed(F::CMDYA) + localY;
        right = c.Signed(F::CMDXC) + localX + 1;
        bottom = c.Signed(F::CMDYC) + localY + 1;
    } else {
        const int32_t x = static_cast<int16_t>(c.Signed(F::CMDXA) + localX);
        const int32_t y = static_cast<int16_t>(c.Signed(F::CMDYA) + localY);
        const int32_t w = c[F::CMDXB] == 0xFFFF ? 0 : c.Signed(F::CMDXB);
        const int32_t h = c[F::CMDYB] == 0xFFFF ? 0 : c.Signed(F::CMDYB);
        // Columns: the zoom point's horizontal position (left, centre,
        // right); rows: vertical (upper, centre, lower). Codes 1-4, 8 and 12
        // name no position and collapse the sprite.
        const uint32_t column = zoomPoint & 3, row = zoomPoint >> 2;
        if (column != 0 && row != 0) {
            left = column == 1 ? x : column == 2 ? x - w / 2 : x - w;
            right = column == 1 ? x + w : column == 2 ? x + w / 2 : x;
            top = row == 1 ? y : row == 2 ? y - h / 2 : y - h;
            bottom = row == 1 ? y + h : row == 2 ? y + h / 2 : y;
        }
        // The zoom-point form is one pixel wider on every side.
        --left;
        --top;
        ++right;
        ++bottom;
    }
    vertices[0] = {static_cast<int16_t>(left), static_cast<int16_t>(top)};
    vertices[1] = {static_cast<int16_t>(right), static_cast<int16_t>(top)};
    vertices[2] = {static_cast<int16_t>(right), static_cast<int16_t>(bottom)};
    vertices[3] = {static_cast<int16_t>(left), static_cast<int16_t>(bottom)};
    PlaceVertices(4, 0, 0);
    type = kScaledSprite;
}

}  // namespace vdpgl
