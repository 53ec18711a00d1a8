#pragma once
// A rotation parameter table and coefficients as VRAM holds them: the
// transformation of a rotation background written as a game writes it, its
// values turned into the table's signed fixed-point fields.
#include <cstdint>

namespace vdpgl::scenes {

class CSceneBuilder;

// One parameter's table, in map dots and plain numbers. The screen dot
// (x, y) reaches the map dot
//   X = ((x dX + Xsp) kx + Xp), Y = ((x dY + Ysp) ky + Yp)
// with the start and increment vectors turned by the matrix A-F about the
// centre, moved by M; a coefficient per dot may replace kx and ky.
struct RotationTable {
    double xStart = 0, yStart = 0, zStart = 0;  // screen start coordinates
    double dxStart = 0, dyStart = 1;            // their increments a line
    double dx = 1, dy = 0;                      // and a dot
    double a = 1, b = 0, c = 0, d = 0, e = 1, f = 0;  // the matrix, row by row
    int px = 0, py = 0, pz = 0;                 // viewpoint
    int cx = 0, cy = 0, cz = 0;                 // centre
    double mx = 0, my = 0;                      // shift
    double kx = 1, ky = 1;                      // scale
    uint16_t coefficientStart = 0;              // first coefficient, counted in coefficients
    double coefficientLineStep = 0;             // coefficients a line
    double coefficientDotStep = 0;              // coefficients a dot
};

// Writes the table's 0x60 bytes at address (on a 4-byte boundary).
void WriteRotationTable(CSceneBuilder& scene, uint32_t address, const RotationTable& table);

// A signed value in the table's fixed-point form: round(value x divisor)
// in `width` bits from bit `low`, negative numbers stored one below their
// two's complement (so all ones reads as 0).
uint32_t FixedPoint(double value, double divisor, int low, int width);

// A long coefficient: the scale in bits 23-0 (1.0 = 0xFFFF).
uint32_t LongCoefficient(double scale);
// A long coefficient that makes its dots transparent.
constexpr uint32_t kTransparentLongCoefficient = 0x80000000u;

}  // namespace vdpgl::scenes
