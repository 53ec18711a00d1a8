#pragma once
// CTraceWriter: writes a trace as the format describes, records gathered in
// a block and written with its CRC when the block is full or a frame ends.
// The first write that fails closes the file: later calls do nothing, and
// Failed() and Error() say what went wrong.
#include <cstdint>
#include <cstdio>
#include <string>

#include "trace/trace_format.h"

namespace vdpgl::trace {

class CTraceWriter {
public:
    CTraceWriter() = default;
    ~CTraceWriter() { Close(); }
    CTraceWriter(const CTraceWriter&) = delete;
    CTraceWriter& operator=(const CTraceWriter&) = delete;

    // Creates (or truncates) the file and writes the header. On failure
    // returns false and leaves a message naming the file and the reason.
    bool Open(const std::string& path);
    bool IsOpen() const { return file != nullptr; }
    bool Failed() const { return failed; }
    const std::string& Error() const { return error; }

    void WritePort(Port port, uint32_t address, uint32_t value = 0);
    void WriteEvent(Event event);
    // The frame boundary; the block so far goes to the file.
    void WriteFrame(uint32_t frame);
    // Writes the block so far and flushes the file.
    void Flush();
    // Writes the end record and closes; false if anything failed on the way.
    bool Close();

private:
    // Closes the file after a failed write; errno says why.
    void GiveUp();
    static constexpr uint32_t kBlockTarget = 64 * 1024;
    static constexpr uint32_t kLargestRecord = 1 + 4 + 4;

    void Put8(uint8_t v) { block[size++] = v; }
    void Put32(uint32_t v) {
        for (int i = 0; i < 4; ++i) block[size++] = static_cast<uint8_t>(v >> (8 * i));
    }
    void Reserve() {
        if (size + kLargestRecord > sizeof block) Flush();
    }

    std::FILE* file = nullptr;
    std::string path;
    std::string error;
    bool failed = false;
    uint32_t size = 0;
    uint8_t block[kBlockTarget + kLargestRecord];
};

}  // namespace vdpgl::trace
