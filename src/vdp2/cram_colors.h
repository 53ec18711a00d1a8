#pragma once
// Colour RAM entries as colour words. In colour RAM modes 0 and 1 an entry is
// one RGB555 word, looked up in a colour table; in mode 2 two words k, k + 1
// make one 24-bit colour, the first word holding the colour word's upper half,
// always opaque. Indexes wrap at the 2048 words of colour RAM.
#include <cstdint>

#include "common/color_word.h"

namespace vdpgl {

inline uint32_t CramColor(const uint16_t* cram, const uint32_t* colorTable, uint32_t k) {
    return colorTable[cram[k & 0x7FF]];
}

inline uint32_t CramWideColor(const uint16_t* cram, uint32_t k) {
    k &= 0x7FF;
    return kOpaqueAlpha | uint32_t{cram[k]} << 16 | cram[(k + 1) & 0x7FF];
}

}  // namespace vdpgl
