#include "vdp1/vdp1.h"

#include "common/pattern_table.h"
#include "render/opengl/opengl.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

using namespace vdp1reg;

CVdp1::CVdp1(COpenGl& r) : renderer(r) {
    // Every command of a walk may land in one list; reserving that much
    // keeps the walk free of allocations.
    for (auto& list : partsListVectors) list.reserve(kMaxCommandsPerWalk);
    Reset();
}

CVdp1::~CVdp1() {
    for (auto& list : partsListVectors) list.clear();
    partPool.Clear();
    ClearPatternCache();
}

void CVdp1::Link(CVdp2& v) {
    vdp2 = &v;
    CVdp1Part::Link({&renderer, this, vdp2, &vram});
    CVdp1CharacterPattern::InitializeStatics(characterPatterns, &renderer, this, vdp2);
}

void CVdp1::Reset() {
    eightBitsPerPixel = 0;
    highResolution = doubleInterlace = false;
    frameChangeRequested = eraseRequested = drawRequested = false;
    eraseUpperLeftX = eraseUpperLeftY = eraseLowerRightX = eraseLowerRightY = 0;
    localX = localY = 0;
    yScale = xScale = interlaceYScale = 1;
    RequestCacheClear();
}

void CVdp1::SetPartEnabled(int kind, bool enabled) {
    if (kind >= 0 && kind < kPartKindCount) partDisabled[kind].store(!enabled, std::memory_order_relaxed);
}

bool CVdp1::IsPartEnabled(int kind) const {
    return kind >= 0 && kind < kPartKindCount && !partDisabled[kind].load(std::memory_order_relaxed);
}

void CVdp1::WriteTvmr(uint16_t v) {
    if (v & TVMR_VBE) log.Log("erase/write done during V-Blank\n");
    switch (v & 7) {
    case 0:
        log.Log("screen mode: normal resolution, interlaced\n");
        highResolution = false;
        eightBitsPerPixel = 0;
        break;
    case 1:
        log.Log("screen mode: high resolution, interlaced\n");
        highResolution = true;
        eightBitsPerPixel = 1;
        break;
    case 2:
        log.Log("screen mode: rotation 16, single interlace\n");
        highResolution = false;
        eightBitsPerPixel = 0;
        break;
    case 3:
        log.Log("screen mode: rotation 8, single interlace\n");
        highResolution = false;
        eightBitsPerPixel = 1;
        break;
    case 4:
        log.Log("screen mode: HDTV, no interlace\n");
        eightBitsPerPixel = 0;
        break;
    default: log.Log("invalid screen mode\n"); break;
    }
}

void CVdp1::WriteFbcr(uint16_t v) {
    // The change mode counts the stored TVMR's VBE bit as its third bit.
    const unsigned mode = (v & 3u) + ((Register(TVMR) & TVMR_VBE) ? 4u : 0u);
    const bool automaticDraw = (Register(PTMR) & 3) == 2;
    switch (mode) {
    case 0: log.Log("frame buffer change mode: 1 cycle\n"); break;
    case 2:
        log.Log("frame buffer change mode: manual, erase\n");
        eraseRequested = true;
        break;
    case 3:
        log.Log("frame buffer change mode: manual, change\n");
        frameChangeRequested = true;
        if (automaticDraw) drawRequested = true;
        break;
    case 7:
        log.Log("frame buffer change mode: manual, erase and change\n");
        eraseRequested = true;
        frameChangeRequested = true;
        if (automaticDraw) drawRequested = true;
        break;
    default: log.Log("invalid frame buffer change mode\n"); break;
    }
    switch (v & 0xC) {
    case 0x0:
        log.Log("interlace mode: single interlace\n");
        doubleInterlace = false;
        yScale = interlaceYScale = highResolution ? 2 : 1;
        break;
    case 0x8:
    case 0xC:
        log.Log("interlace mode: double interlace\n");
        doubleInterlace = true;
        yScale = interlaceYScale = highResolution ? 1 : 2;
        break;
    default: log.Log("invalid interlace mode\n"); break;
    }
}

void CVdp1::WritePtmr(uint16_t v) {
    switch (v & 3) {
    case 0: log.Log("drawing mode: idle at frame change\n"); break;
    case 1:
        log.Log("drawing mode: starts drawing when 01b is written\n");
        drawRequested = true;
        break;
    case 2: log.Log("drawing mode: starts drawing automatically with frame change\n"); break;
    default: log.Log("invalid drawing mode\n"); break;
    }
}

