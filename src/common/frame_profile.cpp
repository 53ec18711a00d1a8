#include "common/frame_profile.h"

#include <ctime>

namespace vdpgl {

namespace {

int64_t ThreadNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

}  // namespace

FramePhase CFrameProfile::Switch(FramePhase phase) {
    const int64_t now = ThreadNanoseconds();
    if (running != kPhaseNone) sums[running] += now - since;
    const FramePhase interrupted = running;
    running = phase;
    since = now;
    return interrupted;
}

void CFrameProfile::EndFrame() {
    if (!Enabled()) return;
    Switch(running);  // charges the running phase up to now
    for (int p = 0; p < kPhaseCount; ++p) {
        last[p] = static_cast<double>(sums[p]) / 1e6;
        sums[p] = 0;
    }
    haveLast = true;
}

bool CFrameProfile::LastFrame(double (&milliseconds)[kPhaseCount]) const {
    if (!haveLast) return false;
    for (int p = 0; p < kPhaseCount; ++p) milliseconds[p] = last[p];
    return true;
}

CFrameProfile& FrameProfile() {
    static CFrameProfile profile;
    return profile;
}

}  // namespace vdpgl
