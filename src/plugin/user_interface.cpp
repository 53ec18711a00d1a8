// The plug-in's windows and dialogs, and how the lifecycle calls reach them.
#include "plugin/user_interface.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>

#include "platform/dialogs.h"
#include "platform/display_window.h"
#include "platform/message_box.h"
#include "platform/ui_thread.h"
#include "plugin/plugin_state.h"
#include "plugin/texture_sets.h"
#include "render/opengl/opengl.h"
#include "ui/chip_targets.h"
#include "vdpgl/vdpgl.h"

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
// Between EmulationThreadStarting and EmulationThreadStoping.
std::atomic<bool> emulationRunning{false};

}  // namespace

void CreateUserInterface() {
    DestroyUserInterface();
    userInterface = new UserInterface;
    UserInterface& u = *userInterface;
    u.openers.controlPanel = [] {
        if (userInterface) platform::OpenControlPanel(*userInterface->panel, plugin.controlPanelDialog);
    };
    // While the emulation runs, the end of each frame serves the viewer; when
    // it does not, nothing changes the backgrounds and a click is served at once.
    u.openers.backgroundViewer = [] {
        platform::OpenBackgroundViewer(plugin.backgroundViewerDialog, [] {
            if (!emulationRunning.load()) ServeBackgroundViewer();
        });
    };
    u.openers.setChooser = [] { platform::OpenSetChooser(SetChooserTarget()); };
    u.openers.textureEditor = [] { platform::OpenTextureEditor(TextureEditorTarget(), plugin.textureEditorDialog); };
    u.menu = std::make_unique<ui::CChipMenuTarget>(*plugin.renderer, *plugin.vdp1, *plugin.vdp2, u.openers);
    u.panel = std::make_unique<ui::CChipPanelTarget>(*plugin.vdp1, *plugin.vdp2, u.openers);
}

void DestroyUserInterface() {
    // Every window closes with the thread, so none is left using the targets.
    platform::StopUiThread();
    plugin.displayWindow.store(nullptr);
    plugin.controlPanelDialog.store(nullptr);
    plugin.backgroundViewerDialog.store(nullptr);
    plugin.textureEditorDialog.store(nullptr);
    delete userInterface;
    userInterface = nullptr;
}

void StartDisplay() {
    emulationRunning = true;
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
    emulationRunning = false;
    if (plugin.renderer) plugin.renderer->ReleaseGl();
    auto* window = static_cast<platform::DisplayWindow*>(plugin.displayWindow.exchange(nullptr));
    // The editor goes with the display window; the panel and the viewer stay.
    if (window) platform::CloseTextureEditor(plugin.textureEditorDialog);
    platform::CloseDisplayWindow(window);
}

void ServeBackgroundViewer() {
    if (!plugin.backgroundViewerDialog.load() || !plugin.vdp2) return;
    ui::CChipBackgroundSource source(*plugin.vdp2);
    // Kept, so that a frame allocates nothing once they have grown; one pair
    // a thread (the emulation thread's frames, the UI thread's idle clicks).
    thread_local std::string information;
    thread_local ui::BackgroundPicture picture;
    std::shared_ptr<const ui::BackgroundPicture> shown;
    if (ui::CBackgroundViewerPresenter::Serve(source, information, picture))
        shown = std::make_shared<const ui::BackgroundPicture>(std::move(picture));
    platform::UpdateBackgroundViewer(plugin.backgroundViewerDialog, information, std::move(shown));
}

void OpenControlPanelForHost() {
    if (!userInterface)
        std::fprintf(stderr, "vdpgl: the control panel opens once the plug-in is initialised\n");
    else if (platform::IsHeadless())
        std::fprintf(stderr, "vdpgl: the control panel needs a display (DISPLAY is unset or VDPGL_HEADLESS=1)\n");
    else
        OpenDialogByName("panel");
}

bool OpenDialogByName(const char* name) {
    if (!userInterface || !name || platform::IsHeadless() || !platform::StartUiThread(true)) return false;
    const std::string which = name;
    if (which == "panel") userInterface->openers.controlPanel();
    else if (which == "viewer") userInterface->openers.backgroundViewer();
    else if (which == "editor") userInterface->openers.textureEditor();
    else return false;
    return true;
}

}  // namespace vdpgl

extern "C" int OpenDialog(const char* name) { return vdpgl::OpenDialogByName(name) ? 1 : 0; }
