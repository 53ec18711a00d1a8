#pragma once
// Messages the user must see. With a display they are modal boxes; headless
// they go to standard error.
namespace vdpgl::platform {

enum class MessageIcon { Information, Exclamation, Error };

void ShowMessageBox(const char* title, const char* text, MessageIcon icon);

// True when there is no display to show windows on (DISPLAY unset) or the
// user asked for headless mode (VDPGL_HEADLESS=1).
bool IsHeadless();

}  // namespace vdpgl::platform
