#pragma once
// Where the rotation scene puts things: VDP2 VRAM and colour RAM, the
// priority of every layer, and the camera the floor is seen from.
#include <cstdint>

namespace vdpgl::scenes::rotation {

constexpr int kScreenWidth = 320, kScreenHeight = 224;

// VDP2 VRAM. The floor's characters fill at most the first 256 KB; the
// coefficients, the sky and the maps follow, the parameter table last.
constexpr uint32_t kFloorCellAddress = 0x00000;         // RBG0, 256 colours, two-word names
constexpr uint32_t kFloorCellLimit = 0x40000;
constexpr uint32_t kCoefficientAddress = 0x40000;       // one long a screen line
constexpr uint32_t kSkyCellAddress = 0x48000;           // NBG3, 16 colours, one-word names
constexpr uint32_t kSkyMapAddress = 0x50000;
constexpr uint32_t kFloorMapAddress = 0x54000;
constexpr uint32_t kParameterTableAddress = 0x60000;    // parameter A

// Colour RAM (1024 colours) in blocks of 256: the sky and the sprites' banks
// share the first, the floor has the second to itself.
constexpr uint32_t kSkyColorOffset = 0, kFloorColorOffset = 1;
constexpr uint16_t kBirdBank = 0x020, kBalloonBank = 0x030;

// Priorities, higher in front: the sky, the floor over it, the sprites.
constexpr uint16_t kSkyPriority = 1, kFloorPriority = 2, kSpritePriority = 3;

// The camera: the screen dot its axis passes through horizontally, and
// the focal length in dots (the screen is about 80 degrees wide).
constexpr int kCenterX = kScreenWidth / 2;
constexpr double kFocalLength = 192.0;
// Screen lines between the horizon and the floor's far edge: the lines
// above the edge show the sky through the floor.
constexpr int kFarEdgeLines = 12;

// The compass rose in the middle of the floor's 512-dot repeat, in map dots.
constexpr double kRoseX = 256.0, kRoseY = 256.0;

}  // namespace vdpgl::scenes::rotation
