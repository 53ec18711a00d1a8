#include "plugin_library.h"

#include <dlfcn.h>

namespace vdpgl::host {

CPluginLibrary::~CPluginLibrary() { Unload(); }

bool CPluginLibrary::Load(const std::string& path) {
    Unload();
    handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* why = dlerror();
        error = "cannot load the plug-in " + path + ": " + (why ? why : "unknown error");
        return false;
    }
    PluginExports resolved;
#define VDPGL_HOST_RESOLVE(name, result, args)                                                  \
    resolved.name = reinterpret_cast<result(*) args>(dlsym(handle, #name));                    \
    if (!resolved.name) {                                                                       \
        error = "the plug-in " + path + " has no export " #name;                                \
        Unload();                                                                               \
        return false;                                                                           \
    }
    VDPGL_HOST_EXPORTS(VDPGL_HOST_RESOLVE)
#undef VDPGL_HOST_RESOLVE
    exports = resolved;
    error.clear();
    return true;
}

void CPluginLibrary::Unload() {
    if (handle) dlclose(handle);
    handle = nullptr;
    exports = PluginExports{};
}

}  // namespace vdpgl::host
