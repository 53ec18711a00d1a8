#pragma once
// The UI tests' own X server and client: an Xvfb started for the test, and a connection that finds the plug-in's
// windows by title, photographs them and drives them with real input (XTEST), as a user at the keyboard would.
// Every call fails cleanly when a window vanished meanwhile: X errors are recorded, never fatal.
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

struct _XDisplay;

namespace vdpgl::test {

// An Xvfb of the test's own, on a display number the server picks free itself (-displayfd). DISPLAY names it while
// it lives; the previous value (or its absence) comes back when it stops.
class CXvfbServer {
public:
    CXvfbServer() = default;
    CXvfbServer(const CXvfbServer&) = delete;
    CXvfbServer& operator=(const CXvfbServer&) = delete;
    ~CXvfbServer();  // SIGTERM, then waits for it (SIGKILL after 5 s)

    // False with Error() when Xvfb cannot start or is not ready within 10 s.
    bool Start(int width = 1280, int height = 1024);
    const std::string& Display() const { return display_; }  // ":97"
    const std::string& Error() const { return error_; }

private:
    void Stop();

    pid_t pid_ = -1;
    std::string display_;
    std::string error_;
    bool hadDisplay_ = false;
    std::string oldDisplay_;
};

// A client connection of the test's own. Windows are X window ids (0: none).
class CX11Session {
public:
    CX11Session() = default;
    CX11Session(const CX11Session&) = delete;
    CX11Session& operator=(const CX11Session&) = delete;
    ~CX11Session();

    // Connects to DISPLAY; false (with Error()) when it cannot, or when the server lacks XTEST.
    bool Open();
    // The last failure: a connection problem or an X error met by a call ("BadWindow in X_GetWindowAttributes").
    const std::string& Error() const { return error_; }

    // A viewable window anywhere under the root whose title (_NET_WM_NAME or WM_NAME) is exactly `title`, polled
    // every 20 ms up to `timeout`; 0 when none. Without a window manager, top-level windows are not reparented, but
    // the whole tree is searched either way.
    unsigned long WaitForWindow(const std::string& title, std::chrono::milliseconds timeout);
    // Waits until no viewable window has this title; false on timeout.
    bool WaitForNoWindow(const std::string& title, std::chrono::milliseconds timeout);
    // Waits until the window's title equals `title`; false on timeout or as soon as the window is gone.
    bool WaitForTitle(unsigned long window, const std::string& title, std::chrono::milliseconds timeout);
    std::string Title(unsigned long window);  // "" when it has none or is gone

    struct Rect {
        int x, y, width, height;  // x, y: position on the root window
    };
    Rect Geometry(unsigned long window);  // all 0 when the window is gone
    bool WaitForSize(unsigned long window, int width, int height, std::chrono::milliseconds timeout);
    // The direct children, bottom of the stacking order first; empty when the window is gone.
    std::vector<unsigned long> Children(unsigned long window);

    // The window's pixels as 8-bit RGBA, top row first, alpha 255. On Xvfb this includes the children's contents;
    // parts covered by another window show that window. A window reaching past the screen's edge gives its
    // on-screen part (width, height say how much). False when the window is gone or not viewable.
    bool Capture(unsigned long window, std::vector<uint8_t>& rgba, int& width, int& height);
    // Capture, then a PNG at `path` (its folders created); false on failure.
    bool SavePng(unsigned long window, const std::string& path);

    // Real input through XTEST, each followed by XSync.
    void MoveTo(int rootX, int rootY);
    void Click(unsigned long window, int x, int y, int button = 1);  // x, y inside the window; nothing if it is gone
    // A key by keysym name ("F11", "Return", "Down", "Escape", "space", "r"), with modifier keysym names held around
    // it ({"Alt_L"}, {"Control_L"}). A keysym that needs Shift on the server's keymap ("R", "question") gets it.
    // An unknown name or one without a key sends nothing and sets Error().
    void Key(const std::string& keysym, const std::vector<std::string>& modifiers = {});
    // Raises the window and gives it the keyboard focus, as no window manager does.
    void Focus(unsigned long window);
    void Sync();

private:
    unsigned long FindWindow(const std::string& title);
    bool ReadTitle(unsigned long window, std::string& title);  // false when the window is gone

    _XDisplay* display_ = nullptr;
    unsigned long netWmName_ = 0, utf8String_ = 0;  // atoms
    std::string error_;
};

}  // namespace vdpgl::test
