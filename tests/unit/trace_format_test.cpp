// The trace format's bytes, and what the replays do not show: how a trace
// ends (closed, cut short, bytes after the end), full blocks, a full disk,
// and damage reported with its offset, never read into garbage.
#include <gtest/gtest.h>
#include <zlib.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "temp_dir.h"
#include "trace/trace_reader.h"
#include "trace/trace_writer.h"

namespace vdpgl::trace {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes Join(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
// A block: payload length and CRC-32, then the payload.
Bytes Block(const Bytes& payload) {
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
// A word written to VDP1 VRAM at 0x12345678, then frame 1 ends.
const Bytes kFrame = Block({7, 0x78, 0x56, 0x34, 0x12, 0xEF, 0xBE, 0x50, 1, 0, 0, 0});

class TraceFormatTest : public ::testing::Test {
protected:
    // Reads every record of `bytes` back from a file; the final status.
    CTraceReader::Status ReadAll(const Bytes& bytes) {
        std::ofstream("t.trace", std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        records.clear();
        reader = std::make_unique<CTraceReader>();
        if (!reader->Open("t.trace")) return CTraceReader::Status::Error;
        Record r;
        CTraceReader::Status status;
        while ((status = reader->Next(r)) == CTraceReader::Status::Record) records.push_back(r);
        return status;
    }

    test::ScopedTempDir dir;
    std::unique_ptr<CTraceReader> reader;
    std::vector<Record> records;
};

TEST_F(TraceFormatTest, WriterAndReaderKeepToTheDocumentedBytes) {
    CTraceWriter writer;
    ASSERT_TRUE(writer.Open("w.trace"));
    writer.WritePort(Port::WriteWordVDP1VRAM, 0x12345678, 0xBEEF);
    writer.WriteFrame(1);
    ASSERT_TRUE(writer.Close());
    const Bytes closed = Join(Join(kHeader, kFrame), Block({0x7F}));
    EXPECT_EQ(Slurp("w.trace"), closed);

    // An End record followed in its block by a read record and another End
    // (6 bytes), then 5 bytes after the block.
    const Bytes longer = Join(Join(kHeader, kFrame), Join(Block({0x7F, 9, 0, 0, 0, 0, 0x7F}), {1, 2, 3, 4, 5}));
    const struct { const char* name; Bytes bytes; bool sawEnd; uint64_t trailing; } cases[] = {
        {"closed", closed, true, 0},
        {"cut short between blocks", Join(kHeader, kFrame), false, 0},
        {"bytes after the end", longer, true, 6 + 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ReadAll(c.bytes), CTraceReader::Status::End) << reader->Error();
        ASSERT_EQ(records.size(), 2u);
        EXPECT_TRUE(records[0].kind == Record::Kind::Port && records[0].port == Port::WriteWordVDP1VRAM);
        EXPECT_EQ(records[0].address, 0x12345678u);
        EXPECT_EQ(records[0].value, 0xBEEFu);
        EXPECT_EQ(records[0].offset, 24u);
        EXPECT_TRUE(records[1].kind == Record::Kind::Frame && records[1].value == 1 && records[1].offset == 31);
        EXPECT_EQ(reader->SawEndRecord(), c.sawEnd);
        EXPECT_EQ(reader->TrailingBytes(), c.trailing);
        EXPECT_TRUE(!c.sawEnd || reader->TrailingOffset() == 16 + 20 + 9) << reader->TrailingOffset();
    }
}

TEST_F(TraceFormatTest, WriterFillsBlocksAndStopsAtAFullDisk) {
    CTraceWriter writer;
    ASSERT_TRUE(writer.Open("big.trace"));
    for (uint32_t i = 0; i < 100000; ++i) writer.WritePort(Port::WriteByteVDP2VRAM, i, i & 0xFF);
    ASSERT_TRUE(writer.Close());
    ASSERT_EQ(ReadAll(Slurp("big.trace")), CTraceReader::Status::End);
    ASSERT_EQ(records.size(), 100000u);
    for (uint32_t i = 0; i < records.size(); i += 9973) EXPECT_EQ(records[i].value, i & 0xFF);
    // A small block fails only when flushed; the writer gives up there.
    ASSERT_TRUE(writer.Open("/dev/full"));
    writer.WriteFrame(0);
    EXPECT_TRUE(writer.Failed() && !writer.IsOpen());
    EXPECT_EQ(writer.Error(), "cannot write the trace \"/dev/full\": No space left on device");
    EXPECT_FALSE(writer.Close());
}

TEST_F(TraceFormatTest, DamageIsReportedWithItsOffset) {
    const Bytes good = Join(kHeader, kFrame);
    const auto with = [](Bytes bytes, size_t at, uint8_t value) { return bytes[at] = value, bytes; };
    const struct { const char* name; Bytes bytes; const char* message; } cases[] = {
        {"cut", Bytes(good.begin(), good.end() - 6), "at byte 16: the trace is cut off: the block needs 12 bytes, 6"},
        {"flipped", with(good, 30, good[30] ^ 0x40), "at byte 16: the block's checksum does not match"},
        {"half header", Join(good, {4, 0, 0}), "at byte 36: the trace is cut off inside a block header"},
        {"huge block", with(good, 16 + 3, 0x7F), "at byte 16: a block of"},
        {"not a trace", {'h', 'e', 'l', 'l', 'o'}, "is not a vdpgl trace"},
        {"future version", with(good, 8, 9), "version 9"},
        {"longer header cut off", with(kHeader, 10, 40), "has a damaged header"},
        {"unknown record", Join(kHeader, Block({0x42, 0x33})), "at byte 25: unknown record type 0x33"},
        {"record past its block", Join(kHeader, Block({7, 0, 0, 0, 0, 0xEF})), "at byte 24: a port record runs past"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ReadAll(c.bytes), CTraceReader::Status::Error);
        EXPECT_NE(reader->Error().find(c.message), std::string::npos) << reader->Error();
    }
}

TEST(TracePortsTest, NumbersAndWidthsAreTheDocumentedOnes) {
    // Traces already written depend on these: a reordering breaks them.
    const std::string widths = "124000" "124000" "20" "124000" "124000" "124000";
    ASSERT_EQ(kPortCount, widths.size());
    for (uint8_t n = 0; n < kPortCount; ++n) EXPECT_EQ(PortValueSize(Port{n}), uint32_t(widths[n] - '0')) << int{n};
    EXPECT_TRUE(Port::WriteWordVDP1Regs == Port{12} && Port::WriteByteVDP2VRAM == Port{20} &&
                Port::WriteLongVDP2CRAM == Port{28} && Port::ReadLongVDP2CRAM == Port{31});
}

}  // namespace
}  // namespace vdpgl::trace
