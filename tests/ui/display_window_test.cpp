// The plug-in's windows under an Xvfb of the test's own, driven as a player drives them: keys and clicks through
// XTEST, the effect read back from the frames, the window sizes and titles. Screenshots of every window go to
// build/ui-screenshots/ for the record.
#include <gtest/gtest.h>

#include <dirent.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "../host/host_frame.h"
#include "../support/vdp1_commands.h"
#include "common/png_file.h"
#include "platform/fltk/control_panel_layout.h"
#include "ui/control_panel_presenter.h"
#include "ui_server.h"

namespace vdpgl::host {
namespace {

using namespace std::chrono_literals;
using test::Command;
using test::kWait;
using test::Command;
using test::kPolygonCmd;

constexpr uint16_t kRed = 0x801F, kGreen = 0x83E0;

int ThreadCount() {
    int n = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) n += entry.is_directory();
    return n;
}

Command Quad(uint16_t colr, int16_t x0, int16_t y0, int16_t x1, int16_t y1) {
    return {.ctrl = kPolygonCmd, .colr = colr, .xa = x0, .ya = y0, .xb = x1, .yb = y0, .xc = x1, .yc = y1,
            .xd = x0, .yd = y1};
}

class UiTest : public HostFrameTest {
protected:
    static void SetUpTestSuite() { test::StartServer(); }

    void SetUp() override {
        ASSERT_TRUE(x11.Open()) << x11.Error();
        std::thread([] {}).join();  // a sanitizer's own thread starts with the first thread
        threadsBefore = ThreadCount();
        HostTest::SetUp();
        StartDrawing();
        window = x11.WaitForWindow("OpenGL display", kWait);
        ASSERT_NE(window, 0u) << "no display window";
        // A red polygon on the left and a green one on the right: the polygon switch takes both away.
        test::WriteCommandList([this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); },
                               {Quad(kRed, 10, 10, 150, 200), Quad(kGreen, 170, 10, 310, 200)});
    }

    unsigned long PictureArea() {
        const auto children = x11.Children(window);
        return children.empty() ? 0 : children.back();
    }
    static void Save(test::CX11Session& x11, unsigned long w, const char* name) { test::SaveDrawn(x11, w, name); }
    // Frames until the shown one satisfies `done`, for at most a few seconds.
    template <typename Done>
    bool FramesUntil(Done done) {
        for (auto end = std::chrono::steady_clock::now() + kWait; std::chrono::steady_clock::now() < end;) {
            x().VDPOnVblankIn(), x().VDPOnVblankOut();
            if (done()) return true;
            std::this_thread::sleep_for(20ms);
        }
        return false;
    }
    bool Drawn(uint16_t colour) {
        Frame();
        return shown.At(80, 100) == ShapeColour(colour);
    }

    test::CX11Session x11;
    unsigned long window = 0;
    int threadsBefore = 0;
};

