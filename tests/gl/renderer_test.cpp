// The renderer on a real headless context, checked on the pixels of the presented picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "../unit/temp_dir.h"
#include "render/opengl/gl_headers.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1_part.h"
#include "vdp1/vdp1_part_drawing.h"

namespace vdpgl {
namespace {

struct Rgba { int r, g, b, a; bool operator==(const Rgba&) const = default; };
std::ostream& operator<<(std::ostream& os, const Rgba& c) {
    return os << c.r << "," << c.g << "," << c.b << "," << c.a;
}
constexpr Rgba kClear{0, 0, 0, 0}, kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255}, kBlue{0, 0, 255, 255},
    kWhite{255, 255, 255, 255};

uint32_t Word(Rgba c) { return static_cast<uint32_t>(c.r | c.g << 8 | c.b << 16) | static_cast<uint32_t>(c.a) << 24; }
// A part with corners A, B, C, D on a rectangle, all of one colour.
CVdp1Part Box(int x1, int y1, int x2, int y2, Rgba colour) {
    CVdp1Part part;
    const int corners[4][2] = {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}};
    for (int i = 0; i < 4; ++i) {
        part.vertices[i] = {static_cast<int16_t>(corners[i][0]), static_cast<int16_t>(corners[i][1])};
        part.colors[i] = {colour.r / 255.0f, colour.g / 255.0f, colour.b / 255.0f};
    }
    return part;
}

class RendererTest : public testing::Test {
protected:
    void SetUp() override {
        gl.SetSaturnResolution(320, 224);
        gl.InitGl(nullptr);
        ASSERT_TRUE(gl.HasContext());
        gl.ApplyPendingChanges();
    }
    // Reads back the picture of the last swap at the rendering size.
    bool Capture() {
        width = gl.GetRenderingHRes(), height = gl.GetRenderingVRes();
        pixels.assign(static_cast<size_t>(width * height * 4), 0xAB);
        return gl.CaptureDisplay(pixels.data(), width, height);
    }
    void Present() {
        gl.SwapFrameBuffers();
        ASSERT_TRUE(Capture());
    }
    Rgba At(int x, int y) const {
        const uint8_t* p = &pixels[static_cast<size_t>((y * width + x) * 4)];
        return {p[0], p[1], p[2], p[3]};
    }
    // Pixels of [x0, x1) x [y0, y1) of this colour; Drawn: not transparent black.
    int Count(int x0, int y0, int x1, int y1, Rgba colour) const {
        int n = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) n += At(x, y) == colour;
        return n;
    }
    int Drawn(int x0, int y0, int x1, int y1) const { return (x1 - x0) * (y1 - y0) - Count(x0, y0, x1, y1, kClear); }

    // A new 512 x 512 plane texture whose texels [0, w) x [0, h) are one colour.
    void FillPlane(int bg, int plane, Rgba colour, int w = 64, int h = 64) {
        gl.CreatePlaneTexture(bg, plane, 512, 512);
        const std::vector<uint32_t> cell(64, Word(colour));
        for (int y = 0; y < h; y += 8)
            for (int x = 0; x < w; x += 8) gl.UpdatePlaneTextureCell(bg, plane, cell.data(), x, y);
    }
    // Texels [0, w) x [0, h) of a plane at (x, y), one texel a console pixel.
    void DrawPlaneAt(int bg, int plane, int x, int y, int w, int h, Vdp1Rgb primary = {1, 1, 1},
                     Vdp1Rgb secondary = {}) {
        gl.DrawPlane(bg, plane, x, y, x + w, y + h, 0.0f, w / 512.0f, 0.0f, h / 512.0f, primary.red, primary.green,
                     primary.blue, secondary.red, secondary.green, secondary.blue, 1.0f);
    }

    test::ScopedTempDir dir;  // first: the renderer deletes its old log when built
    COpenGl gl{nullptr};
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;
};

