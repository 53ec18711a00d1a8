#include "scene_builder.h"

#include "vdp2/vdp2_registers.h"

namespace vdpgl::scenes {

using trace::Event;
using trace::Port;

namespace {

constexpr uint32_t kVramMask = 0x7FFFF;

}  // namespace

bool CSceneBuilder::Open(const std::string& path) {
    frame = 0;
    vdp1.known.assign(vdp1.known.size(), false);
    vdp2.known.assign(vdp2.known.size(), false);
    return writer.Open(path);
}

void CSceneBuilder::Begin() {
    writer.WriteEvent(Event::InitVDPPlugin);
    writer.WriteEvent(Event::EmulationThreadStarting);
}

void CSceneBuilder::StartDisplay() {
    constexpr uint32_t kTvmr = 0x00, kFbcr = 0x02, kPtmr = 0x04;
    Vdp1Register(kTvmr, 0x0000);
    Vdp1Register(kFbcr, 0x0000);
    Vdp1Register(kPtmr, 0x0002);
    Vdp2Register(vdp2reg::TVMD, vdp2reg::TVMD_DISP);
}

void CSceneBuilder::EndFrame() {
    writer.WriteEvent(Event::VDPOnVblankIn);
    writer.WriteEvent(Event::VDPOnVblankOut);
    writer.WriteFrame(frame++);
}

bool CSceneBuilder::End() {
    writer.WriteEvent(Event::EmulationThreadStoping);
    writer.WriteEvent(Event::DeInitPlugin);
    return writer.Close();
}

void CSceneBuilder::Word(Vram& vram, Port port, uint32_t address, uint16_t value) {
    const uint32_t index = (address & kVramMask) >> 1;
    if (vram.Unchanged(index, value)) return;
    vram.Remember(index, value);
    writer.WritePort(port, index * 2, value);
}

void CSceneBuilder::Long(Vram& vram, Port port, uint32_t address, uint32_t value) {
    const uint32_t index = (address & kVramMask & ~3u) >> 1;
    const uint16_t upper = static_cast<uint16_t>(value >> 16), lower = static_cast<uint16_t>(value);
    if (vram.Unchanged(index, upper) && vram.Unchanged(index + 1, lower)) return;
    vram.Remember(index, upper);
    vram.Remember(index + 1, lower);
    writer.WritePort(port, index * 2, value);
}

void CSceneBuilder::Vdp1Word(uint32_t address, uint16_t value) { Word(vdp1, Port::WriteWordVDP1VRAM, address, value); }

void CSceneBuilder::Vdp1Long(uint32_t address, uint32_t value) { Long(vdp1, Port::WriteLongVDP1VRAM, address, value); }

void CSceneBuilder::Vdp2Word(uint32_t address, uint16_t value) { Word(vdp2, Port::WriteWordVDP2VRAM, address, value); }

void CSceneBuilder::Vdp2Long(uint32_t address, uint32_t value) { Long(vdp2, Port::WriteLongVDP2VRAM, address, value); }

void CSceneBuilder::Vdp1Register(uint32_t address, uint16_t value) {
    writer.WritePort(Port::WriteWordVDP1Regs, address, value);
}

void CSceneBuilder::Vdp2Register(uint32_t address, uint16_t value) {
    writer.WritePort(Port::WriteWordVDP2Regs, address, value);
}

void CSceneBuilder::CramWord(uint32_t index, uint16_t value) {
    writer.WritePort(Port::WriteWordVDP2CRAM, index * 2, value);
}

}  // namespace vdpgl::scenes
