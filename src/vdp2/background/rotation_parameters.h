#pragma once
// A rotation parameter table as RBG0 reads it from VRAM each frame: screen
// start and increments, the 3 x 3 matrix, viewpoint, centre, shift and scale,
// and where the parameter's coefficient table starts. Fixed-point fields
// follow one sign rule: a set sign bit reads as the sign-extended value plus
// one, so all ones is 0 and the most negative value is -(2^(n-1) - 1).
#include <cstdint>

namespace vdpgl {

class CConsoleVram;

struct RotationParameterSet {
    float xst, yst, zst;
    float deltaXst, deltaYst;
    float deltaX, deltaY;
    float a, b, c, d, e, f;
    int16_t px, py, pz;
    int16_t cx, cy, cz;
    float mx, my;
    float kx, ky;
    uint16_t kast;         // coefficient index of the first line
    float kastFraction;    // the same long read as a fraction (shown only)
    float deltaKast, deltaKax;
    uint32_t coefficientAddress;
};

// The sign rule on the low `bits` bits of v.
int32_t SignedField(uint32_t v, int bits);

// Reads the table at `address` (AND 0x7FFFF); parameter 0 is A, 1 is B.
// ktctl and ktaof place the parameter's coefficient table.
void ReadRotationParameterTable(const CConsoleVram& vram, uint32_t address, uint32_t parameter, uint16_t ktctl,
                                uint16_t ktaof, RotationParameterSet& set);

// How a parameter uses its coefficient table (KTCTL bits 0-3 for A, 8-11
// for B).
struct CoefficientControl {
    bool enabled;
    uint32_t bytes;   // 2: one word a coefficient, 4: one long
    bool constantKx;  // the coefficient leaves kx
    bool constantKy;  // ... and ky
    CoefficientControl(uint16_t ktctl, uint32_t parameter);
};

// One coefficient at `address` (aligned to its size): false when its top
// bit makes the dot transparent, else its value in `value`.
bool ReadCoefficient(const CConsoleVram& vram, uint32_t address, uint32_t bytes, float& value);

}  // namespace vdpgl
