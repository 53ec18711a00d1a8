#include "plugin/trace_recorder.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/message_box.h"

namespace vdpgl {

std::atomic<CTraceRecorder*> traceRecorder{nullptr};

namespace {

// Owns the recorder; its destruction at unload writes the end record.
std::unique_ptr<CTraceRecorder>& Instance() {
    static std::unique_ptr<CTraceRecorder> instance;
    return instance;
}

}  // namespace

CTraceRecorder* CTraceRecorder::StartFromEnvironment() {
    if (CTraceRecorder* running = traceRecorder.load(std::memory_order_relaxed)) return running;
    static bool tried = false;
    const char* path = std::getenv("VDPGL_RECORD");
    if (tried || !path || !*path) return nullptr;
    tried = true;
    std::unique_ptr<CTraceRecorder> recorder(new CTraceRecorder);
    if (!recorder->writer.Open(path)) {
        platform::ShowMessageBox("Recording", recorder->writer.Error().c_str(), platform::MessageIcon::Error);
        return nullptr;
    }
    Instance() = std::move(recorder);
    // Release: a port that sees the pointer sees the recorder built.
    traceRecorder.store(Instance().get(), std::memory_order_release);
    return Instance().get();
}

void RecordPortCall(trace::Port port, uint32_t address, uint32_t value) {
    if (CTraceRecorder* recorder = traceRecorder.load(std::memory_order_relaxed)) recorder->Port(port, address, value);
}

CTraceRecorder::~CTraceRecorder() {
    CTraceRecorder* self = this;
    traceRecorder.compare_exchange_strong(self, nullptr);
    bool failedNow;
    {
        std::lock_guard lock(mutex);
        failedNow = !stopped && !writer.Close();
        stopped = true;
    }
    // This runs as the process ends, when no window can be shown any more.
    if (failedNow) std::fprintf(stderr, "vdpgl: Recording: %s\n", writer.Error().c_str());
}

template <typename Write>
void CTraceRecorder::Guarded(Write write) {
    bool failedNow = false;
    {
        std::lock_guard lock(mutex);
        write();
        if (!stopped && writer.Failed()) {
            stopped = failedNow = true;
            traceRecorder.store(nullptr, std::memory_order_relaxed);
        }
    }
    // Outside the lock, and without waiting for the user: emulation goes on.
    if (failedNow) {
        const std::string text = writer.Error() + "; recording stopped, emulation goes on";
        platform::PostMessageBox("Recording", text.c_str(), platform::MessageIcon::Error);
    }
}

void CTraceRecorder::Port(trace::Port port, uint32_t address, uint32_t value) {
    Guarded([&] { writer.WritePort(port, address, value); });
}

void CTraceRecorder::Event(trace::Event event) {
    Guarded([&] {
        writer.WriteEvent(event);
        if (event == trace::Event::VDPOnVblankOut) writer.WriteFrame(frame++);
        // A host may end the process without unloading the library: what was
        // recorded up to a stop is on disk.
        if (event == trace::Event::EmulationThreadStoping || event == trace::Event::DeInitPlugin) writer.Flush();
    });
}

}  // namespace vdpgl
