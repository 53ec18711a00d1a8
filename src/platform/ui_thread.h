#pragma once
// The user-interface thread. One thread of the plug-in's own runs the window
// system's event loop and owns the display window and every dialog; other
// threads hand it work and, where they must, wait for that work to be done.
// Headless (no display, or VDPGL_HEADLESS=1) there is no such thread.
#include <chrono>
#include <functional>

namespace vdpgl::platform {

// Starts the thread unless it runs already. Any thread; waits until its loop
// runs (a few seconds at most). False when headless or when the display
// cannot be opened (said on standard error). `keep`: the thread stays until
// StopUiThread; a thread started without it (a message box before the
// plug-in is set up) is stopped again by ReleaseTemporaryUiThread.
bool StartUiThread(bool keep);
void ReleaseTemporaryUiThread();
bool IsUiThreadRunning();
// True on the UI thread itself.
bool IsUiThread();

// Runs `work` on the UI thread. On the UI thread itself it runs at once.
// Otherwise it is queued; with a zero `wait` the call returns at once, else
// it returns once the work ran, or false after `wait` has passed (the work
// may then still run later, so it must own what it uses). False as well when
// no UI thread runs; the work is then dropped.
bool RunOnUiThread(std::function<void()> work, std::chrono::milliseconds wait = std::chrono::milliseconds(0));

// On the UI thread: waits until the window server has done what this thread
// asked of it, so that another connection (the GL context's) sees the same.
void SyncUiDisplay();
// On the UI thread: whether a window manager runs that puts windows in full
// screen when asked (without one, a window is sized over the screen by hand).
bool WindowManagerDoesFullScreen();

// True once the loop has been asked to end: a dialog's own modal loop on the
// UI thread gives up then, so that the thread can end.
bool UiThreadStopRequested();

// Ends the loop: every window and dialog closes, queued work is dropped, and
// the thread is joined. Any thread but the UI one; does nothing when none runs.
void StopUiThread();

}  // namespace vdpgl::platform
