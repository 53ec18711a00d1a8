#pragma once
// CSceneBuilder: writes a trace the way a game drives the video chips, one
// port call at a time, framed by the lifecycle and blanking events a host
// sends. VDP1 VRAM writes that would store the value already there are left
// out, so a scene may rewrite its whole command list every frame and the
// trace still holds only what moved.
#include <cstdint>
#include <string>
#include <vector>

#include "trace/trace_writer.h"

namespace vdpgl::scenes {

class CSceneBuilder {
public:
    // Creates the trace file; false with Error() set when it cannot.
    bool Open(const std::string& path);
    const std::string& Error() const { return writer.Error(); }

    // The plug-in's start: initialisation and the emulation thread.
    void Begin();
    // The end of one frame: V-blank in and out, then the frame boundary.
    void EndFrame();
    // The plug-in's stop and the file's end; false if anything failed.
    bool End();

    void Vdp1Word(uint32_t address, uint16_t value);
    // Four bytes at a 4-byte aligned address, the first in bits 31-24.
    void Vdp1Long(uint32_t address, uint32_t value);
    void Vdp1Register(uint32_t address, uint16_t value);
    void Vdp2Register(uint32_t address, uint16_t value);
    // One colour RAM entry (an RGB555 word in colour RAM mode 0).
    void CramWord(uint32_t index, uint16_t value);

    uint32_t FramesWritten() const { return frame; }

private:
    // What VDP1 VRAM holds after the writes so far, a word an entry; known
    // marks the words written at least once (the rest are unknown, not 0).
    bool Unchanged(uint32_t wordIndex, uint16_t value) const { return known[wordIndex] && vram[wordIndex] == value; }
    void Remember(uint32_t wordIndex, uint16_t value) {
        vram[wordIndex] = value;
        known[wordIndex] = true;
    }

    static constexpr uint32_t kVramWords = 0x80000 / 2;

    trace::CTraceWriter writer;
    std::vector<uint16_t> vram = std::vector<uint16_t>(kVramWords);
    std::vector<bool> known = std::vector<bool>(kVramWords);
    uint32_t frame = 0;
};

}  // namespace vdpgl::scenes
