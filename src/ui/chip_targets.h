#pragma once
// The menu's and the control panel's targets over the real renderer and
// chips. Dialogs open through the functions the UI layer gives (none yet:
// nothing opens); everything else reaches the settings the emulation thread
// reads at its next frame.
#include <functional>

#include "ui/background_viewer_presenter.h"
#include "ui/control_panel_presenter.h"
#include "ui/display_menu_presenter.h"

namespace vdpgl {

class COpenGl;
class CVdp1;
class CVdp2;

// What the caches hold now, for the export and the control panel.
void ReadCacheCounters(const CVdp2& vdp2, VdpglCacheCounters& counters);

namespace ui {

struct DialogOpeners {
    std::function<void()> textureEditor;
    std::function<void()> controlPanel;
    std::function<void()> backgroundViewer;
    std::function<void()> setChooser;
};

class CChipMenuTarget final : public CDisplayMenuTarget {
public:
    CChipMenuTarget(COpenGl& renderer, CVdp1& vdp1, CVdp2& vdp2, const DialogOpeners& openers)
        : renderer(renderer), vdp1(vdp1), vdp2(vdp2), openers(openers) {}
    float GetRenderingScale() const override;
    void SetRenderingScale(float scale) override;
    bool IsWireframe() const override;
    void SetWireframe(bool on) override;
    void RequestVdp1CacheClear() override;
    void RequestVdp2CacheClear() override;
    void OpenTextureEditor() override;
    void OpenControlPanel() override;
    void OpenSetChooser() override;
    void RequestScreenshot() override;

private:
    COpenGl& renderer;
    CVdp1& vdp1;
    CVdp2& vdp2;
    const DialogOpeners& openers;
};

class CChipPanelTarget final : public CControlPanelTarget {
public:
    CChipPanelTarget(CVdp1& vdp1, CVdp2& vdp2, const DialogOpeners& openers)
        : vdp1(vdp1), vdp2(vdp2), openers(openers) {}
    bool IsBackgroundDisabled(int bgNumber) const override;
    void SetBackgroundDisabled(int bgNumber, bool off) override;
    bool IsBackgroundFiltered(int bgNumber) const override;
    void SetBackgroundFiltered(int bgNumber, bool on) override;
    bool IsPartEnabled(int kind) const override;
    void SetPartEnabled(int kind, bool enabled) override;
    void OpenTextureEditor() override;
    void OpenBackgroundViewer() override;
    bool GetCacheCounters(VdpglCacheCounters& counters) const override;

private:
    CVdp1& vdp1;
    CVdp2& vdp2;
    const DialogOpeners& openers;
};

// The viewer's reads of VDP2's backgrounds, made on the emulation thread.
class CChipBackgroundSource final : public CBackgroundSource {
public:
    explicit CChipBackgroundSource(CVdp2& vdp2) : vdp2(vdp2) {}
    std::string Information(int background) override;
    void Size(int background, int& width, int& height) override;
    bool InCellMode(int background) override;
    void DecodeBitmap(int background, uint32_t* texels) override;
    void RenderPlane(int background, int plane, uint32_t* texels) override;

private:
    CVdp2& vdp2;
};

}  // namespace ui
}  // namespace vdpgl
