#include "trace/trace_reader.h"

#include <sys/stat.h>
#include <zlib.h>

#include <cerrno>
#include <cstring>

namespace vdpgl::trace {

namespace {

uint16_t Little16(const uint8_t* p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }
uint32_t Little32(const uint8_t* p) {
    return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

bool IsEvent(uint8_t op) {
    return (op >= static_cast<uint8_t>(Event::InitVDPPlugin) && op <= static_cast<uint8_t>(Event::EmulationThreadStoping)) ||
           (op >= static_cast<uint8_t>(Event::VDPOnVblankIn) && op <= static_cast<uint8_t>(Event::VDPOnHblankOut)) ||
           op == static_cast<uint8_t>(Event::End);
}

}  // namespace

CTraceReader::~CTraceReader() { Close(); }

void CTraceReader::Close() {
    if (file && ownsFile) std::fclose(file);
    file = nullptr;
    ownsFile = false;
    device = 0;
    inode = 0;
    block.clear();
    position = 0;
    blockOffset = consumed = fileSize = trailing = 0;
    sawEnd = failed = false;
    error.clear();
}

CTraceReader::Status CTraceReader::Fail(uint64_t offset, const std::string& what) {
    failed = true;
    error = name + " at byte " + std::to_string(offset) + ": " + what;
    return Status::Error;
}

size_t CTraceReader::Read(void* into, size_t size) {
    const size_t got = std::fread(into, 1, size, file);
    consumed += got;
    return got;
}

bool CTraceReader::Open(const std::string& path) {
    Close();  // nothing of an earlier trace stays
    if (path == "-") {
        name = "standard input";
        file = stdin;
    } else {
        name = "\"" + path + "\"";
        file = std::fopen(path.c_str(), "rb");
        ownsFile = file != nullptr;
    }
    if (!file) {
        error = "cannot open the trace " + name + ": " + std::strerror(errno);
        return false;
    }
    struct stat status {};
    if (fstat(fileno(file), &status) == 0) {
        device = status.st_dev;
        inode = status.st_ino;
        if (S_ISREG(status.st_mode)) fileSize = static_cast<uint64_t>(status.st_size);
    }
    uint8_t header[kHeaderSize];
    if (Read(header, sizeof header) != sizeof header || std::memcmp(header, kMagic, sizeof kMagic) != 0) {
        error = name + " is not a vdpgl trace (its header is missing or wrong)";
        return false;
    }
    const uint16_t version = Little16(header + 8), headerSize = Little16(header + 10);
    if (version != kVersion) {
        error = name + " is a trace of version " + std::to_string(version) + "; this build reads version " +
                std::to_string(kVersion);
        return false;
    }
    // Fields of a later minor revision, skipped.
    std::vector<uint8_t> rest(headerSize > kHeaderSize ? headerSize - kHeaderSize : 0);
    if (headerSize < kHeaderSize || Read(rest.data(), rest.size()) != rest.size()) {
        error = name + " has a damaged header";
        return false;
    }
    blockOffset = consumed;
    block.reserve(64 * 1024);
    return true;
}

bool CTraceReader::IsSameFile(const std::string& other) const {
    struct stat status {};
    return file && stat(other.c_str(), &status) == 0 && status.st_dev == device && status.st_ino == inode;
}

bool CTraceReader::LoadBlock(Status& status) {
    const uint64_t at = consumed;
    uint8_t header[kBlockHeaderSize];
    const size_t got = Read(header, sizeof header);
    if (got == 0 && !std::ferror(file)) {
        status = Status::End;  // stopped cleanly between blocks
        return false;
    }
    if (got != sizeof header) {
        status = Fail(at, std::ferror(file) ? std::string("the trace cannot be read: ") + std::strerror(errno)
                                            : "the trace is cut off inside a block header");
        return false;
    }
    const uint32_t length = Little32(header), crc = Little32(header + 4);
    if (length == 0 || length > kMaxBlockPayload) {
        status = Fail(at, "a block of " + std::to_string(length) + " bytes is not possible: the trace is damaged");
        return false;
    }
    block.resize(length);
    if (const size_t have = Read(block.data(), length); have != length) {
        status = Fail(at, std::ferror(file) ? std::string("the trace cannot be read: ") + std::strerror(errno)
                                            : "the trace is cut off: the block needs " + std::to_string(length) +
                                                  " bytes, " + std::to_string(have) + " are left");
        return false;
    }
    if (static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), block.data(), length)) != crc) {
        status = Fail(at, "the block's checksum does not match: the trace is damaged");
        return false;
    }
    blockOffset = at + kBlockHeaderSize;
    position = 0;
    return true;
}

// The rest of the End record's block, and whatever the input still holds
// (read to its end, so that a pipe's writer is never cut off).
void CTraceReader::CountTrailing() {
    trailing = block.size() - position;
    uint8_t chunk[16 * 1024];
    while (const size_t got = std::fread(chunk, 1, sizeof chunk, file)) trailing += got;
}

CTraceReader::Status CTraceReader::Next(Record& record) {
    if (failed) return Status::Error;
    if (!file) {
        error = "no trace is open";
        return Status::Error;
    }
    if (sawEnd) return Status::End;
    if (position >= block.size()) {
        Status status;
        if (!LoadBlock(status)) return status;
    }
    const uint64_t offset = blockOffset + position;
    const uint8_t op = block[position];
    const uint32_t left = static_cast<uint32_t>(block.size()) - position;
    record = Record{};
    record.offset = offset;
    if (op < kPortCount) {
        const Port port = static_cast<Port>(op);
        const uint32_t valueSize = PortValueSize(port);
        if (left < 5 + valueSize) return Fail(offset, "a port record runs past the end of its block");
        record.kind = Record::Kind::Port;
        record.port = port;
        record.address = Little32(&block[position + 1]);
        for (uint32_t i = 0; i < valueSize; ++i) record.value |= uint32_t{block[position + 5 + i]} << (8 * i);
        position += 5 + valueSize;
        return Status::Record;
    }
    if (op == static_cast<uint8_t>(Event::Frame)) {
        if (left < 5) return Fail(offset, "a frame record runs past the end of its block");
        record.kind = Record::Kind::Frame;
        record.event = Event::Frame;
        record.value = Little32(&block[position + 1]);
        position += 5;
        return Status::Record;
    }
    if (IsEvent(op)) {
        record.kind = Record::Kind::Event;
        record.event = static_cast<Event>(op);
        position += 1;
        if (record.event == Event::End) {
            sawEnd = true;
            CountTrailing();
            return Status::End;
        }
        return Status::Record;
    }
    char hex[8];
    std::snprintf(hex, sizeof hex, "0x%02X", op);
    return Fail(offset, std::string("unknown record type ") + hex);
}

}  // namespace vdpgl::trace
