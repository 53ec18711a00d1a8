#include "rotation_parameters.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "scene_builder.h"

namespace vdpgl::scenes {

namespace {

// The table's divisors: 1.0 is 1023 in the coordinate and matrix fields,
// 65535 in the scale fields and long coefficients.
constexpr double kUnit = 1023.0, kScaleUnit = 65535.0;

// A field in bits 31-6 of a long, the fraction in the low ten of them.
uint32_t Field(double value, int width) { return FixedPoint(value, kUnit, 6, width); }
uint32_t Coordinate(int value) { return FixedPoint(value, 1.0, 0, 14); }

}  // namespace

uint32_t FixedPoint(double value, double divisor, int low, int width) {
    long long v = std::llround(value * divisor);
    const long long limit = (1LL << (width - 1)) - 1;
    if (v > limit || v < -limit)
        throw std::out_of_range("a rotation table value of " + std::to_string(value) + " does not fit its field");
    if (v < 0) --v;
    const uint64_t mask = (1ULL << width) - 1;
    return static_cast<uint32_t>((static_cast<uint64_t>(v) & mask) << low);
}

uint32_t LongCoefficient(double scale) { return FixedPoint(scale, kScaleUnit, 0, 24); }

void WriteRotationTable(CSceneBuilder& scene, uint32_t address, const RotationTable& t) {
    const uint32_t longs[] = {
        Field(t.xStart, 23),  Field(t.yStart, 23), Field(t.zStart, 23),  // 0x00
        Field(t.dxStart, 13), Field(t.dyStart, 13),                      // 0x0C
        Field(t.dx, 13),      Field(t.dy, 13),                           // 0x14
        Field(t.a, 14),       Field(t.b, 14),      Field(t.c, 14),       // 0x1C
        Field(t.d, 14),       Field(t.e, 14),      Field(t.f, 14),       // 0x28
        Coordinate(t.px) << 16 | Coordinate(t.py),                       // 0x34
        Coordinate(t.pz) << 16,                                          // 0x38
        Coordinate(t.cx) << 16 | Coordinate(t.cy),                       // 0x3C
        Coordinate(t.cz) << 16,                                          // 0x40
        Field(t.mx, 24),      Field(t.my, 24),                           // 0x44
        FixedPoint(t.kx, kScaleUnit, 0, 24), FixedPoint(t.ky, kScaleUnit, 0, 24),  // 0x4C
        static_cast<uint32_t>(t.coefficientStart) << 16,                 // 0x54: the start's whole part
        Field(t.coefficientLineStep, 20), Field(t.coefficientDotStep, 20),  // 0x58
    };
    uint32_t offset = 0;
    for (const uint32_t value : longs) {
        scene.Vdp2Long(address + offset, value);
        offset += 4;
    }
}

}  // namespace vdpgl::scenes
