// CRotationBackground: registers, the picture computed dot by dot, and the
// viewer's view.
#include "vdp2/background/rotation_background.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "common/frame_profile.h"
#include "render/opengl/opengl.h"
#include "vdp2/background/plane_addresses.h"
#include "vdp2/background/rotation_parameters.h"
#include "vdp2/background/rotation_window.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"

namespace vdpgl {

using namespace vdp2reg;

namespace {

constexpr const char* kRotationParameterModeNames[4] = {
    "parameter A", "parameter B", "parameter A and B switched via coefficient data",
    "parameter A and B switched via rotation parameter window"};
constexpr const char* kPlaneNames[16] = {"plane A", "plane B", "plane C", "plane D", "plane E", "plane F",
                                         "plane G", "plane H", "plane I", "plane J", "plane K", "plane L",
                                         "plane M", "plane N", "plane O", "plane P"};

// How a row's dots choose their parameter and coefficient.
enum class Way { kSingle, kSingleWithCoefficients, kByCoefficient, kWindow };

// The dots of a character nothing could be prepared for: transparent.
constexpr uint32_t kNoDotsArray[256] = {};
constexpr const uint32_t* kNoDots = kNoDotsArray;

}  // namespace

// One parameter's set, coefficient use and the constants of the frame and
// of the current row.
struct CRotationBackground::Parameter {
    RotationParameterSet set{};
    CoefficientControl control{0, 0};
    float dX = 0, dY = 0, xp = 0, yp = 0;  // per frame
    float xsp = 0, ysp = 0;                // per row
    int32_t lineOffset = 0;                // per row: coefficient bytes into the table
    uint32_t lastAddress = ~0u;            // the coefficient last read, and what it said
    bool lastOpaque = false;
    float lastValue = 0.0f;
    int32_t width = 512, height = 512;
    int32_t widthShift = 9, heightShift = 9;
    const uint32_t* planes = nullptr;

