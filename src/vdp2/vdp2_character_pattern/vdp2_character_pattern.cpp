#include "vdp2/vdp2_character_pattern/vdp2_character_pattern.h"

#include <algorithm>
#include <bit>

#include "common/color_word.h"
#include "vdp2/cram_colors.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"

namespace vdpgl {

CVdp2CharacterPattern::Module CVdp2CharacterPattern::module;

namespace {

constexpr uint32_t kSlotCount = CVdp2::kCellTableSize;
constexpr uint32_t kCellBytes[5] = {32, 64, 128, 128, 256};

// What decoding a cell reads: VRAM from the cell's start, colour RAM from
// the palette's first word p.
struct DotSource {
    const CConsoleVram& vram;
    const uint16_t* cram;
    const uint32_t* colorTable;
    uint32_t address;
    uint32_t p;
    bool zeroIsTransparent;

    uint32_t Byte(uint32_t i) const { return vram.ReadByte((address + i) & CConsoleVram::kMask); }
    uint32_t Word(uint32_t i) const { return vram.ReadWord((address + 2 * i) & CConsoleVram::kMask); }
    uint32_t Long(uint32_t i) const { return vram.ReadLong((address + 4 * i) & CConsoleVram::kMask); }

    // Colour d of the palette; in colour RAM mode 2 (kWide) a colour is two words.
    template <bool kWide>
    uint32_t Palette(uint32_t d) const {
        if (d == 0 && zeroIsTransparent) return 0;
        if constexpr (kWide)
            return CramWideColor(cram, p + d * 2);
        else
            return CramColor(cram, colorTable, p + d);
    }
};

template <bool kWide>
void DecodeDots(uint32_t colorNumber, const DotSource& in, uint32_t* out) {
    switch (colorNumber) {
    case 0:  // two dots a byte, the high nibble first
        for (uint32_t i = 0; i < 32; ++i) {
            const uint32_t byte = in.Byte(i);
            out[2 * i] = in.Palette<kWide>(byte >> 4);
            out[2 * i + 1] = in.Palette<kWide>(byte & 0xF);
        }
        break;
    case 1:
        for (uint32_t i = 0; i < 64; ++i) out[i] = in.Palette<kWide>(in.Byte(i));
        break;
    case 2:
        for (uint32_t i = 0; i < 64; ++i) out[i] = in.Palette<kWide>(in.Word(i) & 0x7FFu);
        break;
    case 3:  // RGB555 dots
        for (uint32_t i = 0; i < 64; ++i) {
            const uint32_t d = in.Word(i);
            out[i] = (d == 0 && in.zeroIsTransparent) ? 0 : in.colorTable[d];
        }
        break;
    case 4:  // 24-bit dots, never transparent
        for (uint32_t i = 0; i < 64; ++i) out[i] = in.Long(i) | kOpaqueAlpha;
        break;
    default: std::fill(out, out + CVdp2CharacterPattern::kPictureWords, 0u); break;
    }
}

}  // namespace

void CVdp2CharacterPattern::InitializeModule(CVdp2* vdp2, COpenGl* renderer) {
    module.vdp2 = vdp2;
    module.renderer = renderer;
    FillRgb555Table(module.colorTable);
    module.cellsLog.SetUp("cells.log");
    module.characterPatternLog.SetUp("character_pattern.log");
}

CVdp2CharacterPattern::CVdp2CharacterPattern(const CPatternName& request, uint32_t offset)
    : startAddress((request.characterAddress + offset) & CConsoleVram::kMask),
      endAddress((startAddress + request.cellDataSize) & CConsoleVram::kMask),
      transparentDisplay(request.transparentDisplay),
      characterColorNumber(static_cast<uint8_t>(request.characterColorNumber)) {
    CVdp2& vdp2 = *module.vdp2;
    vdp2.cellCache.OnCellCreated(sizeof *this);
    const uint32_t first = FirstSlot();
    for (uint32_t i = 0, n = SlotCount(); i < n; ++i) {
        CVdp2CharacterPattern*& slot = vdp2.cells[(first + i) % kSlotCount];
        if (slot && slot != this) {
            // An overlapping cell goes entirely, from its other slots too.
            module.cellsLog.Log("replacing cell @0x%X\n\t", slot->startAddress);
            delete slot;
        }
        slot = this;
    }
    module.cellsLog.Log("(bg%d) new cell. 0x%X -> 0x%X\n",
                        request.background ? static_cast<int>(request.background->bgNumber) : -1, startAddress,
                        endAddress);
}

CVdp2CharacterPattern::~CVdp2CharacterPattern() {
    CVdp2& vdp2 = *module.vdp2;
    const uint32_t first = FirstSlot();
    for (uint32_t i = 0, n = SlotCount(); i < n; ++i) {
        CVdp2CharacterPattern*& slot = vdp2.cells[(first + i) % kSlotCount];
        if (slot == this) slot = nullptr;
    }
    DropPictures();
    vdp2.cellCache.OnCellDeleted(sizeof *this);
}

uint32_t* CVdp2CharacterPattern::NewPicture() {
    if (module.sparePictures.empty()) return new uint32_t[kPictureWords];
    uint32_t* picture = module.sparePictures.back().release();
    module.sparePictures.pop_back();
    return picture;
}

void CVdp2CharacterPattern::FreePicture(uint32_t* picture) {
    if (module.sparePictures.size() < kMostSparePictures)
        module.sparePictures.emplace_back(picture);
    else
        delete[] picture;
}

void CVdp2CharacterPattern::DropPictures() {
    // A picture someone points at may go: what was drawn from it is stale.
    if (usedBlocks[0] | usedBlocks[1]) ++module.vdp2->contentGeneration;
    uint32_t dropped = 0;
    for (uint32_t word = 0; word < 2; ++word) {
        for (uint64_t bits = usedBlocks[word]; bits; bits &= bits - 1) {
            uint32_t*& picture = cellData[word * 64 + static_cast<uint32_t>(std::countr_zero(bits))];
            FreePicture(picture);
            picture = nullptr;
            ++dropped;
        }
        usedBlocks[word] = 0;
    }
    if (dropped) module.vdp2->cellCache.OnPicturesDropped(dropped, kPictureBytes);
}

uint32_t CVdp2CharacterPattern::CellBytes() const {
    return characterColorNumber < 5 ? kCellBytes[characterColorNumber] : 32;
}
uint32_t CVdp2CharacterPattern::FirstSlot() const { return startAddress / 32; }
uint32_t CVdp2CharacterPattern::SlotCount() const { return CellBytes() / 32; }

bool CVdp2CharacterPattern::Fits(const CPatternName& request) const {
    return transparentDisplay == request.transparentDisplay && characterColorNumber == request.characterColorNumber;
}

uint32_t CVdp2CharacterPattern::PaletteStamp(const CPatternName& request) const {
    const CVdp2& vdp2 = *module.vdp2;
    const uint32_t block = request.paletteBlock;
    // In colour RAM mode 2 a colour is two words, so a palette spans twice
    // as many blocks: both halves count.
    const bool wide = vdp2.cramMode == 2;
    switch (request.characterColorNumber) {
    case 0: return std::max(vdp2.GetPaletteStamp(block, 0), wide ? vdp2.GetPaletteStamp(block + 1, 0) : 0u);
    case 1: return std::max(vdp2.GetPaletteStamp(block, 1), wide ? vdp2.GetPaletteStamp(block + 16, 1) : 0u);
    case 2: return vdp2.GetPaletteStamp(block, 2);
    default: return 0;  // direct colours do not read colour RAM
    }
}

bool CVdp2CharacterPattern::NeedsDecoding(const CPatternName& request) const {
    const uint32_t block = request.paletteBlock;
    return !cellData[block] || PaletteStamp(request) > cellStamps[block];
}

void CVdp2CharacterPattern::Decode(const CPatternName& request) {
    CVdp2& vdp2 = *module.vdp2;
    const uint32_t block = request.paletteBlock & (kPaletteBlocks - 1);
    uint32_t*& picture = cellData[block];
    if (!picture) {
        picture = NewPicture();
        usedBlocks[block / 64] |= uint64_t{1} << (block % 64);
        vdp2.cellCache.OnPicturesAdded(1, kPictureBytes);
    }
    const DotSource source{vdp2.vram, vdp2.cram, module.colorTable, startAddress, block * 16,
                           !request.transparentDisplay};
    if (vdp2.cramMode == 2)
        DecodeDots<true>(characterColorNumber, source, picture);
    else
        DecodeDots<false>(characterColorNumber, source, picture);
    cellStamps[block] = vdp2.frameCounter;
    modified.store(false, std::memory_order_relaxed);
}

}  // namespace vdpgl
