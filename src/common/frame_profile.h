#pragma once
// Where a frame's time goes: the CPU time of the emulation thread, split
// into the phases of a frame. Off until someone asks for the figures (the
// player's benchmark), so a host pays one flag test per phase switch.
// Phases nest: texture decoding during the walk is charged to the textures,
// and the walk resumes after it.
#include <atomic>
#include <cstdint>

#include "vdpgl/vdpgl.h"

namespace vdpgl {

enum FramePhase : int {
    kPhaseWalk = VDPGL_PHASE_WALK,
    kPhaseTextures = VDPGL_PHASE_TEXTURES,
    kPhaseVdp2 = VDPGL_PHASE_VDP2,
    kPhaseRotation = VDPGL_PHASE_ROTATION,
    kPhaseSubmit = VDPGL_PHASE_SUBMIT,
    kPhaseSwap = VDPGL_PHASE_SWAP,
    kPhaseCount = VDPGL_PHASE_COUNT,
    kPhaseNone = -1,
};

class CFrameProfile {
public:
    void Enable() { enabled.store(true, std::memory_order_relaxed); }
    bool Enabled() const { return enabled.load(std::memory_order_relaxed); }
    FramePhase Running() const { return running; }

    // Charges the time since the last switch to the running phase and makes
    // `phase` the running one; returns the phase it interrupted.
    FramePhase Switch(FramePhase phase);
    // A short phase inside the running one, which a frame may enter
    // hundreds of times (a texture made during the walk). It is timed by the
    // monotonic clock, as reading the thread's CPU clock is a system call
    // that costs over a microsecond on some machines; its time moves from
    // the phase it interrupts to its own. One at a time: a short phase
    // inside another stays the outer one's.
    bool BeginShort(FramePhase phase);
    void EndShort();
    // The end of a frame: its figures become the last frame's.
    void EndFrame();
    // The last frame's milliseconds per phase; false before the first.
    bool LastFrame(double (&milliseconds)[kPhaseCount]) const;

private:
    std::atomic<bool> enabled{false};
    FramePhase running = kPhaseNone;
    int64_t since = 0;  // nanoseconds of thread CPU time
    FramePhase shortPhase = kPhaseNone;
    int64_t shortSince = 0;  // nanoseconds of the monotonic clock
    int64_t sums[kPhaseCount] = {};
    double last[kPhaseCount] = {};
    bool haveLast = false;
};

// The plug-in's one profile (the plug-in is one per process).
CFrameProfile& FrameProfile();

// Runs its scope as one phase, then resumes the phase it interrupted.
class CPhaseScope {
public:
    explicit CPhaseScope(FramePhase phase) : profile(FrameProfile()) {
        // Inside the same phase there is nothing to switch (and no clock to read).
        if (profile.Enabled() && profile.Running() != phase) previous = profile.Switch(phase), active = true;
    }
    ~CPhaseScope() {
        if (active) profile.Switch(previous);
    }
    CPhaseScope(const CPhaseScope&) = delete;
    CPhaseScope& operator=(const CPhaseScope&) = delete;

private:
    CFrameProfile& profile;
    FramePhase previous = kPhaseNone;
    bool active = false;
};

// The same for a short phase (see CFrameProfile::BeginShort).
class CShortPhaseScope {
public:
    explicit CShortPhaseScope(FramePhase phase) : profile(FrameProfile()) {
        active = profile.Enabled() && profile.BeginShort(phase);
    }
    ~CShortPhaseScope() {
        if (active) profile.EndShort();
    }
    CShortPhaseScope(const CShortPhaseScope&) = delete;
    CShortPhaseScope& operator=(const CShortPhaseScope&) = delete;

private:
    CFrameProfile& profile;
    bool active = false;
};

}  // namespace vdpgl
