#include "x11_session.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include "common/png_file.h"

namespace vdpgl::test {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

namespace {

// Calls `done` every 20 ms until it is true or `timeout` has passed (at least once).
template <class Done>
bool PollUntil(std::chrono::milliseconds timeout, Done done) {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        if (done()) return true;
        if (Clock::now() >= deadline) return false;
        std::this_thread::sleep_for(20ms);
    }
}

std::string Hex(unsigned long value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%lx", value);
    return text;
}

// Records X errors on our connection in place of Xlib's default handler, which exits the process. The handler is
// process-wide and the plug-in's UI thread has a connection (and maybe a handler) of its own, so a trap is set
// around each call only, passes errors of other connections to the handler it replaced, and on leaving keeps a
// handler someone installed meanwhile.
class ErrorTrap {
public:
    using Handler = int (*)(Display*, XErrorEvent*);

    ErrorTrap(Display* display, std::string& error) : display_(display), error_(error), outer_(active_.load()) {
        previous_ = XSetErrorHandler(&Handle);
        if (previous_ == &Handle) previous_ = outer_ ? outer_->previous_ : replaced_.load();
        replaced_ = previous_;
        active_ = this;
    }
    ~ErrorTrap() {
        if (display_) XSync(display_, False);  // errors of requests still in flight land here
        active_ = outer_;
        if (!outer_) {
            const Handler current = XSetErrorHandler(previous_);
            if (current != &Handle) XSetErrorHandler(current);
        }
    }
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;

private:
    static int Handle(Display* display, XErrorEvent* event) {
        ErrorTrap* trap = active_.load();
        for (ErrorTrap* t = trap; t; t = t->outer_) {
            if (t->display_ != display) continue;
            char text[160] = "", request[160] = "", number[16];
            XGetErrorText(display, event->error_code, text, sizeof text);
            std::snprintf(number, sizeof number, "%d", event->request_code);
            XGetErrorDatabaseText(display, "XRequest", number, number, request, sizeof request);
            t->error_ = std::string(text) + " in " + request + " (resource " + Hex(event->resourceid) + ")";
            return 0;
        }
        // Another connection's error, or one that came between a trap's handler swap and its bookkeeping.
        const Handler previous = trap ? trap->previous_ : replaced_.load();
        return previous ? previous(display, event) : 0;
    }
    static inline std::atomic<ErrorTrap*> active_{nullptr};
    static inline std::atomic<Handler> replaced_{nullptr};  // the handler the last trap replaced
    Display* display_;
    std::string& error_;
    ErrorTrap* outer_;
    Handler previous_ = nullptr;
};

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// CXvfbServer

bool CXvfbServer::Start(int width, int height) {
    Stop();
    error_.clear();
    if (width <= 0 || height <= 0) {  // Xvfb crashes on these rather than saying so
        error_ = "Xvfb screen size must be positive";
        return false;
    }
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) {
        error_ = std::string("pipe: ") + std::strerror(errno);
        return false;
    }
    // Xvfb's output goes to an unlinked file, read back only to explain a failed start.
    char logName[] = "/tmp/vdpgl-xvfb-XXXXXX";
    const int log = mkostemp(logName, O_CLOEXEC);
    if (log >= 0) unlink(logName);

