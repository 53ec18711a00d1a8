// Information exports: they use no plug-in state and may come at any time.
#include <cstring>

#include "platform/message_box.h"
#include "plugin/plugin_texts.h"
#include "vdpgl/vdpgl.h"

extern "C" {

char* GetPluginName(char* buffer) {
    if (buffer) std::strcpy(buffer, vdpgl::kPluginName);
    return buffer;
}

char* GetPluginInfos(char* buffer) {
    if (buffer) std::strcpy(buffer, vdpgl::kPluginDescription);
    return buffer;
}

uint8_t GetPluginType(void) { return VDPGL_PLUGIN_TYPE; }

void DisplayPluginInfo(void) {
    vdpgl::platform::ShowMessageBox(vdpgl::kAboutTitle, vdpgl::kAboutText, vdpgl::platform::MessageIcon::Information);
}

}  // extern "C"
