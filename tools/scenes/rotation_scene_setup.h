#pragma once
// The rotation scene's set-up: the sky on NBG3 and the floor on RBG0
// (registers, colour RAM, characters and maps), VDP1's frame control and
// the sprite patterns. The floor's parameter table and coefficients are
// the frames' to write.
#include <array>

#include "background_scene_sprites.h"
#include "vdp1_command_list.h"

namespace vdpgl::scenes {
class CSceneBuilder;
}

namespace vdpgl::scenes::rotation {

// What the frames draw with.
struct Assets {
    Vdp1Sprite balloon;
    std::array<Vdp1Sprite, backgrounds::kWingPositions> birds;
};

// Writes everything a game sets up before its first frame, display last.
Assets SetUp(CSceneBuilder& scene);

}  // namespace vdpgl::scenes::rotation
