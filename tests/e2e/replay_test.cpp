// End to end, as a user runs it: the scene builder writes the demo trace,
// vdpgl-play replays it through the built plug-in, and the frames it saves
// are compared with reference pictures kept in tests/data. A recording made
// while replaying replays to the very same frames.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "png_file.h"

namespace {

namespace fs = std::filesystem;

struct ProcessResult {
    int status = -1;
    std::string output;  // stdout and stderr together
};

// Runs a shell command line, collecting what it prints.
ProcessResult Shell(const std::string& command) {
    ProcessResult run;
    std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.output.append(buffer, n);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::string Quote(const fs::path& p) { return "'" + p.string() + "'"; }

vdpgl::tools::RgbaImage Load(const fs::path& path) {
    vdpgl::tools::RgbaImage image;
    std::string error;
    EXPECT_TRUE(vdpgl::tools::ReadPng(path.string(), image, error)) << error;
    return image;
}

// Pictures agree when every channel of every pixel is within tolerance,
// except for at most `outliers` pixels (a driver may place an edge pixel
// differently).
testing::AssertionResult SamePicture(const vdpgl::tools::RgbaImage& a, const vdpgl::tools::RgbaImage& b,
                                     int tolerance, int outliers) {
    if (a.width != b.width || a.height != b.height)
        return testing::AssertionFailure() << a.width << "x" << a.height << " against " << b.width << "x" << b.height;
    int off = 0, first = -1;
    for (size_t i = 0; i < a.pixels.size(); i += 4) {
        bool differs = false;
        for (size_t c = 0; c < 4; ++c) differs |= std::abs(a.pixels[i + c] - b.pixels[i + c]) > tolerance;
        if (differs && first < 0) first = static_cast<int>(i / 4);
        off += differs;
    }
    if (off <= outliers) return testing::AssertionSuccess();
    return testing::AssertionFailure() << off << " pixels differ, the first at (" << first % a.width << ", "
                                       << first / a.width << ")";
}

class ReplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/vdpgl-e2e-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
        // The plug-in creates its replacement folder in the current directory.
        previous = fs::current_path();
        fs::current_path(dir);
        const ProcessResult scenes = Shell(Quote(VDPGL_SCENES) + " --out " + Quote(dir));
        ASSERT_EQ(scenes.status, 0) << scenes.output;
        trace = dir / "sprites.trace";
    }
    void TearDown() override {
        fs::current_path(previous);
        fs::remove_all(dir);
    }
    ProcessResult Play(const std::string& arguments, const std::string& environment = "") {
        return Shell(environment + " " + Quote(VDPGL_PLAY) + " --headless --plugin " + Quote(VDPGL_LIBRARY) + " " +
                     arguments);
    }

    fs::path dir, previous, trace;
};

TEST_F(ReplayTest, ShowcaseFramesMatchTheReferencePictures) {
    const fs::path frames = dir / "frames";
    const ProcessResult run = Play("--frames 241 --capture-every 60 --capture-dir " + Quote(frames) + " " + Quote(trace));
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("241 frames played, 5 written"), std::string::npos) << run.output;
    for (const char* name : {"frame-000000.png", "frame-000060.png", "frame-000120.png", "frame-000180.png",
                             "frame-000240.png"}) {
        SCOPED_TRACE(name);
        const fs::path reference = fs::path(VDPGL_TEST_DATA) / (std::string("sprites-") + name);
        ASSERT_TRUE(fs::exists(reference)) << reference;
        EXPECT_TRUE(SamePicture(Load(frames / name), Load(reference), 3, 40));
    }
}

TEST_F(ReplayTest, RecordingWhileReplayingReplaysToTheSameFrames) {
    const fs::path recorded = dir / "recorded.trace", first = dir / "first", second = dir / "second";
    const ProcessResult original = Play("--frames 90 --capture-every 30 --capture-dir " + Quote(first) + " " + Quote(trace),
                              "VDPGL_RECORD=" + Quote(recorded));
    ASSERT_EQ(original.status, 0) << original.output;
    const ProcessResult replay = Play("--capture-every 30 --capture-dir " + Quote(second) + " " + Quote(recorded));
    ASSERT_EQ(replay.status, 0) << replay.output;
    EXPECT_NE(replay.output.find("90 frames played, 3 written"), std::string::npos) << replay.output;
    EXPECT_EQ(replay.output.find("cut short"), std::string::npos) << "the recording was closed properly";
    for (const char* name : {"frame-000000.png", "frame-000030.png", "frame-000060.png"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(SamePicture(Load(first / name), Load(second / name), 0, 0));
    }
}

TEST_F(ReplayTest, ScaleRendersAtTheChosenSize) {
    const fs::path frames = dir / "scaled";
    const ProcessResult run = Play("--scale 2 --frames 1 --capture-dir " + Quote(frames) + " " + Quote(trace));
    ASSERT_EQ(run.status, 0) << run.output;
    const vdpgl::tools::RgbaImage image = Load(frames / "frame-000000.png");
    EXPECT_EQ(image.width, 640);
    EXPECT_EQ(image.height, 448);
}

TEST_F(ReplayTest, PlayerNamesWhatIsWrong) {
    // A trace cut in the middle of its blocks, and one with a flipped byte.
    std::ifstream in(trace, std::ios::binary);
    std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::ofstream(dir / "cut.trace", std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size() / 2));
    bytes[bytes.size() / 2] ^= 0x10;
    std::ofstream(dir / "flipped.trace", std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));

    struct Case {
        std::string arguments;
        int status;
        const char* message;
    };
    const Case cases[] = {
        {Quote(dir / "missing.trace"), 2, "cannot open the trace"},
        {Quote(VDPGL_LIBRARY), 2, "is not a vdpgl trace"},
        {Quote(dir / "cut.trace"), 4, "the trace is cut off"},
        {Quote(dir / "flipped.trace"), 4, "checksum does not match"},
        {"--frames many " + Quote(trace), 1, "--frames needs a number"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const ProcessResult run = Play(c.arguments);
        EXPECT_EQ(run.status, c.status) << run.output;
        EXPECT_NE(run.output.find(c.message), std::string::npos) << run.output;
    }
    const ProcessResult noPlugin = Shell(Quote(VDPGL_PLAY) + " --plugin " + Quote(dir / "nothing.so") + " " + Quote(trace));
    EXPECT_EQ(noPlugin.status, 3);
    EXPECT_NE(noPlugin.output.find("cannot load the plug-in"), std::string::npos) << noPlugin.output;
}

}  // namespace
