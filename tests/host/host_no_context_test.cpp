// A machine where no GL context can be made (the EGL vendor list of this process names no driver): the start
// shows the renderer's message, and the plug-in keeps running with drawing harmless.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "../unit/temp_dir.h"
#include "plugin_library.h"

namespace {

TEST(HostNoContextTest, StartShowsTheErrorAndKeepsRunning) {
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", VDPGL_NO_EGL_VENDOR, 1);  // read at EGL's first call, after loading
    vdpgl::test::ScopedTempDir dir;
    vdpgl::host::CPluginLibrary library;
    ASSERT_TRUE(library.Load(VDPGL_LIBRARY_PATH)) << library.Error();
    const auto& x = library.Exports();
    x.InitVDPPlugin(nullptr);
    testing::internal::CaptureStderr();
    x.EmulationThreadStarting();
    const std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("ERROR: Can't Create A GL Device Context."), std::string::npos) << shown;

    // Ports, frames and captures all go on without a context.
    x.WriteWordVDP2Regs(0x000, 0x8000);
    x.WriteWordVDP1Regs(0x04, 0x0002);
    x.WriteLongVDP1VRAM(0, 0x12345678);
    x.VDPOnVblankOut();
    EXPECT_EQ(x.ReadLongVDP1VRAM(0), 0x12345678u);
    std::vector<unsigned char> rgba(320 * 224 * 4);
    EXPECT_EQ(x.CaptureDisplay(rgba.data(), 320, 224), 0);
    x.EmulationThreadStoping();
    x.DeInitPlugin();
}

}  // namespace
