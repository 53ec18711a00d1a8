// VDP1's frame at V-blank-out, the one place where anything is drawn: frame
// control, the walk, the eight priority levels from back to front (VDP2's
// backgrounds, then VDP1's parts of each level), swap, erase, and the purge
// of patterns whose VRAM changed.
#include "common/frame_profile.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

void CVdp1::Frame() {
    const Vdp1FrameActions actions = FrameControl();
    if (actions.draw) {
        log.Log("starts drawing\n");
        {
            CPhaseScope walk(kPhaseWalk);
            BuildPartsListVectors();
        }
        // Drawing is submission, but for the backgrounds' loading and
        // sampling, which charge their own phases.
        CPhaseScope submit(kPhaseSubmit);
        log.Log("\nstarting to draw current frame\n");
        for (int priority = 0; priority < kPriorityCount; ++priority) {
            log.Log("priority: %d\n", priority);
            if (vdp2) vdp2->DrawBackgrounds(priority);
            const std::vector<CVdp1Part*>& parts = partsListVectors[priority];
            if (parts.empty()) continue;
            for (CVdp1Part* part : parts) part->Draw();
            log.Log("number of parts drawn: %d\n", static_cast<int>(parts.size()));
        }
        renderer.FlushDrawing();
    }
    CPhaseScope swap(kPhaseSwap);
    if (actions.swap) {
        renderer.SwapFrameBuffers();
        log.Log("flip framebuffer\n");
    }
    if (actions.erase) {
        renderer.ClearFrameBuffer();
        log.Log("erase framebuffer\n");
    }
    CPhaseScope purge(kPhaseTextures);
    PurgeModifiedPatterns();
#if VDPGL_TRACE
    int distinct = 0;
    const CVdp1CharacterPattern* previous = nullptr;
    for (const CVdp1CharacterPattern* p : characterPatterns) {
        if (p && p != previous) ++distinct;
        previous = p;
    }
    log.Log("++total number of textures in cache: %d, number of instances: %d\n", distinct,
            CVdp1CharacterPattern::PatternCount());
#endif
}

}  // namespace vdpgl
