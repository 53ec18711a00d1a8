#include "vdp2/vdp2_character_pattern/vdp2_character_pattern.h"

namespace vdpgl {

CVdp2CharacterPattern::Module CVdp2CharacterPattern::module;

void CVdp2CharacterPattern::InitializeModule(CVdp2* vdp2, COpenGl* renderer) {
    module.vdp2 = vdp2;
    module.renderer = renderer;
    module.cellsLog.SetUp("cells.log");
    module.characterPatternLog.SetUp("character_pattern.log");
}

}  // namespace vdpgl
