// The exports beside the host interface, for hosts, tests and the player's
// report: the rendering size, a copy of the picture presented by the last
// swap, and what the caches hold.
#include "plugin/plugin_state.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp2/vdp2.h"
#include "vdpgl/vdpgl.h"

using vdpgl::plugin;

extern "C" {

void GetDisplaySize(int* width, int* height) {
    const vdpgl::COpenGl* renderer = plugin.renderer;
    if (width) *width = renderer ? renderer->GetRenderingHRes() : 0;
    if (height) *height = renderer ? renderer->GetRenderingVRes() : 0;
}

int CaptureDisplay(unsigned char* rgba, int width, int height) {
    vdpgl::COpenGl* renderer = plugin.renderer;
    return renderer && renderer->CaptureDisplay(rgba, width, height) ? 1 : 0;
}

int GetCacheCounters(VdpglCacheCounters* counters) {
    const vdpgl::CVdp2* vdp2 = plugin.vdp2;
    if (!counters || !vdp2) return 0;
    using Patterns = vdpgl::CVdp1CharacterPattern;
    counters->vdp1Patterns = static_cast<uint32_t>(Patterns::PatternCount());
    counters->vdp1Textures = static_cast<uint32_t>(Patterns::TextureCount());
    counters->vdp1TextureBytes = Patterns::TextureBytes();
    counters->vdp1TextureBudget = Patterns::TextureBudget();
    counters->vdp2Cells = vdp2->CellCache().Cells();
    counters->vdp2Pictures = vdp2->CellCache().Pictures();
    counters->vdp2CellBytes = vdp2->CellCache().Bytes();
    return 1;
}

}  // extern "C"
