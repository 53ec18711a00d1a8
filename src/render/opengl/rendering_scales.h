#pragma once
// The rendering scales the plug-in offers: the display menu's Resolution
// items, and the factors a host without a menu may ask for by number.
#include <cstdlib>
#include <optional>
#include <string>

namespace vdpgl {

struct RenderingScaleChoice {
    const char* label;
    float scale;
};
inline constexpr RenderingScaleChoice kRenderingScales[] = {
    {"original", 1.0f}, {"x 1.25", 1.25f}, {"x 2", 2.0f}, {"x 2.5", 2.5f},
    {"x 3", 3.0f},      {"x 3.2", 3.2f},   {"x 4", 4.0f}, {"x 5", 5.0f},
};

// The factor a text such as "2.5" names, if it is one of the scales.
inline std::optional<float> ParseRenderingScale(const std::string& text) {
    char* end = nullptr;
    const float scale = std::strtof(text.c_str(), &end);
    if (text.empty() || *end != '\0') return std::nullopt;
    for (const RenderingScaleChoice& choice : kRenderingScales)
        if (choice.scale == scale) return scale;
    return std::nullopt;
}

// "1, 1.25, 2, 2.5, 3, 3.2, 4, 5", for messages.
inline std::string RenderingScaleList() {
    std::string list;
    for (const RenderingScaleChoice& choice : kRenderingScales) {
        std::string number = std::to_string(choice.scale);
        number.erase(number.find_last_not_of('0') + 1);
        if (number.back() == '.') number.pop_back();
        list += (list.empty() ? "" : ", ") + number;
    }
    return list;
}

}  // namespace vdpgl
