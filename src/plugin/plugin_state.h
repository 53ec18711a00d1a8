#pragma once
// The plug-in-wide state: the three long-lived objects and the handles that
// the threads entering the plug-in share. Handles that another thread polls
// or sets are atomics.
#include <atomic>
#include <cstdint>
#include <string>

namespace vdpgl {

class COpenGl;
class CVdp1;
class CVdp2;

struct PluginState {
    void* pluginInstance = nullptr;
    void* hostWindow = nullptr;
    COpenGl* renderer = nullptr;
    CVdp1* vdp1 = nullptr;
    CVdp2* vdp2 = nullptr;
    std::atomic<void*> displayWindow{nullptr};
    std::atomic<void*> controlPanelDialog{nullptr};
    std::atomic<void*> backgroundViewerDialog{nullptr};
    std::atomic<void*> textureEditorDialog{nullptr};
    std::string replacementTextureSetPath;
};

extern PluginState plugin;

}  // namespace vdpgl
