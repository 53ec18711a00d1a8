#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"

namespace vdpgl {

CVdp1CharacterPattern::Statics CVdp1CharacterPattern::statics;
std::atomic<int> CVdp1CharacterPattern::patternCount{0};

CVdp1CharacterPattern::CVdp1CharacterPattern() { patternCount.fetch_add(1, std::memory_order_relaxed); }

CVdp1CharacterPattern::~CVdp1CharacterPattern() { patternCount.fetch_sub(1, std::memory_order_relaxed); }

void CVdp1CharacterPattern::InitializeStatics(CVdp1CharacterPattern** table, COpenGl* renderer, CVdp1* vdp1,
                                              CVdp2* vdp2) {
    statics.characterPatterns = table;
    statics.renderer = renderer;
    statics.vdp1 = vdp1;
    statics.vdp2 = vdp2;
    patternCount.store(0, std::memory_order_relaxed);
    statics.log.SetUp("vdp1_character_pattern.log", false);
}

}  // namespace vdpgl
