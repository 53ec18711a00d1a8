#pragma once
// CVdp1CharacterPattern: one cached VDP1 character pattern. CVdp1's table maps
// every 8-byte unit of VDP1 VRAM to the pattern that covers it; a VRAM write
// that changes a byte under a pattern marks it modified, and modified
// patterns are purged after the frame. Decoding and textures are added by the
// texture cache; this holds what the table and the ports rely on.
#include <atomic>
#include <cstdint>

#include "common/module_log.h"

namespace vdpgl {

class COpenGl;
class CVdp1;
class CVdp2;

class CVdp1CharacterPattern {
public:
    CVdp1CharacterPattern();
    ~CVdp1CharacterPattern();
    CVdp1CharacterPattern(const CVdp1CharacterPattern&) = delete;
    CVdp1CharacterPattern& operator=(const CVdp1CharacterPattern&) = delete;

    // Module set-up when VDP1 is linked to VDP2: the table, renderer and both
    // processors; resets the pattern count and deletes the module's old log.
    static void InitializeStatics(CVdp1CharacterPattern** table, COpenGl* renderer, CVdp1* vdp1, CVdp2* vdp2);
    static int PatternCount() { return patternCount.load(std::memory_order_relaxed); }

    uint32_t startAddress = 0;
    uint32_t endAddress = 0;
    // Set by the VRAM ports on the emulation thread, read by the editor too.
    std::atomic<bool> modified{false};

private:
    struct Statics {
        CVdp1CharacterPattern** characterPatterns = nullptr;
        COpenGl* renderer = nullptr;
        CVdp1* vdp1 = nullptr;
        CVdp2* vdp2 = nullptr;
        CModuleLog log;
    };
    static Statics statics;
    static std::atomic<int> patternCount;
};

}  // namespace vdpgl
