#pragma once
// CVdp2CharacterPattern: one cached cell of VDP2 VRAM, decoded once for each
// palette it is drawn with. CVdp2's table `cells` has a slot per 32 bytes of
// VRAM and a cell fills the slots its data covers (one for 16 colours, up to
// eight for 16M colours). A VRAM write that changes a byte marks the cell of
// its slot modified; the next request for it drops all its pictures and
// decodes anew. A colour RAM change re-decodes only the pictures whose
// palette changed, in place.
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "common/module_log.h"

namespace vdpgl {

class COpenGl;
class CVdp2;
struct CPatternName;

class CVdp2CharacterPattern {
public:
    static constexpr uint32_t kPaletteBlocks = 128;  // colour RAM / 16 words
    static constexpr uint32_t kPictureWords = 64;     // 8 x 8 colour words
    static constexpr uint32_t kPictureBytes = kPictureWords * 4;

    // Creates the cell at the request's character address + offset and puts
    // it in every slot it covers, destroying the cells that held them.
    CVdp2CharacterPattern(const CPatternName& request, uint32_t offset);
    // Frees its pictures and empties the slots that still point at it.
    ~CVdp2CharacterPattern();
    CVdp2CharacterPattern(const CVdp2CharacterPattern&) = delete;
    CVdp2CharacterPattern& operator=(const CVdp2CharacterPattern&) = delete;

    // Module set-up by the CVdp2 constructor: its links, colour table and logs.
    static void InitializeModule(CVdp2* vdp2, COpenGl* renderer);

    void MarkModified() { modified.store(true, std::memory_order_relaxed); }
    bool IsModified() const { return modified.load(std::memory_order_relaxed); }
    // Whether this cell holds the request's data as the request reads it:
    // same colour count and transparent-display setting.
    bool Fits(const CPatternName& request) const;
    // Whether the picture for the request's palette is missing or older than
    // the last change of that palette.
    bool NeedsDecoding(const CPatternName& request) const;
    // Decodes the dots for the request's palette into its picture (in place
    // when the palette already has one) and stamps it with this frame.
    void Decode(const CPatternName& request);
    // Frees every picture: after a VRAM change they are all stale.
    void DropPictures();

    const uint32_t* Picture(uint32_t block) const { return cellData[block]; }
    uint32_t Stamp(uint32_t block) const { return cellStamps[block]; }

    uint32_t startAddress;
    uint32_t endAddress;
    std::atomic<bool> modified{false};
    bool transparentDisplay;
    uint8_t characterColorNumber;
    uint32_t* cellData[kPaletteBlocks] = {};  // owned; usedBlocks marks the ones set
    uint32_t cellStamps[kPaletteBlocks] = {};
    uint64_t usedBlocks[2] = {};

private:
    // Slots from startAddress on, as many as the cell's size fills; a cell
    // at the end of VRAM wraps to its start, as its data does.
    uint32_t FirstSlot() const;
    uint32_t SlotCount() const;
    uint32_t CellBytes() const;
    uint32_t PaletteStamp(const CPatternName& request) const;
    // Pictures come from and go back to a bounded store of spare ones: cells
    // rewritten every frame would otherwise allocate and free them by the
    // thousand.
    static uint32_t* NewPicture();
    static void FreePicture(uint32_t* picture);
    static constexpr size_t kMostSparePictures = 4096;  // 1 MiB

    struct Module {
        CVdp2* vdp2 = nullptr;
        COpenGl* renderer = nullptr;
        uint32_t colorTable[0x10000] = {};
        CModuleLog cellsLog;
        CModuleLog characterPatternLog;
        std::vector<std::unique_ptr<uint32_t[]>> sparePictures;
    };
    static Module module;
    friend struct CPatternName;
};

}  // namespace vdpgl
