#pragma once
// The pixel format of the whole plug-in: red in bits 7-0, green 15-8, blue
// 23-16, alpha 31-24 (bytes R, G, B, A in memory). 0 is transparent.
#include <cstdint>

namespace vdpgl {

constexpr uint32_t kOpaqueAlpha = 0xFF000000u;

// Console RGB555 to colour word; bit 15 is ignored and each 5-bit component is
// widened by a plain shift (31 becomes 248).
constexpr uint32_t Rgb555ToColorWord(uint16_t c) {
    const uint32_t r = (c & 0x1Fu) << 3;
    const uint32_t g = ((c >> 5) & 0x1Fu) << 3;
    const uint32_t b = ((c >> 10) & 0x1Fu) << 3;
    return kOpaqueAlpha | (b << 16) | (g << 8) | r;
}

// Fills a 65,536-entry table with the colour word of every 16-bit value.
inline void FillRgb555Table(uint32_t* table) {
    for (uint32_t c = 0; c < 0x10000; ++c) table[c] = Rgb555ToColorWord(static_cast<uint16_t>(c));
}

}  // namespace vdpgl
