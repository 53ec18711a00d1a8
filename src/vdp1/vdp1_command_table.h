#pragma once
// One 32-byte VDP1 command table, read from VRAM once per command so that the
// walker and the part constructors look each field up a single time.
#include <cstdint>

#include "common/console_vram.h"

namespace vdpgl {

struct Vdp1CommandTable {
    // Word offsets of the fields inside the table.
    enum Field : uint32_t {
        CMDCTRL = 0, CMDLINK, CMDPMOD, CMDCOLR, CMDSRCA, CMDSIZE,
        CMDXA, CMDYA, CMDXB, CMDYB, CMDXC, CMDYC, CMDXD, CMDYD, CMDGRDA, kWordCount
    };

    static constexpr uint16_t kEnd = 0x8000;
    static constexpr uint16_t kSkip = 0x4000;  // jump modes 4-7 do not execute

    uint32_t address = 0;  // VRAM byte address of the table
    uint16_t words[kWordCount] = {};

    uint16_t operator[](Field f) const { return words[f]; }
    int16_t Signed(Field f) const { return static_cast<int16_t>(words[f]); }
    uint32_t Command() const { return words[CMDCTRL] & 0xF; }
    uint32_t JumpMode() const { return (words[CMDCTRL] >> 12) & 7; }
    uint32_t ColorMode() const { return (words[CMDPMOD] >> 3) & 7; }

    void Read(const CConsoleVram& vram, uint32_t byteAddress) {
        address = byteAddress & CConsoleVram::kMask;
        for (uint32_t i = 0; i < kWordCount; ++i) words[i] = vram.ReadWord(address + 2 * i);
    }
};

}  // namespace vdpgl