TEST_F(UiTest, TheWindowShowsEachFrameAsCapturedAndItsMenuAndKeysActOnIt) {
    Frame(), Frame();
    ASSERT_EQ(shown.At(80, 100), ShapeColour(kRed));
    std::vector<uint8_t> onScreen;
    int w = 0, h = 0;
    ASSERT_TRUE(x11.Capture(PictureArea(), onScreen, w, h)) << x11.Error();
    ASSERT_EQ(w * 1000 + h, kWidth * 1000 + kHeight);
    int differing = 0;
    for (size_t i = 0; i < shown.px.size(); ++i) {
        const Rgba s = shown.px[i];
        differing += s.r != onScreen[i * 4] || s.g != onScreen[i * 4 + 1] || s.b != onScreen[i * 4 + 2];
    }
    EXPECT_EQ(differing, 0) << "the window shows the captured frame, dot for dot";
    Save(x11, window, "display-window.png");

    // Rendering > Resolution > x 2 from the keyboard: applied at the next V-blank-out.
    test::ChooseScale2(x11, window);
    EXPECT_TRUE(FramesUntil([&] { return x().GetDisplaySize(&w, &h), w == 640 && h == 448; }));
    EXPECT_TRUE(x11.WaitForTitle(window, "Resolution: 640X448 (320X224X2.00)", kWait)) << x11.Title(window);
    EXPECT_TRUE(x11.WaitForSize(PictureArea(), 640, 448, kWait));
    Save(x11, window, "display-window-x2.png");

    // F11: the whole screen, the picture in the middle between black bars; F11 again: back.
    x11.Key("F11");
    ASSERT_TRUE(x11.WaitForSize(window, 1280, 1024, kWait));
    ASSERT_TRUE(FramesUntil([&] { return x11.Capture(window, onScreen, w, h) && onScreen[0] == 0 &&
                                         onScreen[(512 * 1280 + 320) * 4] == 255; }))
        << "black bar at the top, the red polygon in the middle";
    Save(x11, window, "display-window-full-screen.png");
    x11.Key("F11");
    EXPECT_TRUE(x11.WaitForSize(window, 640, 448 + 25, kWait));
    x11.Key("Escape");  // as the close box: the window stays
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(x11.Geometry(window).width, 640);

    // F12: the next frame shown saved under screenshots/, as captured.
    x11.Key("F12");
    std::filesystem::path saved;
    FramesUntil([&] {
        for (const auto& e : std::filesystem::directory_iterator(".")) {
            if (e.path().filename() != "screenshots") continue;
            for (const auto& s : std::filesystem::directory_iterator(e.path())) saved = s.path();
        }
        return !saved.empty();
    });
    RgbaImage picture;
    std::string error;
    ASSERT_TRUE(ReadPng(saved.string(), picture, error)) << error;
    EXPECT_EQ(picture.width * 1000 + picture.height, 640 * 1000 + 448);
    EXPECT_EQ(picture.pixels[(200 * 640 + 160) * 4], 255) << "red in the saved frame";

    // A second run opens a fresh window at the chosen scale; after shutdown no thread is left.
    x().EmulationThreadStoping();
    EXPECT_TRUE(x11.WaitForNoWindow("Resolution: 640X448 (320X224X2.00)", kWait));
    x().EmulationThreadStarting();
    window = x11.WaitForWindow("OpenGL display", kWait);
    EXPECT_TRUE(x11.WaitForSize(PictureArea(), 640, 448, kWait));
    x().EmulationThreadStoping(), x().DeInitPlugin(), initialised = false;
    EXPECT_EQ(ThreadCount(), threadsBefore);
}

TEST_F(UiTest, TheControlPanelFromTheMenuOrTheHostSwitchesPartKindsForTheNextFrame) {
    ASSERT_TRUE(FramesUntil([&] { return Drawn(kRed); }));
    // Cache > (right) Control panel.
    x11.Focus(window);
    x11.Key("c", {"Alt_L"});
    test::Type(x11, {"Right", "Return"});
    const unsigned long panel = x11.WaitForWindow(ui::kControlPanelTitle, kWait);
    ASSERT_NE(panel, 0u);
    Save(x11, panel, "control-panel.png");

    int polygons = 0;  // the "Polygons" box, clicked where the panel lays it out
    while (ui::kControlPanelBoxes[polygons].id != 1024) ++polygons;
    const platform::panel::Rect box = platform::panel::BoxRect(polygons);
    x11.Click(panel, box.x + 8, box.y + box.h / 2);
    EXPECT_TRUE(FramesUntil([&] { return !Drawn(kRed) && !Drawn(kGreen); })) << "no polygon drawn";

    // Closed with Escape; the host's setup call opens it again showing the box checked, once however often.
    x11.Focus(panel);
    x11.Key("Escape");
    ASSERT_TRUE(x11.WaitForNoWindow(ui::kControlPanelTitle, kWait));
    x().SetupPlugin(), x().SetupPlugin();
    const unsigned long again = x11.WaitForWindow(ui::kControlPanelTitle, kWait);
    ASSERT_NE(again, 0u);
    x11.Click(again, box.x + 8, box.y + box.h / 2);
    EXPECT_TRUE(FramesUntil([&] { return Drawn(kRed); })) << "unchecking brings the polygons back";
    Save(x11, again, "control-panel-reopened.png");
}

TEST_F(UiTest, LoadTextureReplacementSetListsTheSetsAndLoadsTheChosenOneOrSaysWhyNot) {
    const auto openChooser = [&] {
        x11.Focus(window);
        x11.Key("f", {"Alt_L"});
        std::this_thread::sleep_for(100ms);
        test::Type(x11, {"Down", "Down", "Return"});
        return x11.WaitForWindow("Load texture replacement set", kWait);
    };
    unsigned long chooser = openChooser();  // no set yet: it says where sets go
    ASSERT_NE(chooser, 0u);
    Save(x11, chooser, "set-chooser-empty.png");
    x11.Focus(chooser), x11.Key("Escape");
    ASSERT_TRUE(x11.WaitForNoWindow("Load texture replacement set", kWait));

    // "broken" (listed first) has no INI: its message, the chooser stays; then "pack" loads and the chooser goes.
    std::filesystem::create_directories("replacement_texture_set/broken");
    std::filesystem::create_directories("replacement_texture_set/pack");
    std::ofstream("replacement_texture_set/pack/pack.ini") << "[infos]\ndescription=Sharper heroes\n";
    chooser = openChooser();
    ASSERT_NE(chooser, 0u);
    Save(x11, chooser, "set-chooser.png");
    x11.Focus(chooser), x11.Key("Return");
    const unsigned long message = x11.WaitForWindow("Error", kWait);
    ASSERT_NE(message, 0u);
    x11.Focus(message), x11.Key("Return");
    ASSERT_TRUE(x11.WaitForNoWindow("Error", kWait));
    x11.Focus(chooser);
    test::Type(x11, {"Down", "Return"});
    EXPECT_TRUE(x11.WaitForNoWindow("Load texture replacement set", kWait));
}

