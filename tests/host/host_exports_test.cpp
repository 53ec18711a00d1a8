// The plug-in as a host sees it: build/libvdpgl.so loaded with dlopen and
// driven only through its exports. The chips' behaviour is tested in the unit
// tests; these check that each export reaches it.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host_fixture.h"

namespace fs = std::filesystem;
using vdpgl::host::CPluginLibrary;

namespace {

using HostExportsTest = vdpgl::host::HostTest;

TEST_F(HostExportsTest, InformationAnswersAndPortsAreHarmlessBeforeInitialisation) {
    EXPECT_EQ(x().GetPluginType(), 0x82);
    std::vector<char> buffer(256, '\x7f');
    EXPECT_EQ(x().GetPluginName(buffer.data()), buffer.data());
    EXPECT_STREQ(buffer.data(), "VDP OpenGL plugin v2.0 (debug)");
    EXPECT_EQ(buffer[31], '\x7f') << "the name writes exactly 31 bytes";
    std::fill(buffer.begin(), buffer.end(), '\x7f');
    x().GetPluginInfos(buffer.data());
    EXPECT_EQ(std::string(buffer.data()).rfind("This plugin emulates the VDP1 and VDP2 processors using OpenGL.", 0), 0u);
    EXPECT_EQ(std::strlen(buffer.data()), 205u);
    EXPECT_EQ(buffer[206], '\x7f');
    testing::internal::CaptureStderr();
    x().DisplayPluginInfo();  // headless: the message goes to standard error
    EXPECT_NE(testing::internal::GetCapturedStderr().find("About: OpenGL VDP plugin Ver 2.0"), std::string::npos);

    x().WriteByteVDP1VRAM(0, 1);
    x().WriteWordVDP2CRAM(0, 1);
    x().WriteWordVDP1Regs(0, 1);
    x().VDPOnVblankOut();
    EXPECT_EQ(x().ReadLongVDP1VRAM(0), 0u);
    EXPECT_EQ(x().ReadWordVDP2Regs(4), 0u);
    EXPECT_EQ(x().ReadWordVDP1Regs(0x16), 0u);
}

TEST_F(HostExportsTest, InitialisationCreatesTheReplacementFolderAndDeletesOldLogs) {
    const std::vector<std::string> moduleLogs = {
        "vdp1.log", "vdp2.log", "opengl.log", "cells.log", "character_pattern.log", "vdp1_character_pattern.log",
        "NBG0.log", "NBG1.log", "NBG2.log",   "NBG3.log",  "RBG0.log",              "RBG1.log"};
    for (const std::string& name : moduleLogs) std::ofstream(name) << "old run\n";
    std::ofstream("common.log") << "kept\n";
    std::ofstream("unrelated.log") << "kept\n";

    void* record[2] = {nullptr, nullptr};  // module handle and window
    ASSERT_TRUE(x().InitVDPPlugin(record));
    initialised = true;
    for (const std::string& name : moduleLogs) EXPECT_FALSE(fs::exists(name)) << name;
    EXPECT_TRUE(fs::exists("common.log"));
    EXPECT_TRUE(fs::exists("unrelated.log"));
    EXPECT_TRUE(fs::is_directory("replacement_texture_set"));

    // Running does not write any log.
    x().EmulationThreadStarting();
    x().WriteWordVDP1Regs(0x04, 1);
    x().WriteWordVDP2Regs(0x000, 0x8000);
    x().VDPOnVblankIn();
    x().VDPOnVblankOut();
    x().EmulationThreadStoping();
    for (const std::string& name : moduleLogs) EXPECT_FALSE(fs::exists(name)) << name;
}

TEST_F(HostExportsTest, VramPortsKeepTheConsoleByteOrderAndStayInside) {
    Init();
    struct Port {
        void (*writeByte)(uint32_t, uint8_t);
        void (*writeWord)(uint32_t, uint16_t);
        void (*writeLong)(uint32_t, uint32_t);
        uint8_t (*readByte)(uint32_t);
        uint16_t (*readWord)(uint32_t);
        uint32_t (*readLong)(uint32_t);
    };
    const Port ports[] = {
        {x().WriteByteVDP1VRAM, x().WriteWordVDP1VRAM, x().WriteLongVDP1VRAM, x().ReadByteVDP1VRAM,
         x().ReadWordVDP1VRAM, x().ReadLongVDP1VRAM},
        {x().WriteByteVDP2VRAM, x().WriteWordVDP2VRAM, x().WriteLongVDP2VRAM, x().ReadByteVDP2VRAM,
         x().ReadWordVDP2VRAM, x().ReadLongVDP2VRAM},
    };
    for (const Port& p : ports) {
        SCOPED_TRACE(&p == ports ? "VDP1" : "VDP2");
        p.writeByte(0, 0x12);
        p.writeWord(2, 0x3456);
        EXPECT_EQ(p.readLong(0), 0x12003456u);
        p.writeLong(4, 0x11223344);
        EXPECT_EQ(p.readByte(5), 0x22);
        EXPECT_EQ(p.readWord(6), 0x3344);
        p.writeByte(0x80000 + 9, 0xAB);  // the bus address above the mask is ignored
        EXPECT_EQ(p.readByte(0x25A00009), 0xAB);
        p.writeLong(0x7FFFE, 0xCAFEF00D);  // misaligned at the very end: aligned down
        EXPECT_EQ(p.readLong(0x7FFFC), 0xCAFEF00Du);
        EXPECT_EQ(p.readLong(0), 0x12003456u) << "nothing wrapped into the start";
    }
    // VDP1's frame buffer exists only as the rendered picture.
    x().WriteByteVDP1FrameBuffer(0x10, 0xFF);
    x().WriteWordVDP1FrameBuffer(0x10, 0xFFFF);
    x().WriteLongVDP1FrameBuffer(0x10, 0xFFFFFFFF);
    EXPECT_EQ(x().ReadByteVDP1FrameBuffer(0x10), 0);
    EXPECT_EQ(x().ReadWordVDP1FrameBuffer(0x10), 0);
    EXPECT_EQ(x().ReadLongVDP1FrameBuffer(0x10), 0u);
}

TEST_F(HostExportsTest, RegisterPortsDecodeAndAnswer) {
    Init();
    x().WriteWordVDP1Regs(0x00, 0x0009);  // TVMR
    x().WriteWordVDP1Regs(0x02, 0x000E);  // FBCR
    x().WriteWordVDP1Regs(0x04, 0x0002);  // PTMR
    EXPECT_EQ(x().ReadWordVDP1Regs(0x36), 0x1179) << "MODR, masked with 0x1F, mirrors TVMR, FBCR and PTMR";

    x().WriteWordVDP2Regs(0x070, 0x1234);
    x().WriteByteVDP2Regs(0x071, 0xAB);  // odd address: lower byte only
    EXPECT_EQ(x().ReadWordVDP2Regs(0x070), 0x12AB);
    EXPECT_EQ(x().ReadByteVDP2Regs(0x070), 0x12);
    x().WriteLongVDP2Regs(0x0F0, 0x01020304);  // PRISA and PRISB together
    EXPECT_EQ(x().ReadWordVDP2Regs(0x200 + 0x0F2), 0x0304) << "the address is masked with 0x1FF";
    EXPECT_EQ(x().ReadLongVDP2Regs(0x0F0), 0x01020304u);

    // A long at the last register is the long at 0x1FC: aligned down, it
    // neither leaves the register file nor wraps to its start.
    x().WriteLongVDP2Regs(0x1FE, 0xAAAABBBB);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x1FC), 0xAAAA);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x1FE), 0xBBBB);
    EXPECT_EQ(x().ReadLongVDP2Regs(0x1FE), 0xAAAABBBBu);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x000), 0);
    EXPECT_EQ(x().ReadLongVDP2VRAM(0), 0u);
}

