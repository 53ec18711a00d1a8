// The plug-in as a host sees it: build/libvdpgl.so loaded with dlopen and
// driven only through its exports.
#include <gtest/gtest.h>

#include <cstdlib>
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

TEST_F(HostExportsTest, InformationCallsAnswerBeforeInitialisation) {
    EXPECT_EQ(x().GetPluginType(), 0x82);

    std::vector<char> buffer(256, '\x7f');
    EXPECT_EQ(x().GetPluginName(buffer.data()), buffer.data());
    EXPECT_STREQ(buffer.data(), "VDP OpenGL plugin v2.0 (debug)");
    EXPECT_EQ(buffer[31], '\x7f') << "the name writes exactly 31 bytes";

    std::fill(buffer.begin(), buffer.end(), '\x7f');
    x().GetPluginInfos(buffer.data());
    EXPECT_EQ(std::strlen(buffer.data()) + 1, 206u);
    EXPECT_EQ(std::string(buffer.data()).rfind("This plugin emulates the VDP1 and VDP2 processors using OpenGL.", 0), 0u);
    EXPECT_EQ(buffer[206], '\x7f');
}

TEST_F(HostExportsTest, PortsBeforeInitialisationAreHarmless) {
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

    x().InitVDPPlugin(nullptr);  // a null record reads as two zero words
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

TEST_F(HostExportsTest, VramKeepsTheConsoleByteOrder) {
    Init();
    struct Port {
        const char* name;
        void (*writeByte)(uint32_t, uint8_t);
        void (*writeLong)(uint32_t, uint32_t);
        uint8_t (*readByte)(uint32_t);
        uint16_t (*readWord)(uint32_t);
        uint32_t (*readLong)(uint32_t);
    };
    const Port ports[] = {
        {"VDP1", x().WriteByteVDP1VRAM, x().WriteLongVDP1VRAM, x().ReadByteVDP1VRAM, x().ReadWordVDP1VRAM,
         x().ReadLongVDP1VRAM},
        {"VDP2", x().WriteByteVDP2VRAM, x().WriteLongVDP2VRAM, x().ReadByteVDP2VRAM, x().ReadWordVDP2VRAM,
         x().ReadLongVDP2VRAM},
    };
    for (const Port& p : ports) {
        SCOPED_TRACE(p.name);
        p.writeByte(0, 0x12);
        EXPECT_EQ(p.readWord(0) >> 8, 0x12);
        EXPECT_EQ(p.readLong(0) >> 24, 0x12u);

        p.writeLong(4, 0x11223344);
        EXPECT_EQ(p.readByte(4), 0x11);
        EXPECT_EQ(p.readByte(5), 0x22);
        EXPECT_EQ(p.readByte(6), 0x33);
        EXPECT_EQ(p.readByte(7), 0x44);
        EXPECT_EQ(p.readWord(6), 0x3344);

        // The bus address above the mask is ignored.
        p.writeByte(0x80000 + 9, 0xAB);
        EXPECT_EQ(p.readByte(9), 0xAB);
        EXPECT_EQ(p.readByte(0x25A00009), 0xAB);

        // Misaligned accesses at the very end stay inside the memory.
        p.writeLong(0x7FFFE, 0xCAFEF00D);
        EXPECT_EQ(p.readLong(0x7FFFC), 0xCAFEF00Du);
    }
}

TEST_F(HostExportsTest, Vdp1FrameBufferIsNotStored) {
    Init();
    x().WriteByteVDP1FrameBuffer(0x10, 0xFF);
    x().WriteWordVDP1FrameBuffer(0x10, 0xFFFF);
    x().WriteLongVDP1FrameBuffer(0x10, 0xFFFFFFFF);
    EXPECT_EQ(x().ReadByteVDP1FrameBuffer(0x10), 0);
    EXPECT_EQ(x().ReadWordVDP1FrameBuffer(0x10), 0);
    EXPECT_EQ(x().ReadLongVDP1FrameBuffer(0x10), 0u);
}

TEST_F(HostExportsTest, Vdp1RegistersDecodeAndAnswer) {
    Init();
    x().WriteWordVDP1Regs(0x00, 0x0009);  // TVMR
    x().WriteWordVDP1Regs(0x02, 0x000E);  // FBCR
    x().WriteWordVDP1Regs(0x04, 0x0002);  // PTMR
    EXPECT_EQ(x().ReadWordVDP1Regs(0x16), 0x1179) << "MODR mirrors TVMR, FBCR and PTMR";
    EXPECT_EQ(x().ReadWordVDP1Regs(0x00), 0x0009) << "write-only registers answer their last value";
    EXPECT_EQ(x().ReadWordVDP1Regs(0x20), 0x0009) << "the address is masked with 0x1F";

    x().WriteWordVDP1Regs(0x12, 0x4321);  // LOPR: read-only, kept all the same
    EXPECT_EQ(x().ReadWordVDP1Regs(0x12), 0x4321);
    x().WriteWordVDP1Regs(0x0E, 0x5555);  // unnamed slot: stored, read as unknown
    EXPECT_EQ(x().ReadWordVDP1Regs(0x0E), 0);
    x().WriteWordVDP1Regs(0x18, 0x7777);  // past the register file
    EXPECT_EQ(x().ReadWordVDP1Regs(0x18), 0);
}

TEST_F(HostExportsTest, Vdp2RegistersDecodeByteWordAndLongWrites) {
    Init();
    x().WriteWordVDP2Regs(0x070, 0x1234);
    x().WriteByteVDP2Regs(0x071, 0xAB);  // odd address: lower byte only
    EXPECT_EQ(x().ReadWordVDP2Regs(0x070), 0x12AB);
    x().WriteByteVDP2Regs(0x070, 0xCD);
    EXPECT_EQ(x().ReadByteVDP2Regs(0x070), 0xCD);
    EXPECT_EQ(x().ReadByteVDP2Regs(0x071), 0xAB);

    x().WriteLongVDP2Regs(0x0F0, 0x01020304);  // PRISA and PRISB together
    EXPECT_EQ(x().ReadWordVDP2Regs(0x0F0), 0x0102);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x0F2), 0x0304);
    EXPECT_EQ(x().ReadLongVDP2Regs(0x0F0), 0x01020304u);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x200 + 0x0F2), 0x0304) << "the address is masked with 0x1FF";

    // A long at the last register must not reach past the register file.
    x().WriteLongVDP2Regs(0x1FE, 0xAAAABBBB);
    x().ReadLongVDP2Regs(0x1FE);
}

