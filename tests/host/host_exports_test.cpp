// The plug-in as a host sees it: build/libvdpgl.so loaded with dlopen and
// driven only through its exports. The chips' behaviour is tested in the unit
// tests; these check that each export reaches it, the capture of a presented
// frame at the rendering size included.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host_fixture.h"

namespace fs = std::filesystem;

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
    EXPECT_EQ(std::string(buffer.data(), 63), "This plugin emulates the VDP1 and VDP2 processors using OpenGL.");
    EXPECT_EQ(std::strlen(buffer.data()), 205u);
    EXPECT_EQ(buffer[206], '\x7f');
    testing::internal::CaptureStderr();
    x().DisplayPluginInfo();  // headless: the message goes to standard error
    EXPECT_NE(testing::internal::GetCapturedStderr().find("About: OpenGL VDP plugin Ver 2.0"), std::string::npos);

    x().WriteByteVDP1VRAM(0, 1);
    x().WriteWordVDP2CRAM(0, 1);
    x().WriteWordVDP1Regs(0, 1);
    x().VDPOnVblankOut();
    x().VDPOnHblankIn();
    EXPECT_EQ(x().ReadLongVDP1VRAM(0) | x().ReadWordVDP2Regs(4) | x().ReadWordVDP1Regs(0x16), 0u);
    VdpglCacheCounters counters{};
    EXPECT_EQ(x().GetCacheCounters(&counters), 0);
}

TEST_F(HostExportsTest, InitialisationCreatesTheReplacementFolderAndDeletesOldLogs) {
    // Whether running writes a log is up to the trace switch (module_log_test).
    const std::vector<std::string> moduleLogs = {
        "vdp1.log", "vdp2.log", "opengl.log", "cells.log", "character_pattern.log", "vdp1_character_pattern.log",
        "NBG0.log", "NBG1.log", "NBG2.log",   "NBG3.log",  "RBG0.log",              "RBG1.log"};
    for (const std::string& name : moduleLogs) std::ofstream(name) << "old run\n";
    for (const char* kept : {"common.log", "unrelated.log"}) std::ofstream(kept) << "kept\n";
    void* record[2] = {nullptr, nullptr};  // module handle and window
    ASSERT_TRUE(x().InitVDPPlugin(record));
    initialised = true;
    for (const std::string& name : moduleLogs) EXPECT_FALSE(fs::exists(name)) << name;
    EXPECT_TRUE(fs::exists("common.log") && fs::exists("unrelated.log"));
    EXPECT_TRUE(fs::is_directory("replacement_texture_set"));
}

TEST_F(HostExportsTest, MemoryPortsOfEveryWidthReachTheirOwnMemoryMaskedAndAligned) {
    // Each memory gets values of its own, so that a port wired to another shows. Bus bits above the size
    // are ignored; a long at the very end is aligned down and nothing wraps into the start.
    Init();
    const auto check = [](uint8_t n, uint32_t size, auto writeByte, auto writeWord, auto writeLong, auto readByte,
                          auto readWord, auto readLong) {
        SCOPED_TRACE(n);
        writeByte(size, 0x12 + n);
        writeWord(2, static_cast<uint16_t>(0x3456 + n));
        writeLong(4, 0x11223344u + n);
        EXPECT_EQ(readLong(0x25A00000), 0x12003456u + (n << 24) + n);
        EXPECT_EQ(readByte(5) << 16 | readWord(6), 0x22 << 16 | (0x3344 + n));
        writeLong(size - 2, 0xCAFEF00Du + n);
        EXPECT_EQ(readLong(size - 4), 0xCAFEF00Du + n);
        EXPECT_EQ(readByte(0), 0x12 + n) << "nothing wrapped into the start";
    };
    check(0, 0x80000, x().WriteByteVDP1VRAM, x().WriteWordVDP1VRAM, x().WriteLongVDP1VRAM, x().ReadByteVDP1VRAM,
          x().ReadWordVDP1VRAM, x().ReadLongVDP1VRAM);
    check(1, 0x80000, x().WriteByteVDP2VRAM, x().WriteWordVDP2VRAM, x().WriteLongVDP2VRAM, x().ReadByteVDP2VRAM,
          x().ReadWordVDP2VRAM, x().ReadLongVDP2VRAM);
    check(2, 0x1000, x().WriteByteVDP2CRAM, x().WriteWordVDP2CRAM, x().WriteLongVDP2CRAM, x().ReadByteVDP2CRAM,
          x().ReadWordVDP2CRAM, x().ReadLongVDP2CRAM);
    // VDP1's frame buffer exists only as the rendered picture.
    x().WriteByteVDP1FrameBuffer(0x10, 0xFF);
    x().WriteWordVDP1FrameBuffer(0x10, 0xFFFF);
    x().WriteLongVDP1FrameBuffer(0x10, 0xFFFFFFFF);
    EXPECT_EQ(x().ReadByteVDP1FrameBuffer(0x10) | x().ReadWordVDP1FrameBuffer(0x10) | x().ReadLongVDP1FrameBuffer(0x10),
              0u);
}

