#pragma once
// The plug-in's windows: the display window for each emulation run, the
// control panel for the host, and the targets through which both reach the
// renderer and the chips.
namespace vdpgl {

// After the objects exist / before they go: the targets, and at the end the
// UI thread with every window.
void CreateUserInterface();
void DestroyUserInterface();

// On the emulation thread: a fresh display window (when there is a display)
// and the GL context on it, else an offscreen context; and back.
void StartDisplay();
void StopDisplay();

// At the end of each frame, on the emulation thread: what the open
// background viewer shows, read while the backgrounds stand still.
void ServeBackgroundViewer();

// The host's setup call: the control panel, whether or not a display window exists.
void OpenControlPanelForHost();
// A dialog by name ("panel", "viewer"); false when it cannot open.
bool OpenDialogByName(const char* name);

}  // namespace vdpgl
