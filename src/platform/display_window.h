#pragma once
// The display window ("OpenGL display"): the menu bar and, below it, the
// picture area the GL context shows the frames in. It lives on the UI thread
// (ui_thread.h); these calls may come from any other thread.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace vdpgl::ui {
class CDisplayMenuTarget;
}

namespace vdpgl::platform {

// What the emulation thread knows of a display window: the native window of
// its picture area (X11: a window id), to make the GL surface on.
struct DisplayWindow {
    uintptr_t pictureArea = 0;
};

// Opens a fresh display window whose picture area is width x height, with
// the menu's check marks set from `menu`'s settings, and waits for it at
// most `timeout`. Null when there is no UI thread or it could not be made in
// time (a window made later is closed again).
DisplayWindow* OpenDisplayWindow(int width, int height, ui::CDisplayMenuTarget& menu,
                                 std::chrono::milliseconds timeout);

// Closes it and waits until it is gone; the pointer is dead afterwards.
void CloseDisplayWindow(DisplayWindow* window);

// Gives the picture area a new size and the window a new title, without
// waiting: the UI thread may be inside a menu the user holds open, and the
// frames shown meanwhile are scaled to the area as it is. In full screen the
// size is kept for the return.
void ResizeDisplayWindow(DisplayWindow* window, int width, int height, const std::string& title);

}  // namespace vdpgl::platform
