#pragma once
// A VDP1 command table as a program writes it: the fields by name, and the
// fifteen 16-bit words they make from the table's start (the last word is
// not read). Used by the scene builder and the tests.
#include <array>
#include <cstdint>

namespace vdpgl::tools {

struct Vdp1Command {
    uint16_t ctrl = 0, link = 0, pmod = 0, colr = 0, srca = 0, size = 0;
    int16_t xa = 0, ya = 0, xb = 0, yb = 0, xc = 0, yc = 0, xd = 0, yd = 0;
    uint16_t grda = 0;

    std::array<uint16_t, 15> Words() const {
        const auto u = [](int16_t v) { return static_cast<uint16_t>(v); };
        return {ctrl, link, pmod, colr, srca, size, u(xa), u(ya), u(xb), u(yb), u(xc), u(yc), u(xd), u(yd), grda};
    }
};

}  // namespace vdpgl::tools
