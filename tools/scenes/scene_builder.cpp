#include "scene_builder.h"

namespace vdpgl::scenes {

using trace::Event;
using trace::Port;

namespace {

constexpr uint32_t kVramMask = 0x7FFFF;

}  // namespace

bool CSceneBuilder::Open(const std::string& path) {
    frame = 0;
    known.assign(known.size(), false);
    return writer.Open(path);
}

void CSceneBuilder::Begin() {
    writer.WriteEvent(Event::InitVDPPlugin);
    writer.WriteEvent(Event::EmulationThreadStarting);
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

void CSceneBuilder::Vdp1Word(uint32_t address, uint16_t value) {
    const uint32_t index = (address & kVramMask) >> 1;
    if (Unchanged(index, value)) return;
    Remember(index, value);
    writer.WritePort(Port::WriteWordVDP1VRAM, address & kVramMask & ~1u, value);
}

void CSceneBuilder::Vdp1Long(uint32_t address, uint32_t value) {
    const uint32_t index = (address & kVramMask & ~3u) >> 1;
    const uint16_t upper = static_cast<uint16_t>(value >> 16), lower = static_cast<uint16_t>(value);
    if (Unchanged(index, upper) && Unchanged(index + 1, lower)) return;
    Remember(index, upper);
    Remember(index + 1, lower);
    writer.WritePort(Port::WriteLongVDP1VRAM, index * 2, value);
}

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
