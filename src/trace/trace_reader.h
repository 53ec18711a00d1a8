#pragma once
// CTraceReader: reads a trace record by record. Every block is checked
// against its CRC before any of its records is handed out, so a damaged or
// cut-off trace stops with a message naming the byte offset, never with a
// half-read record.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "trace/trace_format.h"

namespace vdpgl::trace {

struct Record {
    enum class Kind : uint8_t { Port, Event, Frame } kind = Kind::Event;
    Port port = Port::Count;
    Event event = Event::End;
    uint32_t address = 0;
    uint32_t value = 0;  // a write's value, or a frame record's number
    uint64_t offset = 0;  // of the record in the file
};

class CTraceReader {
public:
    enum class Status { Record, End, Error };

    CTraceReader() = default;
    ~CTraceReader();
    CTraceReader(const CTraceReader&) = delete;
    CTraceReader& operator=(const CTraceReader&) = delete;

    // Opens the file and checks its header.
    bool Open(const std::string& path);
    // The next record; End at the end of a well-formed trace (an End record,
    // or a file that stops cleanly between blocks); Error with Error() set.
    Status Next(Record& record);
    const std::string& Error() const { return error; }
    // Whether the trace was closed by its recorder (it has an End record).
    bool SawEndRecord() const { return sawEnd; }
    uint64_t FileSize() const { return fileSize; }
    uint64_t Position() const { return blockOffset + position; }

private:
    Status Fail(uint64_t offset, const std::string& what);
    bool LoadBlock(Status& status);

    std::FILE* file = nullptr;
    std::string path;
    std::string error;
    std::vector<uint8_t> block;
    uint32_t position = 0;    // next record inside the block
    uint64_t blockOffset = 0;  // file offset of the block's first payload byte
    uint64_t nextBlock = 0;    // file offset of the next block header
    uint64_t fileSize = 0;
    bool sawEnd = false;
    bool failed = false;
};

}  // namespace vdpgl::trace
