#pragma once
// CTraceReader: reads a trace record by record, front to back, so that a
// trace can come from a pipe as well as from a file. Every block is checked
// against its CRC before any of its records is handed out, so a damaged or
// cut-off trace stops with a message naming the byte offset, never with a
// half-read record.
#include <sys/types.h>

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

    // Opens the file ("-": standard input) and checks its header.
    bool Open(const std::string& path);
    // The next record; End at the end of a well-formed trace (an End record,
    // or a file that stops cleanly between blocks); Error with Error() set.
    Status Next(Record& record);
    const std::string& Error() const { return error; }
    // Whether the trace was closed by its recorder (it has an End record).
    bool SawEndRecord() const { return sawEnd; }
    // Bytes that follow the End record (the rest of its block and anything
    // after it), counted once the End record is read; they start at
    // TrailingOffset().
    uint64_t TrailingBytes() const { return trailing; }
    uint64_t TrailingOffset() const { return Position(); }
    // The size of a regular file; 0 when unknown (a pipe).
    uint64_t FileSize() const { return fileSize; }
    uint64_t Position() const { return blockOffset + position; }
    // Whether `other` names the file being read (same device and inode:
    // links and relative paths count).
    bool IsSameFile(const std::string& other) const;

private:
    void Close();
    Status Fail(uint64_t offset, const std::string& what);
    bool LoadBlock(Status& status);
    // Reads up to `size` bytes; fewer only at the end of the input.
    size_t Read(void* into, size_t size);
    void CountTrailing();

    std::FILE* file = nullptr;
    bool ownsFile = false;
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;  // the trace as messages name it
    std::string error;
    std::vector<uint8_t> block;
    uint32_t position = 0;     // next record inside the block
    uint64_t blockOffset = 0;  // file offset of the block's first payload byte
    uint64_t consumed = 0;     // bytes read from the input so far
    uint64_t fileSize = 0;
    uint64_t trailing = 0;
    bool sawEnd = false;
    bool failed = false;
};

}  // namespace vdpgl::trace
