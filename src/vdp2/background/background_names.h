#pragma once
// Background numbers as used by VDP2, the renderer, the control panel and the
// viewer: 0-3 are the normal scroll planes, 4-5 the rotation planes.
namespace vdpgl {

enum BackgroundNumber : int { kNbg0 = 0, kNbg1, kNbg2, kNbg3, kRbg0, kRbg1, kBackgroundCount };

inline constexpr const char* kBackgroundNames[kBackgroundCount] = {"NBG0", "NBG1", "NBG2", "NBG3", "RBG0", "RBG1"};

}  // namespace vdpgl
