#pragma once
// CBackground: what VDP2's six backgrounds (NBG0-NBG3, RBG0, RBG1) share: the
// register fields every one of them reads once a frame, the values derived
// from them (colour RAM offset, cell size, alpha, colour offset), the
// priority it is drawn at, the switches the control panel sets, and the
// operations the frame and the background viewer ask of each.
#include <atomic>
#include <cstdint>
#include <string>

#include "common/append_format.h"
#include "common/module_log.h"

namespace vdpgl {

class COpenGl;
class CVdp2;

class CBackground {
public:
    explicit CBackground(uint32_t number);
    virtual ~CBackground() = default;
    CBackground(const CBackground&) = delete;
    CBackground& operator=(const CBackground&) = delete;

    // Links the background module to VDP2 (registers, VRAM, colour RAM) and
    // the renderer, and builds fieldMasks; CVdp2's constructor calls it once
    // before it creates its backgrounds.
    static void InitializeBackgroundStatics(CVdp2* vdp2, COpenGl* renderer);

    // Once a frame at V-blank-out: the register fields and derived values.
    virtual void UpdateFromRegisters();
    // Width and height in dots of what the viewer shows (0 x 0: nothing).
    virtual void GetSize(uint32_t& width, uint32_t& height) const { width = height = 0; }
    // For the viewer: the whole bitmap, or one whole plane, as colour words.
    virtual void DecodeBitmap(uint32_t* /*pixels*/) {}
    virtual void RenderPlane(uint32_t /*plane*/, uint32_t* /*pixels*/) {}
    // Draws the background at its priority level (nothing here).
    virtual void Draw() {}
    // The viewer's description: the kind's own lines, then the common ones.
    virtual void GetInformation(std::string& text) const { AppendCommonInformation(text); }
    // The VDP2 reset: everything cached from VRAM is built again.
    virtual void Reset() {}

    // 0-7 from the priority register; 0: the background is not displayed.
    uint32_t GetPriority() const { return priority; }
    bool IsCellMode() const { return bitmapEnabled == 0; }
    // Shown when its display bit is on and the control panel has not
    // switched it off.
    bool IsShown() const { return enabled != 0 && !disabled.load(std::memory_order_relaxed); }

    // fieldMasks[first][last]: bits first..last set (0 when first > last).
    static uint16_t fieldMasks[16][16];

    const uint32_t bgNumber;
    // Switches set from the user-interface threads. A filtered background
    // is sampled bilinear instead of nearest, smoothing it when scaled.
    std::atomic<uint8_t> filtered{0};
    std::atomic<uint8_t> disabled{0};

    uint32_t enabled = 0;
    uint32_t bitmapEnabled = 0;
    uint32_t cramAddressOffset = 0;  // bytes
    uint8_t transparentDisplay = 0;
    uint8_t characterColorNumber = 0;  // 0: 16, 1: 256, 2: 2048, 3: 32K, 4: 16M colours
    uint32_t characterSize = 0;        // 0: 1 x 1 cell, 1: 2 x 2 cells
    uint32_t charactersPerPageLine = 0;
    uint32_t charactersPerPage = 0;
    uint32_t patternNameDataSize = 0;  // 1: one-word names, 0: two words
    uint32_t characterNumberSupplement = 0;
    uint32_t specialPriority = 0;
    uint32_t specialColorCalculation = 0;
    uint32_t supplementaryPalette = 0;
    uint32_t supplementaryCharacterNumber = 0;
    uint32_t cellDataSize = 0;  // bytes of one 8 x 8 cell
    float colorCalculationAlpha = 1.0f;
    float colorOffsetMultiply[3] = {1.0f, 1.0f, 1.0f};
    float colorOffsetAdd[3] = {};

    // The fields that decide how a pattern name is read and its cells
    // decoded: while they and the chips' content stay as they were, a name
    // shows what it showed.
    struct NameReading {
        uint32_t fields[12] = {};
        bool operator==(const NameReading&) const = default;
    };
    NameReading ReadingOfNames() const;

protected:
    // (register & fieldMasks[first][last]) >> first.
    static uint32_t Field(uint32_t registerAddress, int first, int last);
    void AppendCommonInformation(std::string& text) const;
    // Dots a character is wide: 8 or 16.
    uint32_t CharacterDots() const { return 8 * characterSize + 8; }
    // Pattern name index of the character at character column cx, row cy of
    // a plane (its page, then its place in the page).
    uint32_t PatternIndex(uint32_t cx, uint32_t cy) const {
        const uint32_t n = charactersPerPageLine;
        return ((cx >= n ? 1 : 0) + (cy >= n ? 2 : 0)) * charactersPerPage + (cy % n) * n + cx % n;
    }
    // The whole plane whose pattern names start at planeAddress, for the
    // viewer: 1, 2 or 4 pages by plane size code, rows of `width` dots.
    void RenderPlaneAt(uint32_t planeAddress, uint32_t planeSize, uint32_t width, uint32_t* pixels);

    static CVdp2* vdp2;
    static COpenGl* renderer;
    CModuleLog trace;  // NBG0.log ... RBG1.log; written only in trace builds
    uint32_t priority = 0;

private:
    void UpdateColorOffset(uint32_t offsetBit);
};

}  // namespace vdpgl