    std::string fd = std::to_string(ready[1]);
    std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    std::vector<std::string> args = {"Xvfb", "-displayfd", fd, "-nolisten", "tcp", "-noreset", "-screen", "0", screen};
    std::vector<char*> argv;
    for (std::string& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);

    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {  // async-signal-safe calls only from here to exec
        fcntl(ready[1], F_SETFD, 0);
        if (log >= 0) {
            dup2(log, STDOUT_FILENO);
            dup2(log, STDERR_FILENO);
        }
        // The server goes with the thread that started it, even when the test process is killed.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(126);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(ready[1]);
    if (pid < 0) {
        error_ = std::string("fork: ") + std::strerror(errno);
        close(ready[0]);
        if (log >= 0) close(log);
        return false;
    }
    pid_ = pid;

    // Xvfb writes its display number and a newline once it accepts connections.
    std::string number, failure;
    const auto deadline = Clock::now() + 10s;
    while (number.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd wait = {ready[0], POLLIN, 0};
        const int polled = left > 0 ? poll(&wait, 1, static_cast<int>(left)) : 0;
        if (polled < 0 && errno == EINTR) continue;
        if (polled <= 0) {
            failure = "not ready after 10 s";
            break;
        }
        char buffer[32];
        const ssize_t got = read(ready[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            int status = 0;
            failure = "exited before it was ready";
            if (waitpid(pid_, &status, 0) == pid_) {
                pid_ = -1;
                if (WIFEXITED(status) && WEXITSTATUS(status) == 127) failure = "not found on PATH";
                else if (WIFEXITED(status)) failure += " (exit status " + std::to_string(WEXITSTATUS(status)) + ")";
                else if (WIFSIGNALED(status)) failure += " (signal " + std::to_string(WTERMSIG(status)) + ")";
            }
            break;
        }
        number.append(buffer, static_cast<size_t>(got));
    }
    close(ready[0]);
    if (!failure.empty()) {
        error_ = "Xvfb " + failure;
        if (log >= 0) {
            char text[2048];
            const off_t size = lseek(log, 0, SEEK_END);
            const off_t from = size > off_t(sizeof text - 1) ? size - off_t(sizeof text - 1) : 0;
            const ssize_t got = pread(log, text, sizeof text - 1, from);
            if (got > 0) error_ += "; its output ends:\n" + std::string(text, static_cast<size_t>(got));
            close(log);
        }
        Stop();
        return false;
    }
    if (log >= 0) close(log);

    display_ = ":" + number.substr(0, number.find('\n'));
    const char* old = std::getenv("DISPLAY");
    hadDisplay_ = old != nullptr;
    oldDisplay_ = old ? old : "";
    setenv("DISPLAY", display_.c_str(), 1);
    return true;
}

void CXvfbServer::Stop() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        const bool ended = PollUntil(5000ms, [&] { return waitpid(pid_, nullptr, WNOHANG) != 0; });
        if (!ended) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        pid_ = -1;
    }
    if (!display_.empty()) {
        if (hadDisplay_) setenv("DISPLAY", oldDisplay_.c_str(), 1);
        else unsetenv("DISPLAY");
        display_.clear();
    }
}

CXvfbServer::~CXvfbServer() { Stop(); }

// ---------------------------------------------------------------------------------------------------------------
// CX11Session

bool CX11Session::Open() {
    if (display_) return true;
    const char* name = std::getenv("DISPLAY");
    display_ = XOpenDisplay(nullptr);
    if (!display_) {
        error_ = std::string("cannot connect to the X server DISPLAY=") + (name ? name : "(unset)") + " names";
        return false;
    }
    int event, error, major, minor;
    if (!XTestQueryExtension(display_, &event, &error, &major, &minor)) {
        error_ = "the X server has no XTEST extension";
        XCloseDisplay(display_);
        display_ = nullptr;
        return false;
    }
    netWmName_ = XInternAtom(display_, "_NET_WM_NAME", False);
    utf8String_ = XInternAtom(display_, "UTF8_STRING", False);
    return true;
}

CX11Session::~CX11Session() {
    if (!display_) return;
    {
        ErrorTrap trap(display_, error_);
    }
    XCloseDisplay(display_);
}

bool CX11Session::ReadTitle(unsigned long window, std::string& title) {
    title.clear();
    const Atom properties[2][2] = {{netWmName_, utf8String_}, {XA_WM_NAME, AnyPropertyType}};
    for (const auto& [property, type] : properties) {
        Atom actualType = None;
        int format = 0;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        if (XGetWindowProperty(display_, window, property, 0, 4096, False, type, &actualType, &format, &count, &after,
                               &data) != Success)
            return false;  // the window is gone
        const bool found = data && format == 8 && (type == AnyPropertyType || actualType == type);
        if (found) title.assign(reinterpret_cast<char*>(data), count);
        if (data) XFree(data);
        if (found) return true;
    }
    return true;
}

