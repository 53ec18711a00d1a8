// The command-list walk: from VRAM address 0 along the jump fields, one part
// per drawing command, filed by the VDP2 priority it is composed with.
#include <mutex>

#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

using namespace vdp1reg;

namespace {

const uint8_t kNoPriorities[8] = {};

}  // namespace

void CVdp1::Append(uint32_t priority, CVdp1Part* part) {
    if (part) partsListVectors[priority & 7].push_back(part);
}

void CVdp1::BuildPartsListVectors() {
    log.Log("--BuildPartsListVectors()--\n");
    for (auto& list : partsListVectors) list.clear();
    partPool.Clear();

    // Sprites build their textures as they go, so the cache stays locked
    // against the editor for the whole walk.
    std::lock_guard lock(cacheMutex);
    uint16_t current = 0;  // in units of 8 bytes; wraps within VRAM
    uint16_t returnAddress = 0;
    int count = 0;
    Vdp1CommandTable command;
    command.Read(vram, 0);
    const uint8_t* priorities = vdp2 ? vdp2->spritePriorities : kNoPriorities;
    while (!(command[Vdp1CommandTable::CMDCTRL] & Vdp1CommandTable::kEnd)) {
        if (count > kMaxCommandsPerWalk - 1) {
            log.Log("End bit not fetched after %d commands, stopping\n", count);
            break;
        }
        const uint16_t colr = command[Vdp1CommandTable::CMDCOLR];
        uint8_t priority = 0;
        if (vdp2) {
            const uint8_t number = static_cast<uint8_t>((colr & vdp2->spritePriorityMask) >> vdp2->spritePriorityShift);
            priority = priorities[number & 7];
        }
        const uint32_t currentPriority = priority ? priority : 7;
        // Lookup-table and RGB sprites, and every untextured part, carry no
        // priority bits and take the priority of number 0 unchanged.
        const uint32_t fixedPriority = priorities[0] & 7;

        if (!(command[Vdp1CommandTable::CMDCTRL] & Vdp1CommandTable::kSkip)) {
            const uint32_t colorMode = command.ColorMode();
            const uint32_t spriteList = (colorMode == 1 || colorMode == 5) ? fixedPriority : currentPriority;
            switch (command.Command()) {
            case 0:
                if (IsPartEnabled(kNormalSprite))
                    Append(spriteList, partPool.Make<CVdp1NormalSprite>(command, localX, localY));
                break;
            case 1:
                if (IsPartEnabled(kScaledSprite))
                    Append(spriteList, partPool.Make<CVdp1ScaledSprite>(command, localX, localY));
                break;
            case 2:
                if (IsPartEnabled(kDistortedSprite)) {
                    log.Log("Distorted Sprite Draw, currentPriority: %d\n", currentPriority);
                    Append(spriteList, partPool.Make<CVdp1DistortedSprite>(command, localX, localY));
                }
                break;
            case 4:
                if (IsPartEnabled(kPolygon))
                    Append(fixedPriority, partPool.Make<CVdp1Polygon>(command, localX, localY));
                break;
            case 5:
                if (IsPartEnabled(kPolyline))
                    Append(fixedPriority, partPool.Make<CVdp1Polyline>(command, localX, localY));
                break;
            case 6:
                if (IsPartEnabled(kLine))
                    Append(fixedPriority, partPool.Make<CVdp1Line>(command, localX, localY));
                break;
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
