#include "common/module_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "temp_dir.h"

namespace vdpgl {
namespace {

namespace fs = std::filesystem;

TEST(ModuleLogTest, SetUpDeletesTheOldLogAndFixesAbsolutePathsInTheDirectoryOfTheStart) {
    test::ScopedTempDir dir;
    std::ofstream("vdp1.log") << "old";
    std::ofstream("common.log") << "shared";
    const fs::path start = fs::current_path();

    CModuleLog log("vdp1.log");
    EXPECT_FALSE(fs::exists("vdp1.log"));
    EXPECT_TRUE(fs::exists("common.log")) << "the shared log is never deleted";
    // A later change of directory moves neither path: both were made absolute.
    fs::create_directory("elsewhere");
    fs::current_path("elsewhere");
    EXPECT_EQ(fs::path(log.Path()), start / "vdp1.log");
    EXPECT_EQ(fs::path(log.CommonPath()), start / "common.log");
}

TEST(ModuleLogTest, AMissingFileIsNoErrorAndTracingOffWritesNothing) {
    test::ScopedTempDir dir;
    CModuleLog log("cells.log", false);
    EXPECT_TRUE(log.CommonPath().empty()) << "modules without the shared log know no common path";
    log.Log("SetSaturnResolution(%d, %d)\n", 320, 224);
    EXPECT_EQ(fs::exists("cells.log"), VDPGL_TRACE != 0);
    EXPECT_FALSE(fs::exists("common.log"));
}

}  // namespace
}  // namespace vdpgl
