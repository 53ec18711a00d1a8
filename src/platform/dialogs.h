#pragma once
// The dialogs the menu and the host open. Each lives on the UI thread, one
// instance at a time: its handle (the plug-in's) is set while it is open and
// emptied when it closes.
#include <atomic>

namespace vdpgl::ui {
class CControlPanelTarget;
}

namespace vdpgl::platform {

// Opens the control panel ("VDP plugin control"), or raises it when it is
// open already. Any thread; does not wait. False when no UI thread runs.
bool OpenControlPanel(ui::CControlPanelTarget& target, std::atomic<void*>& handle);

}  // namespace vdpgl::platform
