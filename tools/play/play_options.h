#pragma once
// vdpgl-play's command line.
#include <optional>
#include <string>
#include <vector>

namespace vdpgl::play {

struct PlayOptions {
    std::string tracePath;
    std::string pluginPath;  // empty: libvdpgl.so beside the player
    bool headless = false;
    long frames = -1;  // -1: the whole trace
    std::string captureDir;
    long captureEvery = 1;
    float scale = 1.0f;
    bool scaleGiven = false;
    std::string rotationSampling = "grid";  // "grid" or "screen"
    std::string textureSet;  // a replacement texture set to activate; empty: none
    std::string openDialog;  // "panel" or "viewer" to open in the window; empty: none
    long pauseAt = -1;       // hold the replay at this frame; -1: never
    bool bench = false;
    std::string benchJson;   // write the benchmark's figures here as JSON (implies bench)
    std::string benchChart;  // draw every frame's time here as SVG (implies bench)
    bool fast = false;  // no pacing at the console's frame rate (--bench implies it)
    bool loop = false;  // start the trace again at its end
    bool help = false;
};

std::string Usage();

// The options, or nullopt with error set to what is wrong with them.
std::optional<PlayOptions> ParsePlayOptions(const std::vector<std::string>& arguments, std::string& error);

}  // namespace vdpgl::play
