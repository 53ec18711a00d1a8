#pragma once
// CSceneBuilder: writes a trace the way a game drives the video chips, one
// port call at a time, framed by the lifecycle and blanking events a host
// sends. VRAM writes (VDP1 and VDP2) that would store the value already
// there are left out, so a scene may rewrite its whole command list or
// bitmap every frame and the trace still holds only what moved.
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
    // VDP1 in one-cycle mode, drawing at every frame change, and the
    // display on at 320 x 224, non-interlaced: what every scene shows on.
    void StartDisplay();
    // The end of one frame: V-blank in and out, then the frame boundary.
    void EndFrame();
    // The plug-in's stop and the file's end; false if anything failed.
    bool End();

    void Vdp1Word(uint32_t address, uint16_t value);
    // Four bytes at a 4-byte aligned address, the first in bits 31-24.
    void Vdp1Long(uint32_t address, uint32_t value);
    void Vdp1Register(uint32_t address, uint16_t value);
    void Vdp2Word(uint32_t address, uint16_t value);
    // Four bytes at a 4-byte aligned address, the first in bits 31-24.
    void Vdp2Long(uint32_t address, uint32_t value);
    void Vdp2Register(uint32_t address, uint16_t value);
    // One colour RAM entry (an RGB555 word in colour RAM mode 0).
    void CramWord(uint32_t index, uint16_t value);

    uint32_t FramesWritten() const { return frame; }

private:
    // What one VRAM holds after the writes so far, a word an entry; known
    // marks the words written at least once (the rest are unknown, not 0).
    struct Vram {
        static constexpr uint32_t kWords = 0x80000 / 2;
        std::vector<uint16_t> words = std::vector<uint16_t>(kWords);
        std::vector<bool> known = std::vector<bool>(kWords);

        bool Unchanged(uint32_t index, uint16_t value) const { return known[index] && words[index] == value; }
        void Remember(uint32_t index, uint16_t value) {
            words[index] = value;
            known[index] = true;
        }
    };

    void Word(Vram& vram, trace::Port port, uint32_t address, uint16_t value);
    void Long(Vram& vram, trace::Port port, uint32_t address, uint32_t value);

    trace::CTraceWriter writer;
    Vram vdp1, vdp2;
    uint32_t frame = 0;
};

}  // namespace vdpgl::scenes
