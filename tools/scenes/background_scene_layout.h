#pragma once
// Where the backgrounds scene puts things: VDP2 VRAM and colour RAM, the
// priority of every layer, and the screen positions its pictures are drawn
// for.
#include <cstdint>

namespace vdpgl::scenes::backgrounds {

constexpr int kScreenWidth = 320, kScreenHeight = 224;

// VDP2 VRAM. The bitmap fills the first 128 KB; the maps and the characters
// of the three cell planes follow, none overlapping another.
constexpr uint32_t kBitmapAddress = 0x00000;  // NBG0, 512 x 256 dots of 256 colours
constexpr uint32_t kFarMapAddress = 0x20000;  // NBG3, one-word names
constexpr uint32_t kMidMapAddress = 0x22000;  // NBG2, one-word names
constexpr uint32_t kNearMapAddress = 0x24000;  // NBG1, two-word names
constexpr uint32_t kFarCellAddress = 0x28000;
constexpr uint32_t kMidCellAddress = 0x30000;
constexpr uint32_t kNearCellAddress = 0x40000;

// Colour RAM (1024 colours): each background's colour numbers count from
// its own offset, a multiple of 256 entries.
constexpr uint32_t kFarColorOffset = 0;  // shared with the sprites' banks below 0x080
constexpr uint32_t kMidColorOffset = 1;
constexpr uint32_t kNearColorOffset = 2;
constexpr uint32_t kTitleColorOffset = 3;

// 16-colour palettes inside those blocks.
constexpr uint16_t kSkyPalette = 8, kMoonPalette = 9, kMountainPalette = 10;  // NBG3
constexpr uint16_t kLitHillPalette = 0, kShadedHillPalette = 1;                  // NBG2

// Sprite colour banks (colour RAM entries).
constexpr uint16_t kRedLeafBank = 0x000, kYellowLeafBank = 0x010, kBirdBank = 0x020, kBalloonBank = 0x030;

// Priorities, higher in front: the sky, the hills, the birds and the
// balloon, the near layer, the title, the falling leaves.
constexpr uint16_t kFarPriority = 1, kMidPriority = 2, kBehindPriority = 3, kNearPriority = 4, kTitlePriority = 5,
                   kFrontPriority = 6;
// A sprite's priority number is CMDCOLR bits 15-14 (sprite type 0).
constexpr uint16_t kFrontSprite = 0x0000, kBehindSprite = 0x4000;

// The near layer is shown twice as large.
constexpr int kNearZoom = 2;

// The title panel in the bitmap (and on screen, the bitmap barely scrolls).
constexpr int kPanelLeft = 48, kPanelTop = 10, kPanelWidth = 224, kPanelHeight = 46;

}  // namespace vdpgl::scenes::backgrounds
