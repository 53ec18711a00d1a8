#include "common/console_vram.h"

#include <gtest/gtest.h>

#include <memory>

namespace vdpgl {
namespace {

class ConsoleVramTest : public ::testing::Test {
protected:
    std::unique_ptr<CConsoleVram> vram = std::make_unique<CConsoleVram>();
};

TEST_F(ConsoleVramTest, HostWordsHoldConsoleBytesBigEndian) {
    // A console long at 4k is the host 32-bit value at byte offset 4k.
    vram->WriteLong(0x100, 0x11223344);
    const uint8_t* host = vram->Data() + 0x100;
    EXPECT_EQ(host[0], 0x44);
    EXPECT_EQ(host[3], 0x11);
    // Console words are host halfwords at a^2: no swapping on the way.
    EXPECT_EQ(vram->ReadWord(0x100), 0x1122);
    EXPECT_EQ(vram->ReadWord(0x102), 0x3344);
    vram->WriteWord(0x102, 0xABCD);
    EXPECT_EQ(vram->ReadLong(0x100), 0x1122ABCDu);
    EXPECT_EQ(vram->ReadByte(0x102), 0xAB);
    EXPECT_EQ(vram->ReadByte(0x103), 0xCD);
}

TEST_F(ConsoleVramTest, WritesReportWhetherTheValueChanged) {
    struct Case {
        const char* what;
        bool (*write)(CConsoleVram&, uint32_t);
    };
    const Case cases[] = {
        {"byte", [](CConsoleVram& m, uint32_t v) { return m.WriteByte(0x40, static_cast<uint8_t>(v)); }},
        {"word", [](CConsoleVram& m, uint32_t v) { return m.WriteWord(0x40, static_cast<uint16_t>(v)); }},
        {"long", [](CConsoleVram& m, uint32_t v) { return m.WriteLong(0x40, v); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        vram->Clear();
        EXPECT_FALSE(c.write(*vram, 0)) << "zero over zero changes nothing";
        EXPECT_TRUE(c.write(*vram, 0x5A));
        EXPECT_FALSE(c.write(*vram, 0x5A));
        EXPECT_TRUE(c.write(*vram, 0x5B));
    }
}

TEST_F(ConsoleVramTest, AddressesWrapAndMisalignedAccessesStayInside) {
    vram->WriteByte(0x80000, 0x77);  // bus bits above the mask are ignored
    EXPECT_EQ(vram->ReadByte(0), 0x77);
    vram->WriteWord(0x7FFFF, 0xBEEF);  // odd word address: aligned down
    EXPECT_EQ(vram->ReadWord(0x7FFFE), 0xBEEF);
    vram->WriteLong(0x7FFFE, 0x01020304);  // long not on a multiple of 4
    EXPECT_EQ(vram->ReadLong(0x7FFFC), 0x01020304u);
    EXPECT_EQ(vram->ReadByte(0), 0x77) << "nothing wrapped into the start";
}

}  // namespace
}  // namespace vdpgl
