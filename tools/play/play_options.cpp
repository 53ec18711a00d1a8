#include "play_options.h"

#include <cstdlib>

#include "render/opengl/rendering_scales.h"

namespace vdpgl::play {

std::string Usage() {
    return "usage: vdpgl-play [options] TRACE\n"
           "Replays a trace through the plug-in's exports, as a host would.\n"
           "TRACE may be a pipe; \"-\" reads it from standard input.\n"
           "  --plugin PATH       the plug-in to load (default: libvdpgl.so beside vdpgl-play)\n"
           "  --headless          render offscreen even when a display is there\n"
           "  --frames N          stop after N frames\n"
           "  --capture-dir DIR   write frames as DIR/frame-NNNNNN.png\n"
           "  --capture-every K   capture every K-th frame (default 1)\n"
           "  --scale S           rendering scale: " + RenderingScaleList() + "\n"
           "  --rotation-sampling grid|screen\n"
           "                      rotation planes on the 256 x 256 grid (default) or per screen dot\n"
           "  --texture-set NAME  draw with the replacement texture set NAME (replacement_texture_set/NAME/)\n"
           "  --open panel|viewer|editor\n"
           "                      open the control panel, the background viewer or the texture editor\n"
           "  --pause-at N        hold the replay at frame N (its V-blanks repeat) until Ctrl-C\n"
           "  --bench             report frames per second, frame times and where each frame's CPU time\n"
           "                      went (plays as fast as it can)\n"
           "  --bench-json FILE   write the benchmark's figures, every frame's too, as JSON (implies --bench)\n"
           "  --bench-chart FILE  draw every frame's time, stacked by phase, as an SVG chart (implies --bench)\n"
           "  --fast              do not pace a windowed replay at the console's 60 frames a second\n"
           "  --loop              start the trace again at its end, until Ctrl-C\n"
           "  --help              this text\n";
}

namespace {

bool ParseCount(const std::string& text, long minimum, long& value) {
    char* end = nullptr;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || v < minimum) return false;
    value = v;
    return true;
}

}  // namespace

std::optional<PlayOptions> ParsePlayOptions(const std::vector<std::string>& arguments, std::string& error) {
    PlayOptions options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        // Options that take a value, as "--name VALUE" or "--name=VALUE".
        std::string name = a, value;
        bool hasValue = false;
        if (const size_t eq = a.find('='); a.rfind("--", 0) == 0 && eq != std::string::npos) {
            name = a.substr(0, eq);
            value = a.substr(eq + 1);
            hasValue = true;
        }
        const auto takeValue = [&]() -> bool {
            if (hasValue) return true;
            if (i + 1 >= arguments.size()) {
                error = name + " needs a value";
                return false;
            }
            value = arguments[++i];
            return true;
        };
        if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--headless") {
            options.headless = true;
        } else if (name == "--bench") {
            options.bench = true;
        } else if (name == "--fast") {
            options.fast = true;
        } else if (name == "--loop") {
            options.loop = true;
        } else if (name == "--bench-json" || name == "--bench-chart") {
            if (!takeValue()) return std::nullopt;
            if (value.empty()) {
                error = name + " needs a file name";
                return std::nullopt;
            }
            (name == "--bench-json" ? options.benchJson : options.benchChart) = value;
            options.bench = true;
        } else if (name == "--plugin") {
            if (!takeValue()) return std::nullopt;
            options.pluginPath = value;
        } else if (name == "--capture-dir") {
            if (!takeValue()) return std::nullopt;
            options.captureDir = value;
        } else if (name == "--frames") {
            if (!takeValue()) return std::nullopt;
            if (!ParseCount(value, 0, options.frames)) {
                error = "--frames needs a number of frames, not \"" + value + "\"";
                return std::nullopt;
            }
        } else if (name == "--capture-every") {
            if (!takeValue()) return std::nullopt;
            if (!ParseCount(value, 1, options.captureEvery)) {
                error = "--capture-every needs a count of 1 or more, not \"" + value + "\"";
                return std::nullopt;
            }
        } else if (name == "--scale") {
            if (!takeValue()) return std::nullopt;
            const std::optional<float> scale = ParseRenderingScale(value);
            if (!scale) {
                error = "--scale must be one of " + RenderingScaleList() + " (not \"" + value + "\")";
                return std::nullopt;
            }
            options.scale = *scale;
            options.scaleGiven = true;
        } else if (name == "--rotation-sampling") {
            if (!takeValue()) return std::nullopt;
            if (value != "grid" && value != "screen") {
                error = "--rotation-sampling must be grid or screen (not \"" + value + "\")";
                return std::nullopt;
            }
            options.rotationSampling = value;
        } else if (name == "--open") {
            if (!takeValue()) return std::nullopt;
            if (value != "panel" && value != "viewer" && value != "editor") {
                error = "--open takes panel, viewer or editor (not \"" + value + "\")";
                return std::nullopt;
            }
            options.openDialog = value;
        } else if (name == "--pause-at") {
            if (!takeValue()) return std::nullopt;
            if (!ParseCount(value, 0, options.pauseAt)) {
                error = "--pause-at needs a frame number, not \"" + value + "\"";
                return std::nullopt;
            }
        } else if (name == "--texture-set") {
            if (!takeValue()) return std::nullopt;
            if (value.empty() || value.find('/') != std::string::npos || value == "." || value == "..") {
                error = "--texture-set needs the name of a set (a folder in replacement_texture_set/), not \"" +
                        value + "\"";
                return std::nullopt;
            }
            options.textureSet = value;
        } else if (a.rfind("-", 0) == 0 && a != "-") {
            error = "unknown option " + a;
            return std::nullopt;
        } else if (options.tracePath.empty()) {
            options.tracePath = a;
        } else {
            error = "one trace at a time (got \"" + options.tracePath + "\" and \"" + a + "\")";
            return std::nullopt;
        }
    }
    if (options.loop && options.tracePath == "-") {
        error = "--loop needs a trace file: standard input cannot start again";
        return std::nullopt;
    }
    if (!options.help && options.tracePath.empty()) {
        error = "no trace given";
        return std::nullopt;
    }
    return options;
}

}  // namespace vdpgl::play
