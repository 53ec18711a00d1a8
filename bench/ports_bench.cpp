// The memory and register ports as a host calls them: through the exports of
// libvdpgl.so. One port call per iteration; the addresses walk a 64 KB window
// and the values change, so writes take the compare-and-invalidate path.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "vdpgl/vdpgl.h"

namespace {

constexpr uint32_t kWindow = 0xFFFF;

class PluginSession {
public:
    PluginSession() { InitVDPPlugin(nullptr); }
    ~PluginSession() { DeInitPlugin(); }
};

template <void (*Write)(uint32_t, uint8_t)>
void WriteByte(benchmark::State& state) {
    PluginSession session;
    uint32_t i = 0;
    for (auto _ : state) {
        Write(i & kWindow, static_cast<uint8_t>(i >> 3));
        ++i;
    }
}

template <void (*Write)(uint32_t, uint16_t)>
void WriteWord(benchmark::State& state) {
    PluginSession session;
    uint32_t i = 0;
    for (auto _ : state) {
        Write((i << 1) & kWindow, static_cast<uint16_t>(i >> 2));
        ++i;
    }
}

template <void (*Write)(uint32_t, uint32_t)>
void WriteLong(benchmark::State& state) {
    PluginSession session;
    uint32_t i = 0;
    for (auto _ : state) {
        Write((i << 2) & kWindow, i);
        ++i;
    }
}

template <typename T, T (*Port)(uint32_t), unsigned kShift>
void Read(benchmark::State& state) {
    PluginSession session;
    uint32_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Port((i << kShift) & kWindow));
        ++i;
    }
}

void WriteWordVdp2Register(benchmark::State& state) {
    PluginSession session;
    uint32_t i = 0;
    for (auto _ : state) {
        // Scroll registers: stored without decoding, as most register traffic is.
        WriteWordVDP2Regs(0x070 + ((i << 1) & 0x1E), static_cast<uint16_t>(i));
        ++i;
    }
}

}  // namespace

// The floor: a call through the export that does nothing but return 0.
BENCHMARK(Read<uint8_t, ReadByteVDP1FrameBuffer, 0>)->Name("export call floor (frame buffer read)");
BENCHMARK(WriteByte<WriteByteVDP1VRAM>)->Name("VDP1 VRAM write byte");
BENCHMARK(WriteWord<WriteWordVDP1VRAM>)->Name("VDP1 VRAM write word");
BENCHMARK(WriteLong<WriteLongVDP1VRAM>)->Name("VDP1 VRAM write long");
BENCHMARK(Read<uint8_t, ReadByteVDP1VRAM, 0>)->Name("VDP1 VRAM read byte");
BENCHMARK(Read<uint16_t, ReadWordVDP1VRAM, 1>)->Name("VDP1 VRAM read word");
BENCHMARK(Read<uint32_t, ReadLongVDP1VRAM, 2>)->Name("VDP1 VRAM read long");
BENCHMARK(WriteByte<WriteByteVDP2VRAM>)->Name("VDP2 VRAM write byte");
BENCHMARK(WriteWord<WriteWordVDP2VRAM>)->Name("VDP2 VRAM write word");
BENCHMARK(WriteLong<WriteLongVDP2VRAM>)->Name("VDP2 VRAM write long");
BENCHMARK(Read<uint8_t, ReadByteVDP2VRAM, 0>)->Name("VDP2 VRAM read byte");
BENCHMARK(Read<uint16_t, ReadWordVDP2VRAM, 1>)->Name("VDP2 VRAM read word");
BENCHMARK(Read<uint32_t, ReadLongVDP2VRAM, 2>)->Name("VDP2 VRAM read long");
BENCHMARK(WriteWordVdp2Register)->Name("VDP2 register write word");
BENCHMARK(WriteWord<WriteWordVDP2CRAM>)->Name("VDP2 CRAM write word");

BENCHMARK_MAIN();
