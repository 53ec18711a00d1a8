#pragma once
// The built plug-in loaded as a host loads it, in a directory of the test's
// own: the plug-in creates its replacement folder and deletes old logs in the
// current directory.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "plugin_library.h"

namespace vdpgl::host {

class HostTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(library.Load(VDPGL_LIBRARY_PATH)) << library.Error();
        char pattern[] = "/tmp/vdpgl-host-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        previous = std::filesystem::current_path();
        std::filesystem::current_path(dir);
    }
    void TearDown() override {
        if (initialised) x().DeInitPlugin();
        std::filesystem::current_path(previous);
        std::filesystem::remove_all(dir);
    }
    const PluginExports& x() const { return library.Exports(); }
    void Init() {
        ASSERT_TRUE(x().InitVDPPlugin(nullptr));
        initialised = true;
    }

    CPluginLibrary library;
    std::filesystem::path dir, previous;
    bool initialised = false;
};

}  // namespace vdpgl::host
