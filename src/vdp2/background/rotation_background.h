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
#include <vector>

#include "vdp2/background/background.h"

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
};

}  // namespace vdpgl
