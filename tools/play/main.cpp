// vdpgl-play: a host of our own. It loads the plug-in with dlopen, replays a
// recorded trace through the real exports on an emulation thread, and can
// save frames as PNG files and report frame times.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include "play_options.h"
#include "plugin_library.h"
#include "trace_player.h"

namespace {

enum ExitCode { kOk = 0, kBadUsage = 1, kBadTrace = 2, kNoPlugin = 3, kFailed = 4 };

std::string DefaultPluginPath() {
    std::error_code ec;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::string("libvdpgl.so") : (self.parent_path() / "libvdpgl.so").string();
}

bool WriteFile(const std::string& path, const std::string& text) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    bool ok = f && std::fwrite(text.data(), 1, text.size(), f) == text.size();
    if (f && std::fclose(f) != 0) ok = false;
    if (!ok) std::fprintf(stderr, "vdpgl-play: cannot write \"%s\": %s\n", path.c_str(), std::strerror(errno));
    return ok;
}

// The benchmark's report; false when a file it was asked for cannot be written.
bool ReportBench(const vdpgl::play::PlayResult& result, const vdpgl::play::PlayOptions& options) {
    std::printf("%s", vdpgl::play::BenchSummary(result.bench).c_str());
    const VdpglCacheCounters& c = result.peakCaches;
    constexpr double kMiB = 1024.0 * 1024.0;
    std::printf("bench: caches at their fullest: VDP1 %u patterns, %u textures, %.1f MiB of %.0f MiB; "
                "VDP2 %u cells, %u pictures, %.1f MiB\n",
                c.vdp1Patterns, c.vdp1Textures, static_cast<double>(c.vdp1TextureBytes) / kMiB,
                static_cast<double>(c.vdp1TextureBudget) / kMiB, c.vdp2Cells, c.vdp2Pictures,
                static_cast<double>(c.vdp2CellBytes) / kMiB);
    bool ok = true;
    if (!options.benchJson.empty()) ok = WriteFile(options.benchJson, vdpgl::play::BenchJson(result.bench)) && ok;
    if (!options.benchChart.empty()) ok = WriteFile(options.benchChart, vdpgl::play::BenchChart(result.bench)) && ok;
    return ok;
}

}  // namespace

