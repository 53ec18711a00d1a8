#pragma once
// Runs a test inside a fresh temporary directory: the modules delete their
// old logs in the current directory when they are built.
#include <unistd.h>

#include <filesystem>

namespace vdpgl::test {

class ScopedTempDir {
public:
    ScopedTempDir() {
        char pattern[] = "/tmp/vdpgl-test-XXXXXX";
        if (mkdtemp(pattern)) dir = pattern;
        std::filesystem::current_path(dir);
    }
    ~ScopedTempDir() {
        std::error_code ec;
        std::filesystem::current_path(previous, ec);
        std::filesystem::remove_all(dir, ec);
    }
    const std::filesystem::path& Path() const { return dir; }

private:
    std::filesystem::path previous = std::filesystem::current_path(), dir;
};

}  // namespace vdpgl::test
