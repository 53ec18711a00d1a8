// End to end, as a user runs it: vdpgl-play replays the demo traces through the built plug-in from a file,
// a pipe, a FIFO or a recording of it, to the reference pictures of tests/data; what goes wrong is said once.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "../unit/temp_dir.h"
#include "common/png_file.h"

namespace {

namespace fs = std::filesystem;
using vdpgl::ReadPng;

struct ProcessResult { int status = -1; std::string output; };  // the output: stdout and stderr together

ProcessResult Shell(const std::string& command) {  // a shell command line, and what it prints
    ProcessResult run;
    if (std::FILE* pipe = popen((command + " 2>&1").c_str(), "r")) {
        for (char buffer[4096]; size_t n = std::fread(buffer, 1, sizeof buffer, pipe);) run.output.append(buffer, n);
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return run;
}

std::string Quote(const fs::path& p) { return "'" + p.string() + "'"; }

// Pixels of two pictures with a channel more than `tolerance` apart (edge pixels vary by driver); all if incomparable.
int PixelsApart(const fs::path& a, const fs::path& b, int tolerance) {
    vdpgl::RgbaImage x, y;
    std::string error;
    if (!ReadPng(a.string(), x, error) || !ReadPng(b.string(), y, error) || x.width != y.width || x.height != y.height)
        return 1 << 30;
    const auto far = [&](size_t i) { return std::abs(x.pixels[i] - y.pixels[i]) > tolerance; };
    int apart = 0;
    for (size_t i = 0; i < x.pixels.size(); i += 4) apart += far(i) || far(i + 1) || far(i + 2) || far(i + 3);
    return apart;
}

class ReplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        const ProcessResult scenes = Shell(Quote(VDPGL_SCENES) + " --out . sprites backgrounds rotation");
        ASSERT_EQ(scenes.status, 0) << scenes.output;
    }
    // `before` goes ahead of the player: an environment, or a pipe into it.
    ProcessResult Play(const std::string& args, const std::string& before = "") {
        return Shell(before + " " + Quote(VDPGL_PLAY) + " --headless --plugin " + Quote(VDPGL_LIBRARY) + " " + args);
    }

    vdpgl::test::ScopedTempDir dir;  // the current directory, where the plug-in creates its replacement folder
    const fs::path trace = dir.Path() / "sprites.trace";
};

TEST_F(ReplayTest, ShowcaseFromEverySourceMatchesTheReferencePictures) {
    // The file, recorded anew as it plays, against the references; its recording, a pipe, a FIFO: the same frames.
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const struct { std::string before, trace; } cases[] = {
        {"VDPGL_RECORD=recorded.trace", "--frames 241 " + Quote(trace)}, {"", "recorded.trace"},
        {"cat sprites.trace |", "--frames 241 -"}, {"(cat sprites.trace > fifo) >/dev/null &", "--frames 241 fifo"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before + " " + c.trace);
        const fs::path frames = "frames" + std::to_string(&c - cases);
        const ProcessResult run = Play("--capture-every 60 --capture-dir " + frames.string() + " " + c.trace, c.before);
        EXPECT_TRUE(run.status == 0 && run.output.find("241 frames played, 5 written") != std::string::npos &&
                    run.output.find("cut short") == std::string::npos) << run.output;
        for (const std::string name : {"frame-000000.png", "frame-000060.png", "frame-000120.png", "frame-000180.png",
                                       "frame-000240.png"}) {
            if (&c == cases) EXPECT_LE(PixelsApart(frames / name, VDPGL_TEST_DATA "/sprites-" + name, 3), 40);
            else EXPECT_EQ(PixelsApart(frames / name, fs::path("frames0") / name, 0), 0) << name;
        }
    }
}

TEST_F(ReplayTest, BackgroundSceneAndRotationSceneMatchTheReferencePictures) {
    // Three cell planes scrolling at their own speeds, one of them zoomed, a bitmap and sprites between them; and a
    // rotating floor in perspective through a coefficient table, under a sky plane.
    for (const std::string scene : {"backgrounds", "rotation"}) {
        SCOPED_TRACE(scene);
        const ProcessResult run = Play("--capture-every 145 --capture-dir " + scene + " " + scene + ".trace");
        EXPECT_TRUE(run.status == 0 && run.output.find("300 frames played, 3 written") != std::string::npos)
            << run.output;
        for (const std::string name : {"frame-000000.png", "frame-000145.png", "frame-000290.png"})
            EXPECT_LE(PixelsApart(fs::path(scene) / name, VDPGL_TEST_DATA "/" + scene + "-" + name, 3), 40) << name;
    }
}

