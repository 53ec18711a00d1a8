// The UI thread on Linux: FLTK's event loop on an X11 connection that this
// thread opens itself, so that a display that cannot be opened is a clear
// message rather than FLTK ending the process.
//
// Implements: start (kept or temporary), work handed over with optional
// waiting, stop with every window closed and the thread joined.
// Does not yet: survive the X server going away (Xlib then ends the process).
#include <FL/Fl.H>
#include <FL/Fl_Window.H>
#include <FL/x.H>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/message_box.h"
#include "platform/ui_thread.h"

namespace vdpgl::platform {

namespace {

// One piece of work and whether it has been done (or dropped).
struct Job {
    std::function<void()> work;
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    bool ran = false;

    void Finish(bool hasRun) {
        std::lock_guard<std::mutex> lock(mutex);
        done = true;
        ran = hasRun;
        finished.notify_all();
    }
};

class CUiThread {
public:
    ~CUiThread() { Stop(); }

    bool Start(bool keep) {
        std::lock_guard<std::mutex> lock(lifeMutex);
        if (keep) kept = true;
        if (running) return true;
        if (thread.joinable()) thread.join();  // a loop that ended on its own
        stopRequested = false;
        startResult = StartResult::Pending;
        thread = std::thread([this] { Loop(); });
        std::unique_lock<std::mutex> wait(stateMutex);
        if (!started.wait_for(wait, std::chrono::seconds(10), [this] { return startResult != StartResult::Pending; })) {
            std::fprintf(stderr, "vdpgl: the user-interface thread did not start within 10 seconds\n");
            return false;
        }
        if (startResult == StartResult::Failed) {
            wait.unlock();
            thread.join();
            kept = false;
            return false;
        }
        return true;
    }

    void ReleaseTemporary() {
        if (!kept) Stop();
    }

    void Stop() {
        std::lock_guard<std::mutex> lock(lifeMutex);
        if (!thread.joinable()) return;
        if (std::this_thread::get_id() == thread.get_id()) {
            // The loop cannot join itself: it ends after this turn and is
            // joined by the next start or stop.
            stopRequested = true;
            return;
        }
        stopRequested = true;
        Fl::awake();
        thread.join();
        kept = false;
    }

    bool Running() const { return running; }
    bool StopRequested() const { return stopRequested; }
    bool OnThread() const { return running && std::this_thread::get_id() == loopThread.load(); }

    bool Run(std::function<void()> work, std::chrono::milliseconds wait) {
        if (OnThread()) {
            work();
            return true;
        }
        auto job = std::make_shared<Job>();
        job->work = std::move(work);
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            if (!running || stopRequested) return false;
            queue.push_back(job);
        }
        Fl::awake();
        if (wait.count() == 0) return true;
        std::unique_lock<std::mutex> lock(job->mutex);
        return job->finished.wait_for(lock, wait, [&] { return job->done; }) && job->ran;
    }

private:
    enum class StartResult { Pending, Running, Failed };

    void Report(StartResult result) {
        std::lock_guard<std::mutex> lock(stateMutex);
        startResult = result;
        started.notify_all();
    }

    void Loop() {
        loopThread = std::this_thread::get_id();
        // The display stays open from the first start on: FLTK keeps its
        // connection for the life of the process.
        if (!fl_display) {
            // The GL context talks to the same server from the emulation
            // thread, over a connection of its own.
            XInitThreads();
            Display* display = XOpenDisplay(nullptr);
            if (!display) {
                const char* name = std::getenv("DISPLAY");
                std::fprintf(stderr, "vdpgl: cannot open the display \"%s\"; windows and dialogs are not shown\n",
                             name ? name : "");
                Report(StartResult::Failed);
                return;
            }
            fl_open_display(display);
        }
        // FLTK's own file chooser, never GTK's: the plug-in lives in the
        // host's process, whose own toolkit may be GTK on another thread.
        Fl::option(Fl::OPTION_FNFC_USES_GTK, false);
        Fl::lock();  // lets other threads wake the loop with Fl::awake
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            running = true;
        }
        Report(StartResult::Running);
        while (!stopRequested) {
            Fl::wait(0.25);
            RunQueued();
        }
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            running = false;
        }
        // Every window closes with the loop; each view's destructor lets go
        // of what it held (its handle, a waiting caller).
        Fl::do_widget_deletion();
        while (Fl_Window* window = Fl::first_window()) delete window;
        Fl::do_widget_deletion();
        Fl::flush();
        DropQueued();
        Fl::unlock();
    }

    void RunQueued() {
        for (;;) {
            std::shared_ptr<Job> job;
            {
                std::lock_guard<std::mutex> lock(queueMutex);
                if (queue.empty()) return;
                job = std::move(queue.front());
                queue.pop_front();
            }
            job->work();
            job->Finish(true);
        }
    }

    void DropQueued() {
        std::deque<std::shared_ptr<Job>> dropped;
        {
            std::lock_guard<std::mutex> lock(queueMutex);
            dropped.swap(queue);
        }
        for (auto& job : dropped) job->Finish(false);
    }

    std::mutex lifeMutex;  // one start or stop at a time
    std::thread thread;
    std::atomic<std::thread::id> loopThread{};
    std::atomic<bool> running{false};
    std::atomic<bool> stopRequested{false};
    std::atomic<bool> kept{false};

    std::mutex stateMutex;
    std::condition_variable started;
    StartResult startResult = StartResult::Pending;

    std::mutex queueMutex;
    std::deque<std::shared_ptr<Job>> queue;
};

CUiThread& UiThread() {
    static CUiThread instance;
    return instance;
}

}  // namespace

bool StartUiThread(bool keep) {
    if (IsHeadless()) return false;
    return UiThread().Start(keep);
}

void ReleaseTemporaryUiThread() { UiThread().ReleaseTemporary(); }
bool IsUiThreadRunning() { return UiThread().Running(); }
bool IsUiThread() { return UiThread().OnThread(); }

bool RunOnUiThread(std::function<void()> work, std::chrono::milliseconds wait) {
    return UiThread().Run(std::move(work), wait);
}

void StopUiThread() { UiThread().Stop(); }
bool UiThreadStopRequested() { return UiThread().StopRequested(); }

bool WindowManagerDoesFullScreen() {
    if (!fl_display) return false;
    // A window manager of the freedesktop conventions names its check window
    // on the root window.
    const Atom check = XInternAtom(fl_display, "_NET_SUPPORTING_WM_CHECK", True);
    if (check == 0) return false;
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(fl_display, RootWindow(fl_display, fl_screen), check, 0, 1, False,
                                          XA_WINDOW, &type, &format, &count, &after, &data);
    if (data) XFree(data);
    return status == Success && type == XA_WINDOW && count == 1;
}

void SyncUiDisplay() {
    if (fl_display) XSync(fl_display, False);
}

}  // namespace vdpgl::platform