void CVdp1::WriteRegister(uint32_t address, uint16_t v) {
    const uint32_t a = address & kAddressMask;
    switch (a) {
    case TVMR:
        log.Log("TVMR write access, value: 0x%04X\n", v);
        WriteTvmr(v);
        break;
    case FBCR:
        log.Log("FBCR write access, value: 0x%04X\n", v);
        WriteFbcr(v);
        break;
    case PTMR:
        log.Log("PTMR write access, value: 0x%04X\n", v);
        WritePtmr(v);
        break;
    case EWDR: log.Log("EWDR write access, value: 0x%04X\n", v); break;
    case EWLR:
        log.Log("EWLR write access, value: 0x%04X\n", v);
        eraseUpperLeftX = (v >> 9) * (eightBitsPerPixel ? 16 : 8);
        eraseUpperLeftY = v & 0x1FF;
        log.Log("erase/write upper left X: %d\n", eraseUpperLeftX);
        log.Log("erase/write upper left Y: %d\n", eraseUpperLeftY);
        break;
    case EWRR:
        log.Log("EWRR write access, value: 0x%04X\n", v);
        eraseLowerRightX = (v >> 9) * (eightBitsPerPixel ? 16 : 8) - 1;
        eraseLowerRightY = v & 0x1FF;
        log.Log("erase/write lower right X: %d\n", eraseLowerRightX);
        log.Log("erase/write lower right Y: %d\n", eraseLowerRightY);
        break;
    case ENDR:
        log.Log("ENDR write access, value: 0x%04X\n", v);
        if (v == 0) log.Log("termination of drawing asked\n");
        break;
    case EDSR:
    case LOPR:
    case COPR:
    case MODR: {
        static constexpr const char* kTraces[] = {
            "EDSR write access, value: 0x%04X\n", "LOPR write access, value: 0x%04X\n",
            "COPR write access, value: 0x%04X\n", "MODR write access, value: 0x%04X\n"};
        log.Log(kTraces[(a - EDSR) >> 1], v);
        log.Log("illegal!\n");  // read-only, stored all the same
        break;
    }
    default: log.Log("Unknown word write access @0x%02X, value: 0x%04X\n", a, v); break;
    }
    log.Log("\n");
    // Every slot up to 0x17 keeps the last value written, known or not.
    if (a < kCount * 2) registers[a >> 1] = v;
}

uint16_t CVdp1::ReadRegister(uint32_t address) {
    const uint32_t a = address & kAddressMask;
    uint16_t result = 0;
    switch (a) {
    case TVMR:
    case FBCR:
    case PTMR:
    case EWDR:
    case EWLR:
    case EWRR:
    case ENDR: {
        static constexpr const char* kTraces[] = {"TVMR read access\n", "FBCR read access\n",
                                                  "PTMR read access\n", "EWDR read access\n",
                                                  "EWLR read access\n", "EWRR read access\n",
                                                  "ENDR read access\n"};
        log.Log("%s", kTraces[a >> 1]);
        log.Log("illegal!\n");  // write-only, answered all the same
        result = registers[a >> 1];
        break;
    }
    case EDSR:
        result = registers[a >> 1];
        log.Log("EDSR read access, data=0x%04X\n", result);
        break;
    case LOPR:
        result = registers[a >> 1];
        log.Log("LOPR read access, data=0x%04X\n", result);
        break;
    case COPR:
        result = registers[a >> 1];
        log.Log("COPR read access, data=0x%04X\n", result);
        break;
    case MODR:
        // Version 1, then the PTMR, FBCR and TVMR bits that MODR mirrors.
        result = static_cast<uint16_t>(0x1000 | ((Register(PTMR) & 2) ? 0x100 : 0) | ((Register(FBCR) & 0x1E) << 3) |
                                       (Register(TVMR) & 0xF));
        registers[a >> 1] = result;
        log.Log("MODR read access, data=0x%04X\n", result);
        break;
    default: log.Log("Unknown word read access @0x%02X\n", a); break;
    }
    log.Log("\n");
    return result;
}

Vdp1FrameActions CVdp1::FrameControl() {
    CVdp1CharacterPattern::CheckReplacementFiles();
    if (clearCacheRequested.exchange(false, std::memory_order_acq_rel)) ClearPatternCache();

    // VDP2 doubles the picture in its interlaced and doubled-height modes;
    // VDP1 coordinates follow unless VDP1 itself is already in such a mode.
    const bool vdp2Doubled = vdp2 && (vdp2->interlaced || vdp2->verticalDoubled);
    if (vdp2Doubled && !doubleInterlace && !highResolution) {
        yScale = 2;
        xScale = 2;
    } else {
        xScale = 1;
        yScale = interlaceYScale;
    }

    if (!(Register(TVMR) & TVMR_VBE) && (Register(FBCR) & 3) == 0) {
        frameChangeRequested = true;  // one-cycle mode: change and erase every frame
        eraseRequested = true;
    }
    if ((Register(PTMR) & 3) == 2 && frameChangeRequested) {
        log.Log("starts drawing because frame buffer must be changed ((_PTMR&0x3)==0x2)\n");
        drawRequested = true;
    }

    Vdp1FrameActions actions{drawRequested, frameChangeRequested, eraseRequested};
    drawRequested = frameChangeRequested = eraseRequested = false;
    return actions;
}

std::vector<CVdp1CharacterPattern*> CVdp1::GetCachedPatterns() const {
    std::vector<CVdp1CharacterPattern*> patterns;
    const CVdp1CharacterPattern* previous = nullptr;
    for (CVdp1CharacterPattern* p : characterPatterns) {
        if (p && p != previous && !p->modified.load(std::memory_order_relaxed))
            for (CVdp1CharacterPattern* variant = p; variant; variant = variant->nextVariant) patterns.push_back(variant);
        previous = p;
    }
    return patterns;
}

void CVdp1::PurgeModifiedPatterns() {
    std::lock_guard lock(cacheMutex);
    CVdp1CharacterPattern::ReleaseRetiredPatterns();
    DeleteTableEntriesWhere(characterPatterns, kPatternTableSize, doomedPatterns,
                            [](const CVdp1CharacterPattern* p) { return p->modified.load(std::memory_order_relaxed); });
    CVdp1CharacterPattern::GiveBackTextures();
}

void CVdp1::ClearPatternCache() {
    std::lock_guard lock(cacheMutex);
    CVdp1CharacterPattern::ReleaseRetiredPatterns();
    DeleteTableEntriesWhere(characterPatterns, kPatternTableSize, doomedPatterns,
                            [](const CVdp1CharacterPattern*) { return true; });
}

}  // namespace vdpgl