TEST_F(HostExportsTest, Vdp2StatusRegistersFollowTheBlankingEvents) {
    Init();
    // Display off: TVSTAT reports V-blank even outside it.
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004) & 8, 8);
    x().WriteWordVDP2Regs(0x000, 0x8000);  // DISP on
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 0);

    x().VDPOnVblankIn();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8);
    x().VDPOnHblankIn();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8 | 4);
    x().VDPOnHblankOut();  // leaves H-blank, toggles the odd flag
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8 | 2);

    EXPECT_EQ(x().ReadWordVDP2Regs(0x008), 50);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x008), 100);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x008), 150);
    x().VDPOnHblankOut();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x008), 50) << "HCNT restarts at every H-blank-out";

    EXPECT_EQ(x().ReadWordVDP2Regs(0x00A), 2) << "VCNT counts H-blank-outs";
    x().VDPOnVblankOut();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x00A), 0);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004) & 8, 0);
}

TEST_F(HostExportsTest, ColourRamFollowsItsMode) {
    Init();
    x().WriteWordVDP2CRAM(0x010, 0x7C1F);  // mode 0: mirrored in the second half
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x010), 0x7C1F);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x810), 0x7C1F);
    x().WriteByteVDP2CRAM(0x011, 0x00);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x810), 0x7C00);

    x().WriteWordVDP2Regs(0x00E, 0x1000);  // mode 1: 2,048 entries, no mirror
    x().WriteWordVDP2CRAM(0x820, 0x1234);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x820), 0x1234);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x020), 0);
    x().WriteLongVDP2CRAM(0x040, 0xAAAA5555);
    EXPECT_EQ(x().ReadLongVDP2CRAM(0x040), 0xAAAA5555u);
    EXPECT_EQ(x().ReadByteVDP2CRAM(0x043), 0x55);

    x().WriteWordVDP2Regs(0x00E, 0x3000);  // mode 3 is prohibited: writes are dropped
    x().WriteWordVDP2CRAM(0x820, 0xFFFF);
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x820), 0x1234);

    // What was written this frame is still there after the V-blank switch.
    x().VDPOnVblankOut();
    EXPECT_EQ(x().ReadWordVDP2CRAM(0x820), 0x1234);
}

TEST_F(HostExportsTest, ResetKeepsVdp1MemoryAndClearsVdp2) {
    Init();
    x().WriteLongVDP1VRAM(0x100, 0xDEADBEEF);
    x().WriteWordVDP1Regs(0x00, 0x0003);
    x().WriteLongVDP2VRAM(0x100, 0xDEADBEEF);
    x().WriteWordVDP2CRAM(0x002, 0x1111);
    x().WriteWordVDP2Regs(0x070, 0x2222);

    for (void (*restart)() : {x().Reset, x().EmulationThreadStarting}) {
        restart();
        EXPECT_EQ(x().ReadLongVDP1VRAM(0x100), 0xDEADBEEFu);
        EXPECT_EQ(x().ReadWordVDP1Regs(0x00), 0x0003);
        EXPECT_EQ(x().ReadLongVDP2VRAM(0x100), 0u);
        EXPECT_EQ(x().ReadWordVDP2CRAM(0x002), 0);
        EXPECT_EQ(x().ReadWordVDP2Regs(0x070), 0);
        x().WriteLongVDP2VRAM(0x100, 0xDEADBEEF);
        x().WriteWordVDP2CRAM(0x002, 0x1111);
        x().WriteWordVDP2Regs(0x070, 0x2222);
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
