#pragma once
// Drawing parts: one per VDP1 drawing command, built by the command-list walk
// and drawn in priority order. The constructor does all the interpretation of
// the command table (geometry, local coordinates, zoom points, scale, colours,
// texture); Draw() only decides whether and how to hand the part over to the
// renderer.
#include <cstdint>

#include "render/texture_atlas.h"
#include "vdp1/vdp1_command_table.h"

namespace vdpgl {

class COpenGl;
class CVdp1;
class CVdp2;
class CConsoleVram;
class CVdp1CharacterPattern;

struct Vdp1Vertex {
    int16_t x = 0;
    int16_t y = 0;
};

struct Vdp1Rgb {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

// Kinds of drawing parts (a part's type; the control panel switches them).
enum Vdp1PartKind : int {
    kNormalSprite = 0,
    kScaledSprite,
    kDistortedSprite,
    kPolygon,
    kPolyline,
    kLine,
    kPartKindCount
};

// A colour channel kept within 0.0 to 1.0.
inline float ClampChannel(float v) { return v < 0.0f ? 0.0f : v > 1.0f ? 1.0f : v; }

// Flips of a sprite's texture.
enum Vdp1Direction : uint32_t { kNoFlip = 0, kFlipH = 1, kFlipV = 2, kFlipHV = 3 };

// Colour-calculation modes of CMDPMOD bits 2-0.
enum Vdp1ColorCalculation : uint32_t {
    kReplace = 0,
    kShadow = 1,
    kHalfLuminance = 2,
    kHalfTransparency = 3,
    kGouraud = 4,
    kProhibited = 5,
    kGouraudHalfLuminance = 6,
    kGouraudHalfTransparency = 7,
};

// What every part reads besides its command table: the objects, set once
// when VDP1 is linked to VDP2.
struct Vdp1PartContext {
    COpenGl* renderer = nullptr;
    CVdp1* vdp1 = nullptr;
    CVdp2* vdp2 = nullptr;
    const CConsoleVram* vram = nullptr;
};

class CVdp1Part {
public:
    // A part filled in by hand (renderer tests, previews) starts blank.
    CVdp1Part() = default;
    virtual void Draw() {}
    virtual ~CVdp1Part() = default;

    static void Link(const Vdp1PartContext& context) { shared = context; }
    // What stays the same for every part of one walk, looked up once at its
    // start: VDP1's scale and VDP2's sprite colour offset.
    static void BeginWalk();

    int32_t type = -1;
    uint8_t notDrawn = 0;
    uint8_t userClipping = 0;   // kept; no clipping is applied
    uint32_t clippingMode = 0;  // kept; not applied
    uint8_t mesh = 0;
    uint32_t colorCalculation = kReplace;
    uint32_t colorCtrl = 0;
    uint32_t gouraudTableAddress = 0;
    // Corners A, B, C, D in console pixels; for a sprite top-left,
    // top-right, bottom-right, bottom-left of its character. A line uses A, B.
    Vdp1Vertex vertices[4];
    Vdp1Rgb colors[4];  // primary colour of each corner
    float alpha = 1.0f;
    uint8_t clearsScreen = 0;

protected:
    explicit CVdp1Part(const Vdp1CommandTable& command);

    // What a colour-calculation mode (and the mesh bit, drawn as half
    // transparency) does to a part: its alpha, and the factor on its colour
    // (0 for the shadow, 0.5 for half luminance). Sets alpha; returns the
    // factor.
    float ApplyColorCalculation();
    // Per-vertex gouraud offsets: zero unless CMDPMOD bit 2 (gouraud) is set.
    void GouraudOffsets(Vdp1Rgb (&offsets)[4]) const;
    // Adds the local coordinates to the first count corners and applies
    // VDP1's scale.
    void PlaceVertices(int count, int32_t localX, int32_t localY);

    struct WalkState {
        int32_t xScale = 1;
        int32_t yScale = 1;
        Vdp1Rgb colorOffset;  // per channel
    };
    static Vdp1PartContext shared;
    static WalkState walk;
};

// Polygons, polylines and lines: a single RGB colour, no texture.
class CVdp1ShapePart : public CVdp1Part {
protected:
    CVdp1ShapePart(const Vdp1CommandTable& command);
};

class CVdp1Polygon : public CVdp1ShapePart {
public:
    CVdp1Polygon(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override;
};

class CVdp1Polyline : public CVdp1ShapePart {
public:
    CVdp1Polyline(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override;
};

class CVdp1Line : public CVdp1ShapePart {
public:
    CVdp1Line(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override;
};

// Textured parts.
class CVdp1SpritePart : public CVdp1Part {
public:
    CVdp1SpritePart() = default;

    // The 16-colour block of colour RAM (0-127) the part's colours come from.
    uint32_t ComputeVdp2PaletteIndex() const;
    bool IsFlippedHorizontally() const { return direction == kFlipH || direction == kFlipHV; }
    bool IsFlippedVertically() const { return direction == kFlipV || direction == kFlipHV; }

    uint32_t zoomPoint = 0;
    uint32_t direction = kNoFlip;
    uint8_t endCodeDisabled = 0;
    uint8_t transparentPixelDisabled = 0;
    uint32_t colorMode = 0;
    uint32_t characterAddress = 0;  // VDP1 VRAM byte address of the pattern
    uint32_t characterSize = 0;
    Vdp1Rgb secondaryColors[4];  // added after texturing
    // The texture built for this part, where its texels lie (an atlas page
    // or a texture of its own: textureRect.texture, 0 for none) and the share
    // of its width and height the pattern uses; it lives until the frame is
    // drawn, whatever later parts do to the cache.
    TextureRect textureRect;
    float uMax = 0.0f;
    float vMax = 0.0f;

protected:
    // Fields, texture and colours; the concrete sprite adds its corners. A
    // part without character or with an all-black one is marked not drawn.
    explicit CVdp1SpritePart(const Vdp1CommandTable& command);
    void DrawTextured();
};

class CVdp1NormalSprite : public CVdp1SpritePart {
public:
    CVdp1NormalSprite(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override { DrawTextured(); }
};

class CVdp1ScaledSprite : public CVdp1SpritePart {
public:
    CVdp1ScaledSprite(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override { DrawTextured(); }
};

class CVdp1DistortedSprite : public CVdp1SpritePart {
public:
    CVdp1DistortedSprite(const Vdp1CommandTable& command, int32_t localX, int32_t localY);
    void Draw() override { DrawTextured(); }
};

}  // namespace vdpgl
