#pragma once
// The rotation scene: a tiled plaza on RBG0 seen in perspective from a
// camera circling its compass rose, the floor turning, rising and tilting
// under a dusk sky on NBG3, with a balloon and birds from VDP1 in front,
// for five seconds.
namespace vdpgl::scenes {

class CSceneBuilder;

// Writes the scene's set-up and 300 frames.
void WriteRotationScene(CSceneBuilder& scene);

}  // namespace vdpgl::scenes
