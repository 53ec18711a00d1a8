#pragma once
// CVdp2: VDP2's register file, VRAM and double-buffered colour RAM, colour
// conversion, status registers and the duties of the blanking events.
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/console_vram.h"
#include "common/module_log.h"
#include "vdp2/background/background.h"
#include "vdp2/background/background_names.h"
#include "vdp2/background/bitmap_write_listener.h"
#include "vdp2/palette_blocks.h"
#include "vdp2/vdp2_character_pattern/vdp2_character_pattern.h"
#include "vdp2/vdp2_registers.h"

namespace vdpgl {

class COpenGl;
class CVdp1;

// What the cell cache holds, readable from any thread (the control panel,
// the player's report).
class CCellCacheCounters {
public:
    uint32_t Cells() const { return cells.load(std::memory_order_relaxed); }
    uint32_t Pictures() const { return pictures.load(std::memory_order_relaxed); }
    uint64_t Bytes() const { return bytes.load(std::memory_order_relaxed); }

    void OnCellCreated(uint64_t cellBytes) {
        cells.fetch_add(1, std::memory_order_relaxed);
        bytes.fetch_add(cellBytes, std::memory_order_relaxed);
    }
    void OnCellDeleted(uint64_t cellBytes) {
        cells.fetch_sub(1, std::memory_order_relaxed);
        bytes.fetch_sub(cellBytes, std::memory_order_relaxed);
    }
    void OnPicturesAdded(uint32_t count, uint64_t pictureBytes) {
        pictures.fetch_add(count, std::memory_order_relaxed);
        bytes.fetch_add(count * pictureBytes, std::memory_order_relaxed);
    }
    void OnPicturesDropped(uint32_t count, uint64_t pictureBytes) {
        pictures.fetch_sub(count, std::memory_order_relaxed);
        bytes.fetch_sub(count * pictureBytes, std::memory_order_relaxed);
    }

private:
    std::atomic<uint32_t> cells{0};
    std::atomic<uint32_t> pictures{0};
    std::atomic<uint64_t> bytes{0};
};

class CVdp2 {
public:
    static constexpr uint32_t kCramEntries = 2048;
    static constexpr uint32_t kCramMask = 0xFFF;
    static constexpr uint32_t kCellTableSize = CConsoleVram::kSize >> 5;

    explicit CVdp2(COpenGl& renderer);
    ~CVdp2();
    CVdp2(const CVdp2&) = delete;
    CVdp2& operator=(const CVdp2&) = delete;

    void Link(CVdp1& v) { vdp1 = &v; }
    void ResetVdp2();

    // Register ports. Writes decode only registers whose value changed; reads
    // refresh the status registers first.
    void WriteRegisterByte(uint32_t a, uint8_t v);
    void WriteRegisterWord(uint32_t a, uint16_t v);
    void WriteRegisterLong(uint32_t a, uint32_t v);
    uint8_t ReadRegisterByte(uint32_t a);
    uint16_t ReadRegisterWord(uint32_t a);
    uint32_t ReadRegisterLong(uint32_t a);

    // VRAM ports. A changed value marks the cell of its 32-byte unit modified
    // and tells NBG0/NBG1 when they show a bitmap.
    uint8_t ReadVramByte(uint32_t a) const { return vram.ReadByte(a); }
    uint16_t ReadVramWord(uint32_t a) const { return vram.ReadWord(a); }
    uint32_t ReadVramLong(uint32_t a) const { return vram.ReadLong(a); }
    void WriteVramByte(uint32_t a, uint8_t v) {
        if (vram.WriteByte(a, v)) OnVramChanged(a);
    }
    void WriteVramWord(uint32_t a, uint16_t v) {
        if (vram.WriteWord(a, v)) OnVramChanged(a);
    }
    void WriteVramLong(uint32_t a, uint32_t v) {
        if (vram.WriteLong(a, v)) OnVramChanged(a);
    }

    // Colour RAM ports, on the buffer that is active this frame.
    void WriteCramByte(uint32_t a, uint8_t v);
    void WriteCramWord(uint32_t a, uint16_t v);
    void WriteCramLong(uint32_t a, uint32_t v);
    uint8_t ReadCramByte(uint32_t a) const;
    uint16_t ReadCramWord(uint32_t a) const { return cram[(a & kCramMask) >> 1]; }
    uint32_t ReadCramLong(uint32_t a) const;

    // Blanking events.
    void OnVblankIn() { vblank = true; }
    void OnVblankOut();
    void OnHblankIn() { hblank = true; }
    void OnHblankOut();

    // Compares the two colour-RAM buffers, stamps the palettes that changed
    // this frame and makes the other buffer active.
    void SwitchCram();
    uint32_t GetSpriteColor(uint32_t index) const;
    // kind 0: 16-colour block, 1: its 256-colour block, 2: any change.
    uint32_t GetPaletteStamp(uint32_t block, uint32_t kind) const;
    // Whether a colour of one of `blocks` changed at a switch after frame
    // `since` (a frameCounter value).
    bool PalettesChangedSince(const PaletteBlocks& blocks, uint32_t since) const {
        return paletteAllStamp > since && blocks.Any([&](uint32_t b) { return palette16Stamps[b] > since; });
    }
    // The priority of a sprite from its colour word.
    uint8_t SpritePriority(uint16_t color) const {
        return spritePriorities[(color & spritePriorityMask) >> spritePriorityShift];
    }

