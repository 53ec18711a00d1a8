#pragma once
// The replacement texture sets of the plug-in: the loaded set (the editor's
// and the hosts'), activated by name from the environment or the export.
namespace vdpgl {

namespace ui {
class CSetChooserTarget;
}

// At initialisation, once the objects exist: the set root, then
// VDPGL_DUMP_TEXTURES and VDPGL_TEXTURE_SET. At shutdown: gone.
void CreateTextureSets();
void DestroyTextureSets();

// The sets on disk and their activation, for the menu's chooser.
ui::CSetChooserTarget& SetChooserTarget();

}  // namespace vdpgl
