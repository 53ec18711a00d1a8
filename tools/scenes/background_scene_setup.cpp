#include "background_scene_setup.h"

#include <cstddef>

#include "background_scene_art.h"
#include "background_scene_layout.h"
#include "background_scene_title.h"
#include "scene_builder.h"
#include "vdp2_cells.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::backgrounds {

namespace {

using namespace vdp2;

constexpr Vdp2CellFormat kFarFormat{false, false, true, kFarCellAddress};   // 16 colours, one cell, one word
constexpr Vdp2CellFormat kMidFormat{false, false, true, kMidCellAddress};   // the same
constexpr Vdp2CellFormat kNearFormat{true, true, false, kNearCellAddress};  // 256 colours, 2 x 2 cells, two words

void SetUpPlane(CSceneBuilder& scene, int background, const PixelCodes& picture, const Vdp2CellFormat& format,
                uint32_t mapAddress) {
    UploadPlane(scene, EncodePlane(picture, format), format, mapAddress);
    // One page is 64 x 64 (one-cell) or 32 x 32 (2 x 2) names of 2 or 4 bytes.
    const uint32_t pageBytes = (format.twoByTwo ? 32u * 32u : 64u * 64u) * (format.oneWordNames ? 2u : 4u);
    const uint16_t maps = PagePair(mapAddress, pageBytes);
    scene.Vdp2Register(MapAB(background), maps);
    scene.Vdp2Register(MapCD(background), maps);
    // Bit 15: one-word names; bits 4-0 the upper bits of their character numbers.
    const uint16_t nameControl =
        format.oneWordNames ? static_cast<uint16_t>(0x8000 | SupplementaryCharacterNumber(format)) : 0;
    scene.Vdp2Register(PNCN0 + 2 * static_cast<uint32_t>(background), nameControl);
}

void SetUpVdp2(CSceneBuilder& scene) {
    // Colour RAM mode 0: 1024 RGB555 colours.
    scene.Vdp2Register(RAMCTL, 0x0000);

    WritePalette(scene, ColorRamStart(kFarColorOffset) + kSkyPalette * 16, SkyPalette());
    WritePalette(scene, ColorRamStart(kFarColorOffset) + kMoonPalette * 16, MoonPalette());
    WritePalette(scene, ColorRamStart(kFarColorOffset) + kMountainPalette * 16, MountainPalette());
    WritePalette(scene, ColorRamStart(kMidColorOffset) + kLitHillPalette * 16, HillPalette(true));
    WritePalette(scene, ColorRamStart(kMidColorOffset) + kShadedHillPalette * 16, HillPalette(false));
    WritePalette(scene, ColorRamStart(kNearColorOffset), NearPalette());
    WritePalette(scene, ColorRamStart(kTitleColorOffset), TitlePalette());
    scene.Vdp2Register(CRAOFA, static_cast<uint16_t>(kFarColorOffset << 12 | kMidColorOffset << 8 |
                                                      kNearColorOffset << 4 | kTitleColorOffset));

    // NBG0: a 512 x 256 bitmap of 256 colours (bits 6-4 = 1, 3-2 = 0, bit 1
    // bitmap). NBG1: 256 colours, 2 x 2 cells. NBG2, NBG3: 16 colours, one cell.
    scene.Vdp2Register(CHCTLA, 0x1112);
    scene.Vdp2Register(CHCTLB, 0x0000);
    scene.Vdp2Register(BMPNA, 0x0000);
    // Planes of one page, and map offset 0: the bitmap starts at VRAM 0.
    scene.Vdp2Register(PLSZ, 0x0000);
    scene.Vdp2Register(MPOFN, 0x0000);
    SetUpPlane(scene, 3, FarPicture(), kFarFormat, kFarMapAddress);
    SetUpPlane(scene, 2, MidPicture(), kMidFormat, kMidMapAddress);
    SetUpPlane(scene, 1, NearPicture(), kNearFormat, kNearMapAddress);

    // NBG0 at its own size; NBG1 shown twice as large (0.5 map dots a dot).
    scene.Vdp2Register(ZMXIN0, 1);
    scene.Vdp2Register(ZMYIN0, 1);
    constexpr uint16_t kHalf = 0x8000;  // the fraction .5 in bits 15-8
    static_assert(kNearZoom == 2);
    scene.Vdp2Register(ZMXIN1, 0);
    scene.Vdp2Register(ZMXDN1, kHalf);
    scene.Vdp2Register(ZMYIN1, 0);
    scene.Vdp2Register(ZMYDN1, kHalf);

    scene.Vdp2Register(PRINA, kNearPriority << 8 | kTitlePriority);
    scene.Vdp2Register(PRINB, kFarPriority << 8 | kMidPriority);
    // Sprite type 0 (RGB pixels allowed): priority number 0 in front, 1 behind the near layer.
    scene.Vdp2Register(SPCTL, 0x0020);
    scene.Vdp2Register(PRISA, kBehindPriority << 8 | kFrontPriority);
    for (uint32_t i = 1; i < 4; ++i) scene.Vdp2Register(PRISA + 2 * i, kFrontPriority << 8 | kFrontPriority);

    // NBG0 to NBG3 on, dots 0 transparent.
    scene.Vdp2Register(BGON, 0x000F);
}

}  // namespace

Assets SetUp(CSceneBuilder& scene) {
    SetUpVdp2(scene);

    WritePalette(scene, kRedLeafBank, LeafPalette({0.85f, 0.25f, 0.08f}));
    WritePalette(scene, kYellowLeafBank, LeafPalette({0.95f, 0.7f, 0.12f}));
    WritePalette(scene, kBirdBank, BirdPalette());
    WritePalette(scene, kBalloonBank, BalloonPalette());
    Assets a;
    a.title = TitlePicture();
    CVdp1PatternArea area(scene);
    a.redLeaf = area.Upload(LeafPicture(), ColorMode::Bank16, kRedLeafBank | kFrontSprite);
    a.yellowLeaf = a.redLeaf;
    a.yellowLeaf.colr = kYellowLeafBank | kFrontSprite;
    a.balloon = area.Upload(BalloonPicture(), ColorMode::Bank16, kBalloonBank | kBehindSprite);
    for (int w = 0; w < kWingPositions; ++w)
        a.birds[w] = area.Upload(BirdPicture(w), ColorMode::Bank16, kBirdBank | kBehindSprite);

    scene.StartDisplay();
    return a;
}

}  // namespace vdpgl::scenes::backgrounds
