#include "common/console_vram.h"

#include <gtest/gtest.h>

#include <memory>

namespace vdpgl {
namespace {

TEST(ConsoleVramTest, HostWordsHoldConsoleBytesBigEndianAndAccessesStayInside) {
    auto vram = std::make_unique<CConsoleVram>();
    vram->WriteLong(0x100, 0x11223344);  // a console long at 4k is the host 32-bit value at byte 4k
    EXPECT_EQ(vram->Data()[0x100], 0x44);
    EXPECT_EQ(vram->Data()[0x103], 0x11);
    EXPECT_EQ(vram->ReadWord(0x100), 0x1122);
    vram->WriteWord(0x102, 0xABCD);
    EXPECT_EQ(vram->ReadLong(0x100), 0x1122ABCDu);
    EXPECT_EQ(vram->ReadByte(0x102), 0xAB);
    EXPECT_EQ(vram->ReadByte(0x103), 0xCD);

    vram->WriteByte(0x80000, 0x77);  // bus bits above the mask are ignored
    EXPECT_EQ(vram->ReadByte(0), 0x77);
    vram->WriteWord(0x7FFFF, 0xBEEF);  // misaligned: aligned down
    EXPECT_EQ(vram->ReadWord(0x7FFFE), 0xBEEF);
    vram->WriteLong(0x7FFFE, 0x01020304);
    EXPECT_EQ(vram->ReadLong(0x7FFFC), 0x01020304u);
    EXPECT_EQ(vram->ReadByte(0), 0x77) << "nothing wrapped into the start";
}

TEST(ConsoleVramTest, WritesReportWhetherTheValueChanged) {
    auto vram = std::make_unique<CConsoleVram>();
    using Write = bool (*)(CConsoleVram&, uint32_t);
    const Write writes[] = {
        [](CConsoleVram& m, uint32_t v) { return m.WriteByte(0x40, static_cast<uint8_t>(v)); },
        [](CConsoleVram& m, uint32_t v) { return m.WriteWord(0x40, static_cast<uint16_t>(v)); },
        [](CConsoleVram& m, uint32_t v) { return m.WriteLong(0x40, v); },
    };
    for (const Write& write : writes) {
        SCOPED_TRACE(&write - writes);
        vram->Clear();
        EXPECT_FALSE(write(*vram, 0)) << "zero over zero changes nothing";
        EXPECT_TRUE(write(*vram, 0x5A));
        EXPECT_FALSE(write(*vram, 0x5A));
        EXPECT_TRUE(write(*vram, 0x5B));
    }
}

}  // namespace
}  // namespace vdpgl