int main(int argc, char** argv) {
    std::string error;
    const auto options = vdpgl::play::ParsePlayOptions(std::vector<std::string>(argv + 1, argv + argc), error);
    if (!options) {
        std::fprintf(stderr, "vdpgl-play: %s\n%s", error.c_str(), vdpgl::play::Usage().c_str());
        return kBadUsage;
    }
    if (options->help) {
        std::printf("%s", vdpgl::play::Usage().c_str());
        return kOk;
    }

    if (std::error_code ec; options->loop && !std::filesystem::is_regular_file(options->tracePath, ec)) {
        std::fprintf(stderr, "vdpgl-play: --loop needs a trace file; \"%s\" cannot start again\n",
                     options->tracePath.c_str());
        return kBadUsage;
    }
    vdpgl::trace::CTraceReader reader;
    if (!reader.Open(options->tracePath)) {
        std::fprintf(stderr, "vdpgl-play: %s\n", reader.Error().c_str());
        return kBadTrace;
    }
    if (!options->captureDir.empty()) {
        std::error_code ec;
        std::filesystem::create_directories(options->captureDir, ec);
        if (ec) {
            std::fprintf(stderr, "vdpgl-play: cannot create \"%s\": %s\n", options->captureDir.c_str(),
                         ec.message().c_str());
            return kFailed;
        }
    }
    // The plug-in opens VDPGL_RECORD with "wb" when it starts: naming the
    // trace being played, it would empty the file under the reader.
    if (const char* record = std::getenv("VDPGL_RECORD"); record && *record && reader.IsSameFile(record)) {
        std::fprintf(stderr,
                     "vdpgl-play: not recording: VDPGL_RECORD names the trace being played (\"%s\"), which "
                     "recording would overwrite\n",
                     record);
        unsetenv("VDPGL_RECORD");
    }
    // The plug-in reads these when it starts.
    if (options->headless) setenv("VDPGL_HEADLESS", "1", 1);
    if (options->scaleGiven) setenv("VDPGL_SCALE", std::to_string(options->scale).c_str(), 1);
    // Frames depend on the flags alone, not on a setting the shell passed on.
    setenv("VDPGL_ROTATION_SAMPLING", options->rotationSampling.c_str(), 1);
    unsetenv("VDPGL_TEXTURE_SET");
    if (!options->textureSet.empty()) {
        // The plug-in looks for sets under the directory it starts in: this one.
        const std::filesystem::path ini = std::filesystem::path("replacement_texture_set") / options->textureSet /
                                          (options->textureSet + ".ini");
        if (std::error_code ec; !std::filesystem::is_regular_file(ini, ec)) {
            std::fprintf(stderr, "vdpgl-play: no texture set \"%s\": %s does not exist\n", options->textureSet.c_str(),
                         ini.c_str());
            return kBadUsage;
        }
        setenv("VDPGL_TEXTURE_SET", options->textureSet.c_str(), 1);
    }

    vdpgl::host::CPluginLibrary library;
    const std::string pluginPath = options->pluginPath.empty() ? DefaultPluginPath() : options->pluginPath;
    if (!library.Load(pluginPath)) {
        std::fprintf(stderr, "vdpgl-play: %s\n", library.Error().c_str());
        return kNoPlugin;
    }

    // A window people watch plays at the console's rate; offscreen, a
    // benchmark or --fast plays as fast as it can.
    const char* display = std::getenv("DISPLAY");
    const bool windowed = !options->headless && display && *display;
    vdpgl::play::CTracePlayer player(library.Exports(), reader,
                                     {options->frames, options->captureDir, options->captureEvery,
                                      windowed && !options->fast && !options->bench, options->loop,
                                      options->tracePath, options->openDialog, options->pauseAt, options->bench});
    // Ctrl-C ends the replay as its end would: emulation stopped, plug-in
    // shut down, no thread left behind.
    std::signal(SIGINT, [](int) { vdpgl::play::CTracePlayer::Stop(); });
    std::signal(SIGTERM, [](int) { vdpgl::play::CTracePlayer::Stop(); });
    const bool terminal = isatty(STDERR_FILENO);
    auto lastProgress = std::chrono::steady_clock::now();
    if (terminal) {
        player.onFrame = [&](long frames, double done) {
            const auto now = std::chrono::steady_clock::now();
            if (now - lastProgress < std::chrono::milliseconds(100)) return;
            lastProgress = now;
            if (done < 0)  // a pipe: its size is unknown
                std::fprintf(stderr, "\rframe %ld", frames);
            else
                std::fprintf(stderr, "\rframe %ld, %3.0f%% of the trace", frames, done * 100.0);
        };
    }
    // The host's emulation thread: every call of the replay comes from it.
    vdpgl::play::PlayResult result;
    std::thread emulation([&] { result = player.Play(); });
    emulation.join();
    if (terminal) std::fprintf(stderr, "\r%*s\r", 40, "");

    if (result.interrupted) std::printf("interrupted: ");
    std::printf("%ld frames played", result.frames);
    if (result.captures) std::printf(", %ld written to %s", result.captures, options->captureDir.c_str());
    std::printf("\n");
    const bool reported = !options->bench || ReportBench(result, *options);
    if (!result.ok) {
        std::fprintf(stderr, "vdpgl-play: %s\n", result.error.c_str());
        return kFailed;
    }
    if (reader.TrailingBytes())
        std::fprintf(stderr, "vdpgl-play: warning: %llu bytes follow the trace's end record, from byte %llu on (ignored)\n",
                     static_cast<unsigned long long>(reader.TrailingBytes()),
                     static_cast<unsigned long long>(reader.TrailingOffset()));
    if (!result.complete && options->frames < 0 && !result.interrupted)
        std::fprintf(stderr, "vdpgl-play: note: the trace has no end record (its recording was cut short)\n");
    return reported ? kOk : kFailed;
}
