#include "common/module_log.h"

#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace vdpgl {

void CModuleLog::SetUp(const char* fileName, bool sharesCommonLog) {
    std::error_code ec;
    const std::filesystem::path dir = std::filesystem::current_path(ec);
    path = (dir / fileName).string();
    commonPath = sharesCommonLog ? (dir / "common.log").string() : std::string();
    // A missing file or one still in use is no reason to stop.
    std::filesystem::remove(path, ec);
}

#if VDPGL_TRACE
void CModuleLog::Log(const char* format, ...) const {
    if (path.empty()) return;
    if (std::FILE* f = std::fopen(path.c_str(), "a")) {
        va_list args;
        va_start(args, format);
        std::vfprintf(f, format, args);
        va_end(args);
        std::fclose(f);
    }
}
#endif

}  // namespace vdpgl
