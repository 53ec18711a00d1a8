// RBG0's rotation parameters, coefficient tables and the rotation parameter window as read from VRAM and registers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "common/color_word.h"
#include "vdp2/background/rotation_background.h"
#include "vdp2/background/rotation_parameters.h"
#include "vdp2/background/rotation_row_sampler.h"
#include "vdp2/background/rotation_window.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;
using Vdp2RotationTest = test::VdpTest;

TEST(RotationParameterTest, SignRuleAndFixedPointFields) {
    struct Case {
        uint32_t v;
        int bits;
        int32_t value;
    };
    const Case cases[] = {{0x3FFF, 14, 0}, {0x2000, 14, -8191}, {0x1FFF, 14, 8191}, {0x7FFFFF, 23, 0},
                          {0x400000, 23, -4194303}, {0xFFFFFFFF, 13, 0}, {0x0001, 14, 1}};
    for (const Case& c : cases) EXPECT_EQ(SignedField(c.v, c.bits), c.value) << std::hex << c.v << " " << c.bits;
}

TEST_F(Vdp2RotationTest, ParameterTableCoefficientPlacementAndValues) {
    constexpr uint32_t kTable = 0x20100;
    const auto put = [&](uint32_t offset, uint32_t v) { vdp2->WriteVramLong(kTable + offset, v); };
    put(0x00, 1023u << 6);             // Xst 1.0
    put(0x0C, 0x1000u << 6);           // delta Xst: the most negative 13-bit value, -4095
    put(0x1C, 1023u << 6);             // A 1.0
    put(0x20, 0x3FFFu << 6);           // B: all ones reads 0
    vdp2->WriteVramWord(kTable + 0x34, 0x3FFF);  // Px: 0
    vdp2->WriteVramWord(kTable + 0x36, 0x2000);  // Py: -8191
    put(0x4C, 0x010000);                         // kx: 65536 / 65535
    put(0x50, 0x80FFFF00);                       // ky: bits 23-0 only, -256 + 1
    put(0x54, 0x0012FFC0);                       // KAst index 0x12
    RotationParameterSet set{};
    ReadRotationParameterTable(vdp2->vram, kTable, 0, 0x0002, 0x0003, set);  // A: one-word coefficients, KTAOF 3
    EXPECT_FLOAT_EQ(set.xst, 1.0f);
    EXPECT_EQ(set.deltaXst, static_cast<float>(-4095 / 1023.0));
    EXPECT_FLOAT_EQ(set.a, 1.0f);
    EXPECT_FLOAT_EQ(set.b, 0.0f);
    EXPECT_EQ(set.px, 0);
    EXPECT_EQ(set.py, -8191);
    EXPECT_EQ(set.kx, static_cast<float>(65536 / 65535.0));
    EXPECT_EQ(set.ky, static_cast<float>((-256 + 1) / 65535.0));
    EXPECT_EQ(set.kast, 0x12);
    EXPECT_EQ(set.coefficientAddress, (3u << 17) + 0x12 * 2);
    ReadRotationParameterTable(vdp2->vram, kTable, 1, 0x0000, 0x0700, set);  // B: longs, only KTAOF bits 8-9 count
    EXPECT_EQ(set.coefficientAddress, (3u << 18) + 0x12 * 4);

    struct Coefficient {
        uint32_t address, bytes, data;
        bool opaque;
        float value;
    };
    const Coefficient coefficients[] = {
        {0x40000, 2, 0x8000, false, 0}, {0x40002, 2, 0x0400, true, static_cast<float>(1024 / 1023.0)},
        {0x40004, 2, 0x7FFF, true, 0.0f}, {0x40008, 4, 0x80010000, false, 0},
        {0x4000C, 4, 0x7F00FFFF, true, static_cast<float>(65535 / 65535.0)},  // bits 30-24 unused
    };
    for (const Coefficient& c : coefficients) {
        if (c.bytes == 2)
            vdp2->WriteVramWord(c.address, static_cast<uint16_t>(c.data));
        else
            vdp2->WriteVramLong(c.address, c.data);
        float value = -1.0f;
        EXPECT_EQ(ReadCoefficient(vdp2->vram, c.address, c.bytes, value), c.opaque) << std::hex << c.data;
        if (c.opaque) {
            EXPECT_EQ(value, c.value) << std::hex << c.data;
        }
    }
    const CoefficientControl a(0x0D07, 0), b(0x0D07, 1);  // A: on, words, mode 1; B: on, longs, mode 3
    EXPECT_TRUE(a.enabled && a.bytes == 2 && !a.constantKx && a.constantKy);
    EXPECT_TRUE(b.enabled && b.bytes == 4 && b.constantKx && b.constantKy);
}

