// 4,000 VDP1 parts a frame. The stable half draws a few dozen patterns of
// every colour mode and many sizes, uploaded once; the changing half draws
// 128 small patterns whose dots are rewritten every frame, through lookup
// tables and colour banks that change too, so their textures are new each
// frame. Every part moves every frame and some drift off screen.
#include <array>
#include <cmath>

#include "scene_builder.h"
#include "scene_math.h"
#include "stress_scenes.h"

namespace vdpgl::scenes::stress {

namespace {

constexpr int kParts = 4000;
constexpr int kStablePatterns = 36, kChangingPatterns = 128, kChangingLookups = 16;
constexpr uint32_t kPatternStart = 0x20000;
// The colour banks whose colours change every frame: the last four of 16.
constexpr uint32_t kChangingBanks = 448;

// Kinds of part, by share of the list: mostly sprites at their size, the
// rest scaled, distorted, polygons and lines.
enum Kind { kNormal, kScaled, kDistorted, kPolygon, kLine };
Kind KindOf(int i) {
    static constexpr Kind kMix[20] = {kNormal, kNormal, kNormal, kNormal,   kNormal,  kNormal,  kNormal,
                                      kNormal, kNormal, kNormal, kNormal,   kNormal,  kNormal,  kNormal,
                                      kNormal, kScaled, kScaled, kDistorted, kPolygon, kLine};
    return kMix[i % 20];
}

struct Size {
    int w, h;
};
constexpr Size kStableSizes[] = {{8, 8},   {16, 16}, {24, 16}, {32, 32}, {64, 64}, {16, 8},
                                 {40, 24}, {48, 48}, {8, 32},  {32, 16}, {56, 40}, {24, 24}};
constexpr ColorMode kModes[] = {ColorMode::Bank16,  ColorMode::Lookup16, ColorMode::Bank64,
                                ColorMode::Bank128, ColorMode::Bank256,  ColorMode::Rgb};

int LargestCode(ColorMode mode) {
    switch (mode) {
    case ColorMode::Bank64: return 63;
    case ColorMode::Bank128: return 127;
    case ColorMode::Bank256: return 255;
    default: return 15;
    }
}

// Rings round the centre with a shifting phase and a clear corner notch,
// in the codes the colour mode takes.
PixelCodes Picture(Size size, ColorMode mode, int seed, int phase) {
    PixelCodes p(size.w, size.h);
    const int top = LargestCode(mode);
    for (int y = 0; y < size.h; ++y)
        for (int x = 0; x < size.w; ++x) {
            const int dx = 2 * x - size.w, dy = 2 * y - size.h;
            const int ring = static_cast<int>(std::sqrt(static_cast<double>(dx * dx + dy * dy))) / 3;
            const int level = (ring + seed + phase + (x ^ y) / 4) % top;
            if (x < size.w / 4 && y < size.h / 4) continue;  // transparent notch
            if (mode == ColorMode::Rgb)
                p.At(x, y) = ToRgb555(Scale(Hue(static_cast<float>(level) / 15.0f + 0.07f * seed), 0.6f + 0.4f * (level % 3) / 2));
            else
                p.At(x, y) = static_cast<uint16_t>(1 + level);
        }
    return p;
}

std::array<uint16_t, 16> LookupColors(int seed, int phase) {
    std::array<uint16_t, 16> c{};
    for (int i = 1; i < 16; ++i)
        c[static_cast<size_t>(i)] = ToRgb555(Hue(static_cast<float>(seed) / 16.0f + static_cast<float>(i + phase) / 40.0f));
    return c;
}

uint16_t ColorBankOf(ColorMode mode, int k) {
    switch (mode) {
    case ColorMode::Bank16: return static_cast<uint16_t>((k % 28) * 16);  // not the changing banks
    case ColorMode::Bank64: return static_cast<uint16_t>((k % 7) * 64);
    case ColorMode::Bank128: return static_cast<uint16_t>((k % 3) * 128);
    case ColorMode::Bank256: return 0;
    default: return 0;
    }
}

void WriteSpriteColors(CSceneBuilder& scene, uint32_t first, uint32_t count, int phase) {
    for (uint32_t i = first; i < first + count; ++i)
        scene.CramWord(i, ToCramColor(Scale(Hue(static_cast<float>(i % 97) / 97.0f + phase / 60.0f),
                                            0.45f + 0.55f * static_cast<float>(i % 5) / 4.0f)));
}

Size ChangingSize(int k) { return k % 3 == 0 ? Size{16, 16} : k % 3 == 1 ? Size{16, 8} : Size{8, 8}; }
ColorMode ChangingMode(int k) { return k % 4 == 3 ? ColorMode::Bank64 : k % 2 ? ColorMode::Lookup16 : ColorMode::Bank16; }

// Rewrites the changing patterns' dots in place, and their lookup tables and banks.
void WriteChanging(CSceneBuilder& scene, const SpriteLoad& load, int frame) {
    for (int k = 0; k < kChangingPatterns; ++k) {
        const Vdp1Sprite& s = load.changing[static_cast<size_t>(k)];
        CVdp1PatternArea(scene, uint32_t{s.srca} * 8u).Upload(Picture(ChangingSize(k), ChangingMode(k), k, frame), ChangingMode(k), s.colr);
    }
    for (int k = 0; k < kChangingLookups; ++k) {
        const auto colors = LookupColors(k, frame);
        for (uint32_t i = 0; i < 16; ++i) scene.Vdp1Word(uint32_t{load.changingLookups[static_cast<size_t>(k)]} * 8 + 2 * i, colors[i]);
    }
    WriteSpriteColors(scene, kChangingBanks, 64, frame);
}

Point At(double x, double y) { return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))}; }

