// The benchmark's chart: one bar a frame, stacked by phase, with the line of
// a 60 Hz frame, so that a stutter is seen at a glance. Beyond 1,200 frames a
// bar stands for several, drawn as the slowest of them. Bars taller than the
// scale (a first frame of hundreds of milliseconds) are cut and labelled
// with their time, so that they do not flatten the rest.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <cstdio>

#include "bench_report.h"
#include "common/append_format.h"

namespace vdpgl::play {

namespace {

constexpr double kFrameBudget = 1000.0 / 59.94;
constexpr int kMaxBars = 1200;
// Labels over bars keep a white outline, so that they read on any colour.
constexpr const char* kHalo = " stroke=\"white\" stroke-width=\"3\" paint-order=\"stroke\"";
constexpr double kPlotHeight = 320.0, kLeft = 64.0, kTop = 48.0, kRight = 24.0;

std::string Escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '<') out += "&lt;";
        else if (c == '>') out += "&gt;";
        else if (c == '&') out += "&amp;";
        else if (static_cast<unsigned char>(c) >= 0x20) out += c;
    }
    return out;
}

// A grid step of 1, 2 or 5 times a power of ten giving four to ten lines.
double GridStep(double top) {
    const double rough = top / 6.0;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (double m : {1.0, 2.0, 5.0})
        if (m * power >= rough) return m * power;
    return 10.0 * power;
}

}  // namespace

std::string BenchChart(const BenchRun& run) {
    const std::vector<FrameSample>& frames = run.frames;
    const size_t n = frames.size();
    const size_t perBar = n > kMaxBars ? (n + kMaxBars - 1) / kMaxBars : 1;
    const size_t bars = n ? (n + perBar - 1) / perBar : 0;
    // 760 to 1,200 dots wide: the legend fits, and bars are at most 8 dots.
    const double plotWidth = std::clamp(8.0 * static_cast<double>(bars), 760.0, 1200.0);
    const double barWidth = bars ? plotWidth / static_cast<double>(bars) : 8.0;
    const double width = kLeft + plotWidth + kRight;
    const double height = kTop + kPlotHeight + 96.0;

    // The scale: the 60 Hz line with room above it, or 1.5 times the 95th
    // percentile when frames are slower than that; never past the slowest.
    std::vector<double> walls;
    for (const FrameSample& f : frames) walls.push_back(f.wall);
    std::sort(walls.begin(), walls.end());
    const double slowest = walls.empty() ? 0.0 : walls.back();
    const double p95 = walls.empty() ? 0.0 : walls[std::min(walls.size() - 1, walls.size() * 95 / 100)];
    const double top = std::max(kFrameBudget * 1.2, std::min(slowest, 1.5 * p95));
    const auto y = [&](double ms) { return kTop + kPlotHeight * (1.0 - std::min(ms, top) / top); };

    std::string svg;
    AppendFormat(svg,
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" viewBox=\"0 0 %.0f %.0f\" "
           "font-family=\"sans-serif\" font-size=\"12\">\n",
           width, height, width, height);
    AppendFormat(svg, "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n");
    const ColumnStats wall = Stats(frames, kColumnWall), own = Stats(frames, kColumnOwn);
    AppendFormat(svg,
           "<text x=\"%.0f\" y=\"20\" font-size=\"14\" font-weight=\"bold\">%s: %zu frames, median %.2f ms a frame, "
           "%.2f ms of it the plug-in's own CPU time</text>\n",
           kLeft, Escaped(std::filesystem::path(run.trace).filename().string()).c_str(), n, wall.median, own.median);
    if (perBar > 1)
        AppendFormat(svg, "<text x=\"%.0f\" y=\"36\" fill=\"#555\">each bar: the slowest of %zu frames</text>\n", kLeft,
               perBar);

    // Grid and axis.
    const double step = GridStep(top);
    for (double ms = 0.0; ms <= top + 1e-9; ms += step) {
        AppendFormat(svg, "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"#eee\"/>\n", kLeft, y(ms),
               kLeft + plotWidth, y(ms));
        AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">%g ms</text>\n", kLeft - 6, y(ms) + 4, ms);
    }

    // Bars.
    int labels = 0;
    for (size_t b = 0; b < bars; ++b) {
        size_t pick = b * perBar;
        for (size_t i = pick; i < std::min(n, (b + 1) * perBar); ++i)
            if (frames[i].wall > frames[pick].wall) pick = i;
        const FrameSample& f = frames[pick];
        const double x = kLeft + barWidth * static_cast<double>(b);
        double base = 0.0;
        for (int c = 0; c < kStackedColumns; ++c) {
            const double v = ColumnValue(f, c);
            if (v <= 0.0 || base >= top) {
                base += v;
                continue;
            }
            const double y0 = y(base), y1 = y(base + v);
            AppendFormat(svg, "<rect x=\"%.2f\" y=\"%.2f\" width=\"%.2f\" height=\"%.2f\" fill=\"%s\"/>\n", x, y1,
                   barWidth, y0 - y1, Column(c).color);
            base += v;
        }
        if (f.wall > top && labels < 12) {
            ++labels;
            AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\" fill=\"#b00\" font-size=\"11\"%s>&#8593; %.0f ms (frame %zu)</text>\n",
                   x + barWidth + 2, kTop + 10 + 13.0 * (labels - 1), kHalo, f.wall, pick);
        }
    }

    // The 60 Hz line.
    AppendFormat(svg,
           "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"#c00\" stroke-width=\"1.5\" "
           "stroke-dasharray=\"6 4\"/>\n",
           kLeft, y(kFrameBudget), kLeft + plotWidth, y(kFrameBudget));
    AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\" fill=\"#c00\" text-anchor=\"end\"%s>16.7 ms (60 frames/s)</text>\n",
                 kLeft + plotWidth, y(kFrameBudget) - 4, kHalo);
    AppendFormat(svg, "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"#333\"/>\n", kLeft, kTop + kPlotHeight,
           kLeft + plotWidth, kTop + kPlotHeight);
    AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\" fill=\"#555\">frame %zu</text>\n", kLeft + plotWidth,
           kTop + kPlotHeight + 16, n ? n - 1 : 0);
    AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\" fill=\"#555\">frame 0</text>\n", kLeft, kTop + kPlotHeight + 16);

    // Legend, three to a row.
    for (int c = 0; c < kStackedColumns; ++c) {
        const double lx = kLeft + 250.0 * (c % 3), ly = kTop + kPlotHeight + 36 + 18.0 * (c / 3);
        AppendFormat(svg, "<rect x=\"%.1f\" y=\"%.1f\" width=\"12\" height=\"12\" fill=\"%s\" stroke=\"#999\"/>\n", lx,
               ly - 10, Column(c).color);
        AppendFormat(svg, "<text x=\"%.1f\" y=\"%.1f\">%s</text>\n", lx + 18, ly, Column(c).label);
    }
    svg += "</svg>\n";
    return svg;
}

}  // namespace vdpgl::play
