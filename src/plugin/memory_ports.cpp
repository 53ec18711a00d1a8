// The 32 memory and register ports. Each masks its address, compares, looks
// up at most one table entry and stores: nothing allocates or logs here.
// Before InitVDPPlugin (or after DeInitPlugin) writes are dropped and reads
// answer 0. When recording, a port tail-calls its recording twin, so the
// path without recording is one load and one branch more than the work.
#include "plugin/plugin_state.h"
#include "plugin/trace_recorder.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"
#include "vdpgl/vdpgl.h"

using vdpgl::plugin;

namespace {

// What each port does.
namespace work {

// VDP1's frame buffer exists only as the rendered picture: writes are
// ignored and reads return 0.
void WriteByteVDP1FrameBuffer(uint32_t a, uint8_t v) {
    (void)a;
    (void)v;
}
void WriteWordVDP1FrameBuffer(uint32_t a, uint16_t v) {
    (void)a;
    (void)v;
}
void WriteLongVDP1FrameBuffer(uint32_t a, uint32_t v) {
    (void)a;
    (void)v;
}
uint8_t ReadByteVDP1FrameBuffer(uint32_t a) {
    (void)a;
    return 0;
}
uint16_t ReadWordVDP1FrameBuffer(uint32_t a) {
    (void)a;
    return 0;
}
uint32_t ReadLongVDP1FrameBuffer(uint32_t a) {
    (void)a;
    return 0;
}
void WriteByteVDP1VRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp1* o = plugin.vdp1) o->WriteVramByte(a, v);
}
void WriteWordVDP1VRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp1* o = plugin.vdp1) o->WriteVramWord(a, v);
}
void WriteLongVDP1VRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp1* o = plugin.vdp1) o->WriteVramLong(a, v);
}
uint8_t ReadByteVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* o = plugin.vdp1;
    return o ? o->ReadVramByte(a) : 0;
}
uint16_t ReadWordVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* o = plugin.vdp1;
    return o ? o->ReadVramWord(a) : 0;
}
uint32_t ReadLongVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* o = plugin.vdp1;
    return o ? o->ReadVramLong(a) : 0;
}
void WriteWordVDP1Regs(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp1* o = plugin.vdp1) o->WriteRegister(a, v);
}
uint16_t ReadWordVDP1Regs(uint32_t a) {
    vdpgl::CVdp1* o = plugin.vdp1;
    return o ? o->ReadRegister(a) : 0;
}
void WriteByteVDP2Regs(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteRegisterByte(a, v);
}
void WriteWordVDP2Regs(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteRegisterWord(a, v);
}
void WriteLongVDP2Regs(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteRegisterLong(a, v);
}
uint8_t ReadByteVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadRegisterByte(a) : 0;
}
uint16_t ReadWordVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadRegisterWord(a) : 0;
}
uint32_t ReadLongVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadRegisterLong(a) : 0;
}
void WriteByteVDP2VRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteVramByte(a, v);
}
void WriteWordVDP2VRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteVramWord(a, v);
}
void WriteLongVDP2VRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteVramLong(a, v);
}
uint8_t ReadByteVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadVramByte(a) : 0;
}
uint16_t ReadWordVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadVramWord(a) : 0;
}
uint32_t ReadLongVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadVramLong(a) : 0;
}
void WriteByteVDP2CRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteCramByte(a, v);
}
void WriteWordVDP2CRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteCramWord(a, v);
}
void WriteLongVDP2CRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* o = plugin.vdp2) o->WriteCramLong(a, v);
}
uint8_t ReadByteVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadCramByte(a) : 0;
}
uint16_t ReadWordVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadCramWord(a) : 0;
}
uint32_t ReadLongVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* o = plugin.vdp2;
    return o ? o->ReadCramLong(a) : 0;
}

}  // namespace work

// Records the call, then does it; out of line and cold.
template <auto Work, vdpgl::trace::Port port, typename... Value>
[[gnu::noinline, gnu::cold]] auto RecordThen(uint32_t a, Value... v) {
    vdpgl::RecordPortCall(port, a, static_cast<uint32_t>(v)...);
    return Work(a, v...);
}

}  // namespace

#define VDPGL_PORT(name, ...)                                                  \
    if (vdpgl::traceRecorder.load(std::memory_order_relaxed)) [[unlikely]]     \
        return RecordThen<&work::name, vdpgl::trace::Port::name>(__VA_ARGS__); \
    return work::name(__VA_ARGS__)