// Positions wrap round a field larger than the screen, so parts leave and come back.
double Wrap(double v, double low, double span) { return low + std::fmod(std::fmod(v - low, span) + span, span); }

}  // namespace

SpriteLoad SetUpSprites(CSceneBuilder& scene, CSharedRegisters&) {
    SpriteLoad load;
    WriteSpriteColors(scene, 0, 512, 0);
    CVdp1PatternArea area(scene, kPatternStart);
    for (int k = 0; k < kStablePatterns; ++k) {
        const ColorMode mode = kModes[k % 6];
        const Size size = kStableSizes[k % 12];
        const uint16_t colr = mode == ColorMode::Lookup16 ? area.Lookup(LookupColors(k, 0)) : ColorBankOf(mode, k);
        load.stable.push_back(area.Upload(Picture(size, mode, k, 0), mode, colr));
    }
    for (int k = 0; k < kChangingLookups; ++k) load.changingLookups.push_back(area.Lookup(LookupColors(k, 0)));
    for (int k = 0; k < kChangingPatterns; ++k) {
        const ColorMode mode = ChangingMode(k);
        const uint16_t colr = mode == ColorMode::Lookup16 ? load.changingLookups[static_cast<size_t>(k % kChangingLookups)]
                              : mode == ColorMode::Bank64 ? static_cast<uint16_t>(64 * (k % 7))
                                                          : static_cast<uint16_t>(kChangingBanks + 16 * (k % 4));
        load.changing.push_back(area.Upload(Picture(ChangingSize(k), mode, k, 0), mode, colr));
    }
    for (int k = 0; k < 8; ++k) {
        load.gouraud.push_back(area.ReserveGouraud());
        WriteGouraudTable(scene, load.gouraud.back(),
                          {static_cast<uint16_t>(0x8000 | (31 - 3 * k)), static_cast<uint16_t>(0x8000 | (16 + k) << 5),
                           static_cast<uint16_t>(0x8000 | (8 + 2 * k) << 10), static_cast<uint16_t>(0x8000 | 16 << 5 | 16)});
    }

    CRandom random(7);
    for (int i = 0; i < kParts; ++i) {
        SpriteLoad::Part p;
        p.kind = KindOf(i);
        const bool stable = i % 2 == 0;
        p.pattern = random.Range(0, (stable ? kStablePatterns : kChangingPatterns) - 1);
        // Replace mostly; half transparency, shadow and gouraud shading on some.
        static constexpr uint16_t kCalculations[8] = {kReplace, kReplace, kReplace, kReplace,
                                                      kHalfTransparency, kHalfTransparency, kShadow, kGouraud};
        p.calculation = kCalculations[random.Next() % 8];
        p.x = random.Range(-96, 415);
        p.y = random.Range(-96, 319);
        // A whole dot or more a frame across; one part in eight drifts up or
        // down too. (Each coordinate that moves costs the trace a write.)
        p.vx = random.Range(1, 3) * (random.Next() % 2 ? 1 : -1);
        p.vy = i % 8 == 0 ? random.Range(-20, 20) / 10.0 : 0.0;
        p.spin = random.Range(-20, 20) / 400.0;
        load.parts.push_back(p);
    }
    return load;
}

