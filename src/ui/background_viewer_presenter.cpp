#include "ui/background_viewer_presenter.h"

#include <algorithm>

namespace vdpgl::ui {

std::atomic<int> CBackgroundViewerPresenter::background{0};
std::atomic<int> CBackgroundViewerPresenter::plane{0};
std::atomic<bool> CBackgroundViewerPresenter::viewRequested{false};

std::string PlaneName(int index) { return std::string("plane ") + static_cast<char>('A' + std::clamp(index, 0, 15)); }

void CBackgroundViewerPresenter::OnBackground(int id) {
    for (int i = 0; i < 6; ++i) {
        if (kViewerBoxes[i].id != id) continue;
        background.store(i, std::memory_order_relaxed);
        checkedBox = id;
    }
}

void CBackgroundViewerPresenter::OnPlane(int index) {
    if (index >= 0 && index < kViewerPlanes) plane.store(index, std::memory_order_relaxed);
}

bool CBackgroundViewerPresenter::Serve(CBackgroundSource& source, std::string& information,
                                       BackgroundPicture& picture) {
    const int bg = SelectedBackground();
    information = source.Information(bg);
    if (information.empty()) information = kNoInformation;
    if (!viewRequested.exchange(false, std::memory_order_relaxed)) return false;
    int width = 0, height = 0;
    source.Size(bg, width, height);
    // A background the viewer cannot show (a rotation background's bitmap,
    // a size beyond any plane) gives an empty picture.
    if (width <= 0 || height <= 0 || width > 4096 || height > 4096) width = height = 0;
    picture.width = width;
    picture.height = height;
    picture.texels.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0u);
    if (width > 0) {
        if (source.InCellMode(bg))
            source.RenderPlane(bg, SelectedPlane(), picture.texels.data());
        else
            source.DecodeBitmap(bg, picture.texels.data());
    }
    return true;
}

}  // namespace vdpgl::ui
