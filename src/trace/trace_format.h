#pragma once
// The trace format: everything a host asked of the plug-in, in order, so that
// a run can be replayed exactly. docs/trace-format.md describes the bytes;
// this header is the one place that numbers them.
#include <cstdint>

namespace vdpgl::trace {

inline constexpr char kMagic[8] = {'v', 'd', 'p', 'g', 'l', 't', 'r', 'c'};
inline constexpr uint16_t kVersion = 1;
inline constexpr uint16_t kHeaderSize = 16;  // magic, version, header size, flags
// A block holds whole records; its payload is never larger than this.
inline constexpr uint32_t kMaxBlockPayload = 1u << 20;
inline constexpr uint32_t kBlockHeaderSize = 8;  // payload length, CRC-32 of the payload

// The 32 memory and register ports, in the order of the export list.
enum class Port : uint8_t {
    WriteByteVDP1FrameBuffer, WriteWordVDP1FrameBuffer, WriteLongVDP1FrameBuffer,
    ReadByteVDP1FrameBuffer, ReadWordVDP1FrameBuffer, ReadLongVDP1FrameBuffer,
    WriteByteVDP1VRAM, WriteWordVDP1VRAM, WriteLongVDP1VRAM,
    ReadByteVDP1VRAM, ReadWordVDP1VRAM, ReadLongVDP1VRAM,
    WriteWordVDP1Regs, ReadWordVDP1Regs,
    WriteByteVDP2Regs, WriteWordVDP2Regs, WriteLongVDP2Regs,
    ReadByteVDP2Regs, ReadWordVDP2Regs, ReadLongVDP2Regs,
    WriteByteVDP2VRAM, WriteWordVDP2VRAM, WriteLongVDP2VRAM,
    ReadByteVDP2VRAM, ReadWordVDP2VRAM, ReadLongVDP2VRAM,
    WriteByteVDP2CRAM, WriteWordVDP2CRAM, WriteLongVDP2CRAM,
    ReadByteVDP2CRAM, ReadWordVDP2CRAM, ReadLongVDP2CRAM,
    Count
};
inline constexpr uint8_t kPortCount = static_cast<uint8_t>(Port::Count);

// Bytes of the value that follows a port record's address: 1, 2 or 4 for a
// write, 0 for a read (a read's answer is not recorded; replaying it redoes
// whatever the read does inside the plug-in).
constexpr uint32_t PortValueSize(Port port) {
    constexpr uint8_t kSizes[kPortCount] = {1, 2, 4, 0, 0, 0, 1, 2, 4, 0, 0, 0, 2, 0, 1, 2,
                                            4, 0, 0, 0, 1, 2, 4, 0, 0, 0, 1, 2, 4, 0, 0, 0};
    return kSizes[static_cast<uint8_t>(port)];
}

// Record opcodes. Port records use the port's number as opcode (0-31) and
// carry a 32-bit address and the value; events carry nothing; a frame record
// carries the 32-bit number of the frame that just ended.
enum class Event : uint8_t {
    InitVDPPlugin = 0x40,
    DeInitPlugin,
    Reset,
    SetupPlugin,
    EmulationThreadStarting,
    EmulationThreadStoping,
    VDPOnVblankIn = 0x48,
    VDPOnVblankOut,
    VDPOnHblankIn,
    VDPOnHblankOut,
    Frame = 0x50,  // after a V-blank-out: the frame boundary
    End = 0x7F,    // the recording was closed properly
};

}  // namespace vdpgl::trace
