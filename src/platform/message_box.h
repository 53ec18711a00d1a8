#pragma once
// Messages the user must see. Every message goes to standard error; with a
// display it is also shown in a box on the UI thread (started for the box if
// it does not run yet, and stopped again afterwards).
namespace vdpgl::platform {

enum class MessageIcon { Information, Exclamation, Error };

// A modal box: returns once the user has closed it (at once on the UI thread
// itself, or headless).
void ShowMessageBox(const char* title, const char* text, MessageIcon icon);
// The same box, without waiting: for failures the emulation thread reports
// while it goes on.
void PostMessageBox(const char* title, const char* text, MessageIcon icon);

// True when there is no display to show windows on (DISPLAY unset) or the
// user asked for headless mode (VDPGL_HEADLESS=1).
bool IsHeadless();

}  // namespace vdpgl::platform
