// The 32 memory and register ports. Each masks its address, compares, looks
// up at most one table entry and stores: nothing allocates or logs here.
// Before InitVDPPlugin (or after DeInitPlugin) writes are dropped and reads
// answer 0.
#include "plugin/plugin_state.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"
#include "vdpgl/vdpgl.h"

using vdpgl::plugin;

extern "C" {

// VDP1's frame buffer exists only as the rendered picture: writes are
// ignored and reads return 0.
void WriteByteVDP1FrameBuffer(uint32_t, uint8_t) {}
void WriteWordVDP1FrameBuffer(uint32_t, uint16_t) {}
void WriteLongVDP1FrameBuffer(uint32_t, uint32_t) {}
uint8_t ReadByteVDP1FrameBuffer(uint32_t) { return 0; }
uint16_t ReadWordVDP1FrameBuffer(uint32_t) { return 0; }
uint32_t ReadLongVDP1FrameBuffer(uint32_t) { return 0; }

void WriteByteVDP1VRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp1* vdp1 = plugin.vdp1) vdp1->WriteVramByte(a, v);
}
void WriteWordVDP1VRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp1* vdp1 = plugin.vdp1) vdp1->WriteVramWord(a, v);
}
void WriteLongVDP1VRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp1* vdp1 = plugin.vdp1) vdp1->WriteVramLong(a, v);
}
uint8_t ReadByteVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* vdp1 = plugin.vdp1;
    return vdp1 ? vdp1->ReadVramByte(a) : 0;
}
uint16_t ReadWordVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* vdp1 = plugin.vdp1;
    return vdp1 ? vdp1->ReadVramWord(a) : 0;
}
uint32_t ReadLongVDP1VRAM(uint32_t a) {
    const vdpgl::CVdp1* vdp1 = plugin.vdp1;
    return vdp1 ? vdp1->ReadVramLong(a) : 0;
}

void WriteWordVDP1Regs(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp1* vdp1 = plugin.vdp1) vdp1->WriteRegister(a, v);
}
uint16_t ReadWordVDP1Regs(uint32_t a) {
    vdpgl::CVdp1* vdp1 = plugin.vdp1;
    return vdp1 ? vdp1->ReadRegister(a) : 0;
}

void WriteByteVDP2Regs(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteRegisterByte(a, v);
}
void WriteWordVDP2Regs(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteRegisterWord(a, v);
}
void WriteLongVDP2Regs(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteRegisterLong(a, v);
}
uint8_t ReadByteVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadRegisterByte(a) : 0;
}
uint16_t ReadWordVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadRegisterWord(a) : 0;
}
uint32_t ReadLongVDP2Regs(uint32_t a) {
    vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadRegisterLong(a) : 0;
}

void WriteByteVDP2VRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteVramByte(a, v);
}
void WriteWordVDP2VRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteVramWord(a, v);
}
void WriteLongVDP2VRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteVramLong(a, v);
}
uint8_t ReadByteVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadVramByte(a) : 0;
}
uint16_t ReadWordVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadVramWord(a) : 0;
}
uint32_t ReadLongVDP2VRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadVramLong(a) : 0;
}

void WriteByteVDP2CRAM(uint32_t a, uint8_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteCramByte(a, v);
}
void WriteWordVDP2CRAM(uint32_t a, uint16_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteCramWord(a, v);
}
void WriteLongVDP2CRAM(uint32_t a, uint32_t v) {
    if (vdpgl::CVdp2* vdp2 = plugin.vdp2) vdp2->WriteCramLong(a, v);
}
uint8_t ReadByteVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadCramByte(a) : 0;
}
uint16_t ReadWordVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadCramWord(a) : 0;
}
uint32_t ReadLongVDP2CRAM(uint32_t a) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    return vdp2 ? vdp2->ReadCramLong(a) : 0;
}

}  // extern "C"
