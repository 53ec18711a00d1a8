#pragma once
// The replacement texture sets of the plug-in: the loaded set (the editor's
// and the hosts'), activated by name from the environment or the export.
namespace vdpgl {

namespace ui {
class CSetChooserTarget;
class CTextureEditorTarget;
}

// At initialisation, once the objects exist: the set root, then
// VDPGL_DUMP_TEXTURES and VDPGL_TEXTURE_SET. At shutdown: gone.
void CreateTextureSets();
void DestroyTextureSets();

// The sets on disk and their activation, for the menu's chooser.
ui::CSetChooserTarget& SetChooserTarget();
// The cache's patterns (read under its lock) and the shared set model, for
// the texture replacement editor.
ui::CTextureEditorTarget& TextureEditorTarget();
// At the end of each frame, on the emulation thread: the editor's pending
// pattern read, made while nothing writes VRAM.
void ServeTextureEditor();

}  // namespace vdpgl