std::string CX11Session::Title(unsigned long window) {
    std::string title;
    if (!display_) return title;
    ErrorTrap trap(display_, error_);
    ReadTitle(window, title);
    return title;
}

unsigned long CX11Session::FindWindow(const std::string& title) {
    ErrorTrap trap(display_, error_);
    std::vector<Window> pending = {DefaultRootWindow(display_)};
    while (!pending.empty()) {
        const Window window = pending.back();
        pending.pop_back();
        std::string name;
        XWindowAttributes attributes;
        if (ReadTitle(window, name) && name == title && XGetWindowAttributes(display_, window, &attributes) &&
            attributes.map_state == IsViewable)
            return window;
        Window root, parent, *children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display_, window, &root, &parent, &children, &count)) continue;  // gone meanwhile
        pending.insert(pending.end(), children, children + count);
        if (children) XFree(children);
    }
    return 0;
}

unsigned long CX11Session::WaitForWindow(const std::string& title, std::chrono::milliseconds timeout) {
    if (!display_) return 0;
    unsigned long found = 0;
    PollUntil(timeout, [&] { return (found = FindWindow(title)) != 0; });
    return found;
}

bool CX11Session::WaitForNoWindow(const std::string& title, std::chrono::milliseconds timeout) {
    return display_ && PollUntil(timeout, [&] { return FindWindow(title) == 0; });
}

bool CX11Session::WaitForTitle(unsigned long window, const std::string& title, std::chrono::milliseconds timeout) {
    if (!display_) return false;
    bool gone = false;
    const bool matched = PollUntil(timeout, [&] {
        ErrorTrap trap(display_, error_);
        std::string name;
        gone = !ReadTitle(window, name);
        return gone || name == title;
    });
    return matched && !gone;
}

CX11Session::Rect CX11Session::Geometry(unsigned long window) {
    Rect rect = {0, 0, 0, 0};
    if (!display_) return rect;
    ErrorTrap trap(display_, error_);
    XWindowAttributes attributes;
    Window child;
    if (XGetWindowAttributes(display_, window, &attributes) &&
        XTranslateCoordinates(display_, window, attributes.root, 0, 0, &rect.x, &rect.y, &child))
        return {rect.x, rect.y, attributes.width, attributes.height};
    return {0, 0, 0, 0};
}

bool CX11Session::WaitForSize(unsigned long window, int width, int height, std::chrono::milliseconds timeout) {
    return PollUntil(timeout, [&] {
        const Rect rect = Geometry(window);
        return rect.width == width && rect.height == height;
    });
}

std::vector<unsigned long> CX11Session::Children(unsigned long window) {
    std::vector<unsigned long> result;
    if (!display_) return result;
    ErrorTrap trap(display_, error_);
    Window root, parent, *children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(display_, window, &root, &parent, &children, &count)) result.assign(children, children + count);
    if (children) XFree(children);
    return result;
}

bool CX11Session::Capture(unsigned long window, std::vector<uint8_t>& rgba, int& width, int& height) {
    width = height = 0;
    rgba.clear();
    if (!display_) return false;
    ErrorTrap trap(display_, error_);
    XWindowAttributes attributes, rootAttributes;
    int x = 0, y = 0;
    Window child;
    if (!XGetWindowAttributes(display_, window, &attributes) ||
        !XGetWindowAttributes(display_, attributes.root, &rootAttributes) ||
        !XTranslateCoordinates(display_, window, attributes.root, 0, 0, &x, &y, &child))
        return false;
    if (attributes.map_state != IsViewable) {
        error_ = "window " + Hex(window) + " is not viewable";
        return false;
    }
    // XGetImage wants a rectangle on the screen: keep the window's on-screen part.
    const int left = std::max(0, -x), top = std::max(0, -y);
    const int right = std::min(attributes.width, rootAttributes.width - x);
    const int bottom = std::min(attributes.height, rootAttributes.height - y);
    if (right <= left || bottom <= top) {
        error_ = "window " + Hex(window) + " is off the screen";
        return false;
    }
    XImage* image = XGetImage(display_, window, left, top, static_cast<unsigned>(right - left),
                              static_cast<unsigned>(bottom - top), AllPlanes, ZPixmap);
    if (!image) return false;
    width = right - left;
    height = bottom - top;
    rgba.resize(static_cast<size_t>(width) * height * 4);
    const Visual* visual = attributes.visual;
    const unsigned long masks[3] = {visual->red_mask, visual->green_mask, visual->blue_mask};
    int shifts[3];
    unsigned long maxima[3];
    for (int c = 0; c < 3; ++c) {
        shifts[c] = masks[c] ? __builtin_ctzl(masks[c]) : 0;
        maxima[c] = masks[c] >> shifts[c];
    }
    uint8_t* out = rgba.data();
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column, out += 4) {
            const unsigned long pixel = XGetPixel(image, column, row);
            for (int c = 0; c < 3; ++c)
                out[c] = maxima[c] ? static_cast<uint8_t>(((pixel & masks[c]) >> shifts[c]) * 255 / maxima[c]) : 0;
            out[3] = 255;
        }
    }
    XDestroyImage(image);
    return true;
}