    void StartRow(int32_t y) {
        const RotationParameterSet& s = set;
        const float u = static_cast<float>(y) * s.deltaXst + s.xst - static_cast<float>(s.px);
        const float v = static_cast<float>(y) * s.deltaYst + s.yst - static_cast<float>(s.py);
        const float w = s.zst - static_cast<float>(s.pz);
        xsp = s.a * u + s.b * v + s.c * w;
        ysp = s.d * u + s.e * v + s.f * w;
        lineOffset = TruncateCoordinate(static_cast<float>(control.bytes) * static_cast<float>(y) * s.deltaKast);
    }
    // How far along the coefficient table dot x reads.
    int32_t Along(int32_t x) const {
        return TruncateCoordinate(static_cast<float>(control.bytes) * static_cast<float>(x) * set.deltaKax);
    }
    // The coefficient `along` bytes into the table, with the row's line
    // offset given. Dots that share a coefficient (a table of one a line)
    // convert it once.
    bool Coefficient(const CConsoleVram& vram, int32_t along, int32_t offset, float& value) {
        const uint32_t align = control.bytes == 2 ? 0x7FFFE : 0x7FFFC;
        const uint32_t address = (set.coefficientAddress + static_cast<uint32_t>(along + offset)) & align;
        if (address != lastAddress) {
            lastAddress = address;
            lastOpaque = ReadCoefficient(vram, address, control.bytes, lastValue);
        }
        value = lastValue;
        return lastOpaque;
    }
    void Apply(float value, float& kx, float& ky) const {
        if (!control.constantKx) kx = value;
        if (!control.constantKy) ky = value;
    }
};

CRotationBackground::CRotationBackground(uint32_t number)
    : CBackground(number),
      picture(static_cast<size_t>(kPictureSize) * kPictureSize),
      prepared(new PreparedCharacter[kPreparedSlots]) {}

void CRotationBackground::UpdateFromRegisters() {
    CBackground::UpdateFromRegisters();
    mapOffsets[0] = Field(MPOFR, 0, 2);
    mapOffsets[1] = Field(MPOFR, 4, 6);
    // RBG1 reads none of the rotation registers: parameter A, a table at 0
    // and every plane at 0.
    uint32_t maps[2][kPlanes] = {};
    if (bgNumber == kRbg0) {
        rotationParameterMode = Field(RPMD, 0, 1);
        planeSizes[0] = Field(PLSZ, 8, 9);
        planeSizes[1] = Field(PLSZ, 12, 13);
        for (uint32_t p = 0; p < 2; ++p) {
            const uint32_t first = p ? MPABRB : MPABRA;
            for (uint32_t k = 0; k < kPlanes / 2; ++k) {
                maps[p][2 * k] = Field(first + 2 * k, 0, 5);
                maps[p][2 * k + 1] = Field(first + 2 * k, 8, 13);
            }
        }
        parameterTableAddresses[0] =
            (Field(RPTAU, 0, 2) << 17) | (vdp2->Register(RPTAL) & 0xFFC0u) << 1 | (vdp2->Register(RPTAL) & 0x3Eu);
        parameterTableAddresses[1] = parameterTableAddresses[0] + 0x80;
    } else {
        rotationParameterMode = 0;
        planeSizes[0] = planeSizes[1] = 0;
        parameterTableAddresses[0] = parameterTableAddresses[1] = 0;
    }
    if (bitmapEnabled) return;
    for (uint32_t p = 0; p < 2; ++p) {
        if (planeSizes[p] == 2) planeSizes[p] = 3;
        planeWidths[p] = planeSizes[p] == 0 ? 512 : 1024;
        planeHeights[p] = planeSizes[p] == 3 ? 1024 : 512;
        ComputePlaneAddresses(maps[p], static_cast<int>(kPlanes),
                              {characterSize, patternNameDataSize, planeSizes[p], mapOffsets[p]});
        for (uint32_t i = 0; i < kPlanes; ++i) planeAddresses[p][i] = maps[p][i];
    }
}

void CRotationBackground::GetSize(uint32_t& width, uint32_t& height) const {
    width = bitmapEnabled ? 0 : planeWidths[0];
    height = bitmapEnabled ? 0 : planeHeights[0];
}

void CRotationBackground::RenderPlane(uint32_t plane, uint32_t* pixels) {
    if (plane >= kPlanes || !pixels || bitmapEnabled) return;
    RenderPlaneAt(planeAddresses[0][plane], planeSizes[0], planeWidths[0], pixels);
}

void CRotationBackground::Draw() {
    // The colour offset and alpha do not apply: only transparent dots let
    // lower layers through. There is no bitmap mode here.
    if (!IsShown() || bitmapEnabled) return;
    DrawRotationCellMode();
}

void CRotationBackground::DrawRotationCellMode() {
    trace.Log("DrawCellMode()\n");
    trace.Log("WCTLA: 0x%X\n", vdp2->Register(WCTLA));
    trace.Log("WCTLB: 0x%X\n", vdp2->Register(WCTLB));
    trace.Log("WCTLC: 0x%X\n", vdp2->Register(WCTLC));
    trace.Log("WCTLD: 0x%X\n", vdp2->Register(WCTLD));
    trace.Log("SPCTL: 0x%X\n", vdp2->Register(SPCTL));
    switch (rotationParameterMode) {
    case 0:
    case 1: DrawCellModeSingleParameter(); break;
    case 2: DrawCellModeParameterSCD(); break;
    case 3: DrawCellModeParameterSRP(); break;
    default: break;
    }
}

void CRotationBackground::DrawCellModeSingleParameter() {
    trace.Log("DrawCellModeSingleParameter()\n");
    DrawPicture(rotationParameterMode, nullptr);
}

void CRotationBackground::DrawCellModeParameterSCD() {
    trace.Log("DrawCellModeParameterSCD()\n");
    DrawPicture(2, nullptr);
}

void CRotationBackground::DrawCellModeParameterSRP() {
    trace.Log("DrawCellModeParameterSRP()\n");
    RotationParameterWindow window;
    if (!window.Choose(*vdp2, trace)) {
        // No window: parameter A alone, until the registers are read again.
        rotationParameterMode = 0;
        DrawCellModeSingleParameter();
        return;
    }
    DrawPicture(3, &window);
}

void CRotationBackground::PrepareParameter(uint32_t p, Parameter& out) const {
    ReadRotationParameterTable(vdp2->vram, parameterTableAddresses[p], p, vdp2->Register(KTCTL),
                               vdp2->Register(KTAOF), out.set);
    out.control = CoefficientControl(vdp2->Register(KTCTL), p);
    const RotationParameterSet& s = out.set;
    out.dX = s.a * s.deltaX + s.b * s.deltaY;
    out.dY = s.d * s.deltaX + s.e * s.deltaY;
    const float px = static_cast<float>(s.px - s.cx), py = static_cast<float>(s.py - s.cy),
                pz = static_cast<float>(s.pz - s.cz);
    out.xp = s.a * px + s.b * py + s.c * pz + static_cast<float>(s.cx) + s.mx;
    out.yp = s.d * px + s.e * py + s.f * pz + static_cast<float>(s.cy) + s.my;
    out.width = static_cast<int32_t>(planeWidths[p]);
    out.height = static_cast<int32_t>(planeHeights[p]);
    out.widthShift = out.width == 1024 ? 10 : 9;
    out.heightShift = out.height == 1024 ? 10 : 9;
    out.planes = planeAddresses[p];
}

void CRotationBackground::DrawPicture(uint32_t mode, const RotationParameterWindow* window) {
    CPhaseScope sampling(kPhaseRotation);  // and the picture's upload
    const CVdp2& v = *vdp2;
    const CConsoleVram& vram = v.vram;
    Parameter parameters[2];
    const bool both = mode >= 2;
    const uint32_t single = both ? 0 : mode;
    PrepareParameter(single, parameters[single]);
    if (both) PrepareParameter(1, parameters[1]);

    // The grid: 256 x 256 samples stretched over the screen, or one sample
    // per screen dot.
    const bool perDot = v.rotationScreenSampling;
    const int32_t columns = perDot ? v.screenHRes : kPictureSize, rows = perDot ? v.screenVRes : kPictureSize;
    if (picture.size() < static_cast<size_t>(columns) * static_cast<size_t>(rows))
        picture.resize(static_cast<size_t>(columns) * static_cast<size_t>(rows));
    pictureWidth = columns;
    pictureHeight = rows;
    const int32_t lineRatio = (v.verticalDoubled || v.interlaced) ? 2 : 1;
    const int32_t c = static_cast<int32_t>(CharacterDots());
    float kx = parameters[single].set.kx, ky = parameters[single].set.ky;
    const int32_t charShift = c == 16 ? 4 : 3;
    // What depends on the column alone, worked out once a drawing: the dot,
    // its share of each parameter's transformation and how far along each
    // coefficient table it reads.
    const size_t n = static_cast<size_t>(columns);
    columnTable.resize(n);
    for (uint32_t q = 0; q < 2; ++q) columnDX[q].resize(n), columnDY[q].resize(n);
    rowParameter.resize(n);
    rowKx.resize(n);
    rowKy.resize(n);
    for (size_t j = 0; j < n; ++j) {
        Column& col = columnTable[j];
        col.screenX = perDot ? static_cast<int32_t>(j) : static_cast<int32_t>(j) * v.screenHRes / kPictureSize;
        col.x = col.screenX / lineRatio;
        const float fx = static_cast<float>(col.x);
        for (uint32_t q = 0; q < 2; ++q) {
            const Parameter& p = parameters[q];
            columnDX[q][j] = fx * p.dX;
            columnDY[q][j] = fx * p.dY;
            col.along[q] = p.control.enabled ? p.Along(col.x) : 0;
        }
        col.sameCoefficients = j > 0 && col.along[0] == columnTable[j - 1].along[0] &&
                               col.along[1] == columnTable[j - 1].along[1];
    }
    // What the last drawing prepared stays unless VRAM or colours it was
    // made from, or the way it was read, changed since.
    if (const PreparedFor now = PreparedNow(both ? 2 : 1);
        !(now == preparedFor) || v.PalettesChangedSince(preparedPalettes, palettesSeenAt)) {
        for (uint32_t s = 0; s < kPreparedSlots; ++s) prepared[s].key = ~0u;
        preparedFor = now;
        preparedPalettes.Clear();
    }
    palettesSeenAt = v.frameCounter;

    RotationRow in;
    in.columns = columns;
    in.parameter = rowParameter.data();
    in.kx = rowKx.data();
    in.ky = rowKy.data();
    for (uint32_t q = 0; q < 2; ++q) in.dX[q] = columnDX[q].data(), in.dY[q] = columnDY[q].data();
    in.charShift = charShift;
    in.slots = prepared.get();
    const int32_t dotMask = c - 1;
    // Column j's dot, one by one. Dots in one character share its slot: the
    // name is read and the character prepared when the slot holds another.
    // Every dot looks at its slot, which costs less than guessing wrong
    // whether the character changed.
    const auto sample = [&](int32_t j) -> uint32_t {
        const int32_t chosen = rowParameter[static_cast<size_t>(j)];
        if (chosen < 0) return 0;
        const uint32_t q = static_cast<uint32_t>(chosen);
        const int32_t mapX = in.MapX(j, q), mapY = in.MapY(j, q);
        const uint32_t column = static_cast<uint32_t>(mapX >> charShift), row = static_cast<uint32_t>(mapY >> charShift);
        const uint32_t key = KeyOf(column, row, q), s = SlotOf(column, row, q);
        const PreparedCharacter& character = prepared[s];
        if (character.key != key) [[unlikely]] {
            const Parameter& p = parameters[q];
            const uint32_t plane = static_cast<uint32_t>(4 * (mapY >> p.heightShift) + (mapX >> p.widthShift));
            const int32_t xInPlane = mapX & (p.width - 1), yInPlane = mapY & (p.height - 1);
            const uint32_t index = PatternIndex(static_cast<uint32_t>(xInPlane >> charShift),
                                                static_cast<uint32_t>(yInPlane >> charShift));
            Prepare(s, key, p.planes[plane], index);
        }
        return character.dots[((mapY & dotMask) ^ int32_t{character.flipY}) << charShift |
                              ((mapX & dotMask) ^ int32_t{character.flipX})];
    };
    // Each column's parameter and coefficients for one row, by the way the
    // parameter and coefficient are chosen.
    const auto chooseRow = [&](auto way, int32_t screenY) {
        constexpr Way kWay = decltype(way)::value;
        // What the last coefficient read said: the parameter, and whether
        // its dots are transparent.
        uint32_t chosen = single;
        bool transparent = false;
        // Held here: the stores below could otherwise be the vectors' own.
        const Column* const columnsOf = columnTable.data();
        int32_t* const parameterOf = rowParameter.data();
        float* const kxOf = rowKx.data();
        float* const kyOf = rowKy.data();
        for (size_t j = 0; j < n; ++j) {
            const Column& col = columnsOf[j];
            float value = 0.0f;
            if constexpr (kWay == Way::kSingle) {
                parameterOf[j] = static_cast<int32_t>(single);
                kxOf[j] = kx, kyOf[j] = ky;
                continue;
            } else if constexpr (kWay == Way::kSingleWithCoefficients) {
                // kx and ky keep a coefficient's value for the dots after it;
                // a column that reads the coefficient of the column before
                // takes what it said.
                if (!col.sameCoefficients) {  // so for the first column too
                    Parameter& p = parameters[single];
                    transparent = !p.Coefficient(vram, col.along[single], p.lineOffset, value);
                    if (!transparent) p.Apply(value, kx, ky);
                }
            } else if constexpr (kWay == Way::kByCoefficient) {
                // Parameter A unless A's coefficient says B; B's coefficient
                // is read with A's line offset.
                if (!col.sameCoefficients) {  // so for the first column too
                    Parameter &a = parameters[0], &b = parameters[1];
                    kx = a.set.kx, ky = a.set.ky;
                    chosen = 0;
                    transparent = false;
                    if (a.control.enabled) {
                        if (a.Coefficient(vram, col.along[0], a.lineOffset, value)) {
                            a.Apply(value, kx, ky);
                        } else {
                            chosen = 1;
                            kx = b.set.kx, ky = b.set.ky;
                        }
                    }
                    if (chosen == 1 && b.control.enabled) {
                        if (b.Coefficient(vram, col.along[1], a.lineOffset, value))
                            b.Apply(value, kx, ky);
                        else
                            transparent = true;
                    }
                }
            } else {
                // The window tests the screen position before the line ratio.
                chosen = window->Inside(vram, col.screenX, screenY) ? 0 : 1;
                Parameter& p = parameters[chosen];
                kx = p.set.kx, ky = p.set.ky;
                transparent = p.control.enabled && !p.Coefficient(vram, col.along[chosen], p.lineOffset, value);
                if (p.control.enabled && !transparent) p.Apply(value, kx, ky);
            }
            parameterOf[j] = transparent ? -1 : static_cast<int32_t>(chosen);
            kxOf[j] = kx, kyOf[j] = ky;
        }
    };
    const Way way = mode == 3                               ? Way::kWindow
                    : mode == 2                             ? Way::kByCoefficient
                    : parameters[single].control.enabled ? Way::kSingleWithCoefficients
                                                            : Way::kSingle;
    const auto place = [](const Parameter& p) {
        return RowPlacement{p.xsp, p.ysp, p.xp, p.yp, 4 * p.width - 1, 4 * p.height - 1};
    };

    int32_t previousY = -1, previousScreenY = -1;
    for (int32_t i = 0; i < rows; ++i) {
        const int32_t screenY = perDot ? i : i * v.screenVRes / kPictureSize, y = screenY / lineRatio;
        uint32_t* row = picture.data() + static_cast<size_t>(rows - 1 - i) * n;
        // A row on the line of the row before (the grid has more rows than
        // the screen has lines) is that row again, and leaves kx and ky as
        // it did; the window tests the screen line.
        if (y == previousY && (mode != 3 || screenY == previousScreenY)) {
            std::copy(row + columns, row + 2 * columns, row);
            continue;
        }
        previousY = y;
        previousScreenY = screenY;
        parameters[single].StartRow(y);
        if (both) parameters[1].StartRow(y);
        switch (way) {
        case Way::kSingle: chooseRow(std::integral_constant<Way, Way::kSingle>{}, screenY); break;
        case Way::kSingleWithCoefficients:
            chooseRow(std::integral_constant<Way, Way::kSingleWithCoefficients>{}, screenY);
            break;
        case Way::kByCoefficient: chooseRow(std::integral_constant<Way, Way::kByCoefficient>{}, screenY); break;
        case Way::kWindow: chooseRow(std::integral_constant<Way, Way::kWindow>{}, screenY); break;
        }
        in.place[0] = place(parameters[0]);
        in.place[1] = place(parameters[1]);
        // Eight at a time where the processor can; a slot to prepare, and the
        // last columns, one by one.
        int32_t j = SampleRowVector(in, row, 0);
        while (j < columns) {
            const int32_t stop = RowVectorSampling() ? std::min(j + 8, columns) : columns;
            for (; j < stop; ++j) row[j] = sample(j);
            j = SampleRowVector(in, row, j);
        }
    }
    renderer->DrawRotationBackground(static_cast<int>(bgNumber), picture.data(), columns, rows,
                                     filtered.load(std::memory_order_relaxed));
}

CRotationBackground::PreparedFor CRotationBackground::PreparedNow(uint32_t parameterCount) const {
    PreparedFor now;
    const CVdp2& v = *vdp2;
    now.content = v.contentGeneration;
    now.parameters = parameterCount;
    // The VRAM blocks every plane's names lie in, each counted once.
    const uint32_t c = CharacterDots(), nameBytes = patternNameDataSize ? 2 : 4;
    uint64_t blocks = 0;
    for (uint32_t p = 0; p < parameterCount; ++p) {
        now.planeWidths[p] = planeWidths[p];
        now.planeHeights[p] = planeHeights[p];
        const uint32_t planeBytes = (planeWidths[p] / c) * (planeHeights[p] / c) * nameBytes;
        for (uint32_t i = 0; i < kPlanes; ++i) {
            now.planes[p][i] = planeAddresses[p][i];
            for (uint32_t a = planeAddresses[p][i]; a < planeAddresses[p][i] + planeBytes; a += 1u << CVdp2::kVramBlockShift)
                blocks |= uint64_t{1} << ((a & CConsoleVram::kMask) >> CVdp2::kVramBlockShift);
            blocks |= uint64_t{1} << (((planeAddresses[p][i] + planeBytes - 1) & CConsoleVram::kMask) >>
                                      CVdp2::kVramBlockShift);
        }
    }
    for (uint32_t b = 0; b < 64; ++b)
        if (blocks >> b & 1) now.mapWrites += v.vramBlockWrites[b];
    now.reading = ReadingOfNames();
    return now;
}

void CRotationBackground::Prepare(uint32_t slot, uint32_t key, uint32_t mapAddress, uint32_t index) {
    PreparedCharacter& p = prepared[slot];
    p.key = key;
    CPatternName request;
    request.PrepareCell(*this, mapAddress, index);
    uint32_t* room = nullptr;
    if (request.characterSize) {
        if (!preparedDots) preparedDots.reset(new uint32_t[static_cast<size_t>(kPreparedSlots) * kDotsPerSlot]);
        room = preparedDots.get() + static_cast<size_t>(slot) * kDotsPerSlot;
    }
    const uint32_t* dots = request.Unflipped(room);
    p.dots = dots ? dots : kNoDots;
    if (dots) preparedPalettes |= request.PaletteBlocksRead(vdp2->cramMode);
    p.flipX = static_cast<uint16_t>(request.FlipXMask());
    p.flipY = static_cast<uint16_t>(request.FlipYMask());
}

void CRotationBackground::GetInformation(std::string& text) const {
    if (bitmapEnabled) {
        text += "bitmap mode\n";
    } else {
        const int dots = static_cast<int>(CharacterDots());
        text += "cell mode\n";
        AppendFormat(text, "character size: %d*%d pixels\n", dots, dots);
        AppendFormat(text, "rotation parameter mode: %s\n", kRotationParameterModeNames[rotationParameterMode & 3]);
        AppendFormat(text, "table address: 0x%X\n", parameterTableAddresses[0]);
        const uint32_t parameters = rotationParameterMode >= 2 ? 2 : 1;
        for (uint32_t p = 0; p < parameters; ++p) {
            AppendFormat(text, "plane size parameter %c: %d*%d pixels\n", p ? 'B' : 'A',
                         static_cast<int>(planeWidths[p]), static_cast<int>(planeHeights[p]));
            for (uint32_t k = 0; k < kPlanes / 2; ++k)
                AppendFormat(text, "%s: 0x%X, %s: 0x%X\n", kPlaneNames[2 * k], planeAddresses[p][2 * k],
                             kPlaneNames[2 * k + 1], planeAddresses[p][2 * k + 1]);
        }
    }
    AppendCommonInformation(text);
}

}  // namespace vdpgl
