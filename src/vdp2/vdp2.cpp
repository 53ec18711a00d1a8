#include "vdp2/vdp2.h"

#include <cstring>
#include <string>

#include "common/color_word.h"
#include "common/pattern_table.h"
#include "render/opengl/opengl.h"
#include "vdp2/cram_colors.h"
#include "vdp2/background/normal_background.h"
#include "vdp2/background/rotation_background.h"

namespace vdpgl {

using namespace vdp2reg;

namespace {

// Priority bits of a sprite colour word, by SPCTL sprite type 0-15.
constexpr uint16_t kSpritePriorityMasks[16] = {0xC000, 0xE000, 0x4000, 0x6000, 0x6000, 0x7000, 0x7000, 0x7000,
                                                0x80,   0x80,   0xC0,   0,      0,      0,      0,      0};
constexpr uint8_t kSpritePriorityShifts[16] = {14, 13, 14, 13, 13, 12, 12, 12, 7, 7, 6, 0, 0, 0, 0, 0};

constexpr uint32_t kMirrorOffset = 1024;  // colour RAM mode 0 mirrors its first half

}  // namespace

CVdp2::CVdp2(COpenGl& r) : renderer(&r), cram(cramBuffers[0]) {
    FillRgb555Table(colorTable);
    CBackground::InitializeBackgroundStatics(this, renderer);
    for (uint32_t bg = kNbg0; bg <= kNbg3; ++bg) backgrounds[bg] = std::make_unique<CNormalBackground>(bg);
    for (uint32_t bg = kRbg0; bg <= kRbg1; ++bg) backgrounds[bg] = std::make_unique<CRotationBackground>(bg);
    CVdp2CharacterPattern::InitializeModule(this, renderer);
    frameCounter = 0;
    ResetVdp2();
    log.SetUp("vdp2.log");
}

CVdp2::~CVdp2() {
    ClearCellCache();
    bitmapWriteListeners = {};
}

void CVdp2::ResetVdp2() {
    oddField = vblank = hblank = pal = false;
    hCounter = lineCounter = 0;
    screenHRes = 320;
    screenVRes = 240;
    horizontalScale = verticalScale = 1;
    std::memset(registers, 0, sizeof registers);
    vram.Clear();
    std::memset(cramBuffers, 0, sizeof cramBuffers);
    activeCramBuffer = 0;
    cram = cramBuffers[0];
    std::memset(palette16Stamps, 0, sizeof palette16Stamps);
    std::memset(palette64Stamps, 0, sizeof palette64Stamps);
    std::memset(palette128Stamps, 0, sizeof palette128Stamps);
    std::memset(palette256Stamps, 0, sizeof palette256Stamps);
    paletteAllStamp = 0;
    std::memset(spritePriorities, 0, sizeof spritePriorities);
    ClearCellCache();
    for (auto& background : backgrounds)
        if (background) background->Reset();
    verticalDoubled = interlaced = false;
    // frameCounter, cramMode and the sprite type decoding keep their values
    // until RAMCTL and SPCTL are written again.
}

// Registers ---------------------------------------------------------------

void CVdp2::StoreRegister(uint32_t address, uint16_t value) {
    uint16_t& slot = registers[address >> 1];
    if (slot == value) return;
    slot = value;
    OnRegisterWritten(address, value);
}

void CVdp2::WriteRegisterWord(uint32_t a, uint16_t v) { StoreRegister(a & kAddressMask & ~1u, v); }

void CVdp2::WriteRegisterByte(uint32_t a, uint8_t v) {
    const uint32_t r = a & kAddressMask;
    const uint16_t old = registers[r >> 1];
    const uint16_t merged = (r & 1) ? static_cast<uint16_t>((old & 0xFF00) | v)
                                    : static_cast<uint16_t>((old & 0x00FF) | (v << 8));
    StoreRegister(r & ~1u, merged);
}

void CVdp2::WriteRegisterLong(uint32_t a, uint32_t v) {
    // Both halves are stored before either is decoded, the upper one first.
    const uint32_t r = a & kAddressMask & ~3u;
    const uint16_t upper = static_cast<uint16_t>(v >> 16), lower = static_cast<uint16_t>(v);
    const bool upperChanged = registers[r >> 1] != upper;
    const bool lowerChanged = registers[(r >> 1) + 1] != lower;
    registers[r >> 1] = upper;
    registers[(r >> 1) + 1] = lower;
    if (upperChanged) OnRegisterWritten(r, upper);
    if (lowerChanged) OnRegisterWritten(r + 2, lower);
}

uint16_t CVdp2::ReadRegisterWord(uint32_t a) {
    const uint32_t r = a & kAddressMask & ~1u;
    RefreshReadRegister(r);
    return registers[r >> 1];
}

uint8_t CVdp2::ReadRegisterByte(uint32_t a) {
    const uint32_t r = a & kAddressMask;
    RefreshReadRegister(r & ~1u);
    const uint16_t value = registers[r >> 1];
    return static_cast<uint8_t>((r & 1) ? value : value >> 8);
}

uint32_t CVdp2::ReadRegisterLong(uint32_t a) {
    const uint32_t r = a & kAddressMask & ~3u;
    RefreshReadRegister(r);
    RefreshReadRegister(r + 2);
    return (uint32_t{registers[r >> 1]} << 16) | registers[(r >> 1) + 1];
}

void CVdp2::OnRegisterWritten(uint32_t address, uint16_t value) {
    switch (address) {
    case TVMD:
        UpdateScreenSize();
        renderer->SetSaturnResolution(screenHRes, screenVRes);
        break;
    case RAMCTL: cramMode = static_cast<uint16_t>((value & RAMCTL_CRMD) >> 12); break;
    case SPCTL:
        spriteType = value & 0xF;
        spritePriorityMask = kSpritePriorityMasks[spriteType];
        spritePriorityShift = kSpritePriorityShifts[spriteType];
        break;
    case PRISA:
    case PRISB:
    case PRISC:
    case PRISD: {
        const uint32_t n = (address - PRISA) >> 1;
        spritePriorities[2 * n] = value & 7;
        spritePriorities[2 * n + 1] = (value >> 8) & 7;
        break;
    }
    default: break;  // stored only; readers use the register directly
    }
}

void CVdp2::UpdateScreenSize() {
    const uint16_t tvmd = Register(TVMD);
    static constexpr int32_t kHeights[4] = {224, 240, 224, 240};
    static constexpr int32_t kPalHeights[4] = {224, 240, 256, 256};
    static constexpr int32_t kWidths[4] = {320, 352, 640, 704};
    const uint32_t vreso = (tvmd >> 4) & 3;
    int32_t v = pal ? kPalHeights[vreso] : kHeights[vreso];
    int32_t h = kWidths[tvmd & 3];

    switch ((tvmd >> 6) & 3) {  // LSMD
    case 0:
    case 2: interlaced = false; break;
    case 3:
        interlaced = true;
        v *= 2;
        break;
    default: break;  // 1 changes nothing
    }

    // The emulated screen is never higher than it is wide: a high horizontal
    // resolution doubles the lines, an interlaced low one the columns.
    verticalDoubled = false;
    if (h > 400 && v < 300) {
        v *= 2;
        horizontalScale = 1;
        verticalScale = 2;
        verticalDoubled = true;
    } else if (v <= h) {
        horizontalScale = verticalScale = 1;
    } else {
        h *= 2;
        horizontalScale = 2;
        verticalScale = 1;
    }
    screenHRes = h;
    screenVRes = v;
}

void CVdp2::RefreshReadRegister(uint32_t address) {
    switch (address) {
    case TVSTAT:
        registers[TVSTAT >> 1] = static_cast<uint16_t>(((vblank || !DisplayEnabled()) ? 8 : 0) | (hblank ? 4 : 0) |
                                                       (oddField ? 2 : 0) | (pal ? 1 : 0));
        break;
    case HCNT:
        hCounter += 50;
        registers[HCNT >> 1] = static_cast<uint16_t>(hCounter);
        break;
    case VCNT: registers[VCNT >> 1] = static_cast<uint16_t>(lineCounter); break;
    default: break;
    }
}

// Colour RAM --------------------------------------------------------------
// Writes are placed by cramMode, as lookups are: a reset clears RAMCTL but
// keeps the mode until RAMCTL is written again, and both follow it alike.

void CVdp2::MergeCramByte(uint32_t index, uint32_t a, uint8_t v) {
    uint16_t& entry = cram[index];
    entry = (a & 1) ? static_cast<uint16_t>((entry & 0xFF00) | v) : static_cast<uint16_t>((entry & 0x00FF) | (v << 8));
}

void CVdp2::WriteCramByte(uint32_t a, uint8_t v) {
    switch (cramMode) {
    case 0: {
        const uint32_t i = ((a & kCramMask) >> 1) & 0x3FF;
        MergeCramByte(i, a, v);
        MergeCramByte(i + kMirrorOffset, a, v);
        break;
    }
    case 1:
    case 2: MergeCramByte((a & kCramMask) >> 1, a, v); break;
    default: break;  // mode 3 is prohibited: dropped
    }
}

void CVdp2::WriteCramWord(uint32_t a, uint16_t v) {
    switch (cramMode) {
    case 0: {
        const uint32_t i = ((a & kCramMask) >> 1) & 0x3FF;
        cram[i] = cram[i + kMirrorOffset] = v;
        break;
    }
    case 1:
    case 2: cram[(a & kCramMask) >> 1] = v; break;
    default: break;
    }
}

void CVdp2::WriteCramLong(uint32_t a, uint32_t v) {
    const uint16_t upper = static_cast<uint16_t>(v >> 16), lower = static_cast<uint16_t>(v);
    switch (cramMode) {
    case 0: {
        const uint32_t i = ((a & kCramMask & ~3u) >> 1) & 0x3FF;  // even: i + 1 stays in the first half
        cram[i] = cram[i + kMirrorOffset] = upper;
        cram[i + 1] = cram[i + 1 + kMirrorOffset] = lower;
        break;
    }
    case 1:
    case 2: {
        const uint32_t i = (a & kCramMask & ~3u) >> 1;
        cram[i] = upper;
        cram[i + 1] = lower;
        break;
    }
    default: break;
    }
}

uint8_t CVdp2::ReadCramByte(uint32_t a) const {
    const uint16_t entry = cram[(a & kCramMask) >> 1];
    return static_cast<uint8_t>((a & 1) ? entry : entry >> 8);
}

uint32_t CVdp2::ReadCramLong(uint32_t a) const {
    const uint32_t i = (a & kCramMask & ~3u) >> 1;
    return (uint32_t{cram[i]} << 16) | cram[i + 1];
}

void CVdp2::SwitchCram() {
    const uint16_t* a = cramBuffers[0];
    const uint16_t* b = cramBuffers[1];
    for (uint32_t i = 0; i < kCramEntries; ++i) {
        if (a[i] == b[i]) continue;
        palette16Stamps[i / 16] = frameCounter;
        palette64Stamps[i / 64] = frameCounter;
        palette128Stamps[i / 128] = frameCounter;
        palette256Stamps[i / 256] = frameCounter;
        paletteAllStamp = frameCounter;
    }
    // Both buffers agree afterwards; next frame's writes go to the other one,
    // so their difference at the next switch is exactly that frame's changes.
    const uint32_t from = activeCramBuffer, to = activeCramBuffer ^ 1;
    std::memcpy(cramBuffers[to], cramBuffers[from], sizeof cramBuffers[0]);
    activeCramBuffer = to;
    cram = cramBuffers[to];
}

uint32_t CVdp2::GetSpriteColor(uint32_t index) const {
    const uint32_t offset = (Register(CRAOFB) >> 4) & 7;  // SPCAOS
    if (cramMode == 2) {
        // RGB888: two words per colour, blue in the first, green and red in the second.
        return CramWideColor(cram, ((index * 2) & 0xFFFF) + offset * 512);
    }
    return CramColor(cram, colorTable, index + offset * 256);
}

void CVdp2::DrawBackgrounds(int priority) {
    if (priority == 0 || !DisplayEnabled()) return;
    // At one level the later background covers the earlier: NBG0 covers
    // NBG1 covers NBG2 covers NBG3, and the rotation backgrounds cover them.
    static constexpr int kOrder[] = {kNbg3, kNbg2, kNbg1, kNbg0, kRbg0, kRbg1};
    for (int bgNumber : kOrder) {
        CBackground* background = backgrounds[bgNumber].get();
        if (background && background->GetPriority() == static_cast<uint32_t>(priority)) background->Draw();
    }
}

void CVdp2::ReplaceBackground(int bgNumber, std::unique_ptr<CBackground> background) {
    if (bgNumber < 0 || bgNumber >= kBackgroundCount) return;
    if (bgNumber < 2) bitmapWriteListeners[bgNumber] = nullptr;
    backgrounds[bgNumber] = std::move(background);
}

bool CVdp2::IsBackgroundDisabled(int bgNumber) const {
    const CBackground* bg = Background(bgNumber);
    return bg && bg->disabled.load(std::memory_order_relaxed);
}

void CVdp2::SetBackgroundDisabled(int bgNumber, bool off) {
    if (CBackground* bg = Background(bgNumber)) bg->disabled.store(off ? 1 : 0, std::memory_order_relaxed);
}

bool CVdp2::IsBackgroundFiltered(int bgNumber) const {
    const CBackground* bg = Background(bgNumber);
    return bg && bg->filtered.load(std::memory_order_relaxed);
}

void CVdp2::SetBackgroundFiltered(int bgNumber, bool on) {
    if (CBackground* bg = Background(bgNumber)) bg->filtered.store(on ? 1 : 0, std::memory_order_relaxed);
}

bool CVdp2::IsBackgroundInCellMode(int bgNumber) const {
    const CBackground* bg = Background(bgNumber);
    return bg && bg->IsCellMode();
}

std::string CVdp2::GetBackgroundInformation(int bgNumber) const {
    std::string text;
    if (const CBackground* bg = Background(bgNumber)) bg->GetInformation(text);
    return text;
}

void CVdp2::GetBackgroundSize(int bgNumber, uint32_t& width, uint32_t& height) const {
    width = height = 0;
    if (const CBackground* bg = Background(bgNumber)) bg->GetSize(width, height);
}

void CVdp2::DecodeBackgroundBitmap(int bgNumber, uint32_t* pixels) {
    if (CBackground* bg = Background(bgNumber)) bg->DecodeBitmap(pixels);
}

void CVdp2::RenderBackgroundPlane(int bgNumber, uint32_t plane, uint32_t* pixels) {
    if (CBackground* bg = Background(bgNumber)) bg->RenderPlane(plane, pixels);
}

uint32_t CVdp2::GetPaletteStamp(uint32_t block, uint32_t kind) const {
    switch (kind) {
    case 0: return palette16Stamps[block & 127];
    case 1: return palette256Stamps[(block & 127) / 16];
    case 2: return paletteAllStamp;
    default: return 0;
    }
}

// Blanking ----------------------------------------------------------------

void CVdp2::OnVblankOut() {
    if (cellCacheClearRequested.exchange(false, std::memory_order_relaxed)) ClearCellCache();
    for (auto& background : backgrounds)
        if (background) background->UpdateFromRegisters();
    vblank = false;
    lineCounter = 0;
    frameCounter += 1;
    SwitchCram();
}

void CVdp2::OnHblankOut() {
    hblank = false;
    hCounter = 0;
    lineCounter += 1;
    oddField = !oddField;
}

// Caches ------------------------------------------------------------------

void CVdp2::ClearCellCache() {
    ++contentGeneration;
    DeleteTableEntriesWhere(cells, kCellTableSize, doomedCells, [](const CVdp2CharacterPattern*) { return true; });
}

void CVdp2::SetBitmapWriteListener(int bgNumber, CBitmapWriteListener* listener) {
    if (bgNumber == kNbg0 || bgNumber == kNbg1) bitmapWriteListeners[bgNumber] = listener;
}

}  // namespace vdpgl