bool CX11Session::SavePng(unsigned long window, const std::string& path) {
    std::vector<uint8_t> rgba;
    int width = 0, height = 0;
    if (!Capture(window, rgba, width, height)) return false;
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    std::error_code ignored;
    if (!parent.empty()) std::filesystem::create_directories(parent, ignored);
    return WritePng(path, rgba.data(), width, height, error_);
}

void CX11Session::MoveTo(int rootX, int rootY) {
    if (!display_) return;
    ErrorTrap trap(display_, error_);
    XTestFakeMotionEvent(display_, DefaultScreen(display_), rootX, rootY, CurrentTime);
}

void CX11Session::Click(unsigned long window, int x, int y, int button) {
    const Rect rect = Geometry(window);
    if (!display_ || rect.width == 0) return;
    MoveTo(rect.x + x, rect.y + y);
    ErrorTrap trap(display_, error_);
    XTestFakeButtonEvent(display_, static_cast<unsigned>(button), True, CurrentTime);
    XTestFakeButtonEvent(display_, static_cast<unsigned>(button), False, CurrentTime);
}

void CX11Session::Key(const std::string& keysym, const std::vector<std::string>& modifiers) {
    if (!display_) return;
    ErrorTrap trap(display_, error_);
    std::vector<KeyCode> held;
    auto code = [&](const std::string& name, KeySym& sym) -> KeyCode {
        sym = XStringToKeysym(name.c_str());
        const KeyCode result = sym == NoSymbol ? 0 : XKeysymToKeycode(display_, sym);
        if (!result) error_ = "no key for keysym \"" + name + "\"";
        return result;
    };
    KeySym sym;
    for (const std::string& modifier : modifiers) {
        held.push_back(code(modifier, sym));
        if (!held.back()) return;
    }
    const KeyCode key = code(keysym, sym);
    if (!key) return;
    // A keysym in the shifted column of its key ("R") needs Shift held.
    int perCode = 0;
    KeySym* column = XGetKeyboardMapping(display_, key, 1, &perCode);
    if (column && perCode > 1 && column[0] != sym && column[1] == sym)
        held.push_back(XKeysymToKeycode(display_, XK_Shift_L));
    if (column) XFree(column);

    for (KeyCode modifier : held) XTestFakeKeyEvent(display_, modifier, True, CurrentTime);
    XTestFakeKeyEvent(display_, key, True, CurrentTime);
    XTestFakeKeyEvent(display_, key, False, CurrentTime);
    for (auto it = held.rbegin(); it != held.rend(); ++it) XTestFakeKeyEvent(display_, *it, False, CurrentTime);
}

void CX11Session::Focus(unsigned long window) {
    if (!display_) return;
    ErrorTrap trap(display_, error_);
    XRaiseWindow(display_, window);
    XSetInputFocus(display_, window, RevertToPointerRoot, CurrentTime);
}

void CX11Session::Sync() {
    if (!display_) return;
    ErrorTrap trap(display_, error_);
}

}  // namespace vdpgl::test
