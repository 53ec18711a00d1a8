// RBG0 and RBG1 together, every dot read through coefficients. RBG0 runs
// in rotation parameter mode 2: a coefficient of parameter A with its top
// bit set hands the dot to parameter B, whose own coefficients zoom it or
// clear it. RBG1 reads its table at VRAM 0 and its planes at map value 0
// (with the map offset), and NBG0's character settings. All three tables
// turn and zoom every frame, the coefficient start slides so the switch
// pattern moves, and the coefficient modes of A and B differ and change.
#include <cmath>
#include <numbers>

#include "rotation_parameters.h"
#include "scene_builder.h"
#include "scene_math.h"
#include "stress_scenes.h"
#include "vdp2_cells.h"
#include "vdp2_registers.h"

namespace vdpgl::scenes::stress {

namespace {

using namespace vdp2;

constexpr uint32_t kRbg1Table = 0x00000, kTableA = 0x00100, kTableB = 0x00180;
constexpr uint32_t kRbg0Cells = 0x01000, kRbg1Cells = 0x02000, kRbg0Page = 0x04000, kRbg1Page = 0x40000;
// Word coefficients from bank 0x40000 (KTAOF 2 for both parameters); each
// table's coefficient start, counted in coefficients, places it inside.
constexpr uint32_t kCoefficientBank = 0x40000;
constexpr uint16_t kStartA = 0x0800, kStartRbg1 = 0x4000, kStartB = 0x8000;
// A coefficient every 8 dots, 64 a line (40 seen, the rest room to slide).
constexpr int kLineCoefficients = 64, kLines = 224, kDotsPerCoefficient = 8;
constexpr int kCharacters = 64;
constexpr uint16_t kSwitch = 0x8000;  // top bit: to parameter B, or clear

uint16_t Word(double scale) { return static_cast<uint16_t>(FixedPoint(scale, 1023.0, 0, 15)); }

// Parameter A: blocks of 4 x 32 in a period of 12 coefficients go to B;
// the rest zoom by line.
uint16_t CoefficientA(int column, int line) {
    if ((column / 4 + line / 32) % 3 == 0) return kSwitch;
    return Word(0.8 + 0.4 * std::sin(line / 30.0));
}
// Parameter B: diagonal clear stripes, a zoom that varies across.
uint16_t CoefficientB(int column, int line) {
    if ((column + line / 8) % 9 == 0) return kSwitch;
    return Word(1.3 + 0.3 * std::cos(column / 5.0));
}
// RBG1: a clear hole in the middle, waves elsewhere.
uint16_t CoefficientRbg1(int column, int line) {
    const int dx = column - 26, dy = (line - 112) / 8;
    if (dx * dx + dy * dy < 40) return kSwitch;
    return Word(1.0 + 0.4 * std::sin(line / 20.0 + column / 6.0));
}

void WriteCoefficients(CSceneBuilder& scene, uint16_t start, uint16_t (*coefficient)(int, int)) {
    for (int line = 0; line < kLines; ++line)
        for (int column = 0; column < kLineCoefficients; ++column)
            scene.Vdp2Word(kCoefficientBank + 2u * (start + static_cast<uint32_t>(line * kLineCoefficients + column)),
                           coefficient(column, line));
}

// Turned by angle about the screen's centre, zoomed by 1 / scale (the
// coefficients replace it where their mode says), shifted by (mx, my).
RotationTable Spin(double angle, double scale, double mx, double my, uint16_t coefficientStart) {
    RotationTable t;
    t.dxStart = 0, t.dyStart = 1, t.dx = 1, t.dy = 0;
    const double c = std::cos(angle), s = std::sin(angle);
    t.a = c, t.b = -s, t.c = 0;
    t.d = s, t.e = c, t.f = 0;
    t.px = t.cx = 160, t.py = t.cy = 112;
    t.mx = mx, t.my = my;
    t.kx = t.ky = scale;
    t.coefficientStart = coefficientStart;
    t.coefficientLineStep = kLineCoefficients;
    t.coefficientDotStep = 1.0 / kDotsPerCoefficient;
    return t;
}

// A page of two-word names (one-cell characters: 64 x 64, 2 x 2: 32 x 32)
// in tiles of 32 x 32 dots, each one character repeated; one tile in
// three shows the last character, left blank, so what lies behind shows.
void WritePage(CSceneBuilder& scene, uint32_t page, uint32_t cells, bool colors256, bool twoByTwo) {
    const int side = twoByTwo ? 32 : 64, tile = twoByTwo ? 2 : 4;
    for (uint32_t i = 0; i < CharacterBytes(colors256, twoByTwo); i += 4)
        scene.Vdp2Long(cells + (kCharacters - 1) * CharacterBytes(colors256, twoByTwo) + i, 0);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int tx = x / tile, ty = y / tile;
            const uint32_t character =
                (tx + 2 * ty) % 3 == 0 ? kCharacters - 1 : static_cast<uint32_t>((tx * 7 + ty * 13) % (kCharacters - 1));
            const uint32_t number = (cells + character * CharacterBytes(colors256, twoByTwo)) / 32;
            const uint32_t palette = colors256 ? 0 : static_cast<uint32_t>((tx + ty) % 16);
            scene.Vdp2Long(page + 4u * static_cast<uint32_t>(y * side + x), palette << 16 | number);
        }
}

}  // namespace

