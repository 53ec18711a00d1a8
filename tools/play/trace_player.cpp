#include "trace_player.h"

#include <cstdio>

#include "png_file.h"

namespace vdpgl::play {

using trace::Event;
using trace::Port;

void CTracePlayer::Dispatch(const trace::Record& r) {
    const uint32_t a = r.address, v = r.value;
    if (r.kind == trace::Record::Kind::Event) {
        switch (r.event) {
        case Event::InitVDPPlugin:
            x.InitVDPPlugin(nullptr);
            initialised = true;
            break;
        case Event::DeInitPlugin:
            x.DeInitPlugin();
            initialised = running = false;
            break;
        case Event::Reset: x.Reset(); break;
        case Event::SetupPlugin: break;  // a dialog: nothing to replay
        case Event::EmulationThreadStarting:
            x.EmulationThreadStarting();
            running = true;
            break;
        case Event::EmulationThreadStoping:
            x.EmulationThreadStoping();
            running = false;
            break;
        case Event::VDPOnVblankIn: x.VDPOnVblankIn(); break;
        case Event::VDPOnVblankOut: x.VDPOnVblankOut(); break;
        case Event::VDPOnHblankIn: x.VDPOnHblankIn(); break;
        case Event::VDPOnHblankOut: x.VDPOnHblankOut(); break;
        default: break;
        }
        return;
    }
    const auto b = static_cast<uint8_t>(v);
    const auto w = static_cast<uint16_t>(v);
    switch (r.port) {
    case Port::WriteByteVDP1FrameBuffer: x.WriteByteVDP1FrameBuffer(a, b); break;
    case Port::WriteWordVDP1FrameBuffer: x.WriteWordVDP1FrameBuffer(a, w); break;
    case Port::WriteLongVDP1FrameBuffer: x.WriteLongVDP1FrameBuffer(a, v); break;
    case Port::ReadByteVDP1FrameBuffer: x.ReadByteVDP1FrameBuffer(a); break;
    case Port::ReadWordVDP1FrameBuffer: x.ReadWordVDP1FrameBuffer(a); break;
    case Port::ReadLongVDP1FrameBuffer: x.ReadLongVDP1FrameBuffer(a); break;
    case Port::WriteByteVDP1VRAM: x.WriteByteVDP1VRAM(a, b); break;
    case Port::WriteWordVDP1VRAM: x.WriteWordVDP1VRAM(a, w); break;
    case Port::WriteLongVDP1VRAM: x.WriteLongVDP1VRAM(a, v); break;
    case Port::ReadByteVDP1VRAM: x.ReadByteVDP1VRAM(a); break;
    case Port::ReadWordVDP1VRAM: x.ReadWordVDP1VRAM(a); break;
    case Port::ReadLongVDP1VRAM: x.ReadLongVDP1VRAM(a); break;
    case Port::WriteWordVDP1Regs: x.WriteWordVDP1Regs(a, w); break;
    case Port::ReadWordVDP1Regs: x.ReadWordVDP1Regs(a); break;
    case Port::WriteByteVDP2Regs: x.WriteByteVDP2Regs(a, b); break;
    case Port::WriteWordVDP2Regs: x.WriteWordVDP2Regs(a, w); break;
    case Port::WriteLongVDP2Regs: x.WriteLongVDP2Regs(a, v); break;
    case Port::ReadByteVDP2Regs: x.ReadByteVDP2Regs(a); break;
    case Port::ReadWordVDP2Regs: x.ReadWordVDP2Regs(a); break;
    case Port::ReadLongVDP2Regs: x.ReadLongVDP2Regs(a); break;
    case Port::WriteByteVDP2VRAM: x.WriteByteVDP2VRAM(a, b); break;
    case Port::WriteWordVDP2VRAM: x.WriteWordVDP2VRAM(a, w); break;
    case Port::WriteLongVDP2VRAM: x.WriteLongVDP2VRAM(a, v); break;
    case Port::ReadByteVDP2VRAM: x.ReadByteVDP2VRAM(a); break;
    case Port::ReadWordVDP2VRAM: x.ReadWordVDP2VRAM(a); break;
    case Port::ReadLongVDP2VRAM: x.ReadLongVDP2VRAM(a); break;
    case Port::WriteByteVDP2CRAM: x.WriteByteVDP2CRAM(a, b); break;
    case Port::WriteWordVDP2CRAM: x.WriteWordVDP2CRAM(a, w); break;
    case Port::WriteLongVDP2CRAM: x.WriteLongVDP2CRAM(a, v); break;
    case Port::ReadByteVDP2CRAM: x.ReadByteVDP2CRAM(a); break;
    case Port::ReadWordVDP2CRAM: x.ReadWordVDP2CRAM(a); break;
    case Port::ReadLongVDP2CRAM: x.ReadLongVDP2CRAM(a); break;
    case Port::Count: break;
    }
}

bool CTracePlayer::EndFrame(PlayResult& result) {
    const long frame = result.frames++;
    if (!settings.captureDir.empty() && frame % settings.captureEvery == 0) {
        int width = 0, height = 0;
        x.GetDisplaySize(&width, &height);
        capture.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
        if (width > 0 && height > 0 && x.CaptureDisplay(capture.data(), width, height)) {
            char name[32];
            std::snprintf(name, sizeof name, "/frame-%06ld.png", frame);
            std::string error;
            if (!tools::WritePng(settings.captureDir + name, capture.data(), width, height, error)) {
                result.ok = false;
                result.error = error;
                return false;
            }
            ++result.captures;
        }
    }
    const auto now = std::chrono::steady_clock::now();
    result.frameMilliseconds.push_back(std::chrono::duration<double, std::milli>(now - frameStart).count());
    frameStart = now;
    if (onFrame) {
        const double size = static_cast<double>(reader.FileSize());
        onFrame(result.frames, size > 0 ? static_cast<double>(reader.Position()) / size : 1.0);
    }
    return settings.frames < 0 || result.frames < settings.frames;
}

void CTracePlayer::Finish() {
    if (running) x.EmulationThreadStoping();
    if (initialised) x.DeInitPlugin();
    running = initialised = false;
}

PlayResult CTracePlayer::Play() {
    PlayResult result;
    const auto start = std::chrono::steady_clock::now();
    frameStart = start;
    trace::Record record;
    bool more = settings.frames != 0;
    while (more) {
        const trace::CTraceReader::Status status = reader.Next(record);
        if (status == trace::CTraceReader::Status::End) {
            result.complete = reader.SawEndRecord();
            break;
        }
        if (status == trace::CTraceReader::Status::Error) {
            result.ok = false;
            result.error = reader.Error();
            break;
        }
        if (record.kind == trace::Record::Kind::Frame)
            more = EndFrame(result);
        else
            Dispatch(record);
    }
    Finish();
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

}  // namespace vdpgl::play
