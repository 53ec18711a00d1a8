// Lifecycle and blanking exports: the order in which each call reaches the
// renderer, VDP1 and VDP2.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <filesystem>
#include <system_error>

#include "common/frame_profile.h"
#include "plugin/plugin_state.h"
#include "plugin/plugin_texts.h"
#include "plugin/texture_sets.h"
#include "plugin/trace_recorder.h"
#include "plugin/user_interface.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"
#include "vdpgl/vdpgl.h"

namespace vdpgl {

PluginState plugin;

namespace {

void DestroyObjects() {
    delete plugin.vdp1;
    delete plugin.vdp2;
    delete plugin.renderer;
    // Cleared, so that a call after DeInitPlugin finds nothing rather than
    // freed memory.
    plugin.vdp1 = nullptr;
    plugin.vdp2 = nullptr;
    plugin.renderer = nullptr;
}

// VDPGL_SCALE=<factor> starts at one of the display menu's rendering
// scales (hosts without a menu, such as vdpgl-play, choose it this way).
void ApplyScaleFromEnvironment() {
    const char* text = std::getenv("VDPGL_SCALE");
    if (!text || !*text) return;
    if (const std::optional<float> scale = ParseRenderingScale(text)) {
        plugin.renderer->SetRenderingScale(*scale);
        return;
    }
    std::fprintf(stderr, "vdpgl: VDPGL_SCALE=%s is not one of the rendering scales (%s); using 1\n", text,
                 RenderingScaleList().c_str());
}

// VDPGL_TEXTURE_MEMORY_MB=<n> sets how much texture memory the VDP1 cache
// keeps; without it, or with a value that is no count of megabytes, 256.
void ApplyTextureMemoryFromEnvironment() {
    constexpr unsigned long kDefaultMegabytes = CVdp1TextureStore::kDefaultBudget >> 20;
    constexpr unsigned long kMostMegabytes = 1ul << 20;  // a terabyte
    unsigned long megabytes = kDefaultMegabytes;
    if (const char* text = std::getenv("VDPGL_TEXTURE_MEMORY_MB"); text && *text) {
        char* end = nullptr;
        errno = 0;
        const unsigned long value = std::strtoul(text, &end, 10);
        if (*text != '-' && *end == '\0' && errno == 0 && value >= 1 && value <= kMostMegabytes)
            megabytes = value;
        else
            std::fprintf(stderr,
                         "vdpgl: VDPGL_TEXTURE_MEMORY_MB=%s is not a number of megabytes from 1 to %lu; using %lu\n",
                         text, kMostMegabytes, kDefaultMegabytes);
    }
    CVdp1CharacterPattern::SetTextureBudget(uint64_t{megabytes} << 20);
}

// VDPGL_ROTATION_SAMPLING=screen samples the rotation planes once per
// emulated screen dot; "grid" or nothing keeps the 256 x 256 grid.
void ApplyRotationSamplingFromEnvironment() {
    const char* text = std::getenv("VDPGL_ROTATION_SAMPLING");
    const std::string value = text ? text : "";
    if (value == "screen")
        plugin.vdp2->rotationScreenSampling = true;
    else if (!value.empty() && value != "grid")
        std::fprintf(stderr, "vdpgl: VDPGL_ROTATION_SAMPLING=%s is neither \"grid\" nor \"screen\"; using the grid\n",
                     text);
}

}  // namespace

}  // namespace vdpgl

using vdpgl::plugin;

