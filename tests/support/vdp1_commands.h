#pragma once
// Writing VDP1 command tables the way a game does, through any 16-bit VRAM write (the object's port in unit and GL
// tests, the export in host tests).
#include <cstdint>
#include <functional>
#include <initializer_list>

#include "../../tools/common/vdp1_command.h"

namespace vdpgl::test {

// One command table; fields left out are 0.
using Command = tools::Vdp1Command;

// Command codes (CMDCTRL bits 3-0) and the END bit.
constexpr uint16_t kNormalSpriteCmd = 0x0, kScaledSpriteCmd = 0x1, kDistortedSpriteCmd = 0x2, kPolygonCmd = 0x4,
                   kPolylineCmd = 0x5, kLineCmd = 0x6, kUserClipCmd = 0x8, kSystemClipCmd = 0x9,
                   kLocalCoordinatesCmd = 0xA, kEndCmd = 0x8000;

using WordWriter = std::function<void(uint32_t address, uint16_t value)>;

inline void WriteCommand(const WordWriter& write, uint32_t address, const Command& c) {
    uint32_t a = address;
    for (uint16_t w : c.Words()) {
        write(a, w);
        a += 2;
    }
}

// Commands at 0, 0x20, 0x40, ... followed by an END command.
inline void WriteCommandList(const WordWriter& write, std::initializer_list<Command> commands) {
    uint32_t address = 0;
    for (const Command& c : commands) {
        WriteCommand(write, address, c);
        address += 0x20;
    }
    WriteCommand(write, address, Command{.ctrl = kEndCmd});
}

// Words at consecutive even addresses from address.
inline void WriteWords(const WordWriter& write, uint32_t address, std::initializer_list<uint16_t> words) {
    for (uint16_t w : words) {
        write(address, w);
        address += 2;
    }
}

}  // namespace vdpgl::test
