// CVdp1Part: what all parts share: the fields of CMDPMOD, local coordinates
// and scale, gouraud and colour offsets.
#include "vdp1/vdp1_part.h"

#include <array>

#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

namespace {

// Channel offset of a 5-bit gouraud component: 16 is neutral.
constexpr std::array<float, 32> kGouraudOffsets = [] {
    std::array<float, 32> t{};
    for (int i = 0; i < 32; ++i) t[i] = static_cast<float>(i - 16) / 32.0f;
    return t;
}();

// Value of a 9-bit signed VDP2 colour offset register.
constexpr std::array<float, 512> kColorOffsets = [] {
    std::array<float, 512> t{};
    for (int i = 0; i < 512; ++i) t[i] = static_cast<float>(i < 256 ? i : i - 512) / 256.0f;
    return t;
}();

}  // namespace

Vdp1PartContext CVdp1Part::shared;
CVdp1Part::WalkState CVdp1Part::walk;

void CVdp1Part::BeginWalk() {
    using namespace vdp2reg;
    walk.xScale = shared.vdp1 ? shared.vdp1->xScale : 1;
    walk.yScale = shared.vdp1 ? shared.vdp1->yScale : 1;
    walk.colorOffset = {};
    const CVdp2* vdp2 = shared.vdp2;
    if (!vdp2 || !(vdp2->Register(CLOFEN) & CLOF_SPRITE)) return;
    const uint32_t r = (vdp2->Register(CLOFSL) & CLOF_SPRITE) ? COBR : COAR;
    walk.colorOffset = {kColorOffsets[vdp2->Register(r) & 0x1FF], kColorOffsets[vdp2->Register(r + 2) & 0x1FF],
                        kColorOffsets[vdp2->Register(r + 4) & 0x1FF]};
}

CVdp1Part::CVdp1Part(const Vdp1CommandTable& c) {
    using F = Vdp1CommandTable;
    const uint16_t pmod = c[F::CMDPMOD];
    userClipping = (pmod >> 10) & 1;
    clippingMode = (pmod >> 9) & 1;
    mesh = (pmod >> 8) & 1;
    colorCalculation = pmod & 7;
    colorCtrl = c[F::CMDCOLR];
    gouraudTableAddress = uint32_t{c[F::CMDGRDA]} * 8;
    for (int v = 0; v < 4; ++v) {
        vertices[v].x = c.Signed(static_cast<F::Field>(F::CMDXA + 2 * v));
        vertices[v].y = c.Signed(static_cast<F::Field>(F::CMDYA + 2 * v));
    }
}

float CVdp1Part::ApplyColorCalculation() {
    float factor = 1.0f;
    alpha = 1.0f;  // replace, gouraud, and the prohibited mode 5 as replace
    switch (colorCalculation) {
    case kShadow:
        alpha = 0.5f;
        factor = 0.0f;
        break;
    case kHalfLuminance:
    case kGouraudHalfLuminance: factor = 0.5f; break;
    case kHalfTransparency:
    case kGouraudHalfTransparency: alpha = 0.5f; break;
    default: break;
    }
    if (mesh) alpha = 0.5f;
    return factor;
}

void CVdp1Part::GouraudOffsets(Vdp1Rgb (&offsets)[4]) const {
    // Bit 2 alone decides, so the prohibited mode 5 is shaded too; sprites
    // leave it out themselves.
    if (!(colorCalculation & kGouraud) || !shared.vram) {
        for (Vdp1Rgb& o : offsets) o = {};
        return;
    }
    for (int v = 0; v < 4; ++v) {
        const uint16_t w = shared.vram->ReadWord(gouraudTableAddress + 2 * v);
        offsets[v] = {kGouraudOffsets[w & 0x1F], kGouraudOffsets[(w >> 5) & 0x1F], kGouraudOffsets[(w >> 10) & 0x1F]};
    }
}

void CVdp1Part::PlaceVertices(int count, int32_t localX, int32_t localY) {
    for (int v = 0; v < count; ++v) {
        vertices[v].x = static_cast<int16_t>((vertices[v].x + localX) * walk.xScale);
        vertices[v].y = static_cast<int16_t>((vertices[v].y + localY) * walk.yScale);
    }
}

uint32_t CVdp1SpritePart::ComputeVdp2PaletteIndex() const {
    static constexpr uint32_t kBankMasks[8] = {0xFFF0, 0, 0xFFC0, 0xFF80, 0xFF00, 0, 0, 0};
    const CVdp2* vdp2 = shared.vdp2;
    uint32_t base = 0;
    if (vdp2) base = ((vdp2->Register(vdp2reg::CRAOFB) & 0x70) >> 4) * (vdp2->cramMode == 2 ? 512 : 256);
    return ((base + (colorCtrl & kBankMasks[colorMode & 7])) & 0x7FF) >> 4;
}

}  // namespace vdpgl
