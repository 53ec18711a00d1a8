#pragma once
// The sprite showcase's set-up: registers, colour RAM and the patterns and
// tables in VDP1 VRAM that every frame draws with.
#include <cstdint>
#include <vector>

#include "vdp1_command_list.h"

namespace vdpgl::scenes {
class CSceneBuilder;
}

namespace vdpgl::scenes::showcase {

struct Caption {
    Vdp1Sprite sprite;
    Point position;
};

// Everything the frames draw with, uploaded once.
struct Assets {
    Vdp1Sprite orangeBall, cyanBall, limeBall, pinkBall;
    Vdp1Sprite rings, diamond, flower, plasma, wheel, glyph, tile;
    std::vector<Caption> captions;
    uint16_t backgroundShading = 0, panelShading = 0, tileShading = 0, polygonShading = 0, lineShading = 0;
};

// Writes everything a game sets up before its first frame, display last.
Assets SetUp(CSceneBuilder& scene);

}  // namespace vdpgl::scenes::showcase
