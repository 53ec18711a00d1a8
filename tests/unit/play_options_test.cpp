// vdpgl-play's command line: what it accepts, and the message for what not. Each option spelt with a
// space runs end to end in replay_test, which also meets a --frames value that is no number.
#include <gtest/gtest.h>

#include <tuple>

#include "play_options.h"

namespace vdpgl::play {
namespace {

TEST(PlayOptionsTest, ValuesAfterAnEqualsSignAndMistakesNamed) {
    std::string error;
    const auto o = ParsePlayOptions(
        {"--frames=30", "--capture-dir=d", "--capture-every=5", "--scale=2.5", "--plugin=p.so", "--bench",
         "--rotation-sampling=screen", "--fast", "-"},
        error);
    ASSERT_TRUE(o) << error;
    EXPECT_EQ(std::tuple(o->frames, o->captureDir, o->captureEvery, o->scale, o->pluginPath, o->tracePath, o->bench,
                         o->scaleGiven, o->headless, o->rotationSampling, o->fast, o->loop),
              std::tuple(30L, "d", 5L, 2.5f, "p.so", "-", true, true, false, "screen", true, false));
    EXPECT_TRUE(ParsePlayOptions({"--loop", "a.trace"}, error)->loop);
    const auto figures = ParsePlayOptions({"--bench-json", "f.json", "--bench-chart=f.svg", "a.trace"}, error);
    EXPECT_EQ(std::tuple(figures->bench, figures->benchJson, figures->benchChart), std::tuple(true, "f.json", "f.svg"))
        << "a file of figures asks for the benchmark";
    EXPECT_EQ(ParsePlayOptions({"--texture-set=pack", "a.trace"}, error)->textureSet, "pack");
    const auto held = ParsePlayOptions({"--open", "viewer", "--pause-at", "60", "a.trace"}, error);
    EXPECT_EQ(std::pair(held->openDialog, held->pauseAt), std::pair(std::string("viewer"), 60L));
    EXPECT_TRUE(ParsePlayOptions({"--help"}, error)->help) << "help needs no trace";
    const struct { std::vector<std::string> arguments; const char* message; } cases[] = {
        {{}, "no trace given"}, {{"--frames"}, "--frames needs a value"},
        {{"--frames", "-3", "a"}, "--frames needs a number of frames, not \"-3\""},
        {{"--capture-every", "0", "a"}, "--capture-every needs a count of 1 or more, not \"0\""},
        {{"--scale", "2x", "a"}, "--scale must be one of"}, {{"--quick", "a"}, "unknown option --quick"},
        {{"a", "-"}, "one trace at a time"}, {{"--rotation-sampling", "fine", "a"}, "grid or screen"},
        {{"--loop", "-"}, "--loop needs a trace file"},
        {{"--scale", "1.5", "a"}, "--scale must be one of"},
        {{"--texture-set", "../x", "a"}, "--texture-set needs the name of a set"},
        {{"--open", "menu", "a"}, "--open takes panel, viewer or editor"}, {{"--pause-at", "x", "a"}, "--pause-at needs"},
        {{"--bench-json=", "a"}, "--bench-json needs a file name"}};
    for (const auto& c : cases) {
        EXPECT_FALSE(ParsePlayOptions(c.arguments, error));
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace vdpgl::play
