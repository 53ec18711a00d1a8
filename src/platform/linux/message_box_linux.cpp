// Linux message boxes. The windowed box arrives with the display window's
// user-interface thread; until then, and always when headless, the message
// goes to standard error so that it is never lost.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/message_box.h"

namespace vdpgl::platform {

bool IsHeadless() {
    const char* headless = std::getenv("VDPGL_HEADLESS");
    if (headless && std::strcmp(headless, "1") == 0) return true;
    const char* display = std::getenv("DISPLAY");
    return !display || !*display;
}

void ShowMessageBox(const char* title, const char* text, MessageIcon) {
    std::fprintf(stderr, "vdpgl: %s: %s\n", title, text);
    std::fflush(stderr);
}

}  // namespace vdpgl::platform
