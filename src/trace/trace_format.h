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

// The 32 memory and register ports, in the order of the export list (their
// numbers in a trace): X(name, bytes of the value a write carries, 0 for a
// read; a read's answer is not recorded, and replaying it redoes whatever the
// read does inside the plug-in).
#define VDPGL_TRACE_PORTS(X) \
    X(WriteByteVDP1FrameBuffer, 1) \
    X(WriteWordVDP1FrameBuffer, 2) \
    X(WriteLongVDP1FrameBuffer, 4) \
    X(ReadByteVDP1FrameBuffer, 0) \
    X(ReadWordVDP1FrameBuffer, 0) \
    X(ReadLongVDP1FrameBuffer, 0) \
    X(WriteByteVDP1VRAM, 1) \
    X(WriteWordVDP1VRAM, 2) \
    X(WriteLongVDP1VRAM, 4) \
    X(ReadByteVDP1VRAM, 0) \
    X(ReadWordVDP1VRAM, 0) \
    X(ReadLongVDP1VRAM, 0) \
    X(WriteWordVDP1Regs, 2) \
    X(ReadWordVDP1Regs, 0) \
    X(WriteByteVDP2Regs, 1) \
    X(WriteWordVDP2Regs, 2) \
    X(WriteLongVDP2Regs, 4) \
    X(ReadByteVDP2Regs, 0) \
    X(ReadWordVDP2Regs, 0) \
    X(ReadLongVDP2Regs, 0) \
    X(WriteByteVDP2VRAM, 1) \
    X(WriteWordVDP2VRAM, 2) \
    X(WriteLongVDP2VRAM, 4) \
    X(ReadByteVDP2VRAM, 0) \
    X(ReadWordVDP2VRAM, 0) \
    X(ReadLongVDP2VRAM, 0) \
    X(WriteByteVDP2CRAM, 1) \
    X(WriteWordVDP2CRAM, 2) \
    X(WriteLongVDP2CRAM, 4) \
    X(ReadByteVDP2CRAM, 0) \
    X(ReadWordVDP2CRAM, 0) \
    X(ReadLongVDP2CRAM, 0)

enum class Port : uint8_t {
#define VDPGL_TRACE_PORT_NAME(name, bytes) name,
    VDPGL_TRACE_PORTS(VDPGL_TRACE_PORT_NAME)
#undef VDPGL_TRACE_PORT_NAME
    Count
};
inline constexpr uint8_t kPortCount = static_cast<uint8_t>(Port::Count);

// Bytes of the value that follows a port record's address.
constexpr uint32_t PortValueSize(Port port) {
    constexpr uint8_t kSizes[kPortCount] = {
#define VDPGL_TRACE_PORT_SIZE(name, bytes) bytes,
        VDPGL_TRACE_PORTS(VDPGL_TRACE_PORT_SIZE)
#undef VDPGL_TRACE_PORT_SIZE
    };
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
