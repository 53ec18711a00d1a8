// vdpgl-play's command line: what it accepts, and the message for what not.
#include <gtest/gtest.h>

#include "play_options.h"

namespace vdpgl::play {
namespace {

TEST(PlayOptionsTest, ValuesInBothSpellings) {
    std::string error;
    const auto o = ParsePlayOptions({"--headless", "--frames", "30", "--capture-dir=out", "--capture-every", "5",
                                     "--scale=2.5", "--plugin", "lib.so", "--bench", "-"},
                                    error);
    ASSERT_TRUE(o) << error;
    EXPECT_TRUE(o->headless && o->bench && o->scaleGiven);
    EXPECT_EQ(o->frames, 30);
    EXPECT_EQ(o->captureDir, "out");
    EXPECT_EQ(o->captureEvery, 5);
    EXPECT_FLOAT_EQ(o->scale, 2.5f);
    EXPECT_EQ(o->pluginPath, "lib.so");
    EXPECT_EQ(o->tracePath, "-") << "standard input";
    EXPECT_TRUE(ParsePlayOptions({"--help"}, error)->help) << "help needs no trace";
}

TEST(PlayOptionsTest, MistakesAreNamed) {
    const struct { std::vector<std::string> arguments; const char* message; } cases[] = {
        {{}, "no trace given"},
        {{"--frames"}, "--frames needs a value"},
        {{"--frames", "ten", "a"}, "--frames needs a number of frames, not \"ten\""},
        {{"--frames", "-3", "a"}, "--frames needs a number"},
        {{"--capture-every", "0", "a"}, "--capture-every needs a count of 1 or more"},
        {{"--scale", "1.5", "a"}, "--scale must be one of"},
        {{"--scale", "2x", "a"}, "--scale must be one of"},
        {{"--fast", "a"}, "unknown option --fast"},
        {{"a", "-"}, "one trace at a time"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(ParsePlayOptions(c.arguments, error));
        EXPECT_NE(error.find(c.message), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace vdpgl::play