TEST_F(RendererTest, EmulatedScreenFillsTheViewportAtEveryScale) {
    struct Case { float scale; int width, height; };
    for (const Case& c : {Case{1.0f, 320, 224}, Case{2.0f, 640, 448}, Case{2.5f, 800, 560}}) {
        SCOPED_TRACE(c.scale);
        gl.SetRenderingScale(c.scale);
        gl.ApplyPendingChanges();
        AppendPolygon(gl.Drawing(), Box(10, 10, 26, 20, kRed));
        AppendPolygon(gl.Drawing(), Box(300, 200, 320, 224, kGreen));  // up to the right and bottom edges
        AppendPolygon(gl.Drawing(), Box(100, 0, 110, 2, kBlue));       // from the top row
        Present();
        ASSERT_EQ(width, c.width);
        ASSERT_EQ(height, c.height);
        auto s = [&](int v) { return static_cast<int>(static_cast<float>(v) * c.scale); };
        // Each polygon covers exactly its scaled rectangle and nothing else.
        EXPECT_EQ(Count(s(10), s(10), s(26), s(20), kRed), s(16) * s(10));
        EXPECT_EQ(Count(s(300), s(200), width, height, kGreen), s(20) * s(24));
        EXPECT_EQ(Count(s(100), 0, s(110), s(2), kBlue), s(10) * s(2));
        EXPECT_EQ(Drawn(0, 0, width, height), s(16) * s(10) + s(20) * s(24) + s(10) * s(2));
    }
}

TEST_F(RendererTest, WireframeOutlinesPolygonsAndBackgroundsOnceChangesApply) {
    FillPlane(0, 0, kWhite);
    AppendPolygon(gl.Drawing(), Box(0, 0, 320, 224, kGreen));
    gl.SetWireframe(true);
    AppendPolygon(gl.Drawing(), Box(20, 20, 80, 80, kRed));  // not applied yet: filled
    gl.ApplyPendingChanges();
    AppendPolygon(gl.Drawing(), Box(100, 20, 160, 80, kRed));
    DrawPlaneAt(0, 0, 180, 20, 60, 60);
    gl.SetWireframe(false);
    gl.ApplyPendingChanges();
    AppendPolygon(gl.Drawing(), Box(20, 120, 80, 180, kRed));
    DrawPlaneAt(0, 0, 100, 120, 60, 60);
    Present();
    // Filled, outlines that leave the inside as it was, filled again.
    EXPECT_EQ((std::vector{At(50, 50), At(130, 50), At(210, 50), At(50, 150), At(130, 150)}),
              (std::vector{kRed, kGreen, kGreen, kRed, kWhite}));
    EXPECT_GE(Count(98, 40, 103, 60, kRed) + Count(178, 40, 183, 60, kWhite), 40);
}

TEST_F(RendererTest, PlaneTexturesTakeCellsShareByLinksAndAreDeletedOnce) {
    auto& ids = gl.normalBackgroundPlanesTextureIds;
    gl.CreatePlaneTexture(1, 0, 512, 512);  // a new texture is transparent
    std::vector<uint32_t> cell(64, Word(kRed));
    cell[0] = Word(kGreen), cell[63] = Word(kBlue);  // top-left and bottom-right texels
    gl.UpdatePlaneTextureCell(1, 0, cell.data(), 16, 8);
    FillPlane(1, 1, kWhite, 8, 8);
    gl.LinkPlaneTexture(1, 0, 2);
    gl.LinkPlaneTexture(1, 0, 3);
    EXPECT_EQ(ids[1][3], ids[1][0]);
    const std::vector<uint32_t> white(64, Word(kWhite));
    gl.UpdatePlaneTextureCell(1, 3, white.data(), 0, 0);  // written through one slot, seen through all
    testing::internal::CaptureStderr();
    gl.LinkPlaneTexture(2, 1, 0);  // from an empty slot: reported, nothing linked
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("normalBackgroundPlanesTextureIds[bgNumber][srcPlane], file opengl"), std::string::npos);
    EXPECT_EQ(ids[2][0], 0u);
    DrawPlaneAt(1, 2, 0, 0, 32, 16);
    while (glGetError() != GL_NO_ERROR) {
    }
    for (int plane : {0, 2, 3}) gl.DeletePlaneTexture(1, plane);  // the shared name, three times
    gl.DeletePlaneTexture(2, 0);                                   // an empty slot
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    for (int plane : {0, 2, 3}) EXPECT_EQ(ids[1][plane], 0u);
    DrawPlaneAt(1, 1, 40, 0, 8, 8);  // the unlinked plane's texture is still there
    Present();
    EXPECT_EQ((std::vector{At(16, 8), At(23, 15)}), (std::vector{kGreen, kBlue}));
    EXPECT_EQ((std::vector{Count(0, 0, 8, 8, kWhite), Count(16, 8, 24, 16, kRed), Count(40, 0, 48, 8, kWhite)}),
              (std::vector{64, 62, 64}));
    EXPECT_EQ(Drawn(0, 0, 320, 90), 3 * 64);
}

