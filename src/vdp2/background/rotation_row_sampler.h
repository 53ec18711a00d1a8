#pragma once
// One row of a rotation plane's picture, sampled once the row's columns
// know their parameter and coefficient: each dot's map position, the slot
// of the character there, and the dot. Eight columns at a time with AVX2
// where the processor has it (a slot that holds another character stops the
// run, and the caller prepares it); the caller samples the rest one by one,
// with the same arithmetic, so either way gives the same dots.
#include <cstdint>

namespace vdpgl {

// A character one drawing prepared, in the slot of its map position.
struct PreparedCharacter {  // 16 bytes: the slots of a turning picture stay in the cache
    uint32_t key = ~0u;  // character column, row << 15 and parameter << 30
    uint16_t flipX = 0, flipY = 0;  // masks that turn a position over
    const uint32_t* dots = nullptr;  // the character's dots unflipped, a row after another
};

// Slots by map position: the characters around the screen's view each
// have their own, for each of the two parameters.
constexpr uint32_t kSlotColumns = 64, kSlotRows = 32;
constexpr uint32_t kPreparedSlots = kSlotColumns * kSlotRows * 2;

inline uint32_t SlotOf(uint32_t column, uint32_t row, uint32_t parameter) {
    return (column & (kSlotColumns - 1)) | (row & (kSlotRows - 1)) * kSlotColumns | parameter * kSlotColumns * kSlotRows;
}
inline uint32_t KeyOf(uint32_t column, uint32_t row, uint32_t parameter) {
    return column | row << 15 | parameter << 30;
}

// Truncation toward zero of a map coordinate, to be masked to the map: a
// value no 32-bit integer holds (a hostile table can make one) gives
// INT32_MIN, which the mask turns to 0.
int32_t TruncateCoordinate(float v);

// What one parameter gives a row: where the row starts and the map's shape.
struct RowPlacement {
    float xsp = 0, ysp = 0, xp = 0, yp = 0;
    int32_t mapXMask = 0, mapYMask = 0;  // the 4 x 4 planes of the map
};

// One row: per column the parameter (0 or 1; -1: the dot is transparent)
// and the coefficients kx and ky it scales by, and per parameter each
// column's share of the transformation (x times its dX and dY).
struct RotationRow {
    int32_t columns = 0;
    const int32_t* parameter = nullptr;
    const float* kx = nullptr;
    const float* ky = nullptr;
    const float* dX[2] = {};
    const float* dY[2] = {};
    RowPlacement place[2];
    int32_t charShift = 3;  // 3 for 8-dot characters, 4 for 16
    const PreparedCharacter* slots = nullptr;

    int32_t MapX(int32_t j, uint32_t q) const {
        const RowPlacement& p = place[q];
        return TruncateCoordinate((dX[q][j] + p.xsp) * kx[j] + p.xp) & p.mapXMask;
    }
    int32_t MapY(int32_t j, uint32_t q) const {
        const RowPlacement& p = place[q];
        return TruncateCoordinate((dY[q][j] + p.ysp) * ky[j] + p.yp) & p.mapYMask;
    }
};

// Whether SampleRowVector does anything: the processor has AVX2 and it is
// allowed (it is unless a test or benchmark says otherwise).
bool RowVectorSampling();
// Allows or forbids it; returns whether the processor has AVX2.
bool AllowRowVectorSampling(bool allowed);
// Fills row[j] from column `first` on, eight columns at a time, while every
// opaque dot's slot holds its character. Returns the first column it did
// not fill: where a slot must be prepared, or the last columns (fewer than
// eight), or `first` when the processor has no AVX2.
int32_t SampleRowVector(const RotationRow& in, uint32_t* row, int32_t first);

}  // namespace vdpgl
