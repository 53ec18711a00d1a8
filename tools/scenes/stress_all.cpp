// Every stress load at once, as far as the chips allow: VDP1's 4,000
// parts, NBG0 as the bitmap, NBG1-NBG3 as cell planes, and RBG0 and RBG1
// with their coefficients (RBG1 takes the bitmap's NBG0 settings: 16
// colours, and the 2 x 2 cells that only it reads). The VRAM map in
// stress_scenes.h keeps the parts apart.
#include "scene_builder.h"
#include "stress_scenes.h"

namespace vdpgl::scenes::stress {

void WriteStressAll(CSceneBuilder& scene) {
    constexpr unsigned kPlanes = 0xE;  // NBG1-NBG3: NBG0 is the bitmap
    constexpr int kBitmapRows = 32;    // every dot rewritten each 8 frames
    CSharedRegisters shared;
    SetUpPlanes(scene, shared, kPlanes);
    SetUpRotation(scene, shared);
    SetUpBitmap(scene, shared);
    const SpriteLoad sprites = SetUpSprites(scene, shared);
    StartScreen(scene, shared);
    for (int frame = 0; frame < kFrames; ++frame) {
        WritePlanesFrame(scene, kPlanes, frame);
        WriteRotationFrame(scene, frame);
        WriteBitmapFrame(scene, frame, kBitmapRows);
        WriteSpritesFrame(scene, sprites, frame);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes::stress
