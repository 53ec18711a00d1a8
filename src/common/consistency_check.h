#pragma once
// Internal consistency checks. A failed check names the expression and the
// module, on standard error, and the operation is skipped: an internal error
// must not take the host emulator down with it.
#include <cstdio>

#define VDPGL_CHECK_OR_RETURN(expression, module, ...)                                   \
    do {                                                                                  \
        if (!(expression)) {                                                              \
            std::fprintf(stderr, "vdpgl: Assertion failed: %s, file %s\n", #expression, module); \
            return __VA_ARGS__;                                                           \
        }                                                                                 \
    } while (0)