void WriteSpritesFrame(CSceneBuilder& scene, const SpriteLoad& load, int frame) {
    WriteChanging(scene, load, frame);
    CVdp1CommandList list;
    list.LocalCoordinates({0, 0});
    for (size_t i = 0; i < load.parts.size(); ++i) {
        const SpriteLoad::Part& p = load.parts[i];
        const Vdp1Sprite& s = (i % 2 == 0 ? load.stable : load.changing)[static_cast<size_t>(p.pattern)];
        const double x = Wrap(p.x + p.vx * frame, -96, 512), y = Wrap(p.y + p.vy * frame, -96, 416);
        // Gouraud shading goes on RGB patterns and plain shapes only.
        const bool rgb = (s.pmod >> 3) == static_cast<uint16_t>(ColorMode::Rgb);
        const uint16_t calculation = p.calculation == kGouraud && !rgb && p.kind <= kDistorted ? kReplace
                                                                                              : static_cast<uint16_t>(p.calculation);
        const uint16_t color = ToRgb555(Hue(static_cast<float>(i % 61) / 61.0f));
        const double angle = p.spin * frame;
        Vdp1Command* c = nullptr;
        switch (p.kind) {
        case kNormal: c = &list.NormalSprite(s, At(x, y), calculation); break;
        case kScaled: {
            const double zoom = 1.0 + 0.6 * std::sin(frame / 20.0 + static_cast<double>(i));
            c = &list.ZoomedSprite(s, kZoomCentre, At(x, y), static_cast<int>(s.width * zoom), static_cast<int>(s.height * zoom),
                                   calculation);
            break;
        }
        case kDistorted: {
            Quad q = RotatedRectangle(x, y, s.width * 0.6, s.height * 0.6, angle);
            q[2].x += static_cast<int>(6 * std::sin(angle * 5));  // a little shear
            c = &list.DistortedSprite(s, q, calculation);
            break;
        }
        case kPolygon:
            c = i % 40 == 17 ? &list.Polyline(RotatedRectangle(x, y, 20, 12, 0.3 * static_cast<double>(i)), color, calculation)
                             : &list.Polygon(RotatedRectangle(x, y, 14, 9, 0.1 * static_cast<double>(i)), color, calculation);
            break;
        case kLine: c = &list.Line(At(x, y), At(x + 30 * std::cos(angle), y + 30 * std::sin(angle)), color, calculation); break;
        }
        if (calculation == kGouraud) c->grda = load.gouraud[i % load.gouraud.size()];
        if (i % 7 == 0 && p.kind <= kDistorted) c->ctrl |= (i % 14 == 0) ? kFlipH : kFlipV;
    }
    list.Write(scene);
}

void WriteStressSprites(CSceneBuilder& scene) {
    CSharedRegisters shared;
    const SpriteLoad load = SetUpSprites(scene, shared);
    StartScreen(scene, shared);
    for (int frame = 0; frame < kFrames; ++frame) {
        WriteSpritesFrame(scene, load, frame);
        scene.EndFrame();
    }
}

}  // namespace vdpgl::scenes::stress
