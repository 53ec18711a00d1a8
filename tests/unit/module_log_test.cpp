#include "common/module_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "temp_dir.h"

namespace vdpgl {
namespace {

namespace fs = std::filesystem;

TEST(ModuleLogTest, SetUpDeletesTheOldLogFixesAbsolutePathsAndTracingOffWritesNothing) {
    test::ScopedTempDir dir;
    std::ofstream("vdp1.log") << "old";
    const fs::path start = fs::current_path();
    CModuleLog log("vdp1.log"), cells("cells.log", false);  // no cells.log to delete: no error
    EXPECT_FALSE(fs::exists("vdp1.log"));
    EXPECT_TRUE(cells.CommonPath().empty()) << "modules without the shared log know no common path";
    cells.Log("SetSaturnResolution(%d, %d)\n", 320, 224);
    EXPECT_EQ(fs::exists("cells.log"), VDPGL_TRACE != 0);
    fs::create_directory("elsewhere");  // a later change of directory moves neither path: both are absolute
    fs::current_path("elsewhere");
    EXPECT_EQ(fs::path(log.Path()), start / "vdp1.log");
    EXPECT_EQ(fs::path(log.CommonPath()), start / "common.log");
}

}  // namespace
}  // namespace vdpgl