TEST_F(HostExportsTest, BlankingEventsDriveTheVdp2StatusRegisters) {
    Init();
    x().WriteWordVDP2Regs(0x000, 0x8000);  // display on: TVSTAT no longer reads V-blank
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 0);
    x().VDPOnVblankIn();
    x().VDPOnHblankIn();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8 | 4);
    x().VDPOnHblankOut();  // leaves H-blank, toggles the odd flag, counts a line
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8 | 2);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x00A), 1);
    x().VDPOnVblankOut();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 2);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x00A), 0);
}

TEST_F(HostExportsTest, ColourRamPortsFollowItsMode) {
    Init();
    x().WriteWordVDP2CRAM(0x010, 0x7C1F);  // mode 0: mirrored in the second half
    x().WriteByteVDP2CRAM(0x011, 0x00);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x810), 0x7C00);
    x().WriteWordVDP2Regs(0x00E, 0x1000);  // mode 1: 2,048 entries, no mirror
    x().WriteLongVDP2CRAM(0x840, 0xAAAA5555);
    EXPECT_EQ(x().ReadLongVDP2CRAM(0x840), 0xAAAA5555u);
    EXPECT_EQ(x().ReadByteVDP2CRAM(0x843), 0x55);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x040), 0);
    x().VDPOnVblankOut();  // what was written this frame is still there after the switch
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x842), 0x5555);
}

TEST_F(HostExportsTest, ResetAndStartKeepVdp1MemoryAndClearVdp2) {
    Init();
    x().WriteLongVDP1VRAM(0x100, 0xDEADBEEF);
    x().WriteWordVDP1Regs(0x00, 0x0003);
    for (void (*restart)() : {x().Reset, x().EmulationThreadStarting}) {
        x().WriteLongVDP2VRAM(0x100, 0xDEADBEEF);
        x().WriteWordVDP2CRAM(0x002, 0x1111);
        x().WriteWordVDP2Regs(0x070, 0x2222);
        restart();
        EXPECT_EQ(x().ReadLongVDP1VRAM(0x100), 0xDEADBEEFu);
        EXPECT_EQ(x().ReadWordVDP1Regs(0x00), 0x0003);
        EXPECT_EQ(x().ReadLongVDP2VRAM(0x100), 0u);
        EXPECT_EQ(x().ReadWordVDP2CRAM(0x002), 0);
        EXPECT_EQ(x().ReadWordVDP2Regs(0x070), 0);
    }
    x().EmulationThreadStoping();
}

TEST_F(HostExportsTest, ShutDownAndInitialiseAgain) {
    Init();
    x().WriteLongVDP1VRAM(0, 0x01020304);
    x().DeInitPlugin();
    initialised = false;
    EXPECT_EQ(x().ReadLongVDP1VRAM(0), 0u) << "nothing answers after shut-down";
    Init();
    x().WriteLongVDP1VRAM(0, 0x05060708);
    EXPECT_EQ(x().ReadLongVDP1VRAM(0), 0x05060708u);
}

TEST(HostLibraryTest, ALibraryThatWillNotLoadIsReportedByName) {
    CPluginLibrary library;
    EXPECT_FALSE(library.Load("/nonexistent/libvdpgl.so"));
    EXPECT_NE(library.Error().find("/nonexistent/libvdpgl.so"), std::string::npos);
    EXPECT_FALSE(library.IsLoaded());
}

}  // namespace