TEST_F(UiTest, TheEditorFromTheMenuShowsACachedPatternCreatesASetAndClosesWithTheDisplayWindow) {
    for (uint32_t i = 0; i < 16 * 8; ++i) x().WriteWordVDP1VRAM(0x1000 + i * 2, 0x83E0);  // a green 16 x 8 sprite
    test::WriteCommandList([this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); },
                           {Command{.pmod = 0xE8, .srca = 0x1000 / 8, .size = 0x0208, .xa = 40, .ya = 30}});
    Frame(), Frame();
    x11.Focus(window);
    x11.Key("f", {"Alt_L"});
    std::this_thread::sleep_for(100ms);
    test::Type(x11, {"Down", "Return"});
    const unsigned long editor = x11.WaitForWindow("Texture replacement editor", kWait);
    ASSERT_NE(editor, 0u);
    // The only cached pattern, chosen in the list: its preview at the box's corner, dot for dot.
    std::this_thread::sleep_for(200ms);
    x11.Click(editor, 60, 25 + 8);
    std::vector<uint8_t> rgba;
    int w = 0, h = 0;
    bool previewed = false;
    for (int i = 0; i < 100 && !previewed; ++i, std::this_thread::sleep_for(20ms))
        previewed = x11.Capture(editor, rgba, w, h) && rgba[static_cast<size_t>((25 + 4) * w + 170 + 4) * 4 + 1] > 200 &&
                    rgba[static_cast<size_t>((25 + 4) * w + 170 + 4) * 4] < 60;
    EXPECT_TRUE(previewed);
    Save(x11, editor, "texture-editor.png");
    // New set: its form, a name typed, Return; the set is on disk.
    x11.Click(editor, 472 + 125 + 60, 320 + 12);
    const unsigned long form = x11.WaitForWindow("New texture replacement set", kWait);
    ASSERT_NE(form, 0u);
    Save(x11, form, "new-set.png");
    x11.Focus(form);
    test::Type(x11, {"p", "a", "c", "k", "Return"});
    bool created = false;
    for (int i = 0; i < 100 && !created; ++i, std::this_thread::sleep_for(20ms))
        created = std::filesystem::exists("replacement_texture_set/pack/pack.ini");
    EXPECT_TRUE(created);
    x().EmulationThreadStoping();
    EXPECT_TRUE(x11.WaitForNoWindow("Texture replacement editor", kWait)) << "the editor goes with the window";
    x().EmulationThreadStarting();
}

