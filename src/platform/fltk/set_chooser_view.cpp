// The texture set chooser as an FLTK dialog over its presenter: the sets
// with their descriptions, "Load" (or a double click) and "Cancel".
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Hold_Browser.H>
#include <FL/Fl_Return_Button.H>
#include <FL/Fl_Window.H>

#include "platform/dialogs.h"
#include "platform/ui_thread.h"
#include "ui/set_chooser_presenter.h"

namespace vdpgl::platform {

namespace {

class CSetChooserView;
CSetChooserView* openChooser = nullptr;  // UI thread only: one at a time

class CSetChooserView final : public Fl_Window {
public:
    explicit CSetChooserView(ui::CSetChooserTarget& target)
        : Fl_Window(460, 300, ui::kSetChooserTitle), presenter(target) {
        list = new Fl_Hold_Browser(10, 10, 440, 245);
        static const int widths[] = {150, 0};
        list->column_widths(widths);
        list->column_char('\t');
        for (const ui::SetRow& row : presenter.Rows()) list->add((row.name + "\t" + row.description).c_str());
        list->callback([](Fl_Widget* w, void*) {
            if (Fl::event_clicks()) static_cast<CSetChooserView*>(w->window())->Load();
        });
        if (presenter.Rows().empty()) {
            list->hide();
            empty = presenter.EmptyText();
            auto* text = new Fl_Box(10, 10, 440, 245, empty.c_str());
            text->align(FL_ALIGN_LEFT | FL_ALIGN_TOP | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        } else {
            list->value(1);
        }
        auto* load = new Fl_Return_Button(260, 265, 90, 25, "Load");
        load->tooltip("Load the chosen set and draw with it from the next frame");
        load->callback([](Fl_Widget* w, void*) { static_cast<CSetChooserView*>(w->window())->Load(); });
        if (presenter.Rows().empty()) load->deactivate();
        auto* cancel = new Fl_Button(360, 265, 90, 25, "Cancel");
        cancel->callback([](Fl_Widget* w, void*) { w->window()->hide(); });
        end();
        callback([](Fl_Widget* w, void*) { w->hide(); });
        openChooser = this;
    }
    ~CSetChooserView() override {
        if (openChooser == this) openChooser = nullptr;
    }
    void hide() override {
        Fl_Window::hide();
        Fl::delete_widget(this);
    }

private:
    void Load() {
        const int line = list->value();
        // A set that cannot be loaded is said by its model; the chooser stays.
        if (line > 0 && presenter.Choose(static_cast<size_t>(line - 1))) hide();
    }

    ui::CSetChooserPresenter presenter;
    Fl_Hold_Browser* list = nullptr;
    std::string empty;
};

}  // namespace

bool OpenSetChooser(ui::CSetChooserTarget& target) {
    return RunOnUiThread([&target] {
        if (openChooser) {
            openChooser->show();
            return;
        }
        (new CSetChooserView(target))->show();
    });
}

}  // namespace vdpgl::platform
