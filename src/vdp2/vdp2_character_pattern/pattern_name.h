#pragma once
// CPatternName: a request for one character of a background's map, built on
// the caller's stack for every map entry drawn. It reads the pattern name
// (one or two words, with the background's supplements and flips), makes
// sure the character's cells are decoded for its palette, and writes them
// into the background's plane texture when that does not show them yet.
#include <cstdint>

#include "vdp2/palette_blocks.h"

namespace vdpgl {

class CBackground;
class CNormalBackground;
class CVdp2CharacterPattern;

struct CPatternName {
    // Reads the name at entry `index` of the map at mapAddress, decodes its
    // cells, and with upload set writes the character at (x, y) of the plane
    // texture unless the background's cell record says it is there already.
    void DrawCell(CNormalBackground& background, uint32_t planeNumber, uint32_t mapAddress, uint32_t index,
                  int32_t x, int32_t y, bool upload);
    // The same without a plane texture: for software sampling and the viewer.
    void PrepareCell(CBackground& background, uint32_t mapAddress, uint32_t index);
    // Whether the last DrawCell or PrepareCell found every cell of its
    // character (not so for a colour count the background cannot show).
    bool IsPrepared() const { return prepared; }
    // Colour word of dot (x, y) of the prepared character (0-7, or 0-15 for
    // a 2 x 2 character), flips applied; 0 when nothing is prepared. Inline:
    // the rotation planes ask for every dot.
    uint32_t GetCellPixel(int32_t x, int32_t y) const {
        if (!prepared) return 0;
        x ^= flipX;  // 7 - x (15 - x) for the dots of a character
        y ^= flipY;
        const uint32_t k = characterSize ? static_cast<uint32_t>(((x >> 3) & 1) | (((y >> 3) & 1) << 1)) : 0;
        return pictures[k][(y & 7) * 8 + (x & 7)];
    }
    // The prepared character's dots unflipped, as `dots` x `dots` colour
    // words (8, or 16 for 2 x 2 cells): the one cell's picture, or the four
    // copied into `room`. nullptr when nothing is prepared.
    const uint32_t* Unflipped(uint32_t* room) const;
    // The masks that flip a dot's position in the character.
    int32_t FlipXMask() const { return flipX; }
    int32_t FlipYMask() const { return flipY; }
    // The colour RAM blocks the prepared character's pictures were made
    // from (in colour RAM mode `cramMode`): a change in one of them makes
    // them stale, one elsewhere does not.
    PaletteBlocks PaletteBlocksRead(uint32_t cramMode) const;
    // The prepared character as 8 x 8 or 16 x 16 colour words, flipped.
    void DrawCharacterToBuffer(uint32_t* destination) const;

    uint32_t patternNameData = 0;
    uint32_t paletteNumber = 0;
    uint32_t characterAddress = 0;
    bool hFlip = false;
    bool vFlip = false;
    // Copied from the background.
    uint32_t cellDataSize = 0;
    bool transparentDisplay = false;
    uint32_t characterColorNumber = 0;
    uint32_t patternNameDataSize = 0;
    uint32_t cramAddressOffset = 0;
    uint32_t characterSize = 0;
    uint32_t supplementaryPalette = 0;
    uint32_t characterNumberSupplement = 0;
    uint32_t supplementaryCharacterNumber = 0;
    uint32_t paletteBlock = 0;  // cache key: colour RAM index of the palette / 16
    int32_t xInPlane = 0;
    int32_t yInPlane = 0;
    uint32_t plane = 0;
    CBackground* background = nullptr;

private:
    void ReadPatternName(CBackground& bg, uint32_t mapAddress, uint32_t index);
    void ComputePaletteBlock(uint32_t cramMode);
    // Finds or decodes each cell of the character into `cells`; false (with
    // the failure reported) if one has no picture afterwards.
    bool GetCells();
    CVdp2CharacterPattern* GetCell(uint32_t k);
    void Upload(CNormalBackground& bg, uint32_t planeNumber, int32_t x, int32_t y) const;
    uint32_t CellCount() const { return characterSize ? 4 : 1; }
    static auto& module();

    CVdp2CharacterPattern* cells[4] = {};
    const uint32_t* pictures[4] = {};  // the cells' pictures for paletteBlock
    int32_t flipX = 0, flipY = 0;      // masks that turn a dot position over
    bool prepared = false;
};

}  // namespace vdpgl
