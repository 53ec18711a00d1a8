#include "trace/trace_reader.h"

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

CTraceReader::~CTraceReader() {
    if (file) std::fclose(file);
}

CTraceReader::Status CTraceReader::Fail(uint64_t offset, const std::string& what) {
    failed = true;
    error = "\"" + path + "\" at byte " + std::to_string(offset) + ": " + what;
    return Status::Error;
}

bool CTraceReader::Open(const std::string& filePath) {
    path = filePath;
    file = std::fopen(path.c_str(), "rb");
    if (!file) {
        error = "cannot open the trace \"" + path + "\": " + std::strerror(errno);
        return false;
    }
    std::fseek(file, 0, SEEK_END);
    fileSize = static_cast<uint64_t>(std::ftell(file));
    std::fseek(file, 0, SEEK_SET);
    uint8_t header[kHeaderSize];
    if (std::fread(header, 1, sizeof header, file) != sizeof header || std::memcmp(header, kMagic, sizeof kMagic) != 0) {
        error = "\"" + path + "\" is not a vdpgl trace (its header is missing or wrong)";
        return false;
    }
    const uint16_t version = Little16(header + 8), headerSize = Little16(header + 10);
    if (version != kVersion) {
        error = "\"" + path + "\" is a trace of version " + std::to_string(version) + "; this build reads version " +
                std::to_string(kVersion);
        return false;
    }
    if (headerSize < kHeaderSize || headerSize > fileSize) {
        error = "\"" + path + "\" has a damaged header";
        return false;
    }
    nextBlock = headerSize;
    block.reserve(64 * 1024);
    return true;
}

bool CTraceReader::LoadBlock(Status& status) {
    const uint64_t at = nextBlock;
    if (at == fileSize) {
        status = Status::End;  // stopped cleanly between blocks
        return false;
    }
    uint8_t header[kBlockHeaderSize];
    if (std::fseek(file, static_cast<long>(at), SEEK_SET) != 0 ||
        std::fread(header, 1, sizeof header, file) != sizeof header) {
        status = Fail(at, "the trace is cut off inside a block header");
        return false;
    }
    const uint32_t length = Little32(header), crc = Little32(header + 4);
    if (length == 0 || length > kMaxBlockPayload) {
        status = Fail(at, "a block of " + std::to_string(length) + " bytes is not possible: the trace is damaged");
        return false;
    }
    if (at + kBlockHeaderSize + length > fileSize) {
        status = Fail(at, "the trace is cut off: the block needs " + std::to_string(length) + " bytes, " +
                              std::to_string(fileSize - at - kBlockHeaderSize) + " are left");
        return false;
    }
    block.resize(length);
    if (std::fread(block.data(), 1, length, file) != length) {
        status = Fail(at, "the block cannot be read");
        return false;
    }
    if (static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), block.data(), length)) != crc) {
        status = Fail(at, "the block's checksum does not match: the trace is damaged");
        return false;
    }
    blockOffset = at + kBlockHeaderSize;
    nextBlock = blockOffset + length;
    position = 0;
    return true;
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
            return Status::End;
        }
        return Status::Record;
    }
    char hex[8];
    std::snprintf(hex, sizeof hex, "0x%02X", op);
    return Fail(offset, std::string("unknown record type ") + hex);
}

}  // namespace vdpgl::trace
