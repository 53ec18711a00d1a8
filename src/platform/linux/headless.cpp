// Whether windows can be shown: an X display is named and headless mode was
// not asked for.
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

}  // namespace vdpgl::platform
