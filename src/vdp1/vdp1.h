#pragma once
// CVdp1: VDP1's registers and VRAM, the table of cached character patterns,
// and the state machine that decides from the program's register writes when
// VDP1 draws, changes frame buffers and erases.
#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "common/console_vram.h"
#include "common/module_log.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp1/vdp1_part.h"
#include "vdp1/vdp1_part_pool.h"
#include "vdp1/vdp1_registers.h"

namespace vdpgl {

class COpenGl;
class CVdp2;

// What the frame control decided at a V-blank-out.
struct Vdp1FrameActions {
    bool draw = false;
    bool swap = false;
    bool erase = false;
    bool operator==(const Vdp1FrameActions&) const = default;
};

class CVdp1 {
public:
    static constexpr uint32_t kPatternTableSize = CConsoleVram::kSize >> 3;
    // A walk stops after this many commands without an END bit.
    static constexpr int kMaxCommandsPerWalk = 4001;
    static constexpr int kPriorityCount = 8;

    explicit CVdp1(COpenGl& renderer);
    ~CVdp1();
    CVdp1(const CVdp1&) = delete;
    CVdp1& operator=(const CVdp1&) = delete;

    void Link(CVdp2& vdp2);
    void Reset();

    void WriteRegister(uint32_t address, uint16_t value);
    uint16_t ReadRegister(uint32_t address);

    // VRAM ports. A write that changes the stored value marks the pattern
    // covering its 8-byte unit modified; an equal value invalidates nothing.
    uint8_t ReadVramByte(uint32_t a) const { return vram.ReadByte(a); }
    uint16_t ReadVramWord(uint32_t a) const { return vram.ReadWord(a); }
    uint32_t ReadVramLong(uint32_t a) const { return vram.ReadLong(a); }
    void WriteVramByte(uint32_t a, uint8_t v) {
        if (vram.WriteByte(a, v)) MarkPatternModified(a);
    }
    void WriteVramWord(uint32_t a, uint16_t v) {
        if (vram.WriteWord(a, v)) MarkPatternModified(a);
    }
    void WriteVramLong(uint32_t a, uint32_t v) {
        if (vram.WriteLong(a, v)) MarkPatternModified(a);
    }

    // Safe from any thread: the clear runs at the start of the next frame.
    void RequestCacheClear() { clearCacheRequested.store(true, std::memory_order_release); }
    void SetPartEnabled(int kind, bool enabled);
    bool IsPartEnabled(int kind) const;
    void OnHblankIn() {}

    // Patterns in address order, each once, leaving out modified ones. The
    // caller holds cacheMutex while it uses them.
    std::vector<CVdp1CharacterPattern*> GetCachedPatterns() const;
    CVdp1CharacterPattern* GetPattern(uint32_t address) const {
        return characterPatterns[(address & CConsoleVram::kMask) >> 3];
    }

    // The frame-control steps of a V-blank-out: cache clear, scale, one-cycle
    // mode and automatic drawing, then the draw, swap and erase requests are
    // taken (cleared) and returned for the frame to carry out.
    Vdp1FrameActions FrameControl();
    // VDP1's frame at a V-blank-out: frame control, then drawing, swap and
    // erase as it decided, then the purge of modified patterns.
    void Frame();
    // Walks the command list from address 0 and files one part per drawing
    // command in the list of its priority; sets COPR and, at an END, EDSR.
    void BuildPartsListVectors();
    // After the frame: patterns that the walk retired and those that VRAM
    // writes made modified are deleted, and the textures over the budget
    // that the walk did not use given back.
    void PurgeModifiedPatterns();
    // Deletes every cached pattern and empties the table.
    void ClearPatternCache();

    uint16_t Register(uint32_t address) const { return registers[(address & vdp1reg::kAddressMask) >> 1]; }

    COpenGl& renderer;
    CVdp2* vdp2 = nullptr;
    // The parts of the last walk by priority, in command order.
    std::array<std::vector<CVdp1Part*>, kPriorityCount> partsListVectors;
    uint16_t registers[vdp1reg::kCount] = {};
    CConsoleVram vram;
    CVdp1CharacterPattern* characterPatterns[kPatternTableSize] = {};
    // Held by the emulation thread while it changes the table or its patterns,
    // and by the editor while it reads them.
    std::mutex cacheMutex;
    std::atomic<bool> clearCacheRequested{false};
    uint32_t eightBitsPerPixel = 0;
    bool highResolution = false;
    bool doubleInterlace = false;
    bool frameChangeRequested = false;
    bool eraseRequested = false;
    bool drawRequested = false;
    int32_t eraseUpperLeftX = 0;
    int32_t eraseUpperLeftY = 0;
    int32_t eraseLowerRightX = 0;
    int32_t eraseLowerRightY = 0;
    int16_t localX = 0;
    int16_t localY = 0;
    std::array<std::atomic<bool>, kPartKindCount> partDisabled{};
    int32_t yScale = 1;
    int32_t xScale = 1;

private:
    // Builds a part of this kind, unless the kind is switched off, and files
    // it in the list of this priority.
    template <typename Part>
    void AddPart(int kind, uint32_t priority, const Vdp1CommandTable& command);
    void MarkPatternModified(uint32_t a) {
        if (CVdp1CharacterPattern* p = characterPatterns[(a & CConsoleVram::kMask) >> 3])
            p->modified.store(true, std::memory_order_relaxed);
    }
    void WriteTvmr(uint16_t v);
    void WriteFbcr(uint16_t v);
    void WritePtmr(uint16_t v);

    // yScale as the last FBCR write or reset set it, to return to when VDP2
    // stops doubling the picture.
    int32_t interlaceYScale = 1;
    std::vector<CVdp1CharacterPattern*> doomedPatterns;  // reused by the purge
    CVdp1PartPool partPool{kMaxCommandsPerWalk};
    CModuleLog log{"vdp1.log"};
};

}  // namespace vdpgl
