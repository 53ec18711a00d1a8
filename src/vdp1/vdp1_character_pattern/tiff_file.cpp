#include "vdp1/vdp1_character_pattern/tiff_file.h"

#include <cstdarg>
#include <cstdio>

namespace vdpgl {

namespace {

// One allocation of more than this is a broken or hostile file, not a texture.
constexpr tmsize_t kLargestAllocation = tmsize_t{256} << 20;

int KeepError(TIFF*, void* data, const char*, const char* format, va_list arguments) {
    auto& messages = *static_cast<std::string*>(data);
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (messages.empty()) messages = text;  // the first says most
    return 1;
}

int IgnoreWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

}  // namespace

TIFF* OpenTiff(const std::string& path, const char* mode, std::string& messages) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options) return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options, KeepError, &messages);
    TIFFOpenOptionsSetWarningHandlerExtR(options, IgnoreWarning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kLargestAllocation);
    TIFF* tiff = TIFFOpenExt(path.c_str(), mode, options);
    TIFFOpenOptionsFree(options);
    return tiff;
}

}  // namespace vdpgl
