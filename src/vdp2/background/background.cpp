#include "vdp2/background/background.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "vdp2/background/background_names.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"

namespace vdpgl {

using namespace vdp2reg;

uint16_t CBackground::fieldMasks[16][16];
CVdp2* CBackground::vdp2 = nullptr;
COpenGl* CBackground::renderer = nullptr;

namespace {

// A register field: bits first..last of a register.
struct FieldPlace {
    uint32_t reg;
    int first;
    int last;
};

// Where each background finds its common fields. RBG1 reads NBG0's fields
// but for its display bit; it has no bitmap bit (the register 0 with an
// empty range reads as 0).
struct BackgroundPlaces {
    FieldPlace enabled, bitmap, cramOffset, transparent, colors, characterSize, ratio, priority;
    uint32_t patternNameControl;
    int colorOffsetBit;
};

constexpr FieldPlace kNone{0, 1, 0};

constexpr BackgroundPlaces kPlaces[kBackgroundCount] = {
    {{BGON, 0, 0}, {CHCTLA, 1, 1}, {CRAOFA, 0, 2}, {BGON, 8, 8}, {CHCTLA, 4, 6}, {CHCTLA, 0, 0}, {CCRNA, 0, 4},
     {PRINA, 0, 2}, PNCN0, 0},
    {{BGON, 1, 1}, {CHCTLA, 9, 9}, {CRAOFA, 4, 6}, {BGON, 9, 9}, {CHCTLA, 12, 13}, {CHCTLA, 8, 8}, {CCRNA, 8, 12},
     {PRINA, 8, 10}, PNCN0 + 2, 1},
    {{BGON, 2, 2}, kNone, {CRAOFA, 8, 10}, {BGON, 10, 10}, {CHCTLB, 1, 1}, {CHCTLB, 0, 0}, {CCRNB, 0, 4},
     {PRINB, 0, 2}, PNCN0 + 4, 2},
    {{BGON, 3, 3}, kNone, {CRAOFA, 12, 14}, {BGON, 11, 11}, {CHCTLB, 5, 5}, {CHCTLB, 4, 4}, {CCRNB, 8, 12},
     {PRINB, 8, 10}, PNCN0 + 6, 3},
    {{BGON, 4, 4}, {CHCTLB, 9, 9}, {CRAOFB, 0, 2}, {BGON, 12, 12}, {CHCTLB, 12, 14}, {CHCTLB, 8, 8}, {CCRR, 0, 4},
     {PRIR, 0, 2}, PNCR, 4},
    {{BGON, 5, 5}, kNone, {CRAOFA, 0, 2}, {BGON, 8, 8}, {CHCTLA, 4, 6}, {CHCTLA, 0, 0}, {CCRNA, 0, 4},
     {PRINA, 0, 2}, PNCN0, 0},
};

constexpr uint32_t kCellDataSizes[5] = {32, 64, 128, 128, 256};
constexpr const char* kColorCountLines[5] = {"16 colors\n", "256 colors\n", "2048 colors\n", "32K colors\n",
                                             "16M colors\n"};

}  // namespace

CBackground::CBackground(uint32_t number) : bgNumber(number) {
    if (number < kBackgroundCount) trace.SetUp((std::string(kBackgroundNames[number]) + ".log").c_str());
}

void CBackground::InitializeBackgroundStatics(CVdp2* v, COpenGl* r) {
    vdp2 = v;
    renderer = r;
    for (int first = 0; first < 16; ++first)
        for (int last = 0; last < 16; ++last)
            fieldMasks[first][last] =
                first > last ? 0 : static_cast<uint16_t>(((1u << (last - first + 1)) - 1) << first);
}

uint32_t CBackground::Field(uint32_t registerAddress, int first, int last) {
    return (vdp2->Register(registerAddress) & fieldMasks[first][last]) >> first;
}

void CBackground::UpdateFromRegisters() {
    if (bgNumber >= kBackgroundCount) return;
    const BackgroundPlaces& at = kPlaces[bgNumber];
    const auto read = [](const FieldPlace& f) { return Field(f.reg, f.first, f.last); };
    enabled = read(at.enabled);
    bitmapEnabled = read(at.bitmap);
    transparentDisplay = static_cast<uint8_t>(read(at.transparent));
    characterColorNumber = static_cast<uint8_t>(read(at.colors));
    characterSize = read(at.characterSize);
    priority = read(at.priority);

    patternNameDataSize = Field(at.patternNameControl, 15, 15);
    characterNumberSupplement = Field(at.patternNameControl, 14, 14);
    specialPriority = Field(at.patternNameControl, 9, 9);
    specialColorCalculation = Field(at.patternNameControl, 8, 8);
    supplementaryPalette = Field(at.patternNameControl, 5, 7);
    supplementaryCharacterNumber = Field(at.patternNameControl, 0, 4);

    colorCalculationAlpha = static_cast<float>(32 - read(at.ratio)) / 32.0f;
    // In colour RAM mode 2 a colour takes two words, so the offset steps twice as far.
    cramAddressOffset = read(at.cramOffset) * (vdp2->cramMode == 2 ? 1024 : 512);
    charactersPerPageLine = (2 - characterSize) * 32;
    charactersPerPage = charactersPerPageLine * charactersPerPageLine;
    cellDataSize = characterColorNumber < 5 ? kCellDataSizes[characterColorNumber] : 0;
    UpdateColorOffset(static_cast<uint32_t>(at.colorOffsetBit));
}

void CBackground::UpdateColorOffset(uint32_t bit) {
    for (int c = 0; c < 3; ++c) {
        colorOffsetMultiply[c] = 1.0f;
        colorOffsetAdd[c] = 0.0f;
    }
    if (!Field(CLOFEN, static_cast<int>(bit), static_cast<int>(bit))) return;
    const uint32_t first = Field(CLOFSL, static_cast<int>(bit), static_cast<int>(bit)) ? COBR : COAR;
    for (uint32_t c = 0; c < 3; ++c) {
        // 9-bit two's complement: a negative offset darkens through the
        // primary colour, a positive one brightens through the secondary.
        const uint32_t v = Field(first + 2 * c, 0, 8);
        if (v & 0x100)
            colorOffsetMultiply[c] = 1.0f - static_cast<float>(~v & 0xFF) / 255.0f;
        else
            colorOffsetAdd[c] = static_cast<float>(v & 0xFF) / 255.0f;
    }
}

void CBackground::RenderPlaneAt(uint32_t planeAddress, uint32_t planeSize, uint32_t width, uint32_t* pixels) {
    const uint32_t n = charactersPerPageLine, c = CharacterDots();
    const uint32_t pages = planeSize == 0 ? 1 : planeSize == 1 ? 2 : 4;
    uint32_t character[16 * 16];
    CPatternName request;
    for (uint32_t p = 0; p < pages; ++p) {
        for (uint32_t r = 0; r < n; ++r) {
            for (uint32_t k = 0; k < n; ++k) {
                request.PrepareCell(*this, planeAddress, p * charactersPerPage + r * n + k);
                std::fill(character, character + c * c, 0u);
                if (request.IsPrepared()) request.DrawCharacterToBuffer(character);
                const uint32_t x0 = ((p & 1) * n + k) * c, y0 = ((p / 2) * n + r) * c;
                for (uint32_t row = 0; row < c; ++row)
                    std::memcpy(pixels + (y0 + row) * width + x0, character + row * c, c * sizeof(uint32_t));
            }
        }
    }
}

void CBackground::AppendCommonInformation(std::string& text) const {
    AppendFormat(text, "cram address offset: 0x%X\n", cramAddressOffset);
    if (characterColorNumber < 5) text += kColorCountLines[characterColorNumber];
    if (priority)
        AppendFormat(text, "priority: %d\n", static_cast<int>(priority));
    else
        text += "priority: background not displayed\n";
}

CBackground::NameReading CBackground::ReadingOfNames() const {
    return {{cellDataSize, transparentDisplay, characterColorNumber, patternNameDataSize, cramAddressOffset,
             characterSize, supplementaryPalette, characterNumberSupplement, supplementaryCharacterNumber,
             vdp2->cramMode, charactersPerPageLine, charactersPerPage}};
}

}  // namespace vdpgl
