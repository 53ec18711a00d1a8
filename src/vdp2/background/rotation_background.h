#pragma once
// CRotationBackground: RBG0 and RBG1. The map is 4 x 4 planes (A-P) of
// cells, seen through a transformation per dot that a rotation parameter
// table in VRAM gives (start and increments, a 3 x 3 matrix, viewpoint,
// centre, shift, scale), optionally scaled per dot by a coefficient table.
// Two parameter sets, A and B, are used alone, or switched by coefficient
// data or by the rotation parameter window. The picture is computed in
// software each frame, on a 256 x 256 grid of the screen stretched over it
// or, as an option, once per screen dot; decoded cells come from the cell
// cache.
#include <cstdint>
#include <memory>
#include <vector>

#include "vdp2/background/background.h"
#include "vdp2/background/rotation_row_sampler.h"
#include "vdp2/palette_blocks.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"

namespace vdpgl {

struct RotationParameterSet;
struct RotationParameterWindow;

class CRotationBackground final : public CBackground {
public:
    static constexpr uint32_t kPlanes = 16;
    static constexpr int32_t kPictureSize = 256;

    explicit CRotationBackground(uint32_t number);

    void UpdateFromRegisters() override;
    void GetSize(uint32_t& width, uint32_t& height) const override;
    void RenderPlane(uint32_t plane, uint32_t* pixels) override;
    void Draw() override;
    void GetInformation(std::string& text) const override;

    // The picture of the last drawing, pictureWidth x pictureHeight, bottom
    // row first (for tests and benchmarks).
    const std::vector<uint32_t>& Picture() const { return picture; }

    uint32_t planeWidths[2] = {};
    uint32_t planeHeights[2] = {};
    uint32_t planeSizes[2] = {};
    uint32_t mapOffsets[2] = {};
    uint32_t planeAddresses[2][kPlanes] = {};
    uint32_t rotationParameterMode = 0;  // 0: A, 1: B, 2: switched by coefficients, 3: by the window
    uint32_t parameterTableAddresses[2] = {};
    int32_t pictureWidth = kPictureSize;
    int32_t pictureHeight = kPictureSize;

private:
    struct Parameter;

    void DrawRotationCellMode();
    void DrawCellModeSingleParameter();
    void DrawCellModeParameterSCD();
    void DrawCellModeParameterSRP();
    // Computes the picture with parameter mode 0-3 (the window only for 3)
    // and hands it to the renderer.
    void DrawPicture(uint32_t mode, const RotationParameterWindow* window);
    void PrepareParameter(uint32_t p, Parameter& out) const;

    std::vector<uint32_t> picture;
    // The characters one drawing has prepared, by map position: the grid's
    // rows come back to the characters of the row before, and preparing one
    // (its name read, its cells found) costs more than its dots. A slot
    // points at the character's dots unflipped: a cell's own picture, or for
    // 2 x 2 cells their copy in the slot's room.
    static constexpr size_t kDotsPerSlot = 16 * 16;
    std::unique_ptr<PreparedCharacter[]> prepared;
    std::unique_ptr<uint32_t[]> preparedDots;  // kDotsPerSlot a slot, made at the first 2 x 2 character
    void Prepare(uint32_t slot, uint32_t key, uint32_t mapAddress, uint32_t index);
    // What the prepared characters were made under. While it holds, and no
    // colour of the palettes they read changed, they stay from one drawing
    // to the next: a map whose names, characters and colours did not change
    // shows the same characters.
    struct PreparedFor {
        uint32_t content = ~0u;  // the chips' content generation
        uint64_t mapWrites = 0;  // changed writes into the VRAM blocks the maps lie in, summed
        uint32_t parameters = 0;  // 1 or 2 in use
        uint32_t planes[2][kPlanes] = {};
        uint32_t planeWidths[2] = {}, planeHeights[2] = {};
        NameReading reading;
        bool operator==(const PreparedFor&) const = default;
    };
    PreparedFor PreparedNow(uint32_t parameterCount) const;
    PreparedFor preparedFor;
    PaletteBlocks preparedPalettes;  // the colour RAM blocks the prepared characters read
    uint32_t palettesSeenAt = 0;     // the frame up to which their changes were looked at
    struct Column {
        int32_t screenX = 0, x = 0;
        int32_t along[2] = {};         // bytes into each parameter's coefficient table
        bool sameCoefficients = false;  // both as in the column before
    };
    std::vector<Column> columnTable;
    std::vector<float> columnDX[2], columnDY[2];  // each column's x times each parameter's dX and dY
    // The row being sampled: each column's parameter (-1: transparent) and
    // coefficients.
    std::vector<int32_t> rowParameter;
    std::vector<float> rowKx, rowKy;
};

}  // namespace vdpgl
