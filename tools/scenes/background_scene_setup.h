#pragma once
// The backgrounds scene's set-up: VDP2's four backgrounds (registers, colour
// RAM, characters and maps), VDP1's frame control and the sprite patterns.
#include <array>

#include "background_scene_sprites.h"
#include "vdp1_command_list.h"
#include "vdp1_patterns.h"

namespace vdpgl::scenes {
class CSceneBuilder;
}

namespace vdpgl::scenes::backgrounds {

// What the frames draw with.
struct Assets {
    PixelCodes title{0, 0};  // the bitmap without its sparkle
    Vdp1Sprite redLeaf, yellowLeaf, balloon;
    std::array<Vdp1Sprite, kWingPositions> birds;
};

// Writes everything a game sets up before its first frame, display last.
// The bitmap's dots are left to the frames, which redraw it.
Assets SetUp(CSceneBuilder& scene);

}  // namespace vdpgl::scenes::backgrounds
