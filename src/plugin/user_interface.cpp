// The plug-in's windows and dialogs, and how the lifecycle calls reach them.
#include "plugin/user_interface.h"

#include <chrono>
#include <cstdio>
#include <memory>

#include "platform/dialogs.h"
#include "platform/display_window.h"
#include "platform/message_box.h"
#include "platform/ui_thread.h"
#include "plugin/plugin_state.h"
#include "render/opengl/opengl.h"
#include "ui/chip_targets.h"

namespace vdpgl {

namespace {

// How long the emulation thread waits for its display window.
constexpr std::chrono::seconds kWindowWait{5};

struct UserInterface {
    ui::DialogOpeners openers;
    std::unique_ptr<ui::CChipMenuTarget> menu;
    std::unique_ptr<ui::CChipPanelTarget> panel;
};

UserInterface* userInterface = nullptr;

}  // namespace

void CreateUserInterface() {
    DestroyUserInterface();
    userInterface = new UserInterface;
    UserInterface& u = *userInterface;
    u.openers.controlPanel = [] {
        if (userInterface) platform::OpenControlPanel(*userInterface->panel, plugin.controlPanelDialog);
    };
    // The texture editor and the background viewer open from here once they exist.
    u.menu = std::make_unique<ui::CChipMenuTarget>(*plugin.renderer, *plugin.vdp1, *plugin.vdp2, u.openers);
    u.panel = std::make_unique<ui::CChipPanelTarget>(*plugin.vdp1, *plugin.vdp2, u.openers);
}

void DestroyUserInterface() {
    // Every window closes with the thread, so none is left using the targets.
    platform::StopUiThread();
    plugin.displayWindow.store(nullptr);
    plugin.controlPanelDialog.store(nullptr);
    delete userInterface;
    userInterface = nullptr;
}

void StartDisplay() {
    COpenGl& renderer = *plugin.renderer;
    platform::DisplayWindow* window = nullptr;
    if (!platform::IsHeadless() && userInterface) {
        if (platform::StartUiThread(true))
            window = platform::OpenDisplayWindow(renderer.GetRenderingHRes(), renderer.GetRenderingVRes(),
                                                 *userInterface->menu, kWindowWait);
        if (!window)
            platform::PostMessageBox("Display window",
                                     "The display window could not be made; the picture is drawn offscreen only.",
                                     platform::MessageIcon::Exclamation);
    }
    plugin.displayWindow.store(window);
    renderer.InitGl(window);
    if (window && !renderer.HasContext()) {
        // No GL surface on the window: go on offscreen, so that frames and
        // captures still work.
        platform::CloseDisplayWindow(window);
        plugin.displayWindow.store(nullptr);
        renderer.InitGl(nullptr);
    }
}

void StopDisplay() {
    if (plugin.renderer) plugin.renderer->ReleaseGl();
    auto* window = static_cast<platform::DisplayWindow*>(plugin.displayWindow.exchange(nullptr));
    platform::CloseDisplayWindow(window);
}

void OpenControlPanelForHost() {
    if (!userInterface) {
        std::fprintf(stderr, "vdpgl: the control panel opens once the plug-in is initialised\n");
        return;
    }
    if (platform::IsHeadless()) {
        std::fprintf(stderr, "vdpgl: the control panel needs a display (DISPLAY is unset or VDPGL_HEADLESS=1)\n");
        return;
    }
    if (platform::StartUiThread(true)) userInterface->openers.controlPanel();
}

}  // namespace vdpgl
