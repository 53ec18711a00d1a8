// The two exports beside the host interface, for hosts and tests: the
// rendering size, and a copy of the picture presented by the last swap.
#include "plugin/plugin_state.h"
#include "render/opengl/opengl.h"
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

}  // extern "C"