    // Draws the backgrounds of one priority level, NBG3 first and RBG1 last;
    // nothing at priority 0 or while the display is off.
    void DrawBackgrounds(int priority);
    // Puts another background in slot bgNumber (0-5); for tests.
    void ReplaceBackground(int bgNumber, std::unique_ptr<CBackground> background);
    CBackground* Background(int bgNumber) const {
        return bgNumber >= 0 && bgNumber < kBackgroundCount ? backgrounds[bgNumber].get() : nullptr;
    }

    // The cell cache. ClearCellCache runs on the emulation thread; the menu
    // asks for it from its own thread and the next V-blank-out clears.
    void ClearCellCache();
    void RequestCellCacheClear() { cellCacheClearRequested.store(true, std::memory_order_relaxed); }
    const CCellCacheCounters& CellCache() const { return cellCache; }
    void SetBitmapWriteListener(int bgNumber, CBitmapWriteListener* listener);

    // The control panel's and the viewer's view of a background, by number
    // 0-5. The switches may be set from any thread; the viewer's drawing
    // requests decode from VRAM and run on the emulation thread.
    bool IsBackgroundDisabled(int bgNumber) const;
    void SetBackgroundDisabled(int bgNumber, bool off);
    bool IsBackgroundFiltered(int bgNumber) const;
    void SetBackgroundFiltered(int bgNumber, bool on);
    bool IsBackgroundInCellMode(int bgNumber) const;
    std::string GetBackgroundInformation(int bgNumber) const;
    void GetBackgroundSize(int bgNumber, uint32_t& width, uint32_t& height) const;
    void DecodeBackgroundBitmap(int bgNumber, uint32_t* pixels);
    void RenderBackgroundPlane(int bgNumber, uint32_t plane, uint32_t* pixels);

    uint16_t Register(uint32_t address) const { return registers[(address & vdp2reg::kAddressMask) >> 1]; }
    bool DisplayEnabled() const { return Register(vdp2reg::TVMD) & vdp2reg::TVMD_DISP; }
    const uint16_t* CramBuffer(int n) const { return cramBuffers[n]; }

    COpenGl* renderer;
    CVdp1* vdp1 = nullptr;
    uint16_t registers[vdp2reg::kCount] = {};
    CConsoleVram vram;
    uint16_t* cram;
    uint16_t spritePriorityMask = 0xC000;  // sprite type 0, as SPCTL = 0 decodes
    uint32_t spritePriorityShift = 14;
    uint8_t spritePriorities[8] = {};
    uint32_t spriteType = 0;
    uint16_t cramMode = 0;
    bool oddField = false;
    bool vblank = false;
    bool hblank = false;
    bool pal = false;
    bool interlaced = false;
    bool verticalDoubled = false;
    int32_t screenHRes = 320;
    int32_t screenVRes = 240;
    int32_t horizontalScale = 1;
    int32_t verticalScale = 1;
    uint32_t hCounter = 0;
    uint32_t lineCounter = 0;
    uint32_t frameCounter = 0;
    CVdp2CharacterPattern* cells[kCellTableSize] = {};
    uint16_t cramBuffers[2][kCramEntries] = {};
    uint32_t activeCramBuffer = 0;
    uint32_t palette16Stamps[128] = {};
    uint32_t palette64Stamps[32] = {};
    uint32_t palette128Stamps[16] = {};
    uint32_t palette256Stamps[8] = {};
    uint32_t paletteAllStamp = 0;
    // Moves on when decoded character data changes or a cell's pictures go
    // (the cache emptied, a cell made anew): a character's look may differ
    // while its name stays. Colour changes are told by the palette stamps
    // (PalettesChangedSince).
    uint32_t contentGeneration = 0;
    // Changed writes into each 8 KiB of VRAM, counted: whoever read some
    // blocks can tell whether they changed since.
    static constexpr uint32_t kVramBlockShift = 13;
    uint32_t vramBlockWrites[CConsoleVram::kSize >> kVramBlockShift] = {};
    uint32_t colorTable[0x10000];
    CCellCacheCounters cellCache;
    // The rotation planes sample once per emulated screen dot instead of on
    // the 256 x 256 grid (VDPGL_ROTATION_SAMPLING=screen).
    bool rotationScreenSampling = false;

private:
    void OnVramChanged(uint32_t a) {
        ++vramBlockWrites[(a & CConsoleVram::kMask) >> kVramBlockShift];
        if (CVdp2CharacterPattern* cell = cells[(a & CConsoleVram::kMask) >> 5]) {
            cell->MarkModified();
            ++contentGeneration;
        }
        for (CBitmapWriteListener* listener : bitmapWriteListeners)
            if (listener) listener->OnBitmapVramWrite(a & CConsoleVram::kMask);
    }
    void OnRegisterWritten(uint32_t address, uint16_t value);
    void RefreshReadRegister(uint32_t address);
    void UpdateScreenSize();
    // Stores a register and decodes it if it changed.
    void StoreRegister(uint32_t address, uint16_t value);
    void MergeCramByte(uint32_t index, uint32_t a, uint8_t v);

    std::array<CBitmapWriteListener*, 2> bitmapWriteListeners{};
    std::array<std::unique_ptr<CBackground>, kBackgroundCount> backgrounds;
    std::vector<CVdp2CharacterPattern*> doomedCells;  // reused by cache clears
    std::atomic<bool> cellCacheClearRequested{false};
    CModuleLog log;
};

}  // namespace vdpgl