void SetUpRotation(CSceneBuilder& scene, CSharedRegisters& shared) {
    // RBG0: 256 colours (CHCTLB bits 14-12 = 1), one cell; its page in all
    // sixteen planes of A and of B, plane size 0 for both.
    WriteCharacters(scene, kRbg0Cells, kCharacters, true, false, 3);
    WritePage(scene, kRbg0Page, kRbg0Cells, true, false);
    shared.Set(CHCTLB, 0x1000);
    scene.Vdp2Register(PNCR, 0x0000);
    const uint16_t maps = PagePair(kRbg0Page, 0x4000);
    for (uint32_t pair = 0; pair < 8; ++pair) {
        scene.Vdp2Register(MPABRA + 2 * pair, maps);
        scene.Vdp2Register(MPABRB + 2 * pair, maps);
    }
    // RBG1 takes NBG0's fields: 16 colours, 2 x 2 cells (CHCTLA bit 0),
    // two-word names; with map value 0 and map offset 1 its planes are at
    // 64 pages of 0x1000 bytes, 0x40000.
    WriteCharacters(scene, kRbg1Cells, kCharacters, false, true, 40);
    WritePage(scene, kRbg1Page, kRbg1Cells, false, true);
    static_assert(kRbg1Page == 1 * 64 * 0x1000);
    shared.Set(CHCTLA, 0x0001);
    scene.Vdp2Register(PNCN0, 0x0000);
    scene.Vdp2Register(MPOFR, 0x0001);

    // Tables A at 0x100 and B at 0x180 (RPTAL bits 15-6 hold address bits 16-7).
    scene.Vdp2Register(RPTAU, 0);
    scene.Vdp2Register(RPTAL, static_cast<uint16_t>(kTableA >> 1));
    scene.Vdp2Register(RPMD, 0x0002);
    scene.Vdp2Register(RPRCTL, 0x0707);
    scene.Vdp2Register(KTAOF, static_cast<uint16_t>((kCoefficientBank / 0x20000) << 8 | kCoefficientBank / 0x20000));
    WriteCoefficients(scene, kStartA, CoefficientA);
    WriteCoefficients(scene, kStartB, CoefficientB);
    WriteCoefficients(scene, kStartRbg1, CoefficientRbg1);

    // 256-colour palette for RBG0 (offset 2), 16-colour ones for RBG1 (3).
    for (uint32_t i = 0; i < 256; ++i) {
        scene.CramWord(512 + i, ToCramColor(Scale(Hue(static_cast<float>(i) / 200.0f), 0.4f + 0.6f * static_cast<float>(i % 3) / 2.0f)));
        scene.CramWord(768 + i, ToCramColor(Mix(Hue(static_cast<float>(i / 16) / 16.0f + 0.5f), {0, 0, 0}, static_cast<float>(i % 16) / 25.0f)));
    }
    shared.Set(CRAOFB, 2);
    shared.Set(CRAOFA, 3);
    // RBG0 in front (5), RBG1 at NBG0's priority (4).
    shared.Set(PRIR, 5);
    shared.Set(PRINA, 4);
    shared.Set(BGON, 0x0030);
}

void WriteRotationFrame(CSceneBuilder& scene, int frame) {
    const double turn = 2 * std::numbers::pi * frame / kFrames;
    // The switch pattern repeats every 12 coefficients: sliding by one a
    // frame moves it 8 dots.
    const auto slide = static_cast<uint16_t>(frame % 12);
    WriteRotationTable(scene, kTableA, Spin(turn, 1.0, 2.0 * frame, 0.5 * frame, kStartA + slide));
    WriteRotationTable(scene, kTableB, Spin(-2 * turn, 0.7 + 0.3 * std::sin(3 * turn), -frame, 1.5 * frame, kStartB));
    WriteRotationTable(scene, kRbg1Table, Spin(std::numbers::pi / 4 + 0.5 * std::sin(turn), 1.0, -1.5 * frame, -frame, kStartRbg1));
    // Word coefficients on for both (bits 1-0, 9-8); modes (bits 3-2,
    // 11-10) 0 to 2, A's and B's apart, changing every 60 frames.
    const auto modeA = static_cast<uint16_t>(frame / 60 % 3), modeB = static_cast<uint16_t>((frame / 60 + 1) % 3);
    scene.Vdp2Register(KTCTL, static_cast<uint16_t>((modeB << 10 | 0x0300) | (modeA << 2 | 0x0003)));
}

void WriteStressRotation(CSceneBuilder& scene) {
    CSharedRegisters shared;
    SetUpRotation(scene, shared);
    StartScreen(scene, shared);
    for (int frame = 0; frame < kFrames; ++frame) {
        WriteRotationFrame(scene, frame);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes::stress
