#pragma once
// The player's benchmark: what each frame cost, by phase, and how that is
// reported: a summary on standard output, JSON for scripts that compare two
// runs, and an SVG chart of every frame.
#include <cstdint>
#include <string>
#include <vector>

#include "vdpgl/vdpgl.h"

namespace vdpgl::play {

// One frame's figures in milliseconds. CPU times are the emulation thread's.
struct FrameSample {
    double wall = 0.0;       // from the end of the last frame to the end of this one
    double replay = 0.0;     // the port calls and events other than V-blank-out
    double vblankOut = 0.0;  // VDPOnVblankOut, whole
    double phases[VDPGL_PHASE_COUNT] = {};  // its share by phase, as the plug-in measured it
};

// The columns of the report, in the order they are stacked.
enum BenchColumn : int {
    kColumnReplay,
    kColumnWalk,
    kColumnTextures,
    kColumnVdp2,
    kColumnRotation,
    kColumnSubmit,
    kColumnSwap,
    kColumnVblankOther,  // V-blank-out outside the measured phases
    kColumnOutside,      // wall time not spent on the thread: the GL driver's threads, the player
    kColumnOwn,          // replay plus V-blank-out: everything the plug-in spent on the thread
    kColumnWall,
    kColumnCount,
};
// Stacked, they make up a frame's wall time.
constexpr int kStackedColumns = kColumnOwn;

struct ColumnInfo {
    const char* key;    // the JSON name
    const char* label;  // the report's
    const char* color;  // the chart's
};
const ColumnInfo& Column(int column);
double ColumnValue(const FrameSample& sample, int column);

struct BenchRun {
    std::string trace;
    std::vector<FrameSample> frames;
    double seconds = 0.0;
    double initMilliseconds = -1.0;   // InitVDPPlugin's wall time; -1 if not called
    long residentKiBAt100 = -1;       // resident memory after frame 100; -1 if not reached
    long residentKiBAtEnd = -1;
    bool phasesMeasured = false;      // the plug-in answered GetFrameProfile
};

struct ColumnStats {
    double median = 0.0, mean = 0.0, max = 0.0;
};
ColumnStats Stats(const std::vector<FrameSample>& frames, int column);

// The summary printed after a run.
std::string BenchSummary(const BenchRun& run);
// The same figures with every frame's, as JSON.
std::string BenchJson(const BenchRun& run);
// Every frame's wall time as a bar stacked by column, with the 16.7 ms line.
std::string BenchChart(const BenchRun& run);

// The process's resident memory in KiB; -1 when unknown.
long ResidentKiB();
// The calling thread's CPU time in milliseconds.
double ThreadCpuMilliseconds();


}  // namespace vdpgl::play
