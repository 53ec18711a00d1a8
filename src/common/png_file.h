#pragma once
// PNG files of RGBA pictures (8 bits a channel, top row first): the display
// window's screenshots, frame captures written by the player, reference
// pictures read by the tests.
#include <cstdint>
#include <string>
#include <vector>

namespace vdpgl {

struct RgbaImage {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;  // width * height * 4
};

// Each returns false and sets error (naming the file) on failure.
bool WritePng(const std::string& path, const uint8_t* rgba, int width, int height, std::string& error);
bool ReadPng(const std::string& path, RgbaImage& image, std::string& error);

}  // namespace vdpgl
