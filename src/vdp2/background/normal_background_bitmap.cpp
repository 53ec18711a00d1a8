// CNormalBackground in bitmap mode (NBG0 and NBG1): a rectangle of dots
// stored row by row in VRAM, decoded into one texture when its data, size or
// address changed, and drawn repeated across the screen.
#include <algorithm>

#include "common/color_word.h"
#include "common/console_vram.h"
#include "common/frame_profile.h"
#include "render/opengl/opengl.h"
#include "vdp2/cram_colors.h"
#include "vdp2/background/normal_background.h"
#include "vdp2/background/screen_span.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

using namespace vdp2reg;

namespace {

constexpr uint32_t kBitmapWidths[4] = {512, 512, 1024, 1024};
constexpr uint32_t kBitmapHeights[4] = {256, 512, 256, 512};
// Bytes a dot takes, times two: 16 colours are half a byte.
constexpr uint32_t kDoubleDotBytes[5] = {1, 2, 4, 4, 8};

// What decoding reads: VRAM from the bitmap's first dot, and colour RAM.
struct BitmapSource {
    const CConsoleVram& vram;
    const uint16_t* cram;
    const uint32_t* colorTable;
    bool zeroIsTransparent;
};

// Dots that index colour RAM, from data unit `first` to `end` (a unit holds
// dotsPerStep dots): palette is the word index of the first colour, and a
// colour takes two words in colour RAM mode 2 (wide).
template <typename ReadDot>
void DecodePaletteDots(const BitmapSource& in, uint32_t first, uint32_t end, uint32_t dotsPerStep, uint32_t palette,
                       bool wide, ReadDot read, uint32_t* out) {
    for (uint32_t i = first; i < end; ++i) {
        for (uint32_t j = 0; j < dotsPerStep; ++j) {
            const uint32_t d = read(i, j);
            if (d == 0 && in.zeroIsTransparent)
                *out++ = 0;
            else
                *out++ =
                    wide ? CramWideColor(in.cram, palette + 2 * d) : CramColor(in.cram, in.colorTable, palette + d);
        }
    }
}

}  // namespace

void CNormalBackground::UpdateBitmap(uint32_t oldWidth, uint32_t oldHeight, uint32_t oldAddress) {
    const int n = static_cast<int>(bgNumber);
    const uint32_t sizeCode = Field(CHCTLA, 2 + 8 * n, 3 + 8 * n);
    bitmapAddress = mapOffset << 17;
    bitmapWidth = kBitmapWidths[sizeCode];
    bitmapHeight = kBitmapHeights[sizeCode];
    bitmapDataSize =
        characterColorNumber < 5 ? bitmapWidth * bitmapHeight * kDoubleDotBytes[characterColorNumber] / 2 : 0;
    if (bitmapWidth != oldWidth || bitmapHeight != oldHeight || bitmapAddress != oldAddress) bitmapCreated = false;
}

void CNormalBackground::InvalidateBitmapRange(uint32_t address) {
    if (bitmapDirty) return;
    // The bitmap's bytes from its address on; one larger than the rest of
    // VRAM continues at its start, as its decoding does. The row the byte
    // lies in is decoded again.
    const uint32_t offset = (address - bitmapAddress) & CConsoleVram::kMask;
    if (offset >= bitmapDataSize || bitmapHeight == 0) return;
    const uint32_t row = offset / (bitmapDataSize / bitmapHeight);
    bitmapRowsFirst = std::min(bitmapRowsFirst, row);
    bitmapRowsEnd = std::max(bitmapRowsEnd, row + 1);
}

void CNormalBackground::DecodeBitmap(uint32_t* pixels) { DecodeBitmapRows(pixels, 0, bitmapHeight); }

