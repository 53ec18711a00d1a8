// The trace format's bytes, and what the replays do not show: how a trace ends, full blocks, and damage
// reported with its offset. A full disk and bytes after the last block are met in replay_test.
#include <gtest/gtest.h>
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <tuple>
#include <vector>

#include "temp_dir.h"
#include "trace/trace_reader.h"
#include "trace/trace_writer.h"

namespace vdpgl::trace {
namespace {

using Bytes = std::vector<uint8_t>;
using Status = CTraceReader::Status;

Bytes Join(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
Bytes Block(const Bytes& payload) {  // payload length and CRC-32, then the payload
    Bytes header;
    for (uint32_t v : {static_cast<uint32_t>(payload.size()),
                       static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), payload.data(), payload.size()))})
        for (int i = 0; i < 4; ++i) header.push_back(static_cast<uint8_t>(v >> (8 * i)));
    return Join(header, payload);
}
Bytes Slurp(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

const Bytes kHeader = {'v', 'd', 'p', 'g', 'l', 't', 'r', 'c', 1, 0, 16, 0, 0, 0, 0, 0};
const Bytes kFrame = Block({7, 0x78, 0x56, 0x34, 0x12, 0xEF, 0xBE, 0x50, 1, 0, 0, 0});  // a VDP1 VRAM word, frame 1

TEST(TraceFormatTest, WriterKeepsToTheDocumentedBytesAndReaderTellsHowTheTraceEndedOrWhereItIsDamaged) {
    test::ScopedTempDir dir;
    std::unique_ptr<CTraceReader> reader;
    std::vector<Record> records;
    const auto readAll = [&](const Bytes& bytes) {  // every record, from a file; the final status
        std::ofstream("t.trace", std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        records.clear();
        reader = std::make_unique<CTraceReader>();
        if (!reader->Open("t.trace")) return Status::Error;
        Record r;
        Status status;
        while ((status = reader->Next(r)) == Status::Record) records.push_back(r);
        return status;
    };
    CTraceWriter writer;
    ASSERT_TRUE(writer.Open("w.trace"));
    writer.WritePort(Port::WriteWordVDP1VRAM, 0x12345678, 0xBEEF);
    writer.WriteFrame(1);
    ASSERT_TRUE(writer.Close() && !writer.IsOpen());
    const Bytes good = Join(kHeader, kFrame), closed = Join(good, Block({0x7F}));
    EXPECT_EQ(Slurp("w.trace"), closed);
    ASSERT_TRUE(writer.Open("w.trace"));  // records enough to fill blocks
    for (uint32_t i = 0; i < 100000; ++i) writer.WritePort(Port::WriteByteVDP2VRAM, i, i & 0xFF);
    ASSERT_TRUE(writer.Close());
    EXPECT_TRUE(readAll(Slurp("w.trace")) == Status::End && records.size() == 100000u);

    // Endings: bytes after the End record (6 in its block, 5 after it), cut between blocks, closed. Damage.
    const auto with = [](Bytes bytes, size_t at, uint8_t value) { return bytes[at] = value, bytes; };
    struct Case { Bytes bytes; const char* damage; bool sawEnd = false; uint64_t trailing = 0, offset = 0; };
    const Case cases[] = {
        {Join(good, Join(Block({0x7F, 9, 0, 0, 0, 0, 0x7F}), {1, 2, 3, 4, 5})), nullptr, true, 6 + 5, 45},
        {good, nullptr, false, 0, 36}, {closed, nullptr, true, 0, 45},
        {Bytes(good.begin(), good.end() - 6), "at byte 16: the trace is cut off: the block needs 12 bytes, 6"},
        {with(good, 30, good[30] ^ 0x40), "at byte 16: the block's checksum does not match"},
        {Join(good, {4, 0, 0}), "at byte 36: the trace is cut off inside a block header"},
        {with(good, 16 + 3, 0x7F), "at byte 16: a block of"}, {with(good, 8, 9), "version 9"},
        {with(kHeader, 10, 40), "has a damaged header"},  // a longer header, cut off
        {Join(kHeader, Block({0x42, 0x33})), "at byte 25: unknown record type 0x33"},
        {Join(kHeader, Block({7, 0, 0, 0, 0, 0xEF})), "at byte 24: a port record runs past"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(readAll(c.bytes), c.damage ? Status::Error : Status::End) << &c - cases << ": " << reader->Error();
        EXPECT_TRUE(!c.damage || reader->Error().find(c.damage) != std::string::npos) << reader->Error();
        if (c.damage) continue;
        ASSERT_EQ(records.size(), 2u) << "row " << &c - cases;
        EXPECT_EQ(std::tuple(reader->SawEndRecord(), reader->TrailingBytes(), reader->TrailingOffset(),
                             records[0].address, records[0].value, records[0].offset, records[1].offset),
                  std::tuple(c.sawEnd, c.trailing, c.offset, 0x12345678u, 0xBEEFu, 24u, 31u)) << "row " << &c - cases;
    }
}

}  // namespace
}  // namespace vdpgl::trace
