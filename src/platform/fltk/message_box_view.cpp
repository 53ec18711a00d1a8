// Message boxes as FLTK windows on the UI thread: an icon, the text, and an
// OK button (Return or Escape close it too). A caller that waits is released
// when the box closes, or when the UI thread ends and takes the box with it.
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Return_Button.H>
#include <FL/Fl_Window.H>
#include <FL/fl_draw.H>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "platform/message_box.h"
#include "platform/ui_thread.h"

namespace vdpgl::platform {

namespace {

// Set once the box has closed.
struct Closed {
    std::mutex mutex;
    std::condition_variable changed;
    bool closed = false;

    void Set() {
        std::lock_guard<std::mutex> lock(mutex);
        closed = true;
        changed.notify_all();
    }
    void Wait() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return closed; });
    }
};

class CMessageBoxView final : public Fl_Window {
public:
    CMessageBoxView(const std::string& title, const std::string& message, MessageIcon icon,
                    std::shared_ptr<Closed> closed)
        : Fl_Window(400, 120), text(message), closed(std::move(closed)) {
        copy_label(title.c_str());
        // The text's own size decides the box's: at most 420 wide, wrapped.
        fl_font(FL_HELVETICA, FL_NORMAL_SIZE);
        int textW = 420, textH = 0;
        fl_measure(text.c_str(), textW, textH);
        textW = std::clamp(textW + 12, 160, 432);  // room for the box's own margins
        textH = std::max(textH, 50);
        const int width = 10 + 50 + 15 + textW + 15, height = 10 + textH + 10 + 25 + 10;
        size(width, height);

        auto* iconBox = new Fl_Box(10, 10, 50, 50);
        iconBox->box(FL_THIN_UP_BOX);
        iconBox->labelfont(FL_TIMES_BOLD);
        iconBox->labelsize(34);
        iconBox->color(FL_WHITE);
        iconBox->label(icon == MessageIcon::Information ? "i" : "!");
        iconBox->labelcolor(icon == MessageIcon::Information ? FL_BLUE
                            : icon == MessageIcon::Error   ? FL_RED
                                                           : fl_rgb_color(200, 140, 0));
        auto* textBox = new Fl_Box(75, 10, textW, textH, text.c_str());
        textBox->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
        auto* ok = new Fl_Return_Button(width - 10 - 90, height - 10 - 25, 90, 25, "OK");
        ok->callback([](Fl_Widget* w, void*) { w->window()->hide(); });
        end();
        set_modal();
        callback([](Fl_Widget* w, void*) { w->hide(); });  // the close box and Escape
    }

    ~CMessageBoxView() override {
        if (closed) closed->Set();
    }

    void hide() override {
        Fl_Window::hide();
        if (closed) closed->Set();
        Fl::delete_widget(this);
    }

private:
    std::string text;
    std::shared_ptr<Closed> closed;
};

void Show(const char* title, const char* text, MessageIcon icon, bool wait) {
    std::fprintf(stderr, "vdpgl: %s: %s\n", title, text);
    std::fflush(stderr);
    if (IsHeadless()) return;
    const bool onUiThread = IsUiThread();
    const bool hadThread = IsUiThreadRunning();
    if (!onUiThread && !StartUiThread(false)) return;
    auto closed = wait && !onUiThread ? std::make_shared<Closed>() : nullptr;
    const bool posted = RunOnUiThread([title = std::string(title), message = std::string(text), icon, closed] {
        (new CMessageBoxView(title, message, icon, closed))->show();
    });
    if (posted && closed) closed->Wait();
    // A thread started for this box alone goes with it; one that the
    // plug-in keeps stays.
    if (!hadThread && !onUiThread && closed) ReleaseTemporaryUiThread();
}

}  // namespace

void ShowMessageBox(const char* title, const char* text, MessageIcon icon) { Show(title, text, icon, true); }
void PostMessageBox(const char* title, const char* text, MessageIcon icon) { Show(title, text, icon, false); }

}  // namespace vdpgl::platform
