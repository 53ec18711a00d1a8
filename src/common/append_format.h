#pragma once
// printf into the end of a string, a line (512 bytes) at a time: for the
// texts of the viewer, the benchmark's report and the like.
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

namespace vdpgl {

__attribute__((format(printf, 2, 3))) inline void AppendFormat(std::string& text, const char* format, ...) {
    char line[512];
    va_list args;
    va_start(args, format);
    const int n = std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    if (n > 0) text.append(line, static_cast<size_t>(n) < sizeof line ? static_cast<size_t>(n) : sizeof line - 1);
}

}  // namespace vdpgl