TEST_F(RendererTest, PlanesRemadeAfterADeleteStartTransparentAndEachHasItsOwnTexture) {
    // Deleted textures are reused for the next planes of their size: what
    // they showed must be gone, and a name two linked planes shared must
    // serve one new plane only.
    auto& ids = gl.normalBackgroundPlanesTextureIds;
    FillPlane(0, 0, kWhite);
    gl.LinkPlaneTexture(0, 0, 1);
    FillPlane(0, 2, kRed);
    gl.CreateBitmapTexture(0, 512, 512);
    for (int plane = 0; plane < 4; ++plane) gl.DeletePlaneTexture(0, plane);
    gl.CreateBitmapTexture(0, 512, 256);  // its old 512 x 512 texture is spare too
    for (int plane = 0; plane < 4; ++plane) gl.CreatePlaneTexture(0, plane, 512, 512);
    EXPECT_EQ(std::ranges::count_if(ids[0], [&](uint32_t id) { return std::ranges::count(ids[0], id) == 1 && id; }),
              4);
    const std::vector<uint32_t> green(64, Word(kGreen));
    gl.UpdatePlaneTextureCell(0, 1, green.data(), 0, 0);
    for (int plane = 0; plane < 4; ++plane) DrawPlaneAt(0, plane, plane * 80, 0, 64, 64);
    Present();
    EXPECT_EQ((std::vector{Drawn(0, 0, 64, 64), Count(80, 0, 88, 8, kGreen), Drawn(80, 0, 144, 64),
                           Drawn(160, 0, 224, 64), Drawn(240, 0, 304, 64)}),
              (std::vector{0, 64, 64, 0, 0}));
}

