// End to end, as a user runs it: vdpgl-play replays the demo trace through
// the built plug-in from a file, a pipe, a FIFO or a recording of it, to the
// reference pictures of tests/data; what goes wrong is said once.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "../unit/temp_dir.h"
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

// How many pixels of two pictures have a channel more than `tolerance` apart
// (a driver may place an edge pixel differently); all when they cannot be
// compared.
int PixelsApart(const fs::path& a, const fs::path& b, int tolerance) {
    vdpgl::tools::RgbaImage x, y;
    std::string error;
    if (!vdpgl::tools::ReadPng(a.string(), x, error) || !vdpgl::tools::ReadPng(b.string(), y, error) ||
        x.width != y.width || x.height != y.height)
        return 1 << 30;
    int apart = 0;
    for (size_t i = 0; i < x.pixels.size(); i += 4) {
        bool differs = false;
        for (size_t c = 0; c < 4; ++c) differs |= std::abs(x.pixels[i + c] - y.pixels[i + c]) > tolerance;
        apart += differs;
    }
    return apart;
}

class ReplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        const ProcessResult scenes = Shell(Quote(VDPGL_SCENES) + " --out .");
        ASSERT_EQ(scenes.status, 0) << scenes.output;
    }
    // `before` goes ahead of the player: an environment, or a pipe into it.
    ProcessResult Play(const std::string& arguments, const std::string& before = "") {
        return Shell(before + " " + Quote(VDPGL_PLAY) + " --headless --plugin " + Quote(VDPGL_LIBRARY) + " " +
                     arguments);
    }

    // The current directory, where the plug-in creates its replacement folder.
    vdpgl::test::ScopedTempDir dir;
    const fs::path trace = dir.Path() / "sprites.trace";
};

TEST_F(ReplayTest, ShowcaseFromEverySourceMatchesTheReferencePictures) {
    // The file, played while recording it anew, against the references; its
    // recording (closed properly), a pipe and a FIFO give the very same frames.
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const std::string cat = "cat " + Quote(trace);
    const struct { std::string before, trace; } cases[] = {{"VDPGL_RECORD=recorded.trace", "--frames 241 " + Quote(trace)},
                                                           {"", "recorded.trace"},
                                                           {cat + " |", "--frames 241 -"},
                                                           {"(" + cat + " > fifo) >/dev/null &", "--frames 241 fifo"}};
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].before + " " + cases[i].trace);
        const fs::path frames = "frames" + std::to_string(i);
        const ProcessResult run = Play("--capture-every 60 --capture-dir " + frames.string() + " " + cases[i].trace,
                                       cases[i].before);
        ASSERT_EQ(run.status, 0) << run.output;
        EXPECT_NE(run.output.find("241 frames played, 5 written"), std::string::npos) << run.output;
        EXPECT_EQ(run.output.find("cut short"), std::string::npos) << run.output;
        for (const std::string name : {"frame-000000.png", "frame-000060.png", "frame-000120.png", "frame-000180.png",
                                       "frame-000240.png"}) {
            if (i == 0) EXPECT_LE(PixelsApart(frames / name, fs::path(VDPGL_TEST_DATA) / ("sprites-" + name), 3), 40);
            else EXPECT_EQ(PixelsApart(frames / name, fs::path("frames0") / name, 0), 0) << name;
        }
    }
}

// Each run ends with its exit code and says what it must, once: what is
// wrong, and when it plays on, why.
TEST_F(ReplayTest, ExitCodesAndMessages) {
    std::ifstream in(trace, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::ofstream("cut.trace", std::ios::binary) << bytes.substr(0, bytes.size() / 2);
    std::ofstream("long.trace", std::ios::binary) << bytes << "garbage!";
    fs::create_symlink(trace, "link");
    const std::string notRecording = "not recording: VDPGL_RECORD names the trace being played (\"";
    const struct { std::string before, arguments; int status; std::string message; } cases[] = {
        {"", "missing.trace", 2, "cannot open the trace"},
        {"", Quote(VDPGL_LIBRARY), 2, "is not a vdpgl trace"},
        {"cat cut.trace |", "-", 4, "standard input at byte"},
        {"", "--frames many sprites.trace", 1, "--frames needs a number"},
        {"", "--plugin nothing.so sprites.trace", 3, "cannot load the plug-in nothing.so"},
        {"cat long.trace |", "-", 0, "8 bytes follow the trace's end record, from byte " + std::to_string(bytes.size())},
        {"VDPGL_RECORD=/dev/full", "sprites.trace", 0, "cannot write the trace \"/dev/full\": No space left on device"},
        {"VDPGL_RECORD=gone/x.trace", "--frames 10 sprites.trace", 0, "cannot create the trace \"gone/x.trace\""},
        // The trace itself, by another path or through a link with the trace
        // on standard input: it stays as it was.
        {"VDPGL_RECORD=./sprites.trace", "--frames 30 " + Quote(trace), 0, notRecording + "./sprites.trace\")"},
        {"VDPGL_RECORD=link", "--frames 30 - < sprites.trace", 0, notRecording + "link\")"},
        {"", "--scale 2 --frames 1 --capture-dir scaled sprites.trace", 0, "1 frames played, 1 written"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before + " " + c.arguments);
        const ProcessResult run = Play(c.arguments, c.before);
        EXPECT_EQ(run.status, c.status) << run.output;
        const size_t at = run.output.find(c.message);
        EXPECT_NE(at, std::string::npos) << run.output;
        EXPECT_EQ(run.output.find(c.message, at + 1), std::string::npos) << "said once: " << run.output;
    }
    std::ifstream after(trace, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(after), std::istreambuf_iterator<char>()), bytes);
    vdpgl::tools::RgbaImage scaled;
    std::string error;
    ASSERT_TRUE(vdpgl::tools::ReadPng("scaled/frame-000000.png", scaled, error)) << error;
    EXPECT_TRUE(scaled.width == 640 && scaled.height == 448) << scaled.width << "x" << scaled.height;
}

}  // namespace