extern "C" {

void WriteByteVDP1FrameBuffer(uint32_t a, uint8_t v) { VDPGL_PORT(WriteByteVDP1FrameBuffer, a, v); }
void WriteWordVDP1FrameBuffer(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP1FrameBuffer, a, v); }
void WriteLongVDP1FrameBuffer(uint32_t a, uint32_t v) { VDPGL_PORT(WriteLongVDP1FrameBuffer, a, v); }
uint8_t ReadByteVDP1FrameBuffer(uint32_t a) { VDPGL_PORT(ReadByteVDP1FrameBuffer, a); }
uint16_t ReadWordVDP1FrameBuffer(uint32_t a) { VDPGL_PORT(ReadWordVDP1FrameBuffer, a); }
uint32_t ReadLongVDP1FrameBuffer(uint32_t a) { VDPGL_PORT(ReadLongVDP1FrameBuffer, a); }
void WriteByteVDP1VRAM(uint32_t a, uint8_t v) { VDPGL_PORT(WriteByteVDP1VRAM, a, v); }
void WriteWordVDP1VRAM(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP1VRAM, a, v); }
void WriteLongVDP1VRAM(uint32_t a, uint32_t v) { VDPGL_PORT(WriteLongVDP1VRAM, a, v); }
uint8_t ReadByteVDP1VRAM(uint32_t a) { VDPGL_PORT(ReadByteVDP1VRAM, a); }
uint16_t ReadWordVDP1VRAM(uint32_t a) { VDPGL_PORT(ReadWordVDP1VRAM, a); }
uint32_t ReadLongVDP1VRAM(uint32_t a) { VDPGL_PORT(ReadLongVDP1VRAM, a); }
void WriteWordVDP1Regs(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP1Regs, a, v); }
uint16_t ReadWordVDP1Regs(uint32_t a) { VDPGL_PORT(ReadWordVDP1Regs, a); }
void WriteByteVDP2Regs(uint32_t a, uint8_t v) { VDPGL_PORT(WriteByteVDP2Regs, a, v); }
void WriteWordVDP2Regs(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP2Regs, a, v); }
void WriteLongVDP2Regs(uint32_t a, uint32_t v) { VDPGL_PORT(WriteLongVDP2Regs, a, v); }
uint8_t ReadByteVDP2Regs(uint32_t a) { VDPGL_PORT(ReadByteVDP2Regs, a); }
uint16_t ReadWordVDP2Regs(uint32_t a) { VDPGL_PORT(ReadWordVDP2Regs, a); }
uint32_t ReadLongVDP2Regs(uint32_t a) { VDPGL_PORT(ReadLongVDP2Regs, a); }
void WriteByteVDP2VRAM(uint32_t a, uint8_t v) { VDPGL_PORT(WriteByteVDP2VRAM, a, v); }
void WriteWordVDP2VRAM(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP2VRAM, a, v); }
void WriteLongVDP2VRAM(uint32_t a, uint32_t v) { VDPGL_PORT(WriteLongVDP2VRAM, a, v); }
uint8_t ReadByteVDP2VRAM(uint32_t a) { VDPGL_PORT(ReadByteVDP2VRAM, a); }
uint16_t ReadWordVDP2VRAM(uint32_t a) { VDPGL_PORT(ReadWordVDP2VRAM, a); }
uint32_t ReadLongVDP2VRAM(uint32_t a) { VDPGL_PORT(ReadLongVDP2VRAM, a); }
void WriteByteVDP2CRAM(uint32_t a, uint8_t v) { VDPGL_PORT(WriteByteVDP2CRAM, a, v); }
void WriteWordVDP2CRAM(uint32_t a, uint16_t v) { VDPGL_PORT(WriteWordVDP2CRAM, a, v); }
void WriteLongVDP2CRAM(uint32_t a, uint32_t v) { VDPGL_PORT(WriteLongVDP2CRAM, a, v); }
uint8_t ReadByteVDP2CRAM(uint32_t a) { VDPGL_PORT(ReadByteVDP2CRAM, a); }
uint16_t ReadWordVDP2CRAM(uint32_t a) { VDPGL_PORT(ReadWordVDP2CRAM, a); }
uint32_t ReadLongVDP2CRAM(uint32_t a) { VDPGL_PORT(ReadLongVDP2CRAM, a); }

}  // extern "C"
