#pragma once
// CVdp2CharacterPattern: one cached, decoded cell of VDP2 VRAM. CVdp2's table
// `cells` has a slot per 32 bytes of VRAM; a VRAM write that changes a byte
// marks the cell in that slot modified, and the cell is replaced the next time
// a background asks for it. Decoding is added by the cell cache; this holds
// what the table and the ports rely on.
#include <atomic>
#include <cstdint>

#include "common/module_log.h"

namespace vdpgl {

class COpenGl;
class CVdp2;

class CVdp2CharacterPattern {
public:
    CVdp2CharacterPattern(uint32_t start, uint32_t end) : startAddress(start), endAddress(end) {}
    CVdp2CharacterPattern(const CVdp2CharacterPattern&) = delete;
    CVdp2CharacterPattern& operator=(const CVdp2CharacterPattern&) = delete;

    // Module set-up by the CVdp2 constructor: its links and its two logs.
    static void InitializeModule(CVdp2* vdp2, COpenGl* renderer);

    void MarkModified() { modified.store(true, std::memory_order_relaxed); }

    uint32_t startAddress;
    uint32_t endAddress;
    std::atomic<bool> modified{false};

private:
    struct Module {
        CVdp2* vdp2 = nullptr;
        COpenGl* renderer = nullptr;
        CModuleLog cellsLog;
        CModuleLog characterPatternLog;
    };
    static Module module;
};

}  // namespace vdpgl
