#pragma once
// The dialogs the menu and the host open. Each lives on the UI thread, one
// instance at a time: its handle (the plug-in's) is set while it is open and
// emptied when it closes.
#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace vdpgl::ui {
class CControlPanelTarget;
class CSetChooserTarget;
class CTextureEditorTarget;
struct BackgroundPicture;
}

namespace vdpgl::platform {

// Opens the control panel ("VDP plugin control"), or raises it when it is
// open already. Any thread; does not wait. False when no UI thread runs.
bool OpenControlPanel(ui::CControlPanelTarget& target, std::atomic<void*>& handle);

// Opens the texture set chooser, or raises it. Any thread; does not wait.
bool OpenSetChooser(ui::CSetChooserTarget& target);

// Opens the texture replacement editor, or raises it; CloseTextureEditor
// closes it (with the display window at every stop). Any thread; neither waits.
bool OpenTextureEditor(ui::CTextureEditorTarget& target, std::atomic<void*>& handle);
void CloseTextureEditor(std::atomic<void*>& handle);

// Opens the VDP2 background viewer, or raises it. Any thread; does not wait.
// `refreshNow` is called on the UI thread when the user picks a background:
// it serves the viewer at once when no frame is coming to do it.
bool OpenBackgroundViewer(std::atomic<void*>& handle, std::function<void()> refreshNow);
// What the emulation thread read for the open viewer at the end of a frame:
// the information text and, after "View", the picture (null: none new).
// Does not wait; a viewer closed meanwhile ignores it.
void UpdateBackgroundViewer(std::atomic<void*>& handle, std::string information,
                            std::shared_ptr<const ui::BackgroundPicture> picture);

}  // namespace vdpgl::platform
