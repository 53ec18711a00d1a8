#include "vdp2/background/rotation_parameters.h"

#include "common/console_vram.h"

namespace vdpgl {

int32_t SignedField(uint32_t v, int bits) {
    const uint32_t mask = (1u << bits) - 1;
    v &= mask;
    if (v >> (bits - 1)) return static_cast<int32_t>(v | ~mask) + 1;
    return static_cast<int32_t>(v);
}

namespace {

// Bits first..last of a long as a signed fraction of `divisor`; the
// division is done in double and stored as float.
float Fraction(uint32_t word, int first, int last, double divisor) {
    return static_cast<float>(SignedField(word >> first, last - first + 1) / divisor);
}

}  // namespace

void ReadRotationParameterTable(const CConsoleVram& vram, uint32_t address, uint32_t parameter, uint16_t ktctl,
                                uint16_t ktaof, RotationParameterSet& set) {
    const auto l = [&](uint32_t offset) { return vram.ReadLong((address + offset) & CConsoleVram::kMask); };
    const auto w = [&](uint32_t offset) {
        return static_cast<int16_t>(SignedField(vram.ReadWord((address + offset) & CConsoleVram::kMask), 14));
    };
    set.xst = Fraction(l(0x00), 6, 28, 1023.0);
    set.yst = Fraction(l(0x04), 6, 28, 1023.0);
    set.zst = Fraction(l(0x08), 6, 28, 1023.0);
    set.deltaXst = Fraction(l(0x0C), 6, 18, 1023.0);
    set.deltaYst = Fraction(l(0x10), 6, 18, 1023.0);
    set.deltaX = Fraction(l(0x14), 6, 18, 1023.0);
    set.deltaY = Fraction(l(0x18), 6, 18, 1023.0);
    float* matrix[6] = {&set.a, &set.b, &set.c, &set.d, &set.e, &set.f};
    for (uint32_t i = 0; i < 6; ++i) *matrix[i] = Fraction(l(0x1C + 4 * i), 6, 19, 1023.0);
    set.px = w(0x34);
    set.py = w(0x36);
    set.pz = w(0x38);
    set.cx = w(0x3C);
    set.cy = w(0x3E);
    set.cz = w(0x40);
    set.mx = Fraction(l(0x44), 6, 29, 1023.0);
    set.my = Fraction(l(0x48), 6, 29, 1023.0);
    set.kx = Fraction(l(0x4C), 0, 23, 65535.0);
    set.ky = Fraction(l(0x50), 0, 23, 65535.0);
    const uint32_t kast = l(0x54);
    set.kast = static_cast<uint16_t>(kast >> 16);
    set.kastFraction = static_cast<float>(((kast >> 6) & 0x3FFFFFF) / 1023.0);
    set.deltaKast = Fraction(l(0x58), 6, 25, 1023.0);
    set.deltaKax = Fraction(l(0x5C), 6, 25, 1023.0);

    // The coefficient table: KTAOF's bits of this parameter pick a 128 KB
    // (words) or 256 KB (longs) part of VRAM.
    const uint32_t m = parameter ? 256 : 1;
    if (ktctl & (2 * m))
        set.coefficientAddress = ((ktaof & (7 * m)) / m << 17) + set.kast * 2u;
    else
        set.coefficientAddress = ((ktaof & (3 * m)) / m << 18) + set.kast * 4u;
}

CoefficientControl::CoefficientControl(uint16_t ktctl, uint32_t parameter) {
    const uint32_t bits = parameter ? ktctl >> 8 : ktctl;
    enabled = bits & 1;
    bytes = (bits & 2) ? 2 : 4;
    const uint32_t mode = (bits >> 2) & 3;
    constantKx = mode == 2 || mode == 3;
    constantKy = mode == 1 || mode == 3;
}

bool ReadCoefficient(const CConsoleVram& vram, uint32_t address, uint32_t bytes, float& value) {
    if (bytes == 2) {
        const uint16_t word = vram.ReadWord(address);
        if (word & 0x8000) return false;
        value = static_cast<float>(SignedField(word, 15) / 1023.0);
        return true;
    }
    const uint32_t word = vram.ReadLong(address);
    if (word & 0x80000000u) return false;
    value = static_cast<float>(SignedField(word, 24) / 65535.0);
    return true;
}

}  // namespace vdpgl
