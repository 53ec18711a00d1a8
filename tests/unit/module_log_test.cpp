#include "common/module_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "temp_dir.h"

namespace vdpgl {
namespace {

namespace fs = std::filesystem;

TEST(ModuleLogTest, SetUpDeletesTheModulesOldLogAndKeepsTheCommonOne) {
    test::ScopedTempDir dir;
    std::ofstream("vdp1.log") << "old";
    std::ofstream("common.log") << "shared";

    CModuleLog log("vdp1.log");
    EXPECT_FALSE(fs::exists("vdp1.log"));
    EXPECT_TRUE(fs::exists("common.log"));
    EXPECT_EQ(fs::path(log.Path()), fs::current_path() / "vdp1.log");
    EXPECT_EQ(fs::path(log.CommonPath()), fs::current_path() / "common.log");
}

TEST(ModuleLogTest, PathsAreFixedWhenTheModuleIsBuilt) {
    test::ScopedTempDir dir;
    CModuleLog log("vdp2.log");
    const std::string path = log.Path();
    fs::create_directory("elsewhere");
    fs::current_path("elsewhere");
    EXPECT_EQ(log.Path(), path);
    fs::current_path(dir.Path());
}

TEST(ModuleLogTest, AMissingFileIsNoError) {
    test::ScopedTempDir dir;
    CModuleLog log("cells.log", false);
    EXPECT_FALSE(fs::exists("cells.log"));
    EXPECT_TRUE(log.CommonPath().empty()) << "modules without the shared log know no common path";
}

#if !VDPGL_TRACE
TEST(ModuleLogTest, TracingOffWritesNothing) {
    test::ScopedTempDir dir;
    CModuleLog log("opengl.log");
    log.Log("SetSaturnResolution(%d, %d)\n", 320, 224);
    EXPECT_FALSE(fs::exists("opengl.log"));
    EXPECT_FALSE(fs::exists("common.log"));
}
#endif

}  // namespace
}  // namespace vdpgl
