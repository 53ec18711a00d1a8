// The control panel as an FLTK dialog over its presenter: two buttons, the
// three groups of switches, and the caches' counts refreshed twice a second.
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Return_Button.H>
#include <FL/Fl_Window.H>

#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/fltk/framed_group.h"
#include "platform/fltk/control_panel_layout.h"
#include "platform/ui_thread.h"
#include "ui/control_panel_presenter.h"

namespace vdpgl::platform {

namespace {

constexpr double kRefreshSeconds = 0.5;

Fl_Group* Frame(const panel::Rect& r, const char* label) { return FramedGroup(r.x, r.y, r.w, r.h, label); }

class CControlPanelView final : public Fl_Window {
public:
    CControlPanelView(ui::CControlPanelTarget& target, std::atomic<void*>& handle)
        : Fl_Window(panel::kWidth, panel::kHeight, ui::kControlPanelTitle), presenter(target), handle(handle) {
        auto* editor = new Fl_Return_Button(panel::kEditorButton.x, panel::kEditorButton.y, panel::kEditorButton.w,
                                            panel::kEditorButton.h, "VDP1 texture editor");
        editor->callback(OnPress, reinterpret_cast<void*>(intptr_t{ui::kPanelTextureEditor}));
        auto* viewer = new Fl_Button(panel::kViewerButton.x, panel::kViewerButton.y, panel::kViewerButton.w,
                                     panel::kViewerButton.h, "VDP2 background viewer");
        viewer->callback(OnPress, reinterpret_cast<void*>(intptr_t{ui::kPanelBackgroundViewer}));

        Fl_Group* options = Frame(panel::kOptionsFrame, "Rendering options");
        int index = 0;
        for (const char* groupName : {ui::kDisableBackgrounds, ui::kFilterBackgrounds, ui::kDisableParts}) {
            Fl_Group* group = Frame(panel::GroupRect(index / 6), groupName);
            for (const ui::ControlPanelBox& box : ui::kControlPanelBoxes) {
                if (box.group != groupName) continue;
                const panel::Rect r = panel::BoxRect(index++);
                auto* check = new Fl_Check_Button(r.x, r.y, r.w, r.h, box.text);
                check->callback(OnToggle, reinterpret_cast<void*>(static_cast<intptr_t>(box.id)));
                check->value(presenter.IsChecked(box.id) ? 1 : 0);
            }
            group->end();
        }
        options->end();

        cacheText = new Fl_Box(panel::kCacheText.x, panel::kCacheText.y, panel::kCacheText.w, panel::kCacheText.h);
        cacheText->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        cacheText->labelsize(11);
        end();
        callback([](Fl_Widget* w, void*) { w->hide(); });  // the close box and Escape close the panel
        Refresh(this);
        handle.store(static_cast<Fl_Window*>(this));
    }

    ~CControlPanelView() override {
        Fl::remove_timeout(Refresh, this);
        handle.store(nullptr);
    }

    void hide() override {
        Fl_Window::hide();
        Fl::remove_timeout(Refresh, this);
        Fl::delete_widget(this);
    }

private:
    static CControlPanelView* Of(Fl_Widget* widget) { return static_cast<CControlPanelView*>(widget->window()); }

    static void OnPress(Fl_Widget* widget, void* id) {
        Of(widget)->presenter.OnPress(static_cast<int>(reinterpret_cast<intptr_t>(id)));
    }

    static void OnToggle(Fl_Widget* widget, void* id) {
        const bool checked = static_cast<Fl_Check_Button*>(widget)->value() != 0;
        Of(widget)->presenter.OnToggle(static_cast<int>(reinterpret_cast<intptr_t>(id)), checked);
    }

    static void Refresh(void* data) {
        auto* view = static_cast<CControlPanelView*>(data);
        view->counts = view->presenter.CacheText();
        view->cacheText->label(view->counts.c_str());
        view->cacheText->redraw();
        Fl::repeat_timeout(kRefreshSeconds, Refresh, data);
    }

    ui::CControlPanelPresenter presenter;
    std::atomic<void*>& handle;
    Fl_Box* cacheText = nullptr;
    std::string counts;
};

}  // namespace

bool OpenControlPanel(ui::CControlPanelTarget& target, std::atomic<void*>& handle) {
    return RunOnUiThread([&target, &handle] {
        if (auto* open = static_cast<Fl_Window*>(handle.load())) {
            open->show();  // raised, not opened twice
            return;
        }
        (new CControlPanelView(target, handle))->show();
    });
}

}  // namespace vdpgl::platform
