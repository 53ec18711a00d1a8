#pragma once
// The sprite showcase: every VDP1 drawing command, colour mode and colour
// calculation on one 320 x 224 screen, animated for five seconds.
namespace vdpgl::scenes {

class CSceneBuilder;

// Writes the scene's register set-up, palettes, patterns and 300 frames.
void WriteSpriteShowcase(CSceneBuilder& scene);

}  // namespace vdpgl::scenes
