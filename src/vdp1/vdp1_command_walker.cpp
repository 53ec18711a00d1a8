// The command-list walk: from VRAM address 0 along the jump fields, one part
// per drawing command, filed by the VDP2 priority it is composed with.
#include <mutex>

#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

using namespace vdp1reg;

template <typename Part>
void CVdp1::AddPart(int kind, uint32_t priority, const Vdp1CommandTable& command) {
    if (!IsPartEnabled(kind)) return;
    if (CVdp1Part* part = partPool.Make<Part>(command, localX, localY)) partsListVectors[priority & 7].push_back(part);
}

void CVdp1::BuildPartsListVectors() {
    log.Log("--BuildPartsListVectors()--\n");
    for (auto& list : partsListVectors) list.clear();
    partPool.Clear();
    if (!vdp2) return;  // priorities come from VDP2: nothing to file parts by

    // Sprites build their textures as they go, so the cache stays locked
    // against the editor for the whole walk.
    std::lock_guard lock(cacheMutex);
    CVdp1Part::BeginWalk();
    CVdp1CharacterPattern::BeginWalk();
    // Lookup-table and RGB sprites, and every untextured part, carry no
    // priority bits and take the priority of number 0 unchanged.
    const uint32_t fixedPriority = vdp2->spritePriorities[0];
    uint16_t current = 0;  // in units of 8 bytes; wraps within VRAM
    uint16_t returnAddress = 0;
    int count = 0;
    Vdp1CommandTable command;
    command.Read(vram, 0);
    while (!(command[Vdp1CommandTable::CMDCTRL] & Vdp1CommandTable::kEnd)) {
        if (count > kMaxCommandsPerWalk - 1) {
            log.Log("End bit not fetched after %d commands, stopping\n", count);
            break;
        }
        const uint8_t priority = vdp2->SpritePriority(command[Vdp1CommandTable::CMDCOLR]);
        const uint32_t currentPriority = priority ? priority : 7;

        if (!(command[Vdp1CommandTable::CMDCTRL] & Vdp1CommandTable::kSkip)) {
            const uint32_t colorMode = command.ColorMode();
            const uint32_t spriteList = (colorMode == 1 || colorMode == 5) ? fixedPriority : currentPriority;
            switch (command.Command()) {
            case 0: AddPart<CVdp1NormalSprite>(kNormalSprite, spriteList, command); break;
            case 1: AddPart<CVdp1ScaledSprite>(kScaledSprite, spriteList, command); break;
            case 2:
                if (IsPartEnabled(kDistortedSprite))
                    log.Log("Distorted Sprite Draw, currentPriority: %d\n", currentPriority);
                AddPart<CVdp1DistortedSprite>(kDistortedSprite, spriteList, command);
                break;
            case 4: AddPart<CVdp1Polygon>(kPolygon, fixedPriority, command); break;
            case 5: AddPart<CVdp1Polyline>(kPolyline, fixedPriority, command); break;
            case 6: AddPart<CVdp1Line>(kLine, fixedPriority, command); break;
            case 8:
            case 9: break;  // clipping is accepted and not applied
            case 10:
                localX = command.Signed(Vdp1CommandTable::CMDXA);
                localY = command.Signed(Vdp1CommandTable::CMDYA);
                break;
            default:
                log.Log("Unknown command @0x%08X: 0x%04X\n", command.address, command[Vdp1CommandTable::CMDCTRL]);
                break;
            }
        }

        const uint16_t link = command[Vdp1CommandTable::CMDLINK];
        const uint16_t next = static_cast<uint16_t>(current + 4);
        switch (command.JumpMode() & 3) {
        case 0: current = next; break;
        case 1: current = link; break;
        case 2:
            returnAddress = next;
            current = link;
            break;
        case 3: current = returnAddress; break;
        }
        ++count;
        command.Read(vram, uint32_t{current} * 8);
    }

    registers[COPR >> 1] = static_cast<uint16_t>(uint32_t{current} * 8);
    if (command[Vdp1CommandTable::CMDCTRL] & Vdp1CommandTable::kEnd)
        registers[EDSR >> 1] = static_cast<uint16_t>((registers[EDSR >> 1] >> 1) | 2);
}

}  // namespace vdpgl
