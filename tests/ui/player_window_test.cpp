// vdpgl-play as a player watches it: the demo trace in the display window, its menu used while it plays, the frames
// it captured checked afterwards; and a display that cannot be reached, which leaves the frames offscreen.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "../unit/temp_dir.h"
#include "common/png_file.h"
#include "ui_server.h"

namespace vdpgl::test {
namespace {

namespace fs = std::filesystem;

std::string Quote(const std::string& s) { return "'" + s + "'"; }
std::string Player() { return Quote(VDPGL_PLAY) + " --plugin " + Quote(VDPGL_LIBRARY) + " "; }

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Channels of two same-sized pictures more than 3 apart, counted by pixel; all of them when the sizes differ.
int PixelsApart(const RgbaImage& a, const RgbaImage& b) {
    if (a.width != b.width || a.height != b.height) return a.width * a.height;
    int apart = 0;
    for (size_t i = 0; i < a.pixels.size(); i += 4)
        for (size_t c = 0; c < 4; ++c)
            if (std::abs(a.pixels[i + c] - b.pixels[i + c]) > 3) {
                ++apart;
                break;
            }
    return apart;
}

class UiPlayerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(std::system((Quote(VDPGL_SCENES) + " --out . sprites backgrounds > /dev/null").c_str()), 0);
    }
    ScopedTempDir dir;
};

TEST_F(UiPlayerTest, ThePlayerShowsTheTraceInTheWindowAndTheMenuRescalesTheFramesItCaptures) {
    StartServer();
    CX11Session x11;
    ASSERT_TRUE(x11.Open());
    ASSERT_EQ(std::system((Player() + "--loop --capture-every 20 --capture-dir frames sprites.trace > play.log 2>&1 & "
                                      "echo $! > play.pid")
                              .c_str()),
              0);
    const pid_t pid = std::stoi(ReadAll("play.pid"));
    const unsigned long window = x11.WaitForWindow("Resolution: 320X224", kWait);
    ASSERT_NE(window, 0u) << ReadAll("play.log");
    SaveDrawn(x11, window, "player-window.png");

    // Rendering > Resolution > x 2 while it plays; the frames captured from then on are twice the size.
    ChooseScale2(x11, window);
    ASSERT_TRUE(x11.WaitForTitle(window, "Resolution: 640X448 (320X224X2.00)", kWait)) << x11.Title(window);
    RgbaImage last;
    std::string error;
    for (auto end = std::chrono::steady_clock::now() + kWait; std::chrono::steady_clock::now() < end && last.width != 640;)
        for (const auto& e : fs::directory_iterator("frames")) ReadPng(e.path().string(), last, error);
    EXPECT_EQ(last.width * 1000 + last.height, 640 * 1000 + 448);
    SaveDrawn(x11, window, "player-window-x2.png");

    // Ctrl-C ends it cleanly, the window with it; its first frame is the scene's.
    kill(pid, SIGINT);
    EXPECT_TRUE(x11.WaitForNoWindow("Resolution: 640X448 (320X224X2.00)", kWait));
    for (auto end = std::chrono::steady_clock::now() + kWait; kill(pid, 0) == 0 && std::chrono::steady_clock::now() < end;)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_NE(ReadAll("play.log").find("interrupted: "), std::string::npos) << ReadAll("play.log");
    RgbaImage first, reference;
    ASSERT_TRUE(ReadPng("frames/frame-000000.png", first, error)) << error;
    ASSERT_TRUE(ReadPng(VDPGL_TEST_DATA "/sprites-frame-000000.png", reference, error)) << error;
    EXPECT_LE(PixelsApart(first, reference), 40);
}

