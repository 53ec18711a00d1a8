#pragma once
// The display window as FLTK draws it: a menu bar built from the menu
// presenter's items and, below it, the picture area the GL context shows
// the frames in. The close box (and Escape) does nothing: the window lives as
// long as the emulation runs. F11 switches full screen, F12 asks for a
// screenshot. Lives on the UI thread.
#include <FL/Fl_Menu_Bar.H>
#include <FL/Fl_Window.H>

#include <string>
#include <vector>

#include "platform/display_window.h"
#include "ui/display_menu_presenter.h"

namespace vdpgl::platform {

class CDisplayWindowView final : public Fl_Window {
public:
    static constexpr int kMenuHeight = 25;

    CDisplayWindowView(int width, int height, ui::CDisplayMenuTarget& target);
    ~CDisplayWindowView() override;

    DisplayWindow& Handle() { return published; }
    // Shows the window and publishes its picture area in the handle.
    void Show();
    // The picture area's new size, and the title.
    void SetPictureSize(int width, int height, const std::string& title);
    void ToggleFullScreen();
    bool IsFullScreen() const { return fullScreen; }

    int handle(int event) override;
    void resize(int x, int y, int w, int h) override;

    // The view that owns this handle, or null once it is gone.
    static CDisplayWindowView* Find(const DisplayWindow* window);

private:
    static void OnMenu(Fl_Widget* widget, void* data);
    void SyncCheckMarks();

    ui::CDisplayMenuPresenter presenter;
    Fl_Menu_Bar* menuBar;
    Fl_Window* pictureArea;
    std::vector<std::string> itemPaths;  // as added, by index of the menu's items
    DisplayWindow published;
    bool fullScreen = false;
    bool ownFullScreen = false;  // no window manager to ask: sized over the screen by hand
    int windowedX = 0, windowedY = 0, windowedW = 0, windowedH = 0;
};

}  // namespace vdpgl::platform
