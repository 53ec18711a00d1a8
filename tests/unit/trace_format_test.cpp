// Traces written and read back: every record kind survives, and a damaged or
// cut-off file is reported with the offset where it goes wrong, never read
// on into garbage.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <zlib.h>

#include "temp_dir.h"
#include "trace/trace_reader.h"
#include "trace/trace_writer.h"

namespace vdpgl::trace {
namespace {

std::vector<uint8_t> Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
void Spill(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}

class TraceFormatTest : public ::testing::Test {
protected:
    std::string Path(const char* name) const { return (dir.Path() / name).string(); }
    // Reads every record; returns the final status.
    CTraceReader::Status ReadAll(const std::string& path, std::vector<Record>& records, std::string* error = nullptr) {
        CTraceReader reader;
        if (!reader.Open(path)) {
            if (error) *error = reader.Error();
            return CTraceReader::Status::Error;
        }
        Record r;
        CTraceReader::Status status;
        while ((status = reader.Next(r)) == CTraceReader::Status::Record) records.push_back(r);
        if (error) *error = reader.Error();
        sawEnd = reader.SawEndRecord();
        return status;
    }
    // A small trace: a start, two frames of port writes and reads, a stop.
    void WriteSample(const std::string& path, bool close = true) {
        ASSERT_TRUE(writer.Open(path)) << writer.Error();
        writer.WriteEvent(Event::InitVDPPlugin);
        writer.WriteEvent(Event::EmulationThreadStarting);
        for (uint32_t frame = 0; frame < 2; ++frame) {
            writer.WritePort(Port::WriteByteVDP2CRAM, 0x10, 0xAB);
            writer.WritePort(Port::WriteWordVDP1VRAM, 0x7FFFE, 0xBEEF);
            writer.WritePort(Port::WriteLongVDP2VRAM, 0x12345678, 0xCAFEF00D);
            writer.WritePort(Port::ReadWordVDP1Regs, 0x10);
            writer.WriteEvent(Event::VDPOnVblankIn);
            writer.WriteEvent(Event::VDPOnVblankOut);
            writer.WriteFrame(frame);
        }
        writer.WriteEvent(Event::EmulationThreadStoping);
        if (close) ASSERT_TRUE(writer.Close());
        else writer.Flush();
    }

