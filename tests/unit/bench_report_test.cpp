// The player's benchmark figures: how a frame's time is split into the
// stacked columns, the statistics over frames, and the chart's cut bars.
#include <gtest/gtest.h>

#include "bench_report.h"

namespace vdpgl::play {
namespace {

FrameSample Frame(double wall, double replay, double vblankOut, double walk, double submit) {
    FrameSample f;
    f.wall = wall;
    f.replay = replay;
    f.vblankOut = vblankOut;
    f.phases[VDPGL_PHASE_WALK] = walk;
    f.phases[VDPGL_PHASE_SUBMIT] = submit;
    return f;
}

TEST(BenchReportTest, StackedColumnsMakeUpTheWallTimeAndNeverGoNegative) {
    const FrameSample f = Frame(10.0, 1.0, 6.0, 2.0, 3.0);
    double stacked = 0.0;
    for (int c = 0; c < kStackedColumns; ++c) stacked += ColumnValue(f, c);
    EXPECT_DOUBLE_EQ(stacked, 10.0);
    EXPECT_DOUBLE_EQ(ColumnValue(f, kColumnVblankOther), 1.0);
    EXPECT_DOUBLE_EQ(ColumnValue(f, kColumnOutside), 3.0);
    EXPECT_DOUBLE_EQ(ColumnValue(f, kColumnOwn), 7.0);
    // Clocks a little apart: phases summing past V-blank-out, CPU past wall.
    const FrameSample skewed = Frame(5.0, 1.0, 4.5, 2.0, 3.0);
    EXPECT_EQ(ColumnValue(skewed, kColumnVblankOther), 0.0);
    EXPECT_EQ(ColumnValue(skewed, kColumnOutside), 0.0);
}

TEST(BenchReportTest, MedianMeanAndMaxOverFrames) {
    struct Case {
        std::vector<double> walls;
        double median, mean, max;
    } cases[] = {
        {{3.0, 1.0, 2.0}, 2.0, 2.0, 3.0},
        {{4.0, 1.0, 3.0, 2.0}, 2.5, 2.5, 4.0},  // an even count: the middle two's mean
        {{7.0}, 7.0, 7.0, 7.0},
        {{}, 0.0, 0.0, 0.0},
    };
    for (const Case& c : cases) {
        std::vector<FrameSample> frames;
        for (double w : c.walls) frames.push_back(Frame(w, 0, 0, 0, 0));
        const ColumnStats s = Stats(frames, kColumnWall);
        EXPECT_EQ(std::tuple(s.median, s.mean, s.max), std::tuple(c.median, c.mean, c.max)) << c.walls.size();
    }
}

TEST(BenchReportTest, JsonAndChartCarryEveryFrame) {
    BenchRun run;
    run.trace = "dir/\"odd\".trace";
    run.phasesMeasured = true;
    for (int i = 0; i < 200; ++i) run.frames.push_back(Frame(2.0, 0.5, 1.0, 0.25, 0.5));
    run.frames[0].wall = 405.0;  // a first frame's stutter
    const std::string json = BenchJson(run);
    EXPECT_NE(json.find("\"trace\": \"dir/\\\"odd\\\".trace\""), std::string::npos) << json.substr(0, 80);
    EXPECT_NE(json.find("\"own\": {\"median\": 1.5000"), std::string::npos);
    EXPECT_NE(json.find("\"wall\": [405.0000, 2.0000"), std::string::npos);
    const std::string svg = BenchChart(run);
    // The stutter is cut at the scale and labelled; the rest stay readable.
    EXPECT_NE(svg.find("405 ms (frame 0)"), std::string::npos);
    EXPECT_NE(svg.find("16.7 ms (60 frames/s)"), std::string::npos);
    EXPECT_EQ(svg.find("(frame 1)"), std::string::npos);
}

}  // namespace
}  // namespace vdpgl::play
