#include "common/png_file.h"

#include <png.h>

#include <cstring>

namespace vdpgl {

bool WritePng(const std::string& path, const uint8_t* rgba, int width, int height, std::string& error) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    if (!png_image_write_to_file(&image, path.c_str(), 0, rgba, 0, nullptr)) {
        error = "cannot write \"" + path + "\": " + image.message;
        return false;
    }
    return true;
}

bool ReadPng(const std::string& path, RgbaImage& result, std::string& error) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) {
        error = "cannot read \"" + path + "\": " + image.message;
        return false;
    }
    image.format = PNG_FORMAT_RGBA;
    result.width = static_cast<int>(image.width);
    result.height = static_cast<int>(image.height);
    result.pixels.assign(PNG_IMAGE_SIZE(image), 0);
    if (!png_image_finish_read(&image, nullptr, result.pixels.data(), 0, nullptr)) {
        error = "cannot decode \"" + path + "\": " + image.message;
        png_image_free(&image);
        return false;
    }
    return true;
}

}  // namespace vdpgl