    test::ScopedTempDir dir;
    CTraceWriter writer;
    bool sawEnd = false;
};

TEST_F(TraceFormatTest, EveryRecordKindRoundTrips) {
    WriteSample(Path("a.trace"));
    std::vector<Record> records;
    ASSERT_EQ(ReadAll(Path("a.trace"), records), CTraceReader::Status::End);
    EXPECT_TRUE(sawEnd);
    ASSERT_EQ(records.size(), 2u + 2u * 7u + 1u);
    EXPECT_EQ(records[0].event, Event::InitVDPPlugin);
    const Record& crm = records[2];
    EXPECT_EQ(crm.kind, Record::Kind::Port);
    EXPECT_EQ(crm.port, Port::WriteByteVDP2CRAM);
    EXPECT_EQ(crm.value, 0xABu);
    EXPECT_EQ(records[3].address, 0x7FFFEu);
    EXPECT_EQ(records[3].value, 0xBEEFu);
    EXPECT_EQ(records[4].address, 0x12345678u);
    EXPECT_EQ(records[4].value, 0xCAFEF00Du);
    EXPECT_EQ(records[5].port, Port::ReadWordVDP1Regs);
    EXPECT_EQ(records[5].value, 0u);
    EXPECT_EQ(records[8].kind, Record::Kind::Frame);
    EXPECT_EQ(records[15].value, 1u) << "the second frame's number";
    EXPECT_EQ(records.back().event, Event::EmulationThreadStoping);
    // Offsets point at the records: the first follows the 16-byte header and
    // the 8-byte block header.
    EXPECT_EQ(records[0].offset, 24u);
    EXPECT_EQ(records[3].offset - records[2].offset, 1u + 4u + 1u);
}

TEST(TracePortsTest, NumbersAndWidthsAreTheDocumentedOnes) {
    // Traces already written depend on these: a reordering breaks them.
    struct Case {
        Port port;
        int number;
        uint32_t bytes;
    };
    for (const Case& c : {Case{Port::WriteByteVDP1FrameBuffer, 0, 1}, Case{Port::ReadLongVDP1FrameBuffer, 5, 0},
                          Case{Port::WriteWordVDP1VRAM, 7, 2}, Case{Port::WriteWordVDP1Regs, 12, 2},
                          Case{Port::ReadWordVDP1Regs, 13, 0}, Case{Port::WriteLongVDP2Regs, 16, 4},
                          Case{Port::WriteByteVDP2VRAM, 20, 1}, Case{Port::WriteLongVDP2CRAM, 28, 4},
                          Case{Port::ReadLongVDP2CRAM, 31, 0}}) {
        EXPECT_EQ(static_cast<int>(c.port), c.number);
        EXPECT_EQ(PortValueSize(c.port), c.bytes) << c.number;
    }
    EXPECT_EQ(kPortCount, 32);
}

TEST_F(TraceFormatTest, LargeTracesSpanManyBlocks) {
    ASSERT_TRUE(writer.Open(Path("big.trace")));
    for (uint32_t i = 0; i < 100000; ++i) writer.WritePort(Port::WriteWordVDP1VRAM, i * 2, i & 0xFFFF);
    ASSERT_TRUE(writer.Close());
    std::vector<Record> records;
    ASSERT_EQ(ReadAll(Path("big.trace"), records), CTraceReader::Status::End);
    ASSERT_EQ(records.size(), 100000u);
    for (uint32_t i = 0; i < records.size(); i += 9973) EXPECT_EQ(records[i].value, i & 0xFFFF);
}

TEST_F(TraceFormatTest, RecordingCutShortBetweenBlocksStillPlays) {
    WriteSample(Path("cut.trace"), false);  // the process died before closing
    std::vector<Record> records;
    EXPECT_EQ(ReadAll(Path("cut.trace"), records), CTraceReader::Status::End);
    EXPECT_FALSE(sawEnd);
    EXPECT_EQ(records.size(), 17u);
}

TEST_F(TraceFormatTest, DamageIsReportedWithItsOffset) {
    WriteSample(Path("good.trace"));
    const std::vector<uint8_t> good = Slurp(Path("good.trace"));
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        const char* message;
    };
    std::vector<uint8_t> truncated(good.begin(), good.end() - 3);
    std::vector<uint8_t> flipped = good;
    flipped[30] ^= 0x40;  // inside the first block's payload
    std::vector<uint8_t> halfHeader(good.begin(), good.begin() + 16 + 5);
    std::vector<uint8_t> hugeBlock = good;
    hugeBlock[16 + 3] = 0x7F;  // the first block claims 2 GB
    std::vector<uint8_t> notTrace = {'h', 'e', 'l', 'l', 'o'};
    std::vector<uint8_t> future = good;
    future[8] = 9;
    const Case cases[] = {
        {"truncated", truncated, "the trace is cut off"},
        {"flipped", flipped, "at byte 16: the block's checksum does not match"},
        {"half header", halfHeader, "at byte 16: the trace is cut off inside a block header"},
        {"huge block", hugeBlock, "at byte 16: a block of"},
        {"not a trace", notTrace, "is not a vdpgl trace"},
        {"future version", future, "version 9"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Spill(Path("bad.trace"), c.bytes);
        std::vector<Record> records;
        std::string error;
        EXPECT_EQ(ReadAll(Path("bad.trace"), records, &error), CTraceReader::Status::Error);
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
}

TEST_F(TraceFormatTest, UnknownRecordInAValidBlockNamesItsOffset) {
    // A well-sealed block whose second record has no meaning.
    ASSERT_TRUE(writer.Open(Path("empty.trace")));
    writer.Flush();
    std::vector<uint8_t> bytes = Slurp(Path("empty.trace"));  // the header only
    ASSERT_EQ(bytes.size(), 16u);
    const uint8_t payload[2] = {static_cast<uint8_t>(Event::Reset), 0x33};
    const uint32_t crc = static_cast<uint32_t>(crc32(crc32(0L, Z_NULL, 0), payload, 2));
    for (uint32_t v : {2u, crc})
        for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(v >> (8 * i)));
    bytes.insert(bytes.end(), payload, payload + 2);
    Spill(Path("odd.trace"), bytes);

    std::vector<Record> records;
    std::string error;
    EXPECT_EQ(ReadAll(Path("odd.trace"), records, &error), CTraceReader::Status::Error);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].event, Event::Reset);
    EXPECT_NE(error.find("at byte 25: unknown record type 0x33"), std::string::npos) << error;
}

}  // namespace
}  // namespace vdpgl::trace
