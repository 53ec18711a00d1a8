#pragma once
// The built plug-in loaded as a host loads it, in a directory of the test's
// own: the plug-in creates its replacement folder and deletes old logs in the
// current directory.
#include <gtest/gtest.h>

#include "../unit/temp_dir.h"
#include "plugin_library.h"

namespace vdpgl::host {

class HostTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(library.Load(VDPGL_LIBRARY_PATH)) << library.Error(); }
    void TearDown() override {
        if (initialised) x().DeInitPlugin();
    }
    const PluginExports& x() const { return library.Exports(); }
    void Init() {
        ASSERT_TRUE(x().InitVDPPlugin(nullptr));
        initialised = true;
    }

    test::ScopedTempDir dir;  // first, so that it goes after the library is unloaded
    CPluginLibrary library;
    bool initialised = false;
};

}  // namespace vdpgl::host
