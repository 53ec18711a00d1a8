// The display window's FLTK view and the calls that open, size and close it
// from other threads.
#include "platform/fltk/display_window_view.h"

#include <FL/Fl.H>
#include <FL/x.H>

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>

#include "platform/ui_thread.h"

namespace vdpgl::platform {

namespace {

constexpr const char* kDisplayTitle = "OpenGL display";

// The windows alive now (UI thread only), so that a late call for a window
// already closed finds nothing rather than freed memory.
std::set<CDisplayWindowView*>& LiveViews() {
    static std::set<CDisplayWindowView*> views;
    return views;
}

// The picture area: the GL context draws here, FLTK never does.
class CPictureArea final : public Fl_Window {
public:
    CPictureArea(int x, int y, int w, int h) : Fl_Window(x, y, w, h) { box(FL_NO_BOX); }
    void draw() override {}
};

// The popups get an Alt shortcut, so the menu works from the keyboard (the
// control panel is reached from them with the arrow keys).
std::string BarLabel(const char* text) { return "&" + std::string(text); }

std::string ItemPath(const ui::DisplayMenuItem& item) {
    if (!item.popup) return item.text;
    std::string path = BarLabel(item.popup) + "/";
    if (item.submenu) path += std::string(item.submenu) + "/";
    return path + item.text;
}

}  // namespace

CDisplayWindowView::CDisplayWindowView(int width, int height, ui::CDisplayMenuTarget& target)
    : Fl_Window(width, height + kMenuHeight, kDisplayTitle), presenter(target) {
    presenter.OnCreate();
    menuBar = new Fl_Menu_Bar(0, 0, width, kMenuHeight);
    for (const ui::DisplayMenuItem& item : ui::kDisplayMenu) {
        int flags = 0;
        if (item.checkable) flags = ui::CDisplayMenuPresenter::ScaleOf(item.id) != 0.0f ? FL_MENU_RADIO : FL_MENU_TOGGLE;
        itemPaths.push_back(ItemPath(item));
        menuBar->add(itemPaths.back().c_str(), 0, OnMenu, reinterpret_cast<void*>(static_cast<intptr_t>(item.id)),
                     flags);
    }
    pictureArea = new CPictureArea(0, kMenuHeight, width, height);
    pictureArea->end();
    end();
    // The close box and Escape reach the window's callback: it does nothing.
    callback([](Fl_Widget*, void*) {});
    SyncCheckMarks();
    LiveViews().insert(this);
}

CDisplayWindowView::~CDisplayWindowView() { LiveViews().erase(this); }

CDisplayWindowView* CDisplayWindowView::Find(const DisplayWindow* window) {
    for (CDisplayWindowView* view : LiveViews())
        if (&view->published == window) return view;
    return nullptr;
}

void CDisplayWindowView::OnMenu(Fl_Widget* widget, void* data) {
    auto* view = static_cast<CDisplayWindowView*>(widget->window());
    view->presenter.Command(static_cast<int>(reinterpret_cast<intptr_t>(data)));
    // The view may be gone if the command ended the loop; it is not here.
    if (LiveViews().count(view)) view->SyncCheckMarks();
}

void CDisplayWindowView::SyncCheckMarks() {
    size_t index = 0;
    for (const ui::DisplayMenuItem& item : ui::kDisplayMenu) {
        const std::string& path = itemPaths[index++];
        if (!item.checkable) continue;
        auto* entry = const_cast<Fl_Menu_Item*>(menuBar->find_item(path.c_str()));
        if (!entry) continue;
        if (presenter.IsChecked(item.id))
            entry->set();
        else
            entry->clear();
    }
}

int CDisplayWindowView::handle(int event) {
    if (event == FL_KEYBOARD || event == FL_SHORTCUT) {
        if (Fl::event_key() == FL_F + 11) {
            ToggleFullScreen();
            return 1;
        }
        if (Fl::event_key() == FL_F + 12) {
            presenter.Screenshot();
            return 1;
        }
    }
    return Fl_Window::handle(event);
}

void CDisplayWindowView::resize(int x, int y, int w, int h) {
    Fl_Window::resize(x, y, w, h);
    // In full screen the picture takes the whole window; the renderer keeps
    // its aspect and fills the rest with black.
    if (fullScreen) {
        menuBar->hide();
        pictureArea->resize(0, 0, w, h);
    } else {
        menuBar->show();
        menuBar->resize(0, 0, w, kMenuHeight);
        pictureArea->resize(0, kMenuHeight, w, std::max(1, h - kMenuHeight));
    }
}

void CDisplayWindowView::ToggleFullScreen() {
    if (!fullScreen) {
        windowedX = x();
        windowedY = y();
        windowedW = w();
        windowedH = h();
        fullScreen = true;
        // A window manager is asked; without one, the window is sized over
        // the screen by hand (FLTK would otherwise make the window anew, and
        // the picture area's GL surface with it).
        ownFullScreen = !WindowManagerDoesFullScreen();
        if (ownFullScreen) {
            int sx, sy, sw, sh;
            Fl::screen_xywh(sx, sy, sw, sh, x(), y());
            resize(sx, sy, sw, sh);
        } else {
            fullscreen();
        }
    } else {
        fullScreen = false;
        if (ownFullScreen)
            resize(windowedX, windowedY, windowedW, windowedH);
        else
            fullscreen_off(windowedX, windowedY, windowedW, windowedH);
    }
}

void CDisplayWindowView::Show() {
    show();
    Fl::flush();
    // The GL context makes its surface on the picture area over another
    // connection: the server must know the window first.
    SyncUiDisplay();
    published.pictureArea = static_cast<uintptr_t>(fl_xid(pictureArea));
}

void CDisplayWindowView::SetPictureSize(int width, int height, const std::string& title) {
    copy_label(title.c_str());
    if (fullScreen) {
        windowedW = width;
        windowedH = height + kMenuHeight;
        return;
    }
    size(width, height + kMenuHeight);
}

DisplayWindow* OpenDisplayWindow(int width, int height, ui::CDisplayMenuTarget& menu,
                                 std::chrono::milliseconds timeout) {
    struct Result {
        std::atomic<bool> abandoned{false};
        DisplayWindow* window = nullptr;
    };
    auto result = std::make_shared<Result>();
    const bool done = RunOnUiThread(
        [result, width, height, &menu] {
            if (result->abandoned) return;
            auto* view = new CDisplayWindowView(width, height, menu);
            view->Show();
            result->window = &view->Handle();
        },
        timeout);
    if (!done) {
        result->abandoned = true;
        return nullptr;
    }
    return result->window;
}

void CloseDisplayWindow(DisplayWindow* window) {
    if (!window) return;
    RunOnUiThread(
        [window] {
            if (CDisplayWindowView* view = CDisplayWindowView::Find(window)) {
                view->hide();
                delete view;
            }
        },
        std::chrono::seconds(5));
}

void ResizeDisplayWindow(DisplayWindow* window, int width, int height, const std::string& title) {
    if (!window) return;
    // One resize waits at most, with the latest size: a UI thread held up
    // (a menu kept open) while the mode changes often gets one job, not many.
    struct Pending {
        std::mutex mutex;
        DisplayWindow* window = nullptr;
        int width = 0, height = 0;
        std::string title;
        bool posted = false;
    };
    static Pending pending;
    {
        std::lock_guard lock(pending.mutex);
        pending.window = window, pending.width = width, pending.height = height, pending.title = title;
        if (pending.posted) return;
        pending.posted = true;
    }
    const bool queued = RunOnUiThread([] {
        std::unique_lock lock(pending.mutex);
        DisplayWindow* target = pending.window;
        const int w = pending.width, h = pending.height;
        const std::string text = pending.title;
        pending.posted = false;
        lock.unlock();
        if (CDisplayWindowView* view = CDisplayWindowView::Find(target)) view->SetPictureSize(w, h, text);
    });
    if (!queued) {
        std::lock_guard lock(pending.mutex);
        pending.posted = false;
    }
}

}  // namespace vdpgl::platform
