#include "rotation_scene_setup.h"

#include <cstddef>
#include <stdexcept>

#include "background_scene_art.h"
#include "background_scene_layout.h"
#include "rotation_scene_art.h"
#include "rotation_scene_layout.h"
#include "scene_builder.h"
#include "vdp1_patterns.h"
#include "vdp2_cells.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::rotation {

namespace {

using namespace vdp2;

constexpr Vdp2CellFormat kSkyFormat{false, false, true, kSkyCellAddress};      // 16 colours, one cell, one word
constexpr Vdp2CellFormat kFloorFormat{true, false, false, kFloorCellAddress};  // 256 colours, one cell, two words

// Pages of 64 x 64 names: 2 bytes a name for the sky, 4 for the floor.
constexpr uint32_t kSkyPageBytes = 0x2000, kFloorPageBytes = 0x4000;

void SetUpSky(CSceneBuilder& scene) {
    using namespace backgrounds;
    WritePalette(scene, ColorRamStart(kSkyColorOffset) + kSkyPalette * 16, SkyPalette());
    WritePalette(scene, ColorRamStart(kSkyColorOffset) + kMoonPalette * 16, MoonPalette());
    WritePalette(scene, ColorRamStart(kSkyColorOffset) + kMountainPalette * 16, MountainPalette());
    UploadPlane(scene, EncodePlane(FarPicture(), kSkyFormat), kSkyFormat, kSkyMapAddress);
    const uint16_t maps = PagePair(kSkyMapAddress, kSkyPageBytes);
    scene.Vdp2Register(MapAB(3), maps);
    scene.Vdp2Register(MapCD(3), maps);
    // One-word names: bit 15, and the upper bits of the character numbers.
    scene.Vdp2Register(PNCN0 + 3 * 2, static_cast<uint16_t>(0x8000 | SupplementaryCharacterNumber(kSkyFormat)));
}

// The floor: one page repeated over all sixteen planes of parameter A, so
// the map repeats every 512 dots wherever the transformation lands.
void SetUpFloor(CSceneBuilder& scene) {
    WritePalette(scene, ColorRamStart(kFloorColorOffset), FloorPalette());
    const Vdp2Plane plane = EncodePlane(FloorPicture(), kFloorFormat);
    if (kFloorCellAddress + plane.characters.size() > kFloorCellLimit)
        throw std::length_error("the floor's characters run into the coefficient table");
    UploadPlane(scene, plane, kFloorFormat, kFloorMapAddress);
    const uint16_t maps = PagePair(kFloorMapAddress, kFloorPageBytes);
    for (int pair = 0; pair < 8; ++pair) scene.Vdp2Register(RotationMap(pair), maps);
    scene.Vdp2Register(MPOFR, 0x0000);
    // Two-word names: bit 15 clear.
    scene.Vdp2Register(PNCR, 0x0000);

    // Parameter A alone, its table at kParameterTableAddress (bits 18-17 in
    // RPTAU, the rest 0 in RPTAL), the screen start, its increments and the
    // coefficient start read from it every frame.
    static_assert(kParameterTableAddress % 0x20000 == 0);
    scene.Vdp2Register(RPMD, 0x0000);
    scene.Vdp2Register(RPTAU, static_cast<uint16_t>(kParameterTableAddress >> 17));
    scene.Vdp2Register(RPTAL, 0x0000);
    scene.Vdp2Register(RPRCTL, 0x0007);
    // Coefficient table of parameter A on (bit 0), long coefficients (bit 1
    // clear), mode 0: each one scales both axes. Long tables start at
    // multiples of 256 KB: KTAOF bits 1-0.
    static_assert(kCoefficientAddress % 0x40000 == 0);
    scene.Vdp2Register(KTCTL, 0x0001);
    scene.Vdp2Register(KTAOF, static_cast<uint16_t>(kCoefficientAddress >> 18));
}

void SetUpVdp2(CSceneBuilder& scene) {
    // Colour RAM mode 0: 1024 RGB555 colours.
    scene.Vdp2Register(RAMCTL, 0x0000);
    SetUpSky(scene);
    SetUpFloor(scene);
    scene.Vdp2Register(CRAOFA, static_cast<uint16_t>(kSkyColorOffset << 12));
    scene.Vdp2Register(CRAOFB, static_cast<uint16_t>(kFloorColorOffset));

    // NBG3: 16 colours, one cell (bits 5-4 clear). RBG0: 256 colours (bits
    // 14-12 = 1), one cell (bit 8 clear), cells not bitmap (bit 9 clear).
    scene.Vdp2Register(CHCTLA, 0x0000);
    scene.Vdp2Register(CHCTLB, 0x1000);
    // Planes of one page for NBG3 (bits 7-6) and for RBG0's parameter A (bits 9-8).
    scene.Vdp2Register(PLSZ, 0x0000);
    scene.Vdp2Register(MPOFN, 0x0000);

    scene.Vdp2Register(PRINB, static_cast<uint16_t>(kSkyPriority << 8));
    scene.Vdp2Register(PRINA, 0x0000);
    scene.Vdp2Register(PRIR, kFloorPriority);
    // Sprite type 0 (RGB pixels allowed): every priority number in front of the floor.
    scene.Vdp2Register(SPCTL, 0x0020);
    for (uint32_t i = 0; i < 4; ++i) scene.Vdp2Register(PRISA + 2 * i, kSpritePriority << 8 | kSpritePriority);

    // NBG3 (bit 3) and RBG0 (bit 4) on, dots 0 transparent.
    scene.Vdp2Register(BGON, 0x0018);
}

}  // namespace

Assets SetUp(CSceneBuilder& scene) {
    SetUpVdp2(scene);

    using namespace backgrounds;
    WritePalette(scene, kBirdBank, BirdPalette());
    WritePalette(scene, kBalloonBank, BalloonPalette());
    Assets a;
    CVdp1PatternArea area(scene);
    a.balloon = area.Upload(BalloonPicture(), ColorMode::Bank16, kBalloonBank);
    for (int w = 0; w < kWingPositions; ++w)
        a.birds[static_cast<size_t>(w)] = area.Upload(BirdPicture(w), ColorMode::Bank16, kBirdBank);

    scene.StartDisplay();
    return a;
}

}  // namespace vdpgl::scenes::rotation
