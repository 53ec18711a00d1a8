#include "plugin/trace_recorder.h"

#include <cstdlib>
#include <memory>

#include "platform/message_box.h"

namespace vdpgl {

CTraceRecorder* traceRecorder = nullptr;

namespace {

// Owns the recorder; its destruction at unload writes the end record.
std::unique_ptr<CTraceRecorder>& Instance() {
    static std::unique_ptr<CTraceRecorder> instance;
    return instance;
}

}  // namespace

CTraceRecorder* CTraceRecorder::StartFromEnvironment() {
    if (traceRecorder) return traceRecorder;
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
    traceRecorder = Instance().get();
    return traceRecorder;
}

void RecordPortCall(trace::Port port, uint32_t address, uint32_t value) {
    if (CTraceRecorder* recorder = traceRecorder) recorder->Port(port, address, value);
}

CTraceRecorder::~CTraceRecorder() {
    if (traceRecorder == this) traceRecorder = nullptr;
    std::lock_guard lock(mutex);
    writer.Close();
}

void CTraceRecorder::Event(trace::Event event) {
    std::lock_guard lock(mutex);
    writer.WriteEvent(event);
    if (event == trace::Event::VDPOnVblankOut) writer.WriteFrame(frame++);
    // A host may end the process without unloading the library: what was
    // recorded up to a stop is on disk.
    if (event == trace::Event::EmulationThreadStoping || event == trace::Event::DeInitPlugin) writer.Flush();
}

void CTraceRecorder::Flush() {
    std::lock_guard lock(mutex);
    writer.Flush();
}

}  // namespace vdpgl
