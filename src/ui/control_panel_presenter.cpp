#include "ui/control_panel_presenter.h"

#include <cstdio>

namespace vdpgl::ui {

namespace {

// What a box stands for: a switch of one background or one part kind.
enum class Switch { None, Disabled, Filtered, Part };
struct Meaning {
    Switch kind;
    int index;
};

Meaning MeaningOf(int id) {
    static constexpr int kDisabled[] = {1022, 1033, 1034, 1035, 1036, 1037};
    static constexpr int kFiltered[] = {1023, 1038, 1040, 1041, 1042, 1043};
    static constexpr int kParts[] = {1047, 1048, 1046, 1024, 1045, 1049};  // by part kind 0-5
    for (int i = 0; i < 6; ++i) {
        if (id == kDisabled[i]) return {Switch::Disabled, i};
        if (id == kFiltered[i]) return {Switch::Filtered, i};
        if (id == kParts[i]) return {Switch::Part, i};
    }
    return {Switch::None, 0};
}

}  // namespace

bool CControlPanelPresenter::IsChecked(int id) const {
    const Meaning m = MeaningOf(id);
    switch (m.kind) {
    case Switch::Disabled: return target.IsBackgroundDisabled(m.index);
    case Switch::Filtered: return target.IsBackgroundFiltered(m.index);
    case Switch::Part: return !target.IsPartEnabled(m.index);
    default: return false;
    }
}

void CControlPanelPresenter::OnToggle(int id, bool checked) {
    const Meaning m = MeaningOf(id);
    switch (m.kind) {
    case Switch::Disabled: target.SetBackgroundDisabled(m.index, checked); break;
    case Switch::Filtered: target.SetBackgroundFiltered(m.index, checked); break;
    case Switch::Part: target.SetPartEnabled(m.index, !checked); break;
    default: break;
    }
}

void CControlPanelPresenter::OnPress(int id) {
    if (id == kPanelTextureEditor) target.OpenTextureEditor();
    if (id == kPanelBackgroundViewer) target.OpenBackgroundViewer();
}

std::string CControlPanelPresenter::CacheText() const {
    VdpglCacheCounters c{};
    if (!target.GetCacheCounters(c)) return "Caches: the plug-in is not running";
    constexpr double kMiB = 1024.0 * 1024.0;
    char text[256];
    std::snprintf(text, sizeof text,
                  "VDP1 textures: %u patterns, %u textures, %.1f of %.0f MiB\nVDP2 cells: %u cells, %u pictures, "
                  "%.1f MiB",
                  c.vdp1Patterns, c.vdp1Textures, static_cast<double>(c.vdp1TextureBytes) / kMiB,
                  static_cast<double>(c.vdp1TextureBudget) / kMiB, c.vdp2Cells, c.vdp2Pictures,
                  static_cast<double>(c.vdp2CellBytes) / kMiB);
    return text;
}

}  // namespace vdpgl::ui
