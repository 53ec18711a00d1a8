#pragma once
// Internal consistency checks. A failed check names the expression and the
// module, on standard error, and the operation is skipped: an internal error
// must not take the host emulator down with it.
#include <cstdio>

namespace vdpgl {
inline void ReportFailedCheck(const char* expression, const char* module) {
    std::fprintf(stderr, "vdpgl: Assertion failed: %s, file %s\n", expression, module);
}
}  // namespace vdpgl

#define VDPGL_CHECK_OR_RETURN(expression, module, ...)           \
    do {                                                          \
        if (!(expression)) {                                      \
            ::vdpgl::ReportFailedCheck(#expression, module);      \
            return __VA_ARGS__;                                   \
        }                                                         \
    } while (0)
