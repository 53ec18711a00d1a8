// A machine where no GL context can be made: the start shows the renderer's
// message, and the plug-in keeps running with drawing harmless. The EGL
// vendor list of this process names no driver.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "plugin_library.h"

namespace {

TEST(HostNoContextTest, StartShowsTheErrorAndKeepsRunning) {
    // Read by the EGL library at its first call, after the plug-in is loaded.
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", VDPGL_NO_EGL_VENDOR, 1);
    vdpgl::host::CPluginLibrary library;
    ASSERT_TRUE(library.Load(VDPGL_LIBRARY_PATH)) << library.Error();
    const auto& x = library.Exports();
    char pattern[] = "/tmp/vdpgl-host-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(pattern);

    x.InitVDPPlugin(nullptr);
    testing::internal::CaptureStderr();
    x.EmulationThreadStarting();
    const std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("ERROR: Can't Create A GL Device Context."), std::string::npos) << shown;

    // Ports, frames and captures all go on without a context.
    x.WriteWordVDP2Regs(0x000, 0x8000);
    x.WriteWordVDP1Regs(0x04, 0x0002);
    x.WriteLongVDP1VRAM(0, 0x12345678);
    x.VDPOnVblankIn();
    x.VDPOnVblankOut();
    EXPECT_EQ(x.ReadLongVDP1VRAM(0), 0x12345678u);
    std::vector<unsigned char> rgba(320 * 224 * 4);
    EXPECT_EQ(x.CaptureDisplay(rgba.data(), 320, 224), 0);
    x.EmulationThreadStoping();
    x.DeInitPlugin();

    std::filesystem::current_path(previous);
    std::filesystem::remove_all(pattern);
}

}  // namespace
