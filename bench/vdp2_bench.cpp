// VDP2's per-frame work for the scroll planes on the CPU (no GL context: the
// renderer's calls return at once). One frame is what the plug-in does each
// V-blank-out: the backgrounds read their registers and colour RAM switches
// buffers, then the backgrounds of levels 1-7 are drawn (the load pass that
// checks every map entry on screen, and the plane quads).
// - four 1024 x 1024 planes of 16-colour 8 x 8 cells whose data does not
//   change, with the scroll fixed or moving;
// - one plane whose every visible cell was rewritten since the last frame;
// - the decoding of one 8 x 8 cell in each colour count.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "bench_chips.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp2/vdp2_character_pattern/vdp2_character_pattern.h"
#include "vdp2/vdp2_registers.h"

namespace {

using namespace vdpgl::vdp2reg;
using vdpgl::CPatternName;
using vdpgl::CVdp2CharacterPattern;
using vdpgl::bench::Chips;

constexpr uint32_t kScrollX[4] = {SCXIN0, SCXIN1, SCXN2, SCXN3};
constexpr uint32_t kScrollY[4] = {SCYIN0, SCYIN1, SCYN2, SCYN3};
constexpr uint32_t kMapEntries = 128 * 128;  // 2 x 2 pages of 64 x 64 names
constexpr uint32_t kMaps = 0x40000;          // NBGn's map at kMaps + n x 0x8000
// Map entries the load pass of one unzoomed 320 x 224 background visits:
// every character on screen and one more each way.
constexpr uint32_t kColumns = (320 + 8 + 7) / 8, kRows = (224 + 8 + 7) / 8;

void Reg(Chips& chips, uint32_t address, uint16_t value) { chips.vdp2->WriteRegisterWord(address, value); }

// A 320 x 224 display and a colour RAM of distinct colours.
void StartDisplay(Chips& chips) {
    Reg(chips, TVMD, TVMD_DISP);
    for (uint32_t i = 0; i < 1024; ++i) chips.vdp2->WriteCramWord(i * 2, static_cast<uint16_t>(0x8000 | (i * 37)));
}

// NBGn as a 16-colour plane of 1 x 1 cells and one-word names, 1024 x 1024
// (four pages), unzoomed, at priority level `level`. Plane A is the map at
// kMaps + n x 0x8000, planes B, C and D the next three of the four maps
// (distinct planes: no shared textures). The caller sets BGON, PLSZ and PNCNn.
void SetUpPlane(Chips& chips, uint32_t n, uint16_t level) {
    const auto map = [n](uint32_t plane) {  // a multiple of 4: one 4-page group
        return static_cast<uint16_t>((kMaps + (n + plane) % 4 * 0x8000) / 0x2000);
    };
    Reg(chips, MPABN0 + 4 * n, static_cast<uint16_t>(map(1) << 8 | map(0)));
    Reg(chips, MPABN0 + 4 * n + 2, static_cast<uint16_t>(map(3) << 8 | map(2)));
    const uint32_t priority = n < 2 ? PRINA : PRINB, shift = n % 2 ? 8 : 0;
    Reg(chips, priority, static_cast<uint16_t>(chips.vdp2->Register(priority) | level << shift));
    if (n < 2) {  // NBG0 and NBG1 zoom: 1.0 each way
        Reg(chips, n ? ZMXIN1 : ZMXIN0, 1);
        Reg(chips, n ? ZMYIN1 : ZMYIN0, 1);
    }
}

void Frame(Chips& chips) {
    chips.vdp2->OnVblankOut();
    for (int p = 1; p <= 7; ++p) chips.vdp2->DrawBackgrounds(p);
}

// NBG0-NBG3 at levels 1-4, each with 512 characters of its own (character
// number supplement n: data at n x 0x8000) drawn with 16 palettes and four
// flips in a map of its own. range(0): the scroll step in dots per frame,
// down and across at different speeds per background (0: fixed scroll, the
// steady state). A moving scroll also brings map positions on screen that
// the plane textures do not show yet, until the planes went round once.
// range(1) = 1: NBG0 and NBG1 zoomed out eight times, the most map a frame
// can show (the load pass visits 64 times the entries of those two).
void BM_Vdp2UnchangedPlanes(benchmark::State& state) {
    Chips chips;
    StartDisplay(chips);
    constexpr uint32_t kCharacters = 512;
    for (uint32_t n = 0; n < 4; ++n) {
        chips.FillVdp2Data(n * 0x8000, kCharacters * 32, n + 1);
        uint32_t x = n * 7919 + 3;
        for (uint32_t i = 0; i < kMapEntries; ++i) {
            x = x * 1664525u + 1013904223u;
            const uint32_t palette = x >> 28, flips = (x >> 26) & 3, character = (x >> 8) % kCharacters;
            chips.vdp2->WriteVramWord(kMaps + n * 0x8000 + i * 2,
                                      static_cast<uint16_t>(palette << 12 | flips << 10 | character));
        }
        Reg(chips, PNCN0 + 2 * n, static_cast<uint16_t>(0x8000 | n));
        SetUpPlane(chips, n, static_cast<uint16_t>(n + 1));
    }
    Reg(chips, PLSZ, 0xFF);
    Reg(chips, BGON, 0x000F);
    if (state.range(1)) {  // NBG0 and NBG1 zoomed out as far as they go: 7 + 255/256 map dots a screen dot
        for (uint32_t zoom : {ZMXIN0, ZMYIN0, ZMXIN1, ZMYIN1}) {
            Reg(chips, zoom, 7);
            Reg(chips, zoom + 2, 0xFF00);
        }
    }
    Frame(chips);  // decodes and uploads what the first frame shows
    if (chips.vdp2->CellCache().Cells() < 4 * 256) {
        state.SkipWithError("the backgrounds decoded too few cells: not drawn?");
        return;
    }
    const int step = static_cast<int>(state.range(0));
    int scroll = 0;
    for (auto _ : state) {
        if (step) {
            scroll += step;
            for (uint32_t n = 0; n < 4; ++n) {
                Reg(chips, kScrollX[n], static_cast<uint16_t>((scroll * static_cast<int>(n + 1)) & 0x7FF));
                Reg(chips, kScrollY[n], static_cast<uint16_t>((scroll * static_cast<int>(4 - n)) & 0x7FF));
            }
        }
        Frame(chips);
    }
    if (!state.range(1)) state.counters["entries"] = 4 * kColumns * kRows;
    state.counters["cells"] = chips.vdp2->CellCache().Cells();
}

// NBG0 alone at scroll (0, 0), names without flips (12-bit character
// numbers) so that each of the 41 x 29 entries the frame visits shows a
// character of its own, each with one of 16 palettes. Before every frame all
// those characters' bytes change (the written values alternate between two
// sets), so the frame replaces, decodes and uploads every one. `timed` says
// what the time covers: the frame alone (the writes run with the timing
// paused, which adds the pause's own cost), the writes (about 9,500 long
// writes through the port) and the frame, or the writes alone.
enum class Timed { kFrame, kWritesAndFrame, kWrites };

void BM_Vdp2PlaneAllCellsChanged(benchmark::State& state, Timed timed) {
    Chips chips;
    StartDisplay(chips);
    constexpr uint32_t kCharacters = kColumns * kRows, kBytes = kCharacters * 32;
    chips.FillVdp2Data(0, kBytes, 9);
    for (uint32_t i = 0; i < kMapEntries; ++i) {
        const uint32_t cx = i % 64 + (i / 4096 % 2) * 64, cy = i / 64 % 64 + (i / 8192) * 64;  // page order
        const uint32_t character = (cy % kRows) * kColumns + cx % kColumns, palette = (cx + cy) % 16;
        chips.vdp2->WriteVramWord(kMaps + i * 2, static_cast<uint16_t>(palette << 12 | character));
    }
    Reg(chips, PNCN0, 0xC000);  // one word, 12-bit character numbers
    // NBG1-NBG3 stay off, but get distinct planes too: planes that share a
    // texture are linked, and without a GL context there is none to link to.
    for (uint32_t n = 0; n < 4; ++n) SetUpPlane(chips, n, n == 0 ? 1 : 0);
    Reg(chips, PLSZ, 0x03);
    Reg(chips, BGON, 0x0001);
    std::vector<uint32_t> data(kBytes / 4);
    for (uint32_t i = 0; i < kBytes / 4; ++i) data[i] = chips.vdp2->ReadVramLong(i * 4);
    uint32_t flip = 0;
    const auto rewrite = [&] {
        flip ^= 0x11111111;  // every dot's colour code changes
        for (uint32_t i = 0; i < kBytes / 4; ++i) chips.vdp2->WriteVramLong(i * 4, data[i] ^ flip);
    };
    Frame(chips);
    rewrite();
    Frame(chips);
    for (uint32_t k = 0; k < kCharacters; ++k) {
        const CVdp2CharacterPattern* cell = chips.vdp2->cells[k];
        if (!cell || cell->IsModified() || cell->startAddress != k * 32) {
            state.SkipWithError("a rewritten character was not decoded again");
            return;
        }
    }
    for (auto _ : state) {
        if (timed == Timed::kFrame) state.PauseTiming();
        rewrite();
        if (timed == Timed::kFrame) state.ResumeTiming();
        if (timed != Timed::kWrites) Frame(chips);
    }
    state.counters["cells"] = kCharacters;
}

// CVdp2CharacterPattern::Decode of one 8 x 8 cell with colour count `mode`
// (0: 16, 1: 256, 2: 2048, 3: 32K, 4: 16M colours; palette 0, colour RAM
// mode 0), going round 256 cells of distinct data.
void BM_Vdp2CellDecode(benchmark::State& state, uint32_t mode) {
    Chips chips;
    StartDisplay(chips);
    constexpr uint32_t kCells = 256, kCellBytes[5] = {32, 64, 128, 128, 256};
    const uint32_t bytes = kCellBytes[mode];
    chips.FillVdp2Data(0, kCells * bytes, mode + 1);
    std::vector<CPatternName> requests(kCells);
    std::vector<CVdp2CharacterPattern*> cells(kCells);  // the VDP2 cell table owns them
    for (uint32_t k = 0; k < kCells; ++k) {
        requests[k].characterAddress = k * bytes;
        requests[k].cellDataSize = bytes;
        requests[k].characterColorNumber = mode;
        cells[k] = new CVdp2CharacterPattern(requests[k], 0);
        cells[k]->Decode(requests[k]);  // its picture exists from now on
    }
    uint32_t k = 0;
    for (auto _ : state) {
        cells[k]->Decode(requests[k]);
        benchmark::DoNotOptimize(cells[k]->Picture(0));
        benchmark::ClobberMemory();
        k = (k + 1) % kCells;
    }
}

}  // namespace

BENCHMARK(BM_Vdp2UnchangedPlanes)
    ->ArgNames({"scroll_step", "zoomed_out"})
    ->Args({0, 0})
    ->Args({3, 0})
    ->Args({0, 1})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Vdp2PlaneAllCellsChanged, frame, Timed::kFrame)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Vdp2PlaneAllCellsChanged, writes_and_frame, Timed::kWritesAndFrame)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Vdp2PlaneAllCellsChanged, writes, Timed::kWrites)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Vdp2CellDecode, 16, 0u);
BENCHMARK_CAPTURE(BM_Vdp2CellDecode, 256, 1u);
BENCHMARK_CAPTURE(BM_Vdp2CellDecode, 2048, 2u);
BENCHMARK_CAPTURE(BM_Vdp2CellDecode, 32K, 3u);
BENCHMARK_CAPTURE(BM_Vdp2CellDecode, 16M, 4u);
