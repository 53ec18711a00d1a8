#pragma once
// Where the sprite showcase puts things: colour RAM banks and the grid of
// captioned panels, six columns of 52 pixels by four rows of 55.
#include <cstdint>
#include <string_view>

#include "vdp1_command_list.h"

namespace vdpgl::scenes::showcase {

constexpr int kScreenWidth = 320, kScreenHeight = 224;

// Colour RAM: 16-colour banks from entry 0, the larger banks after them.
enum Bank : uint16_t {
    kCaptionBank = 0x000,
    kOrangeBank = 0x010,
    kCyanBank = 0x020,
    kLimeBank = 0x030,
    kPinkBank = 0x040,
    kGlyphBank = 0x050,
    kTileBank = 0x060,
    kDiamondBank = 0x0C0,
    kFlowerBank = 0x100,
    kPlasmaBank = 0x200,
};

// A cell of the grid; its picture area sits above a caption line.
struct Cell {
    int x, y, width;
    static constexpr int kHeight = 55;
    constexpr int CentreX() const { return x + width / 2; }
    constexpr int CentreY() const { return y + 23; }
    constexpr Point At(int dx, int dy) const { return {x + dx, y + dy}; }
};

constexpr Cell GridCell(int column, int row, int span = 1) { return {4 + 52 * column, 2 + 55 * row, 52 * span}; }

constexpr Cell kModeCells[6] = {GridCell(0, 0), GridCell(1, 0), GridCell(2, 0),
                                GridCell(3, 0), GridCell(4, 0), GridCell(5, 0)};
constexpr Cell kFlipCell = GridCell(0, 1, 2), kScaleCell = GridCell(2, 1), kZoomUpperLeftCell = GridCell(3, 1),
               kZoomCentreCell = GridCell(4, 1), kZoomLowerRightCell = GridCell(5, 1);
constexpr Cell kRotateCell = GridCell(0, 2), kDistortCell = GridCell(1, 2), kGouraudCell = GridCell(2, 2),
               kHalfTransparencyCell = GridCell(3, 2), kShadowCell = GridCell(4, 2),
               kHalfLuminanceCell = GridCell(5, 2);
constexpr Cell kMeshCell = GridCell(0, 3), kPolygonCell = GridCell(1, 3), kPolylineCell = GridCell(2, 3),
               kLineCell = GridCell(3, 3), kLocalCell = GridCell(4, 3, 2);

struct Panel {
    Cell cell;
    std::string_view caption;
};

constexpr Panel kPanels[] = {
    {kModeCells[0], "16 BANK"},
    {kModeCells[1], "16 LUT"},
    {kModeCells[2], "64 BANK"},
    {kModeCells[3], "128 BANK"},
    {kModeCells[4], "256 BANK"},
    {kModeCells[5], "RGB 32K"},
    {kFlipCell, "FLIPS"},
    {kScaleCell, "SCALE"},
    {kZoomUpperLeftCell, "ZOOM UL"},
    {kZoomCentreCell, "ZOOM MID"},
    {kZoomLowerRightCell, "ZOOM LR"},
    {kRotateCell, "ROTATE"},
    {kDistortCell, "DISTORT"},
    {kGouraudCell, "GOURAUD"},
    {kHalfTransparencyCell, "HALF-TR"},
    {kShadowCell, "SHADOW"},
    {kHalfLuminanceCell, "HALF-LUM"},
    {kMeshCell, "MESH"},
    {kPolygonCell, "POLYGON"},
    {kPolylineCell, "POLYLINE"},
    {kLineCell, "LINES"},
    {kLocalCell, "LOCAL COORDS"},
};

constexpr uint16_t kFlips[4] = {0, kFlipH, kFlipV, kFlipH | kFlipV};
constexpr std::string_view kFlipCaptions[4] = {"NONE", "H", "V", "HV"};
constexpr int kGlyphLeft = 3, kGlyphSpacing = 25;  // the four flipped glyphs in their cell

}  // namespace vdpgl::scenes::showcase
