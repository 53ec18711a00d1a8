#pragma once
// Recording of everything the host asks of the plug-in, for replay with
// vdpgl-play. With VDPGL_RECORD=<file> in the environment the first
// InitVDPPlugin opens the file and every later export call is written to it;
// the trace is closed when the library is unloaded. Without it the recorder
// pointer stays null and each port pays one load and one predictable branch.
// A recording that cannot be written is reported once and stops; emulation
// goes on.
#include <atomic>
#include <cstdint>
#include <mutex>

#include "trace/trace_writer.h"

namespace vdpgl {

class CTraceRecorder {
public:
    // The recorder of this process once VDPGL_RECORD names a file it could
    // open; null otherwise (a failure is shown to the user once).
    static CTraceRecorder* StartFromEnvironment();
    ~CTraceRecorder();
    CTraceRecorder(const CTraceRecorder&) = delete;
    CTraceRecorder& operator=(const CTraceRecorder&) = delete;

    void Port(trace::Port port, uint32_t address, uint32_t value = 0);
    void Event(trace::Event event);

private:
    CTraceRecorder() = default;
    // Runs a write under the lock. On the writer's first failure it takes
    // the recorder off the ports and events and tells the user, once.
    template <typename Write>
    void Guarded(Write write);

    std::mutex mutex;  // ports and events may come from different threads
    trace::CTraceWriter writer;
    uint32_t frame = 0;
    bool stopped = false;
};

// Read on every port call and event, with relaxed loads (a plain load); set
// by the first InitVDPPlugin and cleared when recording stops. The recorder
// it points at lives until the library is unloaded, so a thread that loaded
// the pointer before the stop still reaches a live object (which then
// records nothing).
extern std::atomic<CTraceRecorder*> traceRecorder;

// The recording of one port call (the ports reach it off their own path).
void RecordPortCall(trace::Port port, uint32_t address, uint32_t value = 0);

}  // namespace vdpgl

#define VDPGL_RECORD_EVENT(name)                                                                      \
    do {                                                                                              \
        if (::vdpgl::CTraceRecorder* r_ = ::vdpgl::traceRecorder.load(std::memory_order_relaxed))    \
            r_->Event(::vdpgl::trace::Event::name);                                                   \
    } while (0)