TEST_F(UiPlayerTest, TheBackgroundViewerOpenedWithTheReplayShowsTheChosenBackgroundBesideItsControls) {
    StartServer();
    CX11Session x11;
    ASSERT_TRUE(x11.Open());
    ASSERT_EQ(std::system((Player() + "--open viewer --pause-at 60 backgrounds.trace > play.log 2>&1 & "
                                      "echo $! > play.pid").c_str()),
              0);
    const pid_t pid = std::stoi(ReadAll("play.pid"));
    const unsigned long viewer = x11.WaitForWindow("VDP2 background viewer", kWait);
    ASSERT_NE(viewer, 0u) << ReadAll("play.log");
    // Each background in turn, then View; NBG1's 512 x 512 plane A (the near layer) checked beside the controls.
    for (int bg = 0; bg < 6; ++bg) {
        x11.Click(viewer, 20 + (bg % 3) * 66 + 10, 32 + (bg / 3) * 30 + 12);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        x11.Click(viewer, 100, 151 + 12);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        SaveDrawn(x11, viewer, ("background-viewer-" + std::to_string(bg) + ".png").c_str());
        if (bg != 1) continue;
        EXPECT_TRUE(x11.WaitForSize(viewer, 512 + 245, 512 + 40, kWait)) << x11.Geometry(viewer).width;
        std::vector<uint8_t> rgba;
        int w = 0, h = 0;
        ASSERT_TRUE(x11.Capture(viewer, rgba, w, h));
        int lit = 0;  // the near layer's grass and earth across the plane's top
        for (int y = 10 + 90; y < 10 + 130; ++y)
            for (int x = 232; x < 232 + 512; ++x) lit += rgba[static_cast<size_t>(y * w + x) * 4 + 1] > 40;
        EXPECT_GT(lit, 512 * 10);
    }
    kill(pid, SIGINT);
    EXPECT_TRUE(x11.WaitForNoWindow("VDP2 background viewer", kWait));
}

TEST_F(UiPlayerTest, TheEditorOpenedWithTheReplayListsTheHeldFramesPatterns) {
    StartServer();
    CX11Session x11;
    ASSERT_TRUE(x11.Open());
    ASSERT_EQ(std::system((Player() + "--open editor --pause-at 30 sprites.trace > play.log 2>&1 & echo $! > play.pid")
                              .c_str()),
              0);
    const pid_t pid = std::stoi(ReadAll("play.pid"));
    const unsigned long editor = x11.WaitForWindow("Texture replacement editor", kWait);
    ASSERT_NE(editor, 0u) << ReadAll("play.log");
    for (int i = 0; i < 100 && ReadAll("play.log").find("holding") == std::string::npos; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    x11.Click(editor, 10 + 36, 170 + 12);  // Refresh: the held frame's patterns
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    x11.Click(editor, 60, 25 + 8);  // the first one, previewed
    SaveDrawn(x11, editor, "texture-editor-player.png");
    std::vector<uint8_t> rgba;
    int w = 0, h = 0;
    ASSERT_TRUE(x11.Capture(editor, rgba, w, h));
    int coloured = 0;  // dots of the preview that are not its white
    for (int y = 25; y < 25 + 64; ++y)
        for (int x = 170; x < 170 + 64; ++x) coloured += rgba[static_cast<size_t>(y * w + x) * 4] != 255;
    EXPECT_GT(coloured, 16);
    kill(pid, SIGINT);
    EXPECT_TRUE(x11.WaitForNoWindow("Texture replacement editor", kWait));
}

TEST_F(UiPlayerTest, ADisplayThatCannotBeReachedLeavesTheFramesOffscreenWithAMessage) {
    const std::string run = "DISPLAY=:97531 " + Player() + "--frames 2 --capture-dir frames sprites.trace > play.log 2>&1";
    EXPECT_EQ(std::system(run.c_str()), 0);
    const std::string log = ReadAll("play.log");
    EXPECT_NE(log.find("cannot open the display \":97531\""), std::string::npos) << log;
    EXPECT_NE(log.find("drawn offscreen only"), std::string::npos) << log;
    EXPECT_TRUE(fs::exists("frames/frame-000000.png")) << log;
}

}  // namespace
}  // namespace vdpgl::test