void CNormalBackground::DecodeBitmapRows(uint32_t* pixels, uint32_t firstRow, uint32_t endRow) {
    if (!pixels || characterColorNumber >= 5) return;
    const CVdp2& v = *vdp2;
    const BitmapSource in{v.vram, v.cram, v.colorTable, transparentDisplay == 0};
    const bool wide = v.cramMode == 2;
    const uint32_t base = cramAddressOffset / 2;
    const uint32_t mask = CConsoleVram::kMask, a = bitmapAddress;
    const auto byteAt = [&](uint32_t i) { return uint32_t{in.vram.ReadByte((a + i) & mask)}; };
    const auto wordAt = [&](uint32_t i) { return uint32_t{in.vram.ReadWord((a + 2 * i) & mask)}; };
    // Data units a row: bytes of two dots for 16 colours, else one a dot.
    const uint32_t unitsPerRow = characterColorNumber == 0 ? bitmapWidth / 2 : bitmapWidth;
    const uint32_t first = firstRow * unitsPerRow, end = endRow * unitsPerRow;
    pixels += static_cast<size_t>(firstRow) * bitmapWidth;
    switch (characterColorNumber) {
    case 0:
        DecodePaletteDots(in, first, end, 2, base + bitmapPaletteNumber * (wide ? 8 : 16), wide,
                          [&](uint32_t i, uint32_t j) { return j ? byteAt(i) & 0xF : byteAt(i) >> 4; }, pixels);
        break;
    case 1:
        DecodePaletteDots(in, first, end, 1, base + bitmapPaletteNumber * (wide ? 128 : 256), wide,
                          [&](uint32_t i, uint32_t) { return byteAt(i); }, pixels);
        break;
    case 2:
        DecodePaletteDots(in, first, end, 1, base, wide, [&](uint32_t i, uint32_t) { return wordAt(i); }, pixels);
        break;
    case 3:
        for (uint32_t i = first; i < end; ++i) {
            const uint32_t d = wordAt(i);
            *pixels++ = (d == 0 && in.zeroIsTransparent) ? 0 : v.colorTable[d];
        }
        break;
    case 4:  // 24-bit dots, never transparent
        for (uint32_t i = first; i < end; ++i) *pixels++ = v.vram.ReadLong((a + 4 * i) & mask) | kOpaqueAlpha;
        break;
    default: break;
    }
}

void CNormalBackground::DrawBitmapMode() {
    const CVdp2& v = *vdp2;
    if (!bitmapCreated) {
        renderer->CreateBitmapTexture(static_cast<int>(bgNumber), static_cast<int>(bitmapWidth),
                                      static_cast<int>(bitmapHeight));
        bitmapCreated = true;
        bitmapDirty = 1;
    }
    if (bitmapDirty || bitmapRowsEnd > bitmapRowsFirst) {
        CPhaseScope decoding(kPhaseVdp2);
        // All of it, or the rows VRAM writes changed; a bitmap written many
        // times between two frames is decoded once.
        const uint32_t first = bitmapDirty ? 0 : bitmapRowsFirst;
        const uint32_t end = bitmapDirty ? bitmapHeight : std::min(bitmapRowsEnd, bitmapHeight);
        if (bitmapDirty)
            bitmapPixels.assign(static_cast<size_t>(bitmapWidth) * bitmapHeight, 0u);
        else
            bitmapPixels.resize(static_cast<size_t>(bitmapWidth) * bitmapHeight);
        DecodeBitmapRows(bitmapPixels.data(), first, end);
        renderer->UpdateBitmapTexture(static_cast<int>(bgNumber), bitmapPixels.data(), static_cast<int>(first),
                                      static_cast<int>(end - first));
        bitmapDirty = 0;
        bitmapRowsFirst = ~0u;
        bitmapRowsEnd = 0;
    }
    if (scaleX <= 0.0f || scaleY <= 0.0f) return;
    const int32_t width = static_cast<int32_t>(bitmapWidth), height = static_cast<int32_t>(bitmapHeight);
    const int32_t left = scrollX, top = scrollY;
    const int32_t right = left + static_cast<int32_t>(static_cast<float>(v.screenHRes) * scaleX);
    const int32_t bottom = top + static_cast<int32_t>(static_cast<float>(v.screenVRes) * scaleY);
    for (int32_t y = top; y < bottom;) {
        const int32_t tileTop = FloorToMultiple(y, height);
        const ScreenSpan vertical = SpanOnScreen(tileTop, height, top, bottom, scaleY, v.screenVRes);
        for (int32_t x = left; x < right;) {
            const int32_t tileLeft = FloorToMultiple(x, width);
            const ScreenSpan horizontal = SpanOnScreen(tileLeft, width, left, right, scaleX, v.screenHRes);
            renderer->DrawBitmap(static_cast<int>(bgNumber), horizontal.from * v.horizontalScale,
                                 vertical.from * v.verticalScale, horizontal.to * v.horizontalScale,
                                 vertical.to * v.verticalScale, horizontal.texFrom, horizontal.texTo,
                                 vertical.texFrom, vertical.texTo, colorOffsetMultiply[0], colorOffsetMultiply[1],
                                 colorOffsetMultiply[2], colorOffsetAdd[0], colorOffsetAdd[1], colorOffsetAdd[2],
                                 colorCalculationAlpha, filtered.load(std::memory_order_relaxed));
            x = tileLeft + width;
        }
        y = tileTop + height;
    }
}

void CNormalBackground::AppendBitmapModeInformation(std::string& text) const {
    text += "bitmap mode\n";
    AppendFormat(text, "palette number: %d\n", static_cast<int>(bitmapPaletteNumber));
    AppendFormat(text, "size: %d*%d pixels\n", static_cast<int>(bitmapWidth), static_cast<int>(bitmapHeight));
    AppendFormat(text, "address: 0x%X\n", bitmapAddress);
    AppendFormat(text, "data size: 0x%X\n", bitmapDataSize);
}

}  // namespace vdpgl