TEST_F(ReplayTest, FourThousandPartsInBatchesMatchThePicturesOfOneDrawCallEach) {
    // The stress scene's 4,000 parts of every kind, drawn in runs out of atlas pages, against pictures made when
    // every part was a draw call with a texture of its own. Scaled, distorted and shaded parts are where a batch
    // could pick other texels or shades; the references allow only a few driver-dependent dots.
    const ProcessResult scenes = Shell(Quote(VDPGL_SCENES) + " --out . stress-sprites");
    ASSERT_EQ(scenes.status, 0) << scenes.output;
    const ProcessResult run = Play("--frames 151 --capture-every 75 --capture-dir stress stress-sprites.trace");
    EXPECT_TRUE(run.status == 0 && run.output.find("151 frames played, 3 written") != std::string::npos) << run.output;
    for (const std::string name : {"frame-000000.png", "frame-000075.png", "frame-000150.png"})
        EXPECT_LE(PixelsApart(fs::path("stress") / name, VDPGL_TEST_DATA "/stress-sprites-" + name, 3), 8) << name;
}

// Each run ends with its exit code and says what it must, once: what is wrong, and why it plays on.
TEST_F(ReplayTest, ExitCodesAndMessages) {
    const uintmax_t size = fs::file_size(trace);
    Shell("head -c " + std::to_string(size / 2) + " sprites.trace > cut.trace");
    Shell("(cat sprites.trace; printf garbage!) > long.trace; ln -s sprites.trace link");
    const std::string notRecording = "not recording: VDPGL_RECORD names the trace being played (\"";
    const struct { std::string before, arguments; int status; std::string message; } cases[] = {
        {"", "missing.trace", 2, "cannot open the trace"}, {"", Quote(VDPGL_LIBRARY), 2, "is not a vdpgl trace"},
        {"cat cut.trace |", "-", 4, "standard input at byte"},
        {"", "--frames many sprites.trace", 1, "--frames needs a number"},
        {"", "--plugin nothing.so sprites.trace", 3, "cannot load the plug-in nothing.so"},
        {"cat long.trace |", "-", 0, "8 bytes follow the trace's end record, from byte " + std::to_string(size)},
        {"VDPGL_RECORD=/dev/full", "sprites.trace", 0, "cannot write the trace \"/dev/full\": No space left on device"},
        {"VDPGL_RECORD=gone/x.trace", "--frames 10 sprites.trace", 0, "cannot create the trace \"gone/x.trace\""},
        // The trace itself, by another path or through a link with the trace on standard input: it stays.
        {"VDPGL_RECORD=./sprites.trace", "--frames 30 " + Quote(trace), 0, notRecording + "./sprites.trace\")"},
        {"VDPGL_RECORD=link", "--frames 30 - < sprites.trace", 0, notRecording + "link\")"},
        {"", "--scale 2 --frames 1 --capture-dir scaled sprites.trace", 0, "1 frames played, 1 written"},
        {"", "--loop --frames 400 sprites.trace", 0, "400 frames played"},  // past the 300 of one pass
        {"cat sprites.trace |", "--loop -", 1, "--loop needs a trace file: standard input cannot start again"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before + " " + c.arguments);
        const ProcessResult run = Play(c.arguments, c.before);
        EXPECT_EQ(run.status, c.status) << run.output;
        const size_t at = run.output.find(c.message);  // said once
        EXPECT_TRUE(at != std::string::npos && run.output.find(c.message, at + 1) == std::string::npos) << run.output;
    }
    EXPECT_EQ(fs::file_size(trace), size) << "the played trace stays as it was";
    vdpgl::RgbaImage png;
    std::string error;
    EXPECT_TRUE(ReadPng("scaled/frame-000000.png", png, error) && png.width == 640 && png.height == 448) << error;
}

TEST_F(ReplayTest, TheSceneWriterWritesTheScenesNamedAndRefusesUnknownNames) {
    const auto traces = [](const fs::path& folder) {
        std::set<std::string> names;
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(folder, ec))
            if (entry.path().extension() == ".trace") names.insert(entry.path().filename().string());
        return names;
    };
    // SetUp asked for the demo scenes: the stress scenes are not written.
    EXPECT_EQ(traces("."), (std::set<std::string>{"backgrounds.trace", "rotation.trace", "sprites.trace"}));
    const struct { std::string arguments; int status; std::set<std::string> written; std::string message; } cases[] = {
        {"rotation stress-rotation", 0, {"rotation.trace", "stress-rotation.trace"}, "stress-rotation.trace: 300 frames"},
        {"rotation nothing", 2, {}, "no scene is named \"nothing\""},  // nothing written, not even rotation
        {"--bogus", 2, {}, "usage: vdpgl-scenes [--out DIR] [NAME...]"},
    };
    int run = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const std::string folder = "out" + std::to_string(run++);
        const ProcessResult scenes = Shell(Quote(VDPGL_SCENES) + " --out " + folder + " " + c.arguments);
        EXPECT_EQ(scenes.status, c.status) << scenes.output;
        EXPECT_NE(scenes.output.find(c.message), std::string::npos) << scenes.output;
        EXPECT_EQ(traces(folder), c.written);
    }
}

TEST_F(ReplayTest, CtrlCEndsALoopingReplayCleanly) {
    // The plug-in is stopped and shut down as at a trace's end, and the exit status is 0.
    const ProcessResult run = Play("--loop sprites.trace & p=$!; sleep 1; kill -INT $p; wait $p", "");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("interrupted: "), std::string::npos) << run.output;
}

}  // namespace