extern "C" {

bool InitVDPPlugin(void* record) {
    vdpgl::CTraceRecorder::StartFromEnvironment();
    VDPGL_RECORD_EVENT(InitVDPPlugin);
    void* words[2] = {nullptr, nullptr};
    if (record) {
        void* const* given = static_cast<void* const*>(record);
        words[0] = given[0];
        words[1] = given[1];
    }
    // A second initialisation without DeInitPlugin starts afresh.
    if (plugin.renderer) {
        vdpgl::StopDisplay();
        vdpgl::DestroyUserInterface();
        vdpgl::DestroyObjects();
    }

    plugin.pluginInstance = words[0];
    plugin.hostWindow = words[1];
    plugin.renderer = new vdpgl::COpenGl(plugin.pluginInstance);
    plugin.vdp1 = new vdpgl::CVdp1(*plugin.renderer);
    plugin.vdp2 = new vdpgl::CVdp2(*plugin.renderer);
    // VDP1's link hands both processors to the parts and the texture cache,
    // so it comes after both exist.
    plugin.vdp1->Link(*plugin.vdp2);
    plugin.vdp2->Link(*plugin.vdp1);
    vdpgl::ApplyScaleFromEnvironment();
    vdpgl::ApplyTextureMemoryFromEnvironment();
    vdpgl::ApplyRotationSamplingFromEnvironment();
    vdpgl::CreateUserInterface();

    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::current_path(ec) / vdpgl::kReplacementFolderName;
    plugin.replacementTextureSetPath = folder.string();
    std::filesystem::create_directory(folder, ec);  // an existing folder or a failure is not reported
    vdpgl::CreateTextureSets();
    return true;
}

void DeInitPlugin(void) {
    VDPGL_RECORD_EVENT(DeInitPlugin);
    // A host that shuts down without stopping the emulation first: the
    // context goes before its window does.
    if (plugin.renderer) vdpgl::StopDisplay();
    vdpgl::DestroyUserInterface();
    vdpgl::DestroyTextureSets();
    vdpgl::DestroyObjects();
}

void Reset(void) {
    VDPGL_RECORD_EVENT(Reset);
    if (!plugin.vdp1) return;
    plugin.vdp1->Reset();
    plugin.vdp2->ResetVdp2();
}

void SetupPlugin(void) {
    VDPGL_RECORD_EVENT(SetupPlugin);
    // The control panel lives on the UI thread, which this call starts when
    // no display window has yet.
    vdpgl::OpenControlPanelForHost();
}

void EmulationThreadStarting(void) {
    VDPGL_RECORD_EVENT(EmulationThreadStarting);
    if (!plugin.vdp1) return;
    // A fresh display window (with a display), and the context current on
    // this, the emulation thread; every GL call comes from here on. A failure
    // has been shown to the user and leaves drawing harmless.
    vdpgl::StartDisplay();
    plugin.vdp1->Reset();
    plugin.vdp2->ResetVdp2();
}

void EmulationThreadStoping(void) {
    VDPGL_RECORD_EVENT(EmulationThreadStoping);
    // Cached textures belong to this context: they go with it, so that the
    // next start's cache holds no names of a context that no longer exists.
    if (plugin.vdp1) plugin.vdp1->ClearPatternCache();
    vdpgl::StopDisplay();
}

void VDPOnVblankIn(void) {
    VDPGL_RECORD_EVENT(VDPOnVblankIn);
    if (plugin.vdp2) plugin.vdp2->OnVblankIn();
}

void VDPOnVblankOut(void) {
    VDPGL_RECORD_EVENT(VDPOnVblankOut);
    if (!plugin.vdp1) return;
    plugin.renderer->ApplyPendingChanges();
    {
        vdpgl::CPhaseScope registers(vdpgl::kPhaseVdp2);
        plugin.vdp2->OnVblankOut();
    }
    plugin.vdp1->Frame();
    vdpgl::FrameProfile().EndFrame();
    vdpgl::ServeBackgroundViewer();
    vdpgl::ServeTextureEditor();
}

void VDPOnHblankIn(void) {
    VDPGL_RECORD_EVENT(VDPOnHblankIn);
    if (!plugin.vdp1) return;
    plugin.vdp1->OnHblankIn();
    plugin.vdp2->OnHblankIn();
}

void VDPOnHblankOut(void) {
    VDPGL_RECORD_EVENT(VDPOnHblankOut);
    if (plugin.vdp2) plugin.vdp2->OnHblankOut();
}

}  // extern "C"
