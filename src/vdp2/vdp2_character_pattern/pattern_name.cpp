#include "vdp2/vdp2_character_pattern/pattern_name.h"

#include <algorithm>

#include "common/consistency_check.h"
#include "render/opengl/opengl.h"
#include "vdp2/background/normal_background.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/vdp2_character_pattern.h"

namespace vdpgl {

auto& CPatternName::module() { return CVdp2CharacterPattern::module; }

namespace {

// A picture turned as the flips say.
void Flip(const uint32_t* in, bool h, bool v, uint32_t* out) {
    for (uint32_t row = 0; row < 8; ++row) {
        const uint32_t* from = in + (v ? 7 - row : row) * 8;
        for (uint32_t column = 0; column < 8; ++column) out[row * 8 + column] = from[h ? 7 - column : column];
    }
}

}  // namespace

void CPatternName::ReadPatternName(CBackground& bg, uint32_t mapAddress, uint32_t index) {
    background = &bg;
    cellDataSize = bg.cellDataSize;
    transparentDisplay = bg.transparentDisplay != 0;
    characterColorNumber = bg.characterColorNumber;
    patternNameDataSize = bg.patternNameDataSize;
    cramAddressOffset = bg.cramAddressOffset;
    characterSize = bg.characterSize;
    supplementaryPalette = bg.supplementaryPalette;
    characterNumberSupplement = bg.characterNumberSupplement;
    supplementaryCharacterNumber = bg.supplementaryCharacterNumber;

    const CVdp2& vdp2 = *module().vdp2;
    uint32_t characterNumber = 0;
    if (patternNameDataSize == 0) {  // two words: every field in full
        const uint32_t pn = vdp2.vram.ReadLong((mapAddress + index * 4) & CConsoleVram::kMask);
        patternNameData = pn;
        paletteNumber = (pn >> 16) & 0x7F;
        if (characterColorNumber == 1) paletteNumber /= 16;
        characterNumber = pn & 0x3FFF;
        hFlip = (pn >> 30) & 1;
        vFlip = (pn >> 31) & 1;
    } else {  // one word, completed by the background's supplements
        const uint32_t pn = vdp2.vram.ReadWord((mapAddress + index * 2) & CConsoleVram::kMask);
        const uint32_t sp = supplementaryPalette, sc = supplementaryCharacterNumber;
        patternNameData = pn;
        paletteNumber = characterColorNumber == 0 ? (pn >> 12) | (sp << 4) : (pn & 0x7000) >> 12;
        const bool flips = characterNumberSupplement == 0;
        vFlip = flips && ((pn >> 11) & 1);
        hFlip = flips && ((pn >> 10) & 1);
        if (characterSize == 0)
            characterNumber = flips ? (pn & 0x3FF) | (sc & 0x1F) << 10 : (pn & 0xFFF) | (sc & 0x1C) << 10;
        else
            characterNumber = flips ? ((pn & 0x3FF) << 2) | (sc & 3) | (sc & 0x1C) << 10
                                    : ((pn & 0xFFF) << 2) | (sc & 3) | (sc & 0x10) << 10;
    }
    characterAddress = (characterNumber * 32) & CConsoleVram::kMask;
    ComputePaletteBlock(vdp2.cramMode);
}

void CPatternName::ComputePaletteBlock(uint32_t cramMode) {
    // In colour RAM mode 2 a colour takes two words, so a 16-colour palette
    // spans 32 words and a 256-colour one 512: palette n starts at word
    // n x 32 (n x 512), each palette on colours of its own, as the 16- and
    // 256-colour sprite and cell lookups of that mode count colours.
    const uint32_t wordsPerColor = cramMode == 2 ? 2 : 1;
    uint32_t base = cramAddressOffset / 2;
    switch (characterColorNumber) {
    case 0: base += paletteNumber * 16 * wordsPerColor; break;
    case 1: base += paletteNumber * 256 * wordsPerColor; break;
    case 2: break;
    default: base = 0; break;  // direct colours
    }
    paletteBlock = (base & 0x7FF) / 16;
}

PaletteBlocks CPatternName::PaletteBlocksRead(uint32_t cramMode) const {
    // The same blocks whose stamps tell the cell cache that a picture is
    // stale: a palette's own 16 or 256 colours, twice as many words in mode
    // 2; every block for 2048 colours; none for direct colours.
    PaletteBlocks blocks;
    const uint32_t wide = cramMode == 2 ? 2 : 1;
    switch (characterColorNumber) {
    case 0: blocks.AddRun(paletteBlock, wide); break;
    case 1: blocks.AddRun(paletteBlock & ~15u, 16 * wide); break;
    case 2: blocks.AddAll(); break;
    default: break;
    }
    return blocks;
}

CVdp2CharacterPattern* CPatternName::GetCell(uint32_t k) {
    CVdp2& vdp2 = *module().vdp2;
    const uint32_t address = (characterAddress + k * cellDataSize) & CConsoleVram::kMask;
    CVdp2CharacterPattern* cell = vdp2.cells[address / 32];
    // A cell that holds these bytes read another way (another colour count,
    // transparency or start) is made anew; one whose data changed drops all
    // its pictures and decodes for this request.
    if (cell && (!cell->Fits(*this) || cell->startAddress != address)) {
        delete cell;
        cell = nullptr;
    }
    if (!cell) {
        cell = new CVdp2CharacterPattern(*this, k * cellDataSize);
        cell->Decode(*this);
    } else if (cell->IsModified()) {
        const int bg = background ? static_cast<int>(background->bgNumber) : -1;
        if (characterSize)
            module().cellsLog.Log("(bg%d) replacing modified cell%d @0x%X\n\t", bg, static_cast<int>(k), address);
        else
            module().cellsLog.Log("(bg%d) replacing modified cell @0x%X\n\t", bg, address);
        cell->DropPictures();
        cell->Decode(*this);
    } else if (cell->NeedsDecoding(*this)) {
        cell->Decode(*this);
    }
    return cell;
}

bool CPatternName::GetCells() {
    prepared = false;
    if (cellDataSize == 0) return false;  // a colour count the background cannot show
    for (uint32_t k = 0; k < CellCount(); ++k) {
        cells[k] = GetCell(k);
        pictures[k] = cells[k]->Picture(paletteBlock);
        VDPGL_CHECK_OR_RETURN(pictures[k]!=0, "vdp2_character_pattern", false);
    }
    const int32_t last = characterSize ? 15 : 7;
    flipX = hFlip ? last : 0;
    flipY = vFlip ? last : 0;
    prepared = true;
    return true;
}

void CPatternName::PrepareCell(CBackground& bg, uint32_t mapAddress, uint32_t index) {
    ReadPatternName(bg, mapAddress, index);
    GetCells();
}

void CPatternName::DrawCell(CNormalBackground& bg, uint32_t planeNumber, uint32_t mapAddress, uint32_t index,
                            int32_t x, int32_t y, bool upload) {
    ReadPatternName(bg, mapAddress, index);
    plane = planeNumber;
    xInPlane = x;
    yInPlane = y;
    if (!GetCells() || !upload) return;

    // The texture shows this character already when its record names the
    // same character read the same way, with pictures at least as fresh.
    uint32_t stamp = cells[0]->Stamp(paletteBlock);
    for (uint32_t k = 1; k < CellCount(); ++k) stamp = std::min(stamp, cells[k]->Stamp(paletteBlock));
    const int32_t identity = static_cast<int32_t>(
        (characterAddress >> 5) | (hFlip ? 1u << 14 : 0) | (vFlip ? 1u << 15 : 0) | paletteBlock << 16 |
        characterColorNumber << 23 | (transparentDisplay ? 1u << 26 : 0) | characterSize << 27);
    const uint32_t c = 8 * characterSize + 8;
    CellRecord& record = bg.Record(planeNumber, static_cast<uint32_t>(x) / c, static_cast<uint32_t>(y) / c);
    const uint32_t shown = static_cast<uint32_t>(identity) + 1;
    if (record.shownName == shown && record.lastStamp >= stamp) return;
    record.shownName = shown;
    record.lastStamp = stamp;
    Upload(bg, planeNumber, x, y);
}

void CPatternName::Upload(CNormalBackground& bg, uint32_t planeNumber, int32_t x, int32_t y) const {
    COpenGl& renderer = *module().renderer;
    const int bgNumber = static_cast<int>(bg.bgNumber), planeIndex = static_cast<int>(planeNumber);
    uint32_t flipped[CVdp2CharacterPattern::kPictureWords];
    const auto write = [&](const CVdp2CharacterPattern* cell, int32_t at, int32_t atY) {
        const uint32_t* data = cell->Picture(paletteBlock);
        VDPGL_CHECK_OR_RETURN(data!=0, "vdp2_character_pattern");
        if (hFlip || vFlip) {
            Flip(data, hFlip, vFlip, flipped);
            data = flipped;
        }
        renderer.UpdatePlaneTextureCell(bgNumber, planeIndex, data, at, atY);
    };
    if (characterSize == 0) {
        write(cells[0], x, y);
        return;
    }
    // A flipped 2 x 2 character also swaps its cells.
    const int32_t x0 = hFlip ? x + 8 : x, x1 = hFlip ? x : x + 8;
    const int32_t y0 = vFlip ? y + 8 : y, y1 = vFlip ? y : y + 8;
    write(cells[0], x0, y0);
    write(cells[1], x1, y0);
    write(cells[2], x0, y1);
    write(cells[3], x1, y1);
}

const uint32_t* CPatternName::Unflipped(uint32_t* room) const {
    if (!prepared) return nullptr;
    if (!characterSize) return pictures[0];
    for (int32_t y = 0; y < 16; ++y)
        for (int32_t half = 0; half < 2; ++half)
            std::copy_n(pictures[half | (y >> 3) << 1] + (y & 7) * 8, 8, room + y * 16 + half * 8);
    return room;
}

void CPatternName::DrawCharacterToBuffer(uint32_t* destination) const {
    VDPGL_CHECK_OR_RETURN(prepared && destination, "vdp2_character_pattern");  // cellData!=0 for every cell
    const int32_t dots = characterSize ? 16 : 8;
    for (int32_t y = 0; y < dots; ++y)
        for (int32_t x = 0; x < dots; ++x) *destination++ = GetCellPixel(x, y);
}

}  // namespace vdpgl