TEST_F(UiTest, APackAuthorDumpsATextureBuildsASetInTheEditorAndSeesTheReplacementDrawn) {
    for (uint32_t i = 0; i < 16 * 8; ++i) x().WriteWordVDP1VRAM(0x1000 + i * 2, 0x83E0);
    test::WriteCommandList([this](uint32_t a, uint16_t v) { x().WriteWordVDP1VRAM(a, v); },
                           {Command{.pmod = 0xE8, .srca = 0x1000 / 8, .size = 0x0208, .xa = 40, .ya = 30}});
    Frame(), Frame();
    std::vector<uint8_t> red(32 * 16 * 4, 0);
    for (size_t i = 0; i < red.size(); i += 4) red[i] = 255, red[i + 3] = 255;
    std::string error;
    ASSERT_TRUE(WritePng("red.png", red.data(), 32, 16, error)) << error;
    ASSERT_EQ(x().OpenDialog("editor"), 1);
    const unsigned long editor = x11.WaitForWindow("Texture replacement editor", kWait);
    ASSERT_NE(editor, 0u);
    std::this_thread::sleep_for(200ms);
    const auto click = [&](int xx, int yy) {
        x11.Click(editor, xx, yy);
        std::this_thread::sleep_for(150ms);
    };
    // A file chooser or form that the editor asks with: the answer typed, then Return.
    const auto answer = [&](const char* title, const std::string& text) {
        const unsigned long chooser = x11.WaitForWindow(title, kWait);
        ASSERT_NE(chooser, 0u) << title;
        std::this_thread::sleep_for(200ms);
        x11.Focus(chooser);
        for (char c : text) x11.Key(c == '/' ? "slash" : c == '.' ? "period" : c == '_' ? "underscore" : c == '-' ? "minus" : std::string(1, c));
        x11.Key("Return");
        ASSERT_TRUE(x11.WaitForNoWindow(title, kWait)) << title;
    };
    const auto appears = [](const char* path) {
        for (int i = 0; i < 100; ++i, std::this_thread::sleep_for(20ms))
            if (std::filesystem::exists(path)) return true;
        return false;
    };
    click(60, 25 + 8);  // the sprite's pattern
    click(88 + 36, 170 + 12);  // Dump
    answer("Enter name of VDP1 texture dump", "dumped.tif");  // after the folder the chooser shows
    EXPECT_TRUE(appears("dumped.tif"));
    click(472 + 125 + 60, 320 + 12);  // New set
    answer("New texture replacement set", "pack");
    click(10 + 49, 600 + 12);  // Add texture
    answer("Choose replacement texture to add to the set", "red.png");
    EXPECT_TRUE(appears("replacement_texture_set/pack/red.png"));
    click(60, 435 + 8);   // the image
    click(110, 629 + 12);  // Associate
    EXPECT_TRUE(appears("replacement_texture_set/pack/red_associated.tif"));
    Save(x11, editor, "texture-editor-associated.png");
    click(472 + 125 + 60, 320 + 2 * 29 + 12);  // Activate
    EXPECT_TRUE(FramesUntil([&] { return Frame(), shown.At(45, 33) == Rgba{255, 0, 0, 255}; })) << "the set's image drawn";
    click(472 + 60, 320 + 29 + 12);  // Save set
    std::ifstream ini("replacement_texture_set/pack/pack.ini");
    const std::string saved((std::istreambuf_iterator<char>(ini)), {});
    EXPECT_NE(saved.find("[red.png]"), std::string::npos) << saved;
    EXPECT_NE(saved.find("replacedTexture=red_associated.tif"), std::string::npos) << saved;
}

TEST(UiAboutTest, TheAboutBoxBeforeInitialisationAndThePanelWithoutADisplayWindowLeaveNoThread) {
    test::StartServer();
    test::CX11Session x11;
    ASSERT_TRUE(x11.Open());
    CPluginLibrary library;
    ASSERT_TRUE(library.Load(VDPGL_LIBRARY_PATH)) << library.Error();
    const int threads = ThreadCount();
    std::thread host([&] { library.Exports().DisplayPluginInfo(); });  // modal: returns once closed
    const unsigned long about = x11.WaitForWindow("About", kWait);
    ASSERT_NE(about, 0u);
    test::SaveDrawn(x11, about, "about.png");
    x11.Focus(about);
    x11.Key("Return");
    host.join();
    EXPECT_EQ(ThreadCount(), threads);

    // The host's setup call before any emulation run: the panel alone, gone with the plug-in.
    ASSERT_TRUE(library.Exports().InitVDPPlugin(nullptr));
    library.Exports().SetupPlugin();
    EXPECT_NE(x11.WaitForWindow(ui::kControlPanelTitle, kWait), 0u);
    // The viewer with no emulation running: a click is served at once, not at a frame that never comes.
    ASSERT_EQ(library.Exports().OpenDialog("viewer"), 1);
    const unsigned long viewer = x11.WaitForWindow("VDP2 background viewer", kWait);
    ASSERT_NE(viewer, 0u);
    std::this_thread::sleep_for(200ms);
    x11.Click(viewer, 30, 44), x11.Click(viewer, 100, 163);  // NBG0, View
    bool grown = false;
    // A background that shows nothing yet has an empty picture: the dialog takes its width plus 245 all the same.
    for (int i = 0; i < 100 && !grown; ++i, std::this_thread::sleep_for(20ms)) grown = x11.Geometry(viewer).width >= 245;
    EXPECT_TRUE(grown) << x11.Geometry(viewer).width;
    library.Exports().DeInitPlugin();
    EXPECT_TRUE(x11.WaitForNoWindow(ui::kControlPanelTitle, kWait));
    EXPECT_TRUE(x11.WaitForNoWindow("VDP2 background viewer", kWait));
    EXPECT_EQ(ThreadCount(), threads);
}

}  // namespace
}  // namespace vdpgl::host
