#pragma once
// The backgrounds scene: a dusk landscape in parallax on VDP2's four normal
// backgrounds (a far sky, middle hills, a near layer zoomed to twice the
// size and a bitmap with the title), with VDP1 sprites between and in front
// of them, for five seconds.
namespace vdpgl::scenes {

class CSceneBuilder;

// Writes the scene's set-up and 300 frames.
void WriteBackgroundScene(CSceneBuilder& scene);

}  // namespace vdpgl::scenes
