#include "ui/chip_targets.h"

#include <algorithm>

#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

void ReadCacheCounters(const CVdp2& vdp2, VdpglCacheCounters& counters) {
    using Patterns = CVdp1CharacterPattern;
    counters.vdp1Patterns = static_cast<uint32_t>(Patterns::PatternCount());
    counters.vdp1Textures = static_cast<uint32_t>(Patterns::TextureCount());
    counters.vdp1TextureBytes = Patterns::TextureBytes();
    counters.vdp1TextureBudget = Patterns::TextureBudget();
    counters.vdp2Cells = vdp2.CellCache().Cells();
    counters.vdp2Pictures = vdp2.CellCache().Pictures();
    counters.vdp2CellBytes = vdp2.CellCache().Bytes();
}

namespace ui {

namespace {

void Open(const std::function<void()>& opener) {
    if (opener) opener();
}

}  // namespace

float CChipMenuTarget::GetRenderingScale() const { return renderer.GetRenderingScale(); }
void CChipMenuTarget::SetRenderingScale(float scale) { renderer.SetRenderingScale(scale); }
bool CChipMenuTarget::IsWireframe() const { return renderer.IsWireframe(); }
void CChipMenuTarget::SetWireframe(bool on) { renderer.SetWireframe(on); }
void CChipMenuTarget::RequestVdp1CacheClear() { vdp1.RequestCacheClear(); }
void CChipMenuTarget::RequestVdp2CacheClear() { vdp2.RequestCellCacheClear(); }
void CChipMenuTarget::OpenTextureEditor() { Open(openers.textureEditor); }
void CChipMenuTarget::OpenControlPanel() { Open(openers.controlPanel); }
void CChipMenuTarget::OpenSetChooser() { Open(openers.setChooser); }
void CChipMenuTarget::RequestScreenshot() { renderer.RequestScreenshot(); }

bool CChipPanelTarget::IsBackgroundDisabled(int bgNumber) const { return vdp2.IsBackgroundDisabled(bgNumber); }
void CChipPanelTarget::SetBackgroundDisabled(int bgNumber, bool off) { vdp2.SetBackgroundDisabled(bgNumber, off); }
bool CChipPanelTarget::IsBackgroundFiltered(int bgNumber) const { return vdp2.IsBackgroundFiltered(bgNumber); }
void CChipPanelTarget::SetBackgroundFiltered(int bgNumber, bool on) { vdp2.SetBackgroundFiltered(bgNumber, on); }
bool CChipPanelTarget::IsPartEnabled(int kind) const { return vdp1.IsPartEnabled(kind); }
void CChipPanelTarget::SetPartEnabled(int kind, bool enabled) { vdp1.SetPartEnabled(kind, enabled); }
void CChipPanelTarget::OpenTextureEditor() { Open(openers.textureEditor); }
void CChipPanelTarget::OpenBackgroundViewer() { Open(openers.backgroundViewer); }

bool CChipPanelTarget::GetCacheCounters(VdpglCacheCounters& counters) const {
    ReadCacheCounters(vdp2, counters);
    return true;
}

std::string CChipBackgroundSource::Information(int background) { return vdp2.GetBackgroundInformation(background); }

void CChipBackgroundSource::Size(int background, int& width, int& height) {
    uint32_t w = 0, h = 0;
    vdp2.GetBackgroundSize(background, w, h);
    width = static_cast<int>(std::min<uint32_t>(w, 1u << 16));
    height = static_cast<int>(std::min<uint32_t>(h, 1u << 16));
}

bool CChipBackgroundSource::InCellMode(int background) { return vdp2.IsBackgroundInCellMode(background); }
void CChipBackgroundSource::DecodeBitmap(int background, uint32_t* texels) {
    vdp2.DecodeBackgroundBitmap(background, texels);
}
void CChipBackgroundSource::RenderPlane(int background, int plane, uint32_t* texels) {
    vdp2.RenderBackgroundPlane(background, static_cast<uint32_t>(plane), texels);
}

}  // namespace ui
}  // namespace vdpgl
