#pragma once
// Recording of everything the host asks of the plug-in, for replay with
// vdpgl-play. With VDPGL_RECORD=<file> in the environment the first
// InitVDPPlugin opens the file and every later export call is written to it;
// the trace is closed when the library is unloaded. Without it the recorder
// pointer stays null and each port pays one predictable branch.
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

    void Port(trace::Port port, uint32_t address, uint32_t value = 0) {
        std::lock_guard lock(mutex);
        writer.WritePort(port, address, value);
    }
    void Event(trace::Event event);
    void Flush();

private:
    CTraceRecorder() = default;
    std::mutex mutex;  // ports and events may come from different threads
    trace::CTraceWriter writer;
    uint32_t frame = 0;
};

// Read on every port call; set once, by the first InitVDPPlugin.
extern CTraceRecorder* traceRecorder;

// The recording of one port call (the ports reach it off their own path).
void RecordPortCall(trace::Port port, uint32_t address, uint32_t value = 0);

}  // namespace vdpgl

#define VDPGL_RECORD_EVENT(name)                                                        \
    do {                                                                                \
        if (::vdpgl::traceRecorder) ::vdpgl::traceRecorder->Event(::vdpgl::trace::Event::name); \
    } while (0)
