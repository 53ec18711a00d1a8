#include "common/frame_profile.h"

#include <algorithm>
#include <ctime>

namespace vdpgl {

namespace {

int64_t ThreadNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

int64_t MonotonicNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

}  // namespace

FramePhase CFrameProfile::Switch(FramePhase phase) {
    EndShort();  // a phase inside a short one ends it
    const int64_t now = ThreadNanoseconds();
    if (running != kPhaseNone) sums[running] += now - since;
    const FramePhase interrupted = running;
    running = phase;
    since = now;
    return interrupted;
}

bool CFrameProfile::BeginShort(FramePhase phase) {
    if (shortPhase != kPhaseNone) return false;
    shortPhase = phase;
    shortSince = MonotonicNanoseconds();
    return true;
}

void CFrameProfile::EndShort() {
    if (shortPhase == kPhaseNone) return;
    const int64_t spent = MonotonicNanoseconds() - shortSince;
    sums[shortPhase] += spent;
    if (running != kPhaseNone) sums[running] -= spent;
    shortPhase = kPhaseNone;
}

void CFrameProfile::EndFrame() {
    if (!Enabled()) return;
    Switch(running);  // charges the running phase up to now
    for (int p = 0; p < kPhaseCount; ++p) {
        // A short phase that waited (on the GL driver, say) gave up more
        // than its phase's CPU time.
        last[p] = static_cast<double>(std::max<int64_t>(sums[p], 0)) / 1e6;
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
