// The exports beside the host interface, for hosts, tests and the player's
// report: the rendering size, a copy of the picture presented by the last
// swap, what the caches hold, and where the last frame's time went.
#include "common/frame_profile.h"
#include "plugin/plugin_state.h"
#include "render/opengl/opengl.h"
#include "ui/chip_targets.h"
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
    vdpgl::ReadCacheCounters(*vdp2, *counters);
    return 1;
}

int GetFrameProfile(VdpglFrameProfile* profile) {
    vdpgl::CFrameProfile& frames = vdpgl::FrameProfile();
    if (!frames.Enabled()) {
        frames.Enable();
        return 0;
    }
    return profile && frames.LastFrame(profile->milliseconds) ? 1 : 0;
}

}  // extern "C"
