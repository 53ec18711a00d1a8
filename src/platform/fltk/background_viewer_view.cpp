// The VDP2 background viewer as an FLTK dialog over its presenter: the
// background boxes, the plane list, "View", the information text, and the
// picture beside them, drawn dot for dot.
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Window.H>
#include <FL/fl_draw.H>

#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/dialogs.h"
#include "platform/fltk/framed_group.h"
#include "platform/ui_thread.h"
#include "ui/background_viewer_presenter.h"

namespace vdpgl::platform {

namespace {

constexpr int kControlsWidth = 232;  // the picture starts here
constexpr int kControlsHeight = 420;

// The viewed picture, at (232, 10), one screen dot per texel.
class CPictureBox final : public Fl_Widget {
public:
    CPictureBox() : Fl_Widget(kControlsWidth, 10, 0, 0) {}
    void Show(std::shared_ptr<const ui::BackgroundPicture> shown) {
        picture = std::move(shown);
        size(picture->width, picture->height);
        redraw();
    }
    void draw() override {
        if (!picture || picture->width <= 0) return;
        // Transparent dots carry black: they show as black, as in a dump.
        fl_draw_image(reinterpret_cast<const uchar*>(picture->texels.data()), x(), y(), picture->width,
                      picture->height, 4);
    }

private:
    std::shared_ptr<const ui::BackgroundPicture> picture;
};

class CBackgroundViewerView final : public Fl_Window {
public:
    CBackgroundViewerView(std::atomic<void*>& handle, std::function<void()> refreshNow)
        : Fl_Window(kControlsWidth + 8, kControlsHeight, ui::kViewerTitle), handle(handle),
          refreshNow(std::move(refreshNow)) {
        Fl_Group* group = FramedGroup(10, 10, 212, 96, "Background");
        for (int i = 0; i < 6; ++i) {
            boxes[i] = new Fl_Check_Button(20 + (i % 3) * 66, 32 + (i / 3) * 30, 64, 24, ui::kViewerBoxes[i].text);
            boxes[i]->callback(OnBox, reinterpret_cast<void*>(static_cast<intptr_t>(ui::kViewerBoxes[i].id)));
        }
        group->end();
        planes = new Fl_Choice(10, 116, 212, 25);
        for (int p = 0; p < ui::kViewerPlanes; ++p) planes->add(ui::PlaneName(p).c_str());
        planes->value(ui::CBackgroundViewerPresenter::SelectedPlane());
        planes->callback([](Fl_Widget* w, void*) {
            auto* view = static_cast<CBackgroundViewerView*>(w->window());
            view->presenter.OnPlane(static_cast<Fl_Choice*>(w)->value());
        });
        auto* view = new Fl_Button(10, 151, 212, 25, "View");
        view->callback([](Fl_Widget* w, void*) {
            auto* viewer = static_cast<CBackgroundViewerView*>(w->window());
            viewer->presenter.OnView();
            if (viewer->refreshNow) viewer->refreshNow();
        });
        information = new Fl_Box(10, 186, 212, kControlsHeight - 196, ui::kNoInformation);
        information->align(FL_ALIGN_TOP_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        information->labelsize(11);
        information->box(FL_THIN_DOWN_BOX);
        picture = new CPictureBox;
        end();
        callback([](Fl_Widget* w, void*) { w->hide(); });
        handle.store(static_cast<Fl_Window*>(this));
    }

    ~CBackgroundViewerView() override { handle.store(nullptr); }

    void hide() override {
        Fl_Window::hide();
        Fl::delete_widget(this);
    }

    void Update(const std::string& text, std::shared_ptr<const ui::BackgroundPicture> shown) {
        if (text != shownText) {
            shownText = text;
            information->label(shownText.c_str());
            information->redraw();
        }
        if (!shown) return;
        int w = 0, h = 0;
        ui::CBackgroundViewerPresenter::WindowSizeFor(shown->width, shown->height, w, h);
        size(w, std::max(h, kControlsHeight));  // never smaller than the controls
        picture->Show(std::move(shown));
        redraw();
    }

private:
    static void OnBox(Fl_Widget* w, void* id) {
        auto* view = static_cast<CBackgroundViewerView*>(w->window());
        view->presenter.OnBackground(static_cast<int>(reinterpret_cast<intptr_t>(id)));
        for (int i = 0; i < 6; ++i) view->boxes[i]->value(view->presenter.IsChecked(ui::kViewerBoxes[i].id));
        if (view->refreshNow) view->refreshNow();
    }

    ui::CBackgroundViewerPresenter presenter;
    std::atomic<void*>& handle;
    std::function<void()> refreshNow;
    Fl_Check_Button* boxes[6] = {};
    Fl_Choice* planes = nullptr;
    Fl_Box* information = nullptr;
    CPictureBox* picture = nullptr;
    std::string shownText = ui::kNoInformation;
};

}  // namespace

bool OpenBackgroundViewer(std::atomic<void*>& handle, std::function<void()> refreshNow) {
    return RunOnUiThread([&handle, refreshNow = std::move(refreshNow)] {
        if (auto* open = static_cast<Fl_Window*>(handle.load())) {
            open->show();
            return;
        }
        (new CBackgroundViewerView(handle, refreshNow))->show();
    });
}

void UpdateBackgroundViewer(std::atomic<void*>& handle, std::string information,
                            std::shared_ptr<const ui::BackgroundPicture> picture) {
    // One update waits at most: a UI thread held up (a menu kept open) gets
    // the latest text, not a frame's worth each.
    static std::mutex mutex;
    static std::string latestText;
    static std::shared_ptr<const ui::BackgroundPicture> latestPicture;
    static bool posted = false;
    {
        std::lock_guard lock(mutex);
        latestText = std::move(information);
        if (picture) latestPicture = std::move(picture);
        if (posted) return;
        posted = true;
    }
    const bool queued = RunOnUiThread([&handle] {
        std::string text;
        std::shared_ptr<const ui::BackgroundPicture> shown;
        {
            std::lock_guard lock(mutex);
            text.swap(latestText);
            shown.swap(latestPicture);
            posted = false;
        }
        if (auto* window = static_cast<Fl_Window*>(handle.load()))
            static_cast<CBackgroundViewerView*>(window)->Update(text, std::move(shown));
    });
    if (!queued) {
        std::lock_guard lock(mutex);
        posted = false;
    }
}

}  // namespace vdpgl::platform
