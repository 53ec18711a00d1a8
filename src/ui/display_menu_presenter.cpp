#include "ui/display_menu_presenter.h"

namespace vdpgl::ui {

std::atomic<int> CDisplayMenuPresenter::checkedScale{kMenuScaleOriginal};

namespace {

struct ScaleItem {
    int id;
    float scale;
};
// In the order a window's creation compares them with the renderer's scale.
constexpr ScaleItem kScaleItems[] = {{kMenuScaleOriginal, 1.0f}, {kMenuScale125, 1.25f}, {kMenuScale2, 2.0f},
                                     {kMenuScale25, 2.5f},        {kMenuScale3, 3.0f},    {kMenuScale32, 3.2f},
                                     {kMenuScale4, 4.0f},         {kMenuScale5, 5.0f}};

}  // namespace

float CDisplayMenuPresenter::ScaleOf(int id) {
    for (const ScaleItem& item : kScaleItems)
        if (item.id == id) return item.scale;
    return 0.0f;
}

void CDisplayMenuPresenter::OnCreate() {
    const float scale = target.GetRenderingScale();
    for (const ScaleItem& item : kScaleItems) {
        if (item.scale == scale) {
            checkedScale.store(item.id, std::memory_order_relaxed);
            break;
        }
    }
    wireframeChecked = target.IsWireframe();
}

bool CDisplayMenuPresenter::IsChecked(int id) const {
    if (id == kMenuWireframe) return wireframeChecked;
    return ScaleOf(id) != 0.0f && checkedScale.load(std::memory_order_relaxed) == id;
}

void CDisplayMenuPresenter::Command(int id) {
    if (const float scale = ScaleOf(id); scale != 0.0f) {
        checkedScale.store(id, std::memory_order_relaxed);
        target.SetRenderingScale(scale);  // the same factor again changes nothing
        return;
    }
    switch (id) {
    case kMenuWireframe:
        wireframeChecked = !target.IsWireframe();
        target.SetWireframe(wireframeChecked);
        break;
    case kMenuClearVdp1Cache: target.RequestVdp1CacheClear(); break;
    case kMenuClearVdp2Cache: target.RequestVdp2CacheClear(); break;
    case kMenuTextureEditor: target.OpenTextureEditor(); break;
    case kMenuControlPanel: target.OpenControlPanel(); break;
    case kMenuLoadTextureSet: target.OpenSetChooser(); break;
    default: break;
    }
}

}  // namespace vdpgl::ui
