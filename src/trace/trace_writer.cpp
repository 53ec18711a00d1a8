#include "trace/trace_writer.h"

#include <zlib.h>

#include <cerrno>
#include <cstring>

namespace vdpgl::trace {

namespace {

void Little16(uint8_t* p, uint16_t v) {
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}
void Little32(uint8_t* p, uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}

}  // namespace

bool CTraceWriter::Open(const std::string& filePath) {
    Close();
    path = filePath;
    error.clear();
    failed = false;
    size = 0;
    file = std::fopen(path.c_str(), "wb");
    if (!file) {
        error = "cannot create the trace \"" + path + "\": " + std::strerror(errno);
        return false;
    }
    uint8_t header[kHeaderSize] = {};
    std::memcpy(header, kMagic, sizeof kMagic);
    Little16(header + 8, kVersion);
    Little16(header + 10, kHeaderSize);
    Little32(header + 12, 0);  // flags, none defined
    if (std::fwrite(header, 1, sizeof header, file) != sizeof header) GiveUp();
    return !failed;
}

void CTraceWriter::WritePort(Port port, uint32_t address, uint32_t value) {
    if (!file) return;
    Reserve();
    Put8(static_cast<uint8_t>(port));
    Put32(address);
    const uint32_t bytes = PortValueSize(port);
    for (uint32_t i = 0; i < bytes; ++i) Put8(static_cast<uint8_t>(value >> (8 * i)));
    if (size >= kBlockTarget) Flush();
}

void CTraceWriter::WriteEvent(Event event) {
    if (!file) return;
    Reserve();
    Put8(static_cast<uint8_t>(event));
    if (size >= kBlockTarget) Flush();
}

void CTraceWriter::WriteFrame(uint32_t frame) {
    if (!file) return;
    Reserve();
    Put8(static_cast<uint8_t>(Event::Frame));
    Put32(frame);
    Flush();
}

void CTraceWriter::Flush() {
    if (!file) return;
    if (size > 0) {
        uint8_t header[kBlockHeaderSize];
        Little32(header, size);
        Little32(header + 4, static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), block, size)));
        if (std::fwrite(header, 1, sizeof header, file) != sizeof header || std::fwrite(block, 1, size, file) != size)
            return GiveUp();
        size = 0;
    }
    // A block on disk survives the process; a full disk often shows only here.
    if (std::fflush(file) != 0) GiveUp();
}

void CTraceWriter::GiveUp() {
    error = "cannot write the trace \"" + path + "\": " + std::strerror(errno);
    failed = true;
    std::fclose(file);
    file = nullptr;
    size = 0;
}

bool CTraceWriter::Close() {
    if (!file) return !failed;
    WriteEvent(Event::End);
    Flush();
    if (file && std::fclose(file) != 0) {
        error = "cannot finish the trace \"" + path + "\": " + std::strerror(errno);
        failed = true;
    }
    file = nullptr;
    return !failed;
}

}  // namespace vdpgl::trace
