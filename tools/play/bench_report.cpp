#include "bench_report.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "common/append_format.h"

namespace vdpgl::play {

namespace {

constexpr ColumnInfo kColumns[kColumnCount] = {
    {"replay", "port replay", "#8c6bb1"},
    {"walk", "command walk and parts", "#1f77b4"},
    {"textures", "texture decode and upload", "#ff7f0e"},
    {"vdp2", "VDP2 update and load pass", "#2ca02c"},
    {"rotation", "rotation sampling", "#17becf"},
    {"submit", "GL submission", "#d62728"},
    {"swap", "swap", "#e377c2"},
    {"vblankOther", "rest of V-blank-out", "#7f7f7f"},
    {"outside", "off the thread (GL driver, player)", "#d9d9d9"},
    {"own", "own CPU time", "#000000"},
    {"wall", "frame time (wall)", "#000000"},
};

double PhaseSum(const FrameSample& s) {
    double sum = 0.0;
    for (double p : s.phases) sum += p;
    return sum;
}

double FramesPerSecond(const BenchRun& run) {
    return run.seconds > 0 ? static_cast<double>(run.frames.size()) / run.seconds : 0.0;
}

}  // namespace

const ColumnInfo& Column(int column) { return kColumns[column]; }

double ColumnValue(const FrameSample& s, int column) {
    switch (column) {
    case kColumnReplay: return s.replay;
    case kColumnWalk: return s.phases[VDPGL_PHASE_WALK];
    case kColumnTextures: return s.phases[VDPGL_PHASE_TEXTURES];
    case kColumnVdp2: return s.phases[VDPGL_PHASE_VDP2];
    case kColumnRotation: return s.phases[VDPGL_PHASE_ROTATION];
    case kColumnSubmit: return s.phases[VDPGL_PHASE_SUBMIT];
    case kColumnSwap: return s.phases[VDPGL_PHASE_SWAP];
    // Clock reads a few microseconds apart may disagree a little; a share
    // is never negative.
    case kColumnVblankOther: return std::max(0.0, s.vblankOut - PhaseSum(s));
    case kColumnOutside: return std::max(0.0, s.wall - s.replay - s.vblankOut);
    case kColumnOwn: return s.replay + s.vblankOut;
    case kColumnWall: return s.wall;
    default: return 0.0;
    }
}

ColumnStats Stats(const std::vector<FrameSample>& frames, int column) {
    ColumnStats stats;
    if (frames.empty()) return stats;
    std::vector<double> values;
    values.reserve(frames.size());
    for (const FrameSample& f : frames) values.push_back(ColumnValue(f, column));
    double sum = 0.0;
    for (double v : values) sum += v;
    stats.mean = sum / static_cast<double>(values.size());
    stats.max = *std::max_element(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + static_cast<long>(middle), values.end());
    stats.median = values[middle];
    if (values.size() % 2 == 0) {
        const double below = *std::max_element(values.begin(), values.begin() + static_cast<long>(middle));
        stats.median = (stats.median + below) / 2.0;
    }
    return stats;
}

std::string BenchSummary(const BenchRun& run) {
    std::string text;
    if (run.frames.empty()) return "bench: no frames\n";
    const ColumnStats wall = Stats(run.frames, kColumnWall);
    double fastest = run.frames.front().wall;
    for (const FrameSample& f : run.frames) fastest = std::min(fastest, f.wall);
    AppendFormat(text, "bench: %zu frames in %.3f s: %.1f frames/s; frame time min %.3f ms, median %.3f ms, max %.3f ms\n",
           run.frames.size(), run.seconds, FramesPerSecond(run), fastest, wall.median, wall.max);
    if (run.initMilliseconds >= 0) AppendFormat(text, "bench: InitVDPPlugin took %.1f ms", run.initMilliseconds);
    if (run.residentKiBAtEnd >= 0) {
        AppendFormat(text, "; resident memory ");
        if (run.residentKiBAt100 >= 0)
            AppendFormat(text, "%.1f MiB after frame 100, ", static_cast<double>(run.residentKiBAt100) / 1024.0);
        AppendFormat(text, "%.1f MiB after the last frame", static_cast<double>(run.residentKiBAtEnd) / 1024.0);
    }
    text += "\n";
    if (!run.phasesMeasured) {
        text += "bench: the plug-in does not report its phases\n";
        return text;
    }
    text += "bench: per frame, milliseconds         median      mean       max\n";
    for (int c = 0; c < kColumnCount; ++c) {
        if (c == kColumnWall) continue;
        const ColumnStats s = Stats(run.frames, c);
        AppendFormat(text, "bench:   %-36s %8.3f  %8.3f  %8.3f\n", Column(c).label, s.median, s.mean, s.max);
    }
    return text;
}

std::string BenchJson(const BenchRun& run) {
    std::string json = "{\n";
    std::string trace;
    for (char ch : run.trace) {
        if (ch == '"' || ch == '\\') trace += '\\';
        if (static_cast<unsigned char>(ch) >= 0x20) trace += ch;
    }
    AppendFormat(json, "  \"trace\": \"%s\",\n", trace.c_str());
    AppendFormat(json, "  \"frames\": %zu,\n  \"seconds\": %.6f,\n", run.frames.size(), run.seconds);
    AppendFormat(json, "  \"framesPerSecond\": %.3f,\n",
           FramesPerSecond(run));
    AppendFormat(json, "  \"initMilliseconds\": %.3f,\n", run.initMilliseconds);
    AppendFormat(json, "  \"residentKiB\": {\"afterFrame100\": %ld, \"end\": %ld},\n", run.residentKiBAt100,
           run.residentKiBAtEnd);
    AppendFormat(json, "  \"phasesMeasured\": %s,\n", run.phasesMeasured ? "true" : "false");
    json += "  \"milliseconds\": {\n";
    for (int c = 0; c < kColumnCount; ++c) {
        const ColumnStats s = Stats(run.frames, c);
        AppendFormat(json, "    \"%s\": {\"median\": %.4f, \"mean\": %.4f, \"max\": %.4f}%s\n", Column(c).key, s.median,
               s.mean, s.max, c + 1 < kColumnCount ? "," : "");
    }
    json += "  },\n  \"perFrame\": {\n";
    for (int c = 0; c < kColumnCount; ++c) {
        AppendFormat(json, "    \"%s\": [", Column(c).key);
        for (size_t i = 0; i < run.frames.size(); ++i)
            AppendFormat(json, i ? ", %.4f" : "%.4f", ColumnValue(run.frames[i], c));
        AppendFormat(json, "]%s\n", c + 1 < kColumnCount ? "," : "");
    }
    json += "  }\n}\n";
    return json;
}

double ThreadCpuMilliseconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

long ResidentKiB() {
    std::FILE* f = std::fopen("/proc/self/statm", "r");
    if (!f) return -1;
    long size = 0, resident = 0;
    const bool ok = std::fscanf(f, "%ld %ld", &size, &resident) == 2;
    std::fclose(f);
    return ok ? resident * (sysconf(_SC_PAGESIZE) / 1024) : -1;
}

}  // namespace vdpgl::play