TEST_F(RendererTest, BitmapShowsItsWholeUploadAndARotationPictureFillsTheViewportBottomRowFirst) {
    testing::internal::CaptureStderr();
    gl.DrawBitmap(1, 0, 0, 320, 224, 0, 1, 0, 1, 1, 1, 1, 0, 0, 0, 1);  // none yet: reported, nothing drawn
    EXPECT_NE(testing::internal::GetCapturedStderr().find("normalBackgroundBitmapTextureIds[bgNumber]!=0, file opengl"),
              std::string::npos);
    // Each texel's colour names its position.
    auto texel = [](int x, int y) { return Rgba{x & 0xFF, y & 0xFF, (x >> 8) | (y >> 8) << 4, 255}; };
    for (const auto& [w, h] : {std::pair{512, 256}, std::pair{1024, 512}}) {
        SCOPED_TRACE(w);
        gl.CreateBitmapTexture(1, w, h);
        EXPECT_EQ(gl.bitmapWidths[1], w);
        EXPECT_EQ(gl.bitmapHeights[1], h);
        std::vector<uint32_t> picture;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) picture.push_back(Word(texel(x, y)));
        gl.UpdateBitmapTexture(1, picture.data());
        // The last 320 x 224 texels, one a pixel: the far corner must be there.
        gl.DrawBitmap(1, 0, 0, 320, 224, (w - 320.0f) / w, 1.0f, (h - 224.0f) / h, 1.0f, 1, 1, 1, 0, 0, 0, 1);
        Present();
        EXPECT_EQ(At(0, 0), texel(w - 320, h - 224));
        EXPECT_EQ(At(100, 50), texel(w - 220, h - 174));
        EXPECT_EQ(At(319, 223), texel(w - 1, h - 1));
    }
    // The rotation picture is stretched over the viewport, its first row at the bottom.
    std::vector<uint32_t> picture;  // red: column, green: row
    for (int row = 0; row < 256; ++row)
        for (int column = 0; column < 256; ++column) picture.push_back(Word({column, row, 0, 255}));
    gl.DrawRotationBackground(4, picture.data(), 256, 256);
    Present();
    EXPECT_EQ(At(0, 223), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(At(319, 223), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(At(0, 0), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(At(319, 0), (Rgba{255, 255, 0, 255}));
    EXPECT_EQ(Count(0, 0, 320, 224, kClear), 0);
}

TEST_F(RendererTest, AFilteredBackgroundBlendsNeighbouringDotsWhereNearestKeepsThem) {
    // A 512 x 256 bitmap of red and blue columns, its first 40 dots stretched eight times across the screen.
    gl.CreateBitmapTexture(0, 512, 256);
    std::vector<uint32_t> stripes;
    for (int i = 0; i < 512 * 256; ++i) stripes.push_back(Word(i % 2 ? kBlue : kRed));
    gl.UpdateBitmapTexture(0, stripes.data());
    for (bool filtered : {false, true}) {
        gl.DrawBitmap(0, 0, 0, 320, 224, 0.0f, 40.0f / 512, 0.0f, 28.0f / 256, 1, 1, 1, 0, 0, 0, 1, filtered);
        Present();
        const int pure = Count(0, 0, 320, 224, kRed) + Count(0, 0, 320, 224, kBlue);
        if (filtered)
            EXPECT_LT(pure, 320 * 224 / 2) << "most dots lie between a red and a blue texel";
        else
            EXPECT_EQ(pure, 320 * 224);
    }
}

TEST_F(RendererTest, SwapsExchangeTwoPicturesAndClearsEmptyTheNextOne) {
    AppendPolygon(gl.Drawing(), Box(0, 0, 10, 10, kRed));
    gl.SwapFrameBuffers();
    AppendPolygon(gl.Drawing(), Box(20, 0, 30, 10, kGreen));
    Present();
    EXPECT_EQ((std::vector{At(5, 5), At(25, 5)}), (std::vector{kClear, kGreen}));
    gl.RequestClear();
    Present();  // nothing drawn: the first picture comes back, and is then cleared
    EXPECT_EQ((std::vector{At(5, 5), At(25, 5)}), (std::vector{kRed, kClear}));
    Present();
    EXPECT_EQ(Drawn(0, 0, 320, 224), 0);
    Present();
    EXPECT_EQ(At(5, 5), kRed) << "a requested clear happens after one swap only";
    AppendPolygon(gl.Drawing(), Box(0, 0, 320, 224, kWhite));
    gl.ClearFrameBuffer();
    Present();
    EXPECT_EQ(Count(0, 0, 320, 224, kClear), 320 * 224);
}

TEST_F(RendererTest, AfterReleaseEveryCallIsHarmlessAndInitGlStartsAgain) {
    FillPlane(0, 0, kWhite, 8, 8);
    Present();
    gl.ReleaseGl();
    ASSERT_FALSE(gl.HasContext());
    EXPECT_EQ(gl.normalBackgroundPlanesTextureIds[0][0], 0u);

    const std::vector<uint32_t> picture(512 * 256, Word(kWhite));
    gl.CreatePlaneTexture(0, 1, 512, 512), gl.CreateBitmapTexture(1, 512, 256);
    gl.UpdateBitmapTexture(1, picture.data()), gl.DrawRotationBackground(4, picture.data(), 256, 256);
    gl.SwapFrameBuffers();
    EXPECT_FALSE(Capture());
    EXPECT_EQ(gl.normalBackgroundPlanesTextureIds[0][1], 0u);

    // Settings chosen meanwhile hold for the new context.
    gl.SetRenderingScale(2.0f), gl.SetWireframe(true), gl.ApplyPendingChanges();
    gl.InitGl(nullptr);
    ASSERT_TRUE(gl.HasContext());
    EXPECT_FALSE(Capture());
    AppendPolygon(gl.Drawing(), Box(20, 20, 100, 100, kGreen));
    Present();
    ASSERT_EQ(width, 640);
    EXPECT_EQ(At(120, 120), kClear);  // outlines only
    EXPECT_GE(Count(38, 80, 43, 120, kGreen), 40);
}

}  // namespace
}  // namespace vdpgl
