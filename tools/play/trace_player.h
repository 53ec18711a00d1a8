#pragma once
// CTracePlayer: replays a trace through a loaded plug-in's exports on the
// calling thread (the player gives it an emulation thread of its own),
// capturing frames and timing them on the way.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench_report.h"
#include "plugin_library.h"
#include "trace/trace_reader.h"

namespace vdpgl::play {

struct PlayerSettings {
    long frames = -1;         // stop after this many frames; -1: all
    std::string captureDir;   // empty: no captures
    long captureEvery = 1;
    bool pace = false;        // hold each frame to the console's rate
    bool loop = false;        // replay from the start at the trace's end (needs a file)
    std::string tracePath;    // to open the trace again for a loop
    std::string openDialog;   // a dialog to open once the emulation has started
    long pauseAt = -1;        // hold the replay at this frame, its V-blanks repeating
    bool profile = false;     // measure each frame's phases (the benchmark)
};

struct PlayResult {
    bool ok = true;
    bool interrupted = false;     // stopped by Stop() (Ctrl-C)
    std::string error;            // what stopped the replay
    long frames = 0;              // frames replayed
    long captures = 0;            // PNG files written
    bool complete = false;        // the trace's end record was reached
    // Each frame's figures: its wall time, and with `profile` where its
    // CPU time went; the run's InitVDPPlugin time and resident memory.
    BenchRun bench;               // with the whole replay's seconds
    VdpglCacheCounters caches{};  // after the last frame
    VdpglCacheCounters peakCaches{};  // the most bytes each cache held after a frame
};

class CTracePlayer {
public:
    CTracePlayer(const host::PluginExports& exports, trace::CTraceReader& reader, PlayerSettings settings)
        : x(exports), reader(reader), settings(std::move(settings)) {}

    // Called after each frame with the frames so far and the share of the
    // file read (0 to 1; -1 when the size is unknown, as for a pipe).
    std::function<void(long frames, double done)> onFrame;

    PlayResult Play();
    // Asks a replay in progress to stop after the record it is on; the plug-in
    // is then stopped and shut down as at the end. Safe from a signal handler.
    static void Stop() { stopRequested.store(true, std::memory_order_relaxed); }

private:
    void Dispatch(const trace::Record& r);
    bool EndFrame(PlayResult& result);
    // Leaves the plug-in as a host would at the end: stopped and shut down.
    void Finish();
    void Hold();
    // Reads the records up to the next frame's end into `batch`.
    trace::CTraceReader::Status ReadFrame(bool& frameEnd);
    // Replays `batch`; false when a stop was asked for on the way.
    bool ReplayFrame(PlayResult& result);
    bool dialogOpened = false;
    std::vector<trace::Record> batch;
    FrameSample sample;  // the frame being replayed
    BenchRun bench;

    const host::PluginExports& x;
    trace::CTraceReader& reader;
    PlayerSettings settings;
    bool initialised = false;
    bool running = false;
    std::vector<uint8_t> capture;
    std::chrono::steady_clock::time_point frameStart;
    std::chrono::steady_clock::time_point nextFrameDue;
    static std::atomic<bool> stopRequested;
};

}  // namespace vdpgl::play
