// CNormalBackground: register state, plane textures and cell mode drawing.
#include "vdp2/background/normal_background.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "common/consistency_check.h"
#include "common/frame_profile.h"
#include "render/opengl/opengl.h"
#include "vdp2/background/background_names.h"
#include "vdp2/background/plane_addresses.h"
#include "vdp2/background/screen_span.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"

namespace vdpgl {

using namespace vdp2reg;

namespace {

constexpr const char* kPlaneNames[CNormalBackground::kPlanes] = {"plane A", "plane B", "plane C", "plane D"};

// Per background: scroll and zoom registers (NBG2 and NBG3 do not zoom).
struct ScrollPlaces {
    uint32_t scrollX, scrollY, zoomXInt, zoomXFraction, zoomYInt, zoomYFraction;
};
constexpr ScrollPlaces kScroll[4] = {
    {SCXIN0, SCYIN0, ZMXIN0, ZMXDN0, ZMYIN0, ZMYDN0},
    {SCXIN1, SCYIN1, ZMXIN1, ZMXDN1, ZMYIN1, ZMYDN1},
    {SCXN2, SCYN2, 0, 0, 0, 0},
    {SCXN3, SCYN3, 0, 0, 0, 0},
};

// An 11-bit two's complement scroll value: -1024 to 1023.
int32_t SignedScroll(uint32_t v) { return (v & 0x400) ? static_cast<int32_t>(v | ~0x7FFu) : static_cast<int32_t>(v); }

}  // namespace

CNormalBackground::CNormalBackground(uint32_t number)
    : CBackground(number) {
    ResetCellRecords();
}

CNormalBackground::~CNormalBackground() {
    if (vdp2) vdp2->SetBitmapWriteListener(static_cast<int>(bgNumber), nullptr);
}

void CNormalBackground::ResetCellRecords() {
    // Fresh zeroed memory rather than zeros written over 1 MiB: at start-up
    // (four backgrounds) the writing cost most of InitVDPPlugin's time.
    constexpr size_t kRecords = size_t{kPlanes} * kRecordsPerSide * kRecordsPerSide;
    cellRecords.reset(static_cast<CellRecord*>(std::calloc(kRecords, sizeof(CellRecord))));
    if (!cellRecords) throw std::bad_alloc();
}

void CNormalBackground::Reset() {
    // What the textures held belongs to the VRAM before the reset: they are
    // made anew at the next update, and the bitmap decoded again.
    ResetCellRecords();
    planesCreated = bitmapCreated = false;
    bitmapDirty = 1;
}

void CNormalBackground::UpdateFromRegisters() {
    const uint32_t oldPlaneSize = planeSize;
    uint32_t oldAddresses[kPlanes];
    std::memcpy(oldAddresses, planeAddresses, sizeof oldAddresses);
    const uint32_t oldWidth = bitmapWidth, oldHeight = bitmapHeight, oldAddress = bitmapAddress;

    CBackground::UpdateFromRegisters();
    const int n = static_cast<int>(bgNumber);
    const uint32_t size = Field(PLSZ, 2 * n, 2 * n + 1);
    mapOffset = Field(MPOFN, 4 * n, 4 * n + 2);
    const uint32_t mapAB = MPABN0 + 4 * bgNumber, mapCD = mapAB + 2;
    uint32_t addresses[kPlanes] = {Field(mapAB, 0, 5), Field(mapAB, 8, 13), Field(mapCD, 0, 5), Field(mapCD, 8, 13)};
    ReadScrollAndZoom();

    const bool hasBitmap = bgNumber < 2;
    if (hasBitmap) bitmapPaletteNumber = Field(BMPNA, 8 * n, 8 * n + 2);
    if (hasBitmap) vdp2->SetBitmapWriteListener(n, bitmapEnabled ? this : nullptr);
    if (bitmapEnabled) {
        // The plane fields keep their cell-mode values meanwhile.
        UpdateBitmap(oldWidth, oldHeight, oldAddress);
        return;
    }

    planeSize = size == 2 ? 3 : size;  // 2 x 2 pages either way
    planeWidth = planeSize == 0 ? 512 : 1024;
    planeHeight = planeSize == 3 ? 1024 : 512;
    ComputePlaneAddresses(addresses, kPlanes, {characterSize, patternNameDataSize, planeSize, mapOffset});
    std::memcpy(planeAddresses, addresses, sizeof planeAddresses);
    UpdatePlanes(oldPlaneSize, oldAddresses);
}

void CNormalBackground::ReadScrollAndZoom() {
    const ScrollPlaces& at = kScroll[bgNumber];
    scrollX = SignedScroll(Field(at.scrollX, 0, 10));
    scrollY = SignedScroll(Field(at.scrollY, 0, 10));
    if (at.zoomXInt) {
        const auto zoom = [](uint32_t integer, uint32_t fraction) {
            return static_cast<float>(Field(integer, 0, 2)) + static_cast<float>(Field(fraction, 8, 15)) / 256.0f;
        };
        scaleX = zoom(at.zoomXInt, at.zoomXFraction);
        scaleY = zoom(at.zoomYInt, at.zoomYFraction);
    } else {
        scaleX = scaleY = 1.0f;
    }
}

void CNormalBackground::UpdatePlanes(uint32_t oldPlaneSize, const uint32_t* oldAddresses) {
    if (planeSize != oldPlaneSize || std::memcmp(oldAddresses, planeAddresses, sizeof planeAddresses) != 0)
        planesCreated = false;  // made anew when next drawn: a background never shown costs no texture
}

void CNormalBackground::CreatePlaneTextures() {
    trace.Log("--plane size or plane addresses change\n");
    trace.Log("\tplane size: %d*%d\n", static_cast<int>(planeWidth), static_cast<int>(planeHeight));
    for (uint32_t i = 0; i < kPlanes; ++i) trace.Log("\t%s: 0x%X\n", kPlaneNames[i], planeAddresses[i]);
    const int bg = static_cast<int>(bgNumber);
    for (int i = 0; i < static_cast<int>(kPlanes); ++i) renderer->DeletePlaneTexture(bg, i);
    ResetCellRecords();
    // Planes with one address share one texture, so a repeated plane is
    // decoded once.
    for (uint32_t i = 0; i < kPlanes; ++i) {
        uint32_t j = 0;
        while (j < i && planeAddresses[j] != planeAddresses[i]) ++j;
        if (j < i) {
            renderer->LinkPlaneTexture(bg, static_cast<int>(j), static_cast<int>(i));
            trace.Log("\tlinking %s to %s\n", kPlaneNames[i], kPlaneNames[j]);
        } else {
            renderer->CreatePlaneTexture(bg, static_cast<int>(i), static_cast<int>(planeWidth),
                                         static_cast<int>(planeHeight));
            trace.Log("\tallocating vram for %s\n", kPlaneNames[i]);
        }
    }
    planesCreated = true;
}

void CNormalBackground::GetSize(uint32_t& width, uint32_t& height) const {
    width = bitmapEnabled ? bitmapWidth : planeWidth;
    height = bitmapEnabled ? bitmapHeight : planeHeight;
}

void CNormalBackground::Draw() {
    if (!IsShown()) return;
    if (bitmapEnabled)
        DrawBitmapMode();
    else
        DrawCellMode();
}

void CNormalBackground::DrawCellMode() {
    trace.Log("NBG%d : DrawCellMode()\n", static_cast<int>(bgNumber));
    if (scaleX <= 0.0f || scaleY <= 0.0f) return;  // a zero zoom shows nothing
    if (!planesCreated) CreatePlaneTextures();
    {
        CPhaseScope loading(kPhaseVdp2);
        LoadVisibleCharacters();
    }
    DrawPlanePieces();
}

// The load pass: every character on screen, and one more each way, is made
// sure to be in its plane texture.
void CNormalBackground::LoadVisibleCharacters() {
    const int32_t c = static_cast<int32_t>(CharacterDots());
    const int32_t width = static_cast<int32_t>(planeWidth), height = static_cast<int32_t>(planeHeight);
    const int32_t left = scrollX, top = scrollY;
    const int32_t right =
        left + static_cast<int32_t>(static_cast<float>(vdp2->screenHRes) * scaleX) / vdp2->horizontalScale;
    const int32_t bottom =
        top + static_cast<int32_t>(static_cast<float>(vdp2->screenVRes) * scaleY) / vdp2->verticalScale;
    trace.Log("\tvisible area: (%d,%d), (%d,%d)\n", left, top, right, bottom);

    // Past one map's width or height (2 x 2 planes) the positions repeat: a
    // map zoomed out that far is loaded once, not once for every repeat.
    const int32_t xEnd = std::min(right + c, left + 2 * width), yEnd = std::min(bottom + c, top + 2 * height);
    // A position whose name and generation are those its texture was last
    // brought up to date with is passed over without reading the name.
    // The generation moves on with character data, the way names are read
    // and the colours of the palettes its characters read.
    const NameReading reading = ReadingOfNames();
    if (vdp2->contentGeneration != seenContent || !(reading == seenReading) ||
        vdp2->PalettesChangedSince(palettesRead, palettesSeenAt)) {
        seenContent = vdp2->contentGeneration;
        seenReading = reading;
        palettesRead.Clear();
        if (++generation == 0) {  // after 2^32 changes: no record may match by chance
            ResetCellRecords();
            generation = 1;
        }
    }
    palettesSeenAt = vdp2->frameCounter;
    const uint32_t nameBytes = patternNameDataSize ? 2 : 4;
    const CConsoleVram& vram = vdp2->vram;
    CPatternName request;
    for (int32_t y = top; y < yEnd; y += c) {
        const int32_t mapY = (y < 0 ? y + 4 * height : y) & (2 * height - 1);
        const int32_t yInPlane = mapY & (height - 1);
        for (int32_t x = left; x < xEnd; x += c) {
            const int32_t mapX = (x < 0 ? x + 4 * width : x) & (2 * width - 1);
            const int32_t xInPlane = mapX & (width - 1);
            const uint32_t plane = (mapX >= width ? 1u : 0u) + (mapY >= height ? 2u : 0u);
            const uint32_t index =
                PatternIndex(static_cast<uint32_t>(xInPlane / c), static_cast<uint32_t>(yInPlane / c));
            const uint32_t entry = (planeAddresses[plane] + index * nameBytes) & CConsoleVram::kMask;
            const uint32_t raw = nameBytes == 2 ? vram.ReadWord(entry) : vram.ReadLong(entry);
            CellRecord& record =
                Record(plane, static_cast<uint32_t>(xInPlane / c), static_cast<uint32_t>(yInPlane / c));
            if (record.generation == generation && record.rawName == raw) continue;
            request.DrawCell(*this, plane, planeAddresses[plane], index, xInPlane & ~(c - 1), yInPlane & ~(c - 1),
                             true);
            if (request.IsPrepared()) {
                record.rawName = raw;
                record.generation = generation;
                palettesRead |= request.PaletteBlocksRead(vdp2->cramMode);
            }
        }
    }
}

// The draw pass: one quad per plane piece on screen. The map repeats every
// two planes each way.
void CNormalBackground::DrawPlanePieces() {
    const int32_t width = static_cast<int32_t>(planeWidth), height = static_cast<int32_t>(planeHeight);
    const CVdp2& v = *vdp2;
    const int32_t left = scrollX, top = scrollY;
    const int32_t right = left + static_cast<int32_t>(static_cast<float>(v.screenHRes) * scaleX);
    const int32_t bottom = top + static_cast<int32_t>(static_cast<float>(v.screenVRes) * scaleY);
    const int bg = static_cast<int>(bgNumber);
    for (int32_t y = top; y < bottom;) {
        const int32_t yInMap = y < 0 ? y + 2 * height : y;
        VDPGL_CHECK_OR_RETURN(yInMap>=0, "background");
        const int32_t pieceTop = y < -height ? -2 * height : y < 0 ? -height : (y / height) * height;
        const ScreenSpan vertical = SpanOnScreen(pieceTop, height, top, bottom, scaleY, v.screenVRes);
        for (int32_t x = left; x < right;) {
            const int32_t xInMap = x < 0 ? x + 2 * width : x;
            VDPGL_CHECK_OR_RETURN(xInMap>=0, "background");
            const int32_t pieceLeft = x < -width ? -2 * width : x < 0 ? -width : (x / width) * width;
            const int plane =
                ((xInMap & (2 * width - 1)) >= width ? 1 : 0) + ((yInMap & (2 * height - 1)) >= height ? 2 : 0);
            const ScreenSpan horizontal = SpanOnScreen(pieceLeft, width, left, right, scaleX, v.screenHRes);
            renderer->DrawPlane(bg, plane, horizontal.from * v.horizontalScale, vertical.from * v.verticalScale,
                                horizontal.to * v.horizontalScale, vertical.to * v.verticalScale, horizontal.texFrom,
                                horizontal.texTo, vertical.texFrom, vertical.texTo, colorOffsetMultiply[0],
                                colorOffsetMultiply[1], colorOffsetMultiply[2], colorOffsetAdd[0], colorOffsetAdd[1],
                                colorOffsetAdd[2], colorCalculationAlpha, filtered.load(std::memory_order_relaxed));
            x = pieceLeft + width;  // the next piece starts at this one's edge
        }
        y = pieceTop + height;
    }
}

void CNormalBackground::RenderPlane(uint32_t plane, uint32_t* pixels) {
    // Only planes A-D belong to a scroll plane; others leave the buffer.
    if (plane >= kPlanes || !pixels || bitmapEnabled) return;
    RenderPlaneAt(planeAddresses[plane], planeSize, planeWidth, pixels);
}

void CNormalBackground::GetInformation(std::string& text) const {
    if (bitmapEnabled)
        AppendBitmapModeInformation(text);
    else
        AppendCellModeInformation(text);
    AppendCommonInformation(text);
}

void CNormalBackground::AppendCellModeInformation(std::string& text) const {
    const int dots = static_cast<int>(CharacterDots());
    text += "cell mode\n";
    AppendFormat(text, "character size: %d*%d pixels\n", dots, dots);
    AppendFormat(text, "plane size: %d*%d pixels\n", static_cast<int>(planeWidth), static_cast<int>(planeHeight));
    for (uint32_t i = 0; i < kPlanes; ++i) AppendFormat(text, "%s: 0x%X\n", kPlaneNames[i], planeAddresses[i]);
    AppendFormat(text, "x scroll: %d\n", scrollX);
    AppendFormat(text, "y scroll: %d\n", scrollY);
    AppendFormat(text, "x scale: %.02f\n", static_cast<double>(scaleX));
    AppendFormat(text, "y scale: %.02f\n", static_cast<double>(scaleY));
}

}  // namespace vdpgl
