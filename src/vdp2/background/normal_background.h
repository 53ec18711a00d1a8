#pragma once
// CNormalBackground: NBG0-NBG3. In cell mode the map is 2 x 2 planes (A, B
// over C, D) of 1, 2 or 4 pages of pattern names; each plane is one texture
// as large as the plane, filled character by character as the characters
// come on screen or change, and drawn as one quad per plane piece on screen,
// scrolled and zoomed. NBG0 and NBG1 can show a bitmap instead: one texture,
// rebuilt when a VRAM write inside the bitmap changed it, repeated across the
// screen.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "vdp2/background/background.h"
#include "vdp2/background/bitmap_write_listener.h"
#include "vdp2/palette_blocks.h"

namespace vdpgl {

// What a plane texture shows at one character position: the character as
// its request read it (address, flips, palette, colour count; -1 for
// nothing yet) and the stamp of the pictures written there.
// What a plane texture shows at one character position. All zero means
// nothing: the records are made as zeroed memory, whose pages the system
// maps only when a record is first written.
struct CellRecord {
    uint32_t shownName;  // the character's identity + 1 (0: none)
    uint32_t lastStamp;
    // The name as VRAM held it and the background's generation when the
    // texture was last brought up to date here: both the same, nothing the
    // position shows can have changed.
    uint32_t rawName;
    uint32_t generation;  // 0: never
};

class CNormalBackground final : public CBackground, public CBitmapWriteListener {
public:
    static constexpr uint32_t kPlanes = 4;
    static constexpr uint32_t kRecordsPerSide = 128;  // 1024 dots of 8 x 8 characters

    explicit CNormalBackground(uint32_t number);
    ~CNormalBackground() override;

    void UpdateFromRegisters() override;
    void GetSize(uint32_t& width, uint32_t& height) const override;
    void DecodeBitmap(uint32_t* pixels) override;
    // Rows [firstRow, endRow) of the bitmap into their place in `pixels`.
    void DecodeBitmapRows(uint32_t* pixels, uint32_t firstRow, uint32_t endRow);
    void RenderPlane(uint32_t plane, uint32_t* pixels) override;
    void Draw() override;
    void GetInformation(std::string& text) const override;
    void Reset() override;

    // Every plane position shows nothing yet.
    void ResetCellRecords();
    CellRecord& Record(uint32_t plane, uint32_t column, uint32_t row) {
        return cellRecords[(plane * kRecordsPerSide + column) * kRecordsPerSide + row];
    }

    // A VRAM write that changed a value, while in bitmap mode.
    void OnBitmapVramWrite(uint32_t address) override { InvalidateBitmapRange(address); }
    void InvalidateBitmapRange(uint32_t address);

    uint32_t planeWidth = 0;
    uint32_t planeHeight = 0;
    uint32_t planeSize = 0;
    uint32_t mapOffset = 0;
    uint32_t planeAddresses[kPlanes] = {};
    uint32_t bitmapAddress = 0;
    uint32_t bitmapDataSize = 0;
    uint32_t bitmapPaletteNumber = 0;
    uint32_t bitmapWidth = 0;
    uint32_t bitmapHeight = 0;
    uint8_t bitmapDirty = 1;                          // all of it is decoded again
    uint32_t bitmapRowsFirst = ~0u, bitmapRowsEnd = 0;  // rows VRAM writes changed since
    int32_t scrollX = 0;
    int32_t scrollY = 0;
    float scaleX = 0.0f;
    float scaleY = 0.0f;

private:
    void ReadScrollAndZoom();
    void UpdatePlanes(uint32_t oldPlaneSize, const uint32_t* oldAddresses);
    void CreatePlaneTextures();
    void UpdateBitmap(uint32_t oldWidth, uint32_t oldHeight, uint32_t oldAddress);
    void DrawCellMode();
    void LoadVisibleCharacters();
    void DrawPlanePieces();
    void DrawBitmapMode();
    void AppendCellModeInformation(std::string& text) const;
    void AppendBitmapModeInformation(std::string& text) const;

    struct FreeRecords {
        void operator()(CellRecord* records) const { std::free(records); }
    };
    std::unique_ptr<CellRecord[], FreeRecords> cellRecords;
    std::vector<uint32_t> bitmapPixels;  // kept between uploads
    // False until the textures exist for the current plane layout or bitmap
    // (and after a reset, which drops what they held); they are made when
    // the background is next drawn.
    bool planesCreated = false;
    bool bitmapCreated = false;
    // Moves on whenever what a name shows may have changed without the name
    // changing: character data or colours, or how the background reads names.
    uint32_t generation = 1;
    uint32_t seenContent = 0;   // the chips' content generation it last saw
    NameReading seenReading;    // and how it read names
    // The colour RAM blocks the characters loaded in this generation read,
    // and the frame up to which their changes were looked at.
    PaletteBlocks palettesRead;
    uint32_t palettesSeenAt = 0;
};

}  // namespace vdpgl