TEST_F(Vdp2RotationTest, TableAddressesAndWhatRbg1Reads) {
    for (auto [reg, value] : {std::pair<uint32_t, uint16_t>{RPTAU, 0x0001}, {RPTAL, 0x00BE}, {RPMD, 0x0003},
                              {PLSZ, 0x3100}, {MPABRA, 0x0201}, {BGON, 0x0030}})
        vdp2->WriteRegisterWord(reg, value);
    vdp2->OnVblankOut();
    const auto& rbg0 = static_cast<const CRotationBackground&>(*vdp2->Background(kRbg0));
    const auto& rbg1 = static_cast<const CRotationBackground&>(*vdp2->Background(kRbg1));
    EXPECT_EQ(rbg0.parameterTableAddresses[0], 0x20100u | 0x3Eu) << "RPTAL's bits 5-1 are ORed in unshifted";
    EXPECT_EQ(rbg0.parameterTableAddresses[1], 0x20180u + 0x3Eu);
    EXPECT_EQ(rbg0.rotationParameterMode, 3u);
    EXPECT_EQ(rbg0.planeWidths[0] + rbg0.planeHeights[0] + rbg0.planeWidths[1], 1024u + 512 + 1024);
    EXPECT_EQ(rbg0.planeAddresses[0][0], 2 * 0x4000u) << "plane A: map 1 of planes two pages of 0x4000 wide";
    EXPECT_EQ(rbg1.rotationParameterMode + rbg1.parameterTableAddresses[0] + rbg1.planeAddresses[0][1], 0u);
    std::string text;
    rbg0.GetInformation(text);
    EXPECT_NE(text.find("rotation parameter mode: parameter A and B switched via rotation parameter window\n"
                        "table address: 0x2013E\nplane size parameter A: 1024*512 pixels\n"
                        "plane A: 0x8000, plane B: 0x8000\nplane C: 0x0, plane D: 0x0\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("plane size parameter B: 1024*1024 pixels\n"), std::string::npos) << text;
}

TEST_F(Vdp2RotationTest, WindowChoiceAndTests) {
    const auto window = [&](std::initializer_list<std::pair<uint32_t, uint16_t>> writes) {
        for (auto [reg, value] : writes) vdp2->WriteRegisterWord(reg, value);
        RotationParameterWindow w;
        EXPECT_TRUE(w.Choose(*vdp2, CModuleLog()));
        return w;
    };
    // Both enabled: window 0 wins; bounds inclusive.
    RotationParameterWindow w = window({{WCTLD, 0x000A}, {WPSX0, 10}, {WPSX0 + 4, 20}, {WPSX0 + 2, 5}, {WPSX0 + 6, 8},
                                        {WPSX0 + 8, 100}, {WPSX0 + 12, 200}});
    EXPECT_TRUE(w.Inside(vdp2->vram, 10, 5) && w.Inside(vdp2->vram, 20, 8));
    EXPECT_FALSE(w.Inside(vdp2->vram, 21, 6) || w.Inside(vdp2->vram, 9, 6) || w.Inside(vdp2->vram, 15, 9));
    // Window 1 with start past its end: nothing inside.
    w = window({{WCTLD, 0x0008}, {WPSX0 + 8, 30}, {WPSX0 + 12, 20}, {WPSX0 + 10, 0}, {WPSX0 + 14, 100}});
    EXPECT_FALSE(w.Inside(vdp2->vram, 25, 50));
    // Line window 0: table at 0x20200, y bounds still from WPSY0/WPEY0; 0xFFFF ends a line with no window.
    EXPECT_EQ(LineWindowTableAddress(0x8001, 0x0100), 0x20200u);
    vdp2->WriteVramWord(0x2020C, 40), vdp2->WriteVramWord(0x2020E, 50);  // line 3
    vdp2->WriteVramWord(0x20210, 0), vdp2->WriteVramWord(0x20212, 0xFFFF);  // line 4
    w = window({{WCTLD, 0x0002}, {LWTA0U, 0x8001}, {LWTA0U + 2, 0x0100}, {WPSX0 + 2, 0}, {WPSX0 + 6, 3}});
    EXPECT_TRUE(w.Inside(vdp2->vram, 40, 3) && w.Inside(vdp2->vram, 50, 3));
    EXPECT_FALSE(w.Inside(vdp2->vram, 51, 3) || w.Inside(vdp2->vram, 0, 4));
    vdp2->WriteRegisterWord(WPSX0 + 6, 4);
    EXPECT_FALSE(window({}).Inside(vdp2->vram, 10, 4)) << "0xFFFF: the whole line outside";
    vdp2->WriteRegisterWord(WCTLD, 0);
    EXPECT_FALSE(RotationParameterWindow().Choose(*vdp2, CModuleLog()));
}

TEST_F(Vdp2RotationTest, CoefficientDataSwitchesADotToParameterB) {
    // Map A names a character of colour 1 everywhere, map B one of colour 2; both tables are identities. A's
    // coefficients, one a line, are transparent on every third line: those lines take B.
    constexpr uint32_t kTables = 0x30000, kOne = 1023u << 6;
    for (uint32_t i = 0; i < 32; ++i) vdp2->WriteVramByte(0x1000 + i, 0x11), vdp2->WriteVramByte(0x1020 + i, 0x22);
    for (uint32_t i = 0; i < 64 * 64; ++i) {
        vdp2->WriteVramWord(0x20000 + 2 * i, 0x80);
        vdp2->WriteVramWord(0x22000 + 2 * i, 0x81);
    }
    for (uint32_t t = 0; t < 2; ++t) {
        for (uint32_t offset : {0x10u, 0x14u, 0x1Cu, 0x2Cu, 0x58u})
            vdp2->WriteVramLong(kTables + t * 0x80 + offset, kOne);
        vdp2->WriteVramLong(kTables + t * 0x80 + 0x4C, 0xFFFF), vdp2->WriteVramLong(kTables + t * 0x80 + 0x50, 0xFFFF);
    }
    for (uint32_t y = 0; y < 224; ++y) vdp2->WriteVramWord(0x40000 + 2 * y, y % 3 ? 0x03FF : 0x8000);
    vdp2->WriteCramWord(2, 0x001F), vdp2->WriteCramWord(4, 0x03E0);
    for (auto [reg, value] : {std::pair<uint32_t, uint16_t>{TVMD, TVMD_DISP}, {BGON, 0x0010}, {PRIR, 1}, {PNCR, 0x8000},
                              {RPTAU, 1}, {RPTAL, 0x8000}, {RPMD, 2}, {KTCTL, 0x0003}, {KTAOF, 0x0002}})
        vdp2->WriteRegisterWord(reg, value);
    for (uint32_t k = 0; k < 8; ++k) {
        vdp2->WriteRegisterWord(MPABRA + 2 * k, 16 << 8 | 16);
        vdp2->WriteRegisterWord(MPABRB + 2 * k, 17 << 8 | 17);
    }
    const auto& rbg0 = static_cast<const CRotationBackground&>(*vdp2->Background(kRbg0));
    const auto rowColours = [&] {  // the colour of each sample row, or 0 when a row is not of one colour
        vdp2->OnVblankOut();
        vdp2->DrawBackgrounds(1);
        std::vector<uint32_t> colours;
        for (int32_t i = 0; i < 256; ++i) {
            const uint32_t* row = rbg0.Picture().data() + (255 - i) * 256;
            colours.push_back(std::all_of(row, row + 256, [&](uint32_t c) { return c == row[0]; }) ? row[0] : 0);
        }
        return colours;
    };
    const uint32_t red = Rgb555ToColorWord(0x001F), green = Rgb555ToColorWord(0x03E0);
    std::vector<uint32_t> expected;
    for (int32_t i = 0; i < 256; ++i) expected.push_back((i * 224 / 256) % 3 ? red : green);
    EXPECT_EQ(rowColours(), expected);
    vdp2->WriteRegisterWord(KTCTL, 0x0002);  // A's table off: every dot on A
    EXPECT_EQ(rowColours(), std::vector<uint32_t>(256, red));
}

TEST_F(Vdp2RotationTest, WhatADrawingPreparedServesTheNextOneUntilNamesCharactersOrColoursChange) {
    // RBG0 through an identity table: map A (page 16 in every plane) names character 0x80 everywhere, whose
    // dots are all colour 1.
    constexpr uint32_t kTable = 0x30000, kMap = 0x20000, kOne = 1023u << 6;
    for (uint32_t i = 0; i < 32; ++i) vdp2->WriteVramByte(0x1000 + i, 0x11), vdp2->WriteVramByte(0x1020 + i, 0x22);
    for (uint32_t i = 0; i < 64 * 64; ++i) vdp2->WriteVramWord(kMap + 2 * i, 0x80);
    for (uint32_t offset : {0x10u, 0x14u, 0x1Cu, 0x2Cu}) vdp2->WriteVramLong(kTable + offset, kOne);
    vdp2->WriteVramLong(kTable + 0x4C, 0xFFFF), vdp2->WriteVramLong(kTable + 0x50, 0xFFFF);
    for (uint32_t i = 1; i < 4; ++i) vdp2->WriteCramWord(2 * i, static_cast<uint16_t>(0x001F << (5 * (i - 1))));
    for (auto [reg, value] : {std::pair<uint32_t, uint16_t>{TVMD, TVMD_DISP}, {BGON, 0x0010}, {PRIR, 1},
                              {PNCR, 0x8000}, {RPTAU, 1}, {RPTAL, 0x8000}})
        vdp2->WriteRegisterWord(reg, value);
    for (uint32_t k = 0; k < 8; ++k) vdp2->WriteRegisterWord(MPABRA + 2 * k, 16 << 8 | 16);
    const auto& rbg0 = static_cast<const CRotationBackground&>(*vdp2->Background(kRbg0));
    const auto shown = [&] {  // the picture's one colour, or 0 when it is not of one colour
        vdp2->OnVblankOut();
        vdp2->DrawBackgrounds(1);
        const std::vector<uint32_t>& p = rbg0.Picture();
        return std::all_of(p.begin(), p.begin() + 256 * 256, [&](uint32_t c) { return c == p[0]; }) ? p[0] : 0u;
    };
    const auto colour = [](uint16_t rgb555) { return Rgb555ToColorWord(rgb555); };
    struct Step {
        const char* what;
        std::function<void()> change;
        uint32_t expected;
    };
    const Step steps[] = {
        {"first drawing", [] {}, colour(0x001F)},
        {"nothing changed", [] {}, colour(0x001F)},
        {"a write elsewhere in VRAM", [&] { vdp2->WriteVramWord(0x60000, 0x1234); }, colour(0x001F)},
        {"every name rewritten", [&] { for (uint32_t i = 0; i < 64 * 64; ++i) vdp2->WriteVramWord(kMap + 2 * i, 0x81); },
         colour(0x03E0)},
        {"the character's data rewritten",
         [&] { for (uint32_t i = 0; i < 32; ++i) vdp2->WriteVramByte(0x1020 + i, 0x33); }, colour(0x7C00)},
        {"nothing changed after the new data", [] {}, colour(0x7C00)},
        {"a colour of a palette it does not read changed", [&] { vdp2->WriteCramWord(0x40, 0x7FFF); }, colour(0x7C00)},
        {"its colour changed", [&] { vdp2->WriteCramWord(6, 0x7FFF); }, colour(0x7FFF)},
        {"the colour RAM offset moved to black", [&] { vdp2->WriteRegisterWord(CRAOFB, 0x0001); }, colour(0x0000)},
    };
    for (const Step& step : steps) {
        step.change();
        EXPECT_EQ(shown(), step.expected) << step.what;
    }
}


// The picture sampled eight dots at a time is the one sampled dot by dot: every parameter mode, one- and two-cell
// characters with flips and palettes, turned and zoomed, zoomed so far out that neighbouring dots' characters
// share slots, and a table whose values no 32-bit integer holds.
TEST_F(Vdp2RotationTest, EightDotsAtATimeGiveWhatOneAtATimeGives) {
    constexpr uint32_t kTables = 0x30000, kCoefficients = 0x40000, kMap = 0x20000;
    const bool vector = AllowRowVectorSampling(true);
    if (!vector) {
        GTEST_SKIP() << "this processor has no AVX2: only one dot at a time";
    }
    for (uint32_t i = 0; i < 1024; ++i) vdp2->WriteCramWord(i * 2, static_cast<uint16_t>(i * 37));
    for (uint32_t i = 0x1000; i < 0x14000; ++i) vdp2->WriteVramByte(i, static_cast<uint8_t>(i * 13 + i / 64));
    for (uint32_t i = 0; i < 64 * 64; ++i)
        vdp2->WriteVramWord(kMap + i * 2, static_cast<uint16_t>((i % 7) << 12 | (i * 7 % 4) << 10 | (0x80 + i % 512)));
    for (uint32_t y = 0; y < 256; ++y)
        vdp2->WriteVramWord(kCoefficients + 2 * y, y % 5 == 0 ? 0x8000 : static_cast<uint16_t>(0x200 + 37 * y % 0x300));
    const auto fixed = [](double v, int bits) {
        const int32_t n = static_cast<int32_t>(std::lround(v * 1023.0));
        const uint32_t mask = (1u << bits) - 1;
        return ((n >= 0 ? static_cast<uint32_t>(n) : (static_cast<uint32_t>(n - 1) & mask)) & mask) << 6;
    };
    for (auto [reg, value] : {std::pair<uint32_t, uint16_t>{TVMD, TVMD_DISP}, {BGON, 0x0010}, {PRIR, 1}, {PNCR, 0x8000},
                              {RPTAU, 1}, {RPTAL, 0x8000}, {KTAOF, 0x0202}, {WCTLD, 0x0002}, {WPSX0, 80},
                              {WPSX0 + 2, 56}, {WPSX0 + 4, 239}, {WPSX0 + 6, 167}})
        vdp2->WriteRegisterWord(reg, value);
    for (uint32_t k = 0; k < 16; ++k) vdp2->WriteRegisterWord(MPABRA + 2 * k, 16 << 8 | 16);
    const auto& rbg0 = static_cast<const CRotationBackground&>(*vdp2->Background(kRbg0));
    struct Case {
        uint16_t mode, coefficients, twoByTwo;
        double angle, zoom;
    };
    const Case cases[] = {
        {0, 0, 0, 0.5236, 1.5}, {1, 0x0003, 1, -1.2, 0.7},  {2, 0x0003, 0, 0.3, 1.0},  {2, 0x0007, 1, 2.0, 1.3},
        {3, 0x0003, 0, 0.9, 1.1}, {0, 0, 0, 0.2, 40.0},     {2, 0x0003, 1, 1.0, 900.0}, {0, 0x000B, 0, 0.1, 0.05},
    };
    for (const Case& c : cases) {
        for (uint32_t t = 0; t < 2; ++t) {
            const uint32_t table = kTables + t * 0x80;
            const auto put = [&](uint32_t offset, uint32_t v) { vdp2->WriteVramLong(table + offset, v); };
            const double angle = c.angle + t * 0.4, zoom = c.zoom * (t ? 0.8 : 1.0);
            put(0x10, fixed(1.0, 13)), put(0x14, fixed(1.0, 13));
            put(0x1C, fixed(zoom * std::cos(angle), 14)), put(0x20, fixed(-zoom * std::sin(angle), 14));
            put(0x28, fixed(zoom * std::sin(angle), 14)), put(0x2C, fixed(zoom * std::cos(angle), 14));
            put(0x44, fixed(t ? 100.0 : -37.5, 24)), put(0x48, fixed(t ? -3.0 : 250.0, 24));
            put(0x4C, 0xFFFF), put(0x50, 0xFFFF);
            put(0x58, fixed(1.0, 20)), put(0x5C, fixed(0.25, 20));
        }
        vdp2->WriteRegisterWord(RPMD, c.mode);
        vdp2->WriteRegisterWord(KTCTL, static_cast<uint16_t>(c.coefficients | c.coefficients << 8));
        vdp2->WriteRegisterWord(CHCTLB, static_cast<uint16_t>(c.twoByTwo << 8));
        std::vector<uint32_t> pictures[2];
        for (bool eight : {true, false}) {
            AllowRowVectorSampling(eight);
            vdp2->OnVblankOut();
            vdp2->DrawBackgrounds(1);
            pictures[eight].assign(rbg0.Picture().begin(), rbg0.Picture().begin() + 256 * 256);
        }
        AllowRowVectorSampling(true);
        const long shown = std::count_if(pictures[0].begin(), pictures[0].end(), [](uint32_t d) { return d != 0; });
        EXPECT_TRUE(pictures[0] == pictures[1]) << "mode " << c.mode << ", zoom " << c.zoom << ", " << shown << " dots shown";
        if (c.zoom < 100.0) {
            EXPECT_GT(shown, 1000) << "mode " << c.mode << ", zoom " << c.zoom;
        }
    }
}

}  // namespace
}  // namespace vdpgl
