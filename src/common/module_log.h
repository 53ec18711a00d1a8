#pragma once
// Per-module trace file. Each module works out its log path when it is built
// and deletes the file an earlier run left behind, so no stale log survives a
// start. Tracing itself is compiled in only with the VDPGL_TRACE build option;
// otherwise Log() is an empty inline call and costs nothing on hot paths.
#include <string>

#ifndef VDPGL_TRACE
#define VDPGL_TRACE 0
#endif

namespace vdpgl {

class CModuleLog {
public:
    CModuleLog() = default;
    // fileName is relative to the current directory, e.g. "vdp1.log".
    // sharesCommonLog: the module also knows the shared "common.log"
    // (never deleted).
    explicit CModuleLog(const char* fileName, bool sharesCommonLog = true) { SetUp(fileName, sharesCommonLog); }

    void SetUp(const char* fileName, bool sharesCommonLog = true);

#if VDPGL_TRACE
    void Log(const char* format, ...) const __attribute__((format(printf, 2, 3)));
#else
    void Log(const char* format, ...) const __attribute__((format(printf, 2, 3))) { (void)format; }
#endif

    const std::string& Path() const { return path; }
    const std::string& CommonPath() const { return commonPath; }

private:
    std::string path;
    std::string commonPath;
};

}  // namespace vdpgl
