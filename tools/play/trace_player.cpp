#include "trace_player.h"

#include <algorithm>
#include <cstdio>
#include <thread>
#include <tuple>

#include "common/png_file.h"

namespace vdpgl::play {

using trace::Event;
using trace::Port;

namespace {

// Calls a port export with the record's address and, for a write, its value
// at the port's width.
template <typename Result, typename... Arguments>
void Call(Result (*port)(Arguments...), uint32_t address, uint32_t value) {
    if constexpr (sizeof...(Arguments) == 1)
        port(address);
    else
        port(address, static_cast<std::tuple_element_t<1, std::tuple<Arguments...>>>(value));
}

}  // namespace

void CTracePlayer::Dispatch(const trace::Record& r) {
    const uint32_t a = r.address, v = r.value;
    if (r.kind == trace::Record::Kind::Event) {
        switch (r.event) {
        // A loop keeps the plug-in, and its window, from one pass to the
        // next: a pass's stop and shutdown wait for the end of the last
        // pass, and the next pass's start is a reset.
        case Event::InitVDPPlugin:
            if (initialised && settings.loop) {
                x.Reset();
                break;
            }
            {
                const auto start = std::chrono::steady_clock::now();
                x.InitVDPPlugin(nullptr);
                if (settings.profile && !initialised)
                    bench.initMilliseconds =
                        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
            }
            initialised = true;
            break;
        case Event::DeInitPlugin:
            if (settings.loop) break;
            x.DeInitPlugin();
            initialised = running = false;
            break;
        case Event::Reset: x.Reset(); break;
        case Event::SetupPlugin: break;  // a dialog: nothing to replay
        case Event::EmulationThreadStarting:
            if (running && settings.loop) break;
            x.EmulationThreadStarting();
            running = true;
            if (!settings.openDialog.empty() && !dialogOpened) {
                dialogOpened = true;
                if (!x.OpenDialog(settings.openDialog.c_str()))
                    std::fprintf(stderr, "vdpgl-play: --open %s: there is no display to open it on\n",
                                 settings.openDialog.c_str());
            }
            break;
        case Event::EmulationThreadStoping:
            if (settings.loop) break;
            x.EmulationThreadStoping();
            running = false;
            break;
        case Event::VDPOnVblankIn: x.VDPOnVblankIn(); break;
        case Event::VDPOnVblankOut:
            if (settings.profile) {
                const double start = ThreadCpuMilliseconds();
                x.VDPOnVblankOut();
                sample.vblankOut += ThreadCpuMilliseconds() - start;
                VdpglFrameProfile phases{};
                if (x.GetFrameProfile(&phases)) {
                    bench.phasesMeasured = true;
                    for (int p = 0; p < VDPGL_PHASE_COUNT; ++p) sample.phases[p] += phases.milliseconds[p];
                }
            } else {
                x.VDPOnVblankOut();
            }
            break;
        case Event::VDPOnHblankIn: x.VDPOnHblankIn(); break;
        case Event::VDPOnHblankOut: x.VDPOnHblankOut(); break;
        default: break;
        }
        return;
    }
    switch (r.port) {
#define VDPGL_REPLAY_PORT(name, bytes) \
    case Port::name: Call(x.name, a, v); break;
        VDPGL_TRACE_PORTS(VDPGL_REPLAY_PORT)
#undef VDPGL_REPLAY_PORT
    case Port::Count: break;
    }
}

std::atomic<bool> CTracePlayer::stopRequested{false};

bool CTracePlayer::EndFrame(PlayResult& result) {
    const long frame = result.frames++;
    if (settings.pace) {
        // The console's field rate, 59.94 a second; a late frame does not
        // make the next ones hurry.
        constexpr auto kFrame = std::chrono::nanoseconds(16683333);
        const auto now = std::chrono::steady_clock::now();
        nextFrameDue = std::max(nextFrameDue + kFrame, now - kFrame);
        if (nextFrameDue > now) std::this_thread::sleep_until(nextFrameDue);
    }
    if (!settings.captureDir.empty() && frame % settings.captureEvery == 0) {
        int width = 0, height = 0;
        x.GetDisplaySize(&width, &height);
        capture.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
        if (width > 0 && height > 0 && x.CaptureDisplay(capture.data(), width, height)) {
            char name[32];
            std::snprintf(name, sizeof name, "/frame-%06ld.png", frame);
            std::string error;
            if (!WritePng(settings.captureDir + name, capture.data(), width, height, error)) {
                result.ok = false;
                result.error = error;
                return false;
            }
            ++result.captures;
        }
    }
    if (x.GetCacheCounters(&result.caches)) {
        VdpglCacheCounters& peak = result.peakCaches;
        if (result.caches.vdp1TextureBytes >= peak.vdp1TextureBytes) {
            peak.vdp1Patterns = result.caches.vdp1Patterns;
            peak.vdp1Textures = result.caches.vdp1Textures;
            peak.vdp1TextureBytes = result.caches.vdp1TextureBytes;
            peak.vdp1TextureBudget = result.caches.vdp1TextureBudget;
        }
        if (result.caches.vdp2CellBytes >= peak.vdp2CellBytes) {
            peak.vdp2Cells = result.caches.vdp2Cells;
            peak.vdp2Pictures = result.caches.vdp2Pictures;
            peak.vdp2CellBytes = result.caches.vdp2CellBytes;
        }
    }
    if (frame == settings.pauseAt) Hold();
    const auto now = std::chrono::steady_clock::now();
    sample.wall = std::chrono::duration<double, std::milli>(now - frameStart).count();
    bench.frames.push_back(sample);
    sample = FrameSample{};
    frameStart = now;
    if (settings.profile && result.frames == 100) bench.residentKiBAt100 = ResidentKiB();
    if (onFrame) {
        const double size = static_cast<double>(reader.FileSize());
        onFrame(result.frames, size > 0 ? static_cast<double>(reader.Position()) / size : -1.0);
    }
    return settings.frames < 0 || result.frames < settings.frames;
}

void CTracePlayer::Hold() {
    // The frame's V-blanks again and again: its textures stay in the cache and
    // the dialogs are served, until Ctrl-C.
    std::fprintf(stderr, "vdpgl-play: holding at frame %ld; Ctrl-C ends\n", settings.pauseAt);
    while (!stopRequested.load(std::memory_order_relaxed)) {
        x.VDPOnVblankIn();
        x.VDPOnVblankOut();
        std::this_thread::sleep_for(std::chrono::nanoseconds(16683333));
    }
}

void CTracePlayer::Finish() {
    if (running) x.EmulationThreadStoping();
    if (initialised) x.DeInitPlugin();
    running = initialised = false;
}

trace::CTraceReader::Status CTracePlayer::ReadFrame(bool& frameEnd) {
    // A trace without frame records is replayed in pieces of this many.
    constexpr size_t kMostRecords = 1 << 16;
    batch.clear();
    frameEnd = false;
    trace::Record record;
    while (batch.size() < kMostRecords) {
        const trace::CTraceReader::Status status = reader.Next(record);
        if (status != trace::CTraceReader::Status::Record) return status;
        if (record.kind == trace::Record::Kind::Frame) {
            frameEnd = true;
            break;
        }
        batch.push_back(record);
    }
    return trace::CTraceReader::Status::Record;
}

bool CTracePlayer::ReplayFrame(PlayResult& result) {
    const double start = settings.profile ? ThreadCpuMilliseconds() : 0.0;
    const double vblankBefore = sample.vblankOut;
    for (const trace::Record& r : batch) {
        if (stopRequested.load(std::memory_order_relaxed)) {
            result.interrupted = true;
            return false;
        }
        Dispatch(r);
    }
    if (settings.profile) sample.replay += ThreadCpuMilliseconds() - start - (sample.vblankOut - vblankBefore);
    return true;
}

PlayResult CTracePlayer::Play() {
    PlayResult result;
    const auto start = std::chrono::steady_clock::now();
    frameStart = start;
    nextFrameDue = start;
    sample = FrameSample{};
    bench = BenchRun{};
    // The first call turns the plug-in's measurement on.
    if (settings.profile) x.GetFrameProfile(nullptr);
    bool more = settings.frames != 0;
    while (more) {
        if (stopRequested.load(std::memory_order_relaxed)) {
            result.interrupted = true;
            break;
        }
        // A frame's records are read, then replayed: reading the file is
        // the player's time, not the plug-in's.
        bool frameEnd = false;
        const trace::CTraceReader::Status status = ReadFrame(frameEnd);
        if (!ReplayFrame(result)) break;
        if (frameEnd) {
            more = EndFrame(result);
            continue;
        }
        if (status == trace::CTraceReader::Status::End) {
            result.complete = reader.SawEndRecord();
            // A loop plays the whole trace again.
            if (settings.loop && result.complete && reader.Open(settings.tracePath)) continue;
            break;
        }
        if (status == trace::CTraceReader::Status::Error) {
            result.ok = false;
            result.error = reader.Error();
            break;
        }
    }
    // Memory as the last frame left it, before the plug-in is shut down.
    if (settings.profile) bench.residentKiBAtEnd = ResidentKiB();
    Finish();
    bench.trace = settings.tracePath;
    bench.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    result.bench = std::move(bench);
    return result;
}

}  // namespace vdpgl::play
