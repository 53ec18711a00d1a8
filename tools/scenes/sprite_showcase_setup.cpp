#include "sprite_showcase_setup.h"

#include <array>
#include <string_view>

#include "pixel_font.h"
#include "scene_builder.h"
#include "scene_math.h"
#include "sprite_showcase_art.h"
#include "sprite_showcase_layout.h"
#include "vdp1_patterns.h"
#include "vdp2/vdp2_registers.h"

namespace vdpgl::scenes::showcase {

namespace {

using namespace vdp2reg;

// A gouraud table entry: per channel, 16 leaves the colour as it is.
uint16_t Shade(int r, int g, int b) { return static_cast<uint16_t>((b << 10) | (g << 5) | r); }

template <size_t N>
void WritePalette(CSceneBuilder& scene, uint16_t bank, const std::array<uint16_t, N>& colors) {
    for (size_t i = 0; i < N; ++i) scene.CramWord(bank + static_cast<uint32_t>(i), colors[i]);
}

void AddCaption(Assets& assets, CVdp1PatternArea& area, std::string_view text, int centreX, int top) {
    const Vdp1Sprite sprite = area.Upload(RenderCaption(text, 1, 2), ColorMode::Bank16, kCaptionBank);
    assets.captions.push_back({sprite, {centreX - CaptionWidth(text) / 2, top}});
}

}  // namespace

Assets SetUp(CSceneBuilder& scene) {
    // Colour RAM mode 0; sprite type 0 with RGB pixels allowed; every sprite
    // priority number at level 6, so the whole list composes in command order.
    scene.Vdp2Register(RAMCTL, 0x0000);
    scene.Vdp2Register(SPCTL, 0x0020);
    for (uint32_t i = 0; i < 4; ++i) scene.Vdp2Register(PRISA + 2 * i, 0x0606);

    std::array<uint16_t, 16> captionColors{};
    captionColors[1] = ToCramColor({0.9f, 0.92f, 1.0f});
    captionColors[2] = ToCramColor({0.02f, 0.02f, 0.06f});
    WritePalette(scene, kCaptionBank, captionColors);
    WritePalette(scene, kOrangeBank, BallPalette({1.0f, 0.5f, 0.1f}));
    WritePalette(scene, kCyanBank, BallPalette({0.1f, 0.7f, 1.0f}));
    WritePalette(scene, kLimeBank, BallPalette({0.5f, 1.0f, 0.2f}));
    WritePalette(scene, kPinkBank, BallPalette({1.0f, 0.3f, 0.75f}));
    WritePalette(scene, kGlyphBank, GlyphPalette());
    WritePalette(scene, kTileBank, TilePalette());
    WritePalette(scene, kDiamondBank, DiamondPalette());
    WritePalette(scene, kFlowerBank, FlowerPalette());
    WritePalette(scene, kPlasmaBank, PlasmaPalette());

    Assets a;
    CVdp1PatternArea area(scene);
    const PixelCodes ball = BallPicture(32);
    a.orangeBall = area.Upload(ball, ColorMode::Bank16, kOrangeBank);
    // The other balls share the pattern: only the colour bank differs.
    a.cyanBall = a.limeBall = a.pinkBall = a.orangeBall;
    a.cyanBall.colr = kCyanBank;
    a.limeBall.colr = kLimeBank;
    a.pinkBall.colr = kPinkBank;
    a.rings = area.Upload(RingsPicture(32), ColorMode::Lookup16, area.Lookup(RingsLookup()));
    a.diamond = area.Upload(DiamondPicture(32), ColorMode::Bank64, kDiamondBank);
    a.flower = area.Upload(FlowerPicture(32), ColorMode::Bank128, kFlowerBank);
    a.plasma = area.Upload(PlasmaPicture(32), ColorMode::Bank256, kPlasmaBank);
    a.wheel = area.Upload(HueWheelPicture(32), ColorMode::Rgb);
    a.glyph = area.Upload(GlyphPicture(), ColorMode::Bank16, kGlyphBank);
    a.tile = area.Upload(TilePicture(32), ColorMode::Bank16, kTileBank);

    for (const Panel& panel : kPanels)
        AddCaption(a, area, panel.caption, panel.cell.CentreX(), panel.cell.y + Cell::kHeight - 9);
    for (int i = 0; i < 4; ++i)
        AddCaption(a, area, kFlipCaptions[i], kFlipCell.x + kGlyphLeft + kGlyphSpacing * i + 12, kFlipCell.y + 31);

    a.backgroundShading = area.ReserveGouraud();
    WriteGouraudTable(scene, a.backgroundShading,
                      {Shade(14, 15, 20), Shade(15, 14, 18), Shade(19, 14, 16), Shade(15, 16, 16)});
    a.panelShading = area.ReserveGouraud();
    WriteGouraudTable(scene, a.panelShading,
                      {Shade(18, 18, 19), Shade(18, 18, 19), Shade(14, 14, 15), Shade(14, 14, 15)});
    a.polygonShading = area.ReserveGouraud();
    WriteGouraudTable(scene, a.polygonShading, {Shade(31, 4, 4), Shade(31, 31, 0), Shade(4, 31, 8), Shade(4, 8, 31)});
    a.lineShading = area.ReserveGouraud();
    WriteGouraudTable(scene, a.lineShading,
                      {Shade(26, 26, 26), Shade(12, 12, 12), Shade(16, 16, 16), Shade(16, 16, 16)});
    a.tileShading = area.ReserveGouraud();  // written every frame

    scene.StartDisplay();
    return a;
}

}  // namespace vdpgl::scenes::showcase
