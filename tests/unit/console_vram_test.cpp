// CConsoleVram's host layout and address handling. Byte order through the ports, masking and a long at
// the very end are checked through the exports (host_exports_test), whether a write changed the value
// by vdp2_vram_test's rounds.
#include "common/console_vram.h"

#include <gtest/gtest.h>

#include <memory>

namespace vdpgl {
namespace {

TEST(ConsoleVramTest, HostWordsHoldConsoleBytesBigEndianAndMisalignedWordsAlignDown) {
    auto vram = std::make_unique<CConsoleVram>();
    vram->WriteLong(0x100, 0x11223344);  // a console long at 4k is the host 32-bit value at byte 4k
    EXPECT_EQ(vram->Data()[0x100], 0x44);
    EXPECT_EQ(vram->Data()[0x103], 0x11);
    vram->WriteWord(0x102, 0xABCD);
    EXPECT_EQ(vram->ReadLong(0x100), 0x1122ABCDu);
    EXPECT_EQ(vram->ReadByte(0x102) << 8 | vram->ReadByte(0x103), 0xABCD);
    vram->WriteWord(0x7FFFF, 0xBEEF);
    EXPECT_EQ(vram->ReadWord(0x7FFFE), 0xBEEF);
    EXPECT_EQ(vram->ReadByte(0), 0) << "nothing wrapped into the start";
}

}  // namespace
}  // namespace vdpgl