TEST_F(HostExportsTest, RegisterPortsAndBlankingEventsReachTheChips) {
    Init();
    x().WriteWordVDP1Regs(0x20, 0x0009);  // TVMR through the 0x1F mask
    EXPECT_EQ(x().ReadWordVDP1Regs(0x16), 0x1009) << "MODR mirrors TVMR";
    x().WriteWordVDP2Regs(0x070, 0x1234);
    x().WriteByteVDP2Regs(0x071, 0xAB);         // odd address: lower byte only
    x().WriteLongVDP2Regs(0x0F0, 0x01020304);   // PRISA and PRISB together
    EXPECT_EQ(x().ReadWordVDP2Regs(0x270), 0x12AB) << "the address is masked with 0x1FF";
    EXPECT_EQ(x().ReadByteVDP2Regs(0x070), 0x12);
    EXPECT_EQ(x().ReadLongVDP2Regs(0x0F0), 0x01020304u);
    x().WriteLongVDP2Regs(0x1FE, 0xAAAABBBB);  // the last long, aligned down: nothing leaves the file or wraps
    EXPECT_EQ(x().ReadLongVDP2Regs(0x1FC), 0xAAAABBBBu);
    EXPECT_EQ(x().ReadWordVDP2Regs(0x000) | x().ReadLongVDP2VRAM(0), 0u);

    x().VDPOnVblankIn();
    x().VDPOnHblankIn();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x004), 8 | 4) << "TVSTAT: V-blank and H-blank";
    x().VDPOnHblankOut();
    EXPECT_EQ(x().ReadWordVDP2Regs(0x00A), 1) << "VCNT counts the line";
}

TEST_F(HostExportsTest, ResetAndStartKeepVdp1MemoryAndClearVdp2AndNothingAnswersAfterShutDown) {
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
        EXPECT_EQ(x().ReadLongVDP2VRAM(0x100) | x().ReadWordVDP2CRAM(0x002) | x().ReadWordVDP2Regs(0x070), 0u);
    }
    x().EmulationThreadStoping();
    x().DeInitPlugin();
    initialised = false;
    EXPECT_EQ(x().ReadLongVDP1VRAM(0x100), 0u);
}

TEST_F(HostExportsTest, OnlyAPresentedFrameIsCapturedAtTheRenderingSizeRunAfterRun) {
    std::vector<unsigned char> rgba(640 * 480 * 4);
    const auto capture = [&](int w, int h) { return x().CaptureDisplay(rgba.data(), w, h); };
    int w = 0, h = 0;  // the rendering size
    Init();
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run);
        x().EmulationThreadStarting();
        x().GetDisplaySize(&w, &h);
        EXPECT_EQ(w * 1000 + h, run ? 320224 : 320240) << "the size of the last TVMD decoding";
        EXPECT_EQ(capture(320, run ? 224 : 240), 0) << "nothing presented yet";
        x().WriteWordVDP2Regs(0x000, 0x8000);  // display on, 320 x 224
        x().WriteWordVDP1Regs(0x04, 0x0002);    // drawing automatically
        x().WriteWordVDP1Regs(0x00, 0x0008);    // VBE: not one-cycle mode, and no change asked for
        x().VDPOnVblankOut();
        EXPECT_EQ(capture(320, 224), 0) << "VDP1 changed no frame buffer";
        x().WriteWordVDP1Regs(0x00, 0x0000);  // one-cycle mode
        x().VDPOnVblankOut();
        EXPECT_EQ(capture(320, 224), 1);
        EXPECT_EQ(capture(320, 240), 0) << "a size that does not match";
        x().EmulationThreadStoping();
        EXPECT_EQ(capture(320, 224), 0) << "no picture without a context";
        x().VDPOnVblankOut();  // harmless while stopped
    }
}

}  // namespace
