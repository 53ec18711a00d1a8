#pragma once
// Opening TIFF files with libtiff's messages kept for the caller (never
// printed, never process-wide) and its allocations bounded, so that a
// hostile or broken file is a clear message rather than a flood or a crash.
#include <tiffio.h>

#include <string>

namespace vdpgl {

// Null when the file cannot be opened; `messages` gathers libtiff's errors
// for as long as the handle lives (it must outlive it).
TIFF* OpenTiff(const std::string& path, const char* mode, std::string& messages);

}  // namespace vdpgl
