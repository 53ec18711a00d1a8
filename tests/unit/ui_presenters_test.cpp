// The display menu and the control panel without a window: their items and boxes, and what a pick or a click
// changes in the renderer and the chips, read back from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ui/chip_targets.h"
#include "vdp2/vdp2_character_pattern/pattern_name.h"
#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace ui;

class UiPresentersTest : public test::VdpTest {
protected:
    UiPresentersTest() {
        CDisplayMenuPresenter::ResetCheckedScale();
        openers.textureEditor = [this] { opened += "editor "; };
        openers.controlPanel = [this] { opened += "panel "; };
        openers.backgroundViewer = [this] { opened += "viewer "; };
        openers.setChooser = [this] { opened += "sets "; };
    }
    DialogOpeners openers;
    std::string opened;
    CChipMenuTarget menuTarget{*renderer, *vdp1, *vdp2, openers};
    CChipPanelTarget panelTarget{*vdp1, *vdp2, openers};
};

TEST_F(UiPresentersTest, MenuCommandsReachTheRendererCachesAndDialogsAndLaterWindowsShowTheChecks) {
    CDisplayMenuPresenter menu(menuTarget);
    menu.OnCreate();
    EXPECT_TRUE(menu.IsChecked(kMenuScaleOriginal) && !menu.IsChecked(kMenuWireframe));
    menu.Command(kMenuScale32);
    EXPECT_EQ(renderer->GetRenderingScale(), 3.2f);
    EXPECT_TRUE(menu.IsChecked(kMenuScale32) && !menu.IsChecked(kMenuScaleOriginal));
    menu.Command(kMenuWireframe);
    EXPECT_TRUE(renderer->IsWireframe() && menu.IsChecked(kMenuWireframe));

    CDisplayMenuPresenter later(menuTarget);  // a window made again shows the settings as they are
    later.OnCreate();
    EXPECT_TRUE(later.IsChecked(kMenuScale32) && later.IsChecked(kMenuWireframe));
    later.Command(kMenuWireframe);
    EXPECT_FALSE(renderer->IsWireframe() || later.IsChecked(kMenuWireframe));

    CPatternName request;  // one cached cell, cleared at the next V-blank-out when asked for
    request.characterAddress = 0x100, request.cellDataSize = 32;
    new CVdp2CharacterPattern(request, 0);
    later.Command(kMenuClearVdp2Cache);
    EXPECT_EQ(vdp2->CellCache().Cells(), 1u) << "not on the menu's thread";
    vdp2->OnVblankOut();
    EXPECT_EQ(vdp2->CellCache().Cells(), 0u);

    for (int id : {int{kMenuTextureEditor}, int{kMenuControlPanel}, int{kMenuLoadTextureSet}, 40099}) later.Command(id);
    EXPECT_EQ(opened, "editor panel sets ");
    // The resolution items in menu order carry rising factors ("x 3.2" between "x 3" and "x 4" though its id is
    // above "x 5"); no other item has one.
    std::vector<float> factors;
    for (const DisplayMenuItem& item : kDisplayMenu)
        if (const float f = CDisplayMenuPresenter::ScaleOf(item.id); f != 0.0f || item.submenu) factors.push_back(f);
    EXPECT_EQ(factors, (std::vector<float>{1.0f, 1.25f, 2.0f, 2.5f, 3.0f, 3.2f, 4.0f, 5.0f}));
}

TEST_F(UiPresentersTest, EachPanelBoxSwitchesItsBackgroundOrPartKindAndShowsTheSettingWhenOpenedAgain) {
    struct Case {
        int id;
        bool (*setting)(CVdp1&, CVdp2&);  // true when the box's setting says "checked"
    };
    const Case cases[] = {
        {1022, [](CVdp1&, CVdp2& v) { return v.IsBackgroundDisabled(0); }},
        {1037, [](CVdp1&, CVdp2& v) { return v.IsBackgroundDisabled(5); }},
        {1038, [](CVdp1&, CVdp2& v) { return v.IsBackgroundFiltered(1); }},
        {1043, [](CVdp1&, CVdp2& v) { return v.IsBackgroundFiltered(5); }},
        {1047, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(0); }},  // normal sprites
        {1048, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(1); }},  // scaled
        {1046, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(2); }},  // distorted
        {1024, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(3); }},  // polygons
        {1045, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(4); }},  // polylines
        {1049, [](CVdp1& v, CVdp2&) { return !v.IsPartEnabled(5); }},  // lines
    };
    CControlPanelPresenter panel(panelTarget);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        panel.OnToggle(c.id, true);
        EXPECT_TRUE(c.setting(*vdp1, *vdp2));
        EXPECT_TRUE(CControlPanelPresenter(panelTarget).IsChecked(c.id)) << "a panel opened again shows it";
        int others = 0;
        for (const ControlPanelBox& box : kControlPanelBoxes) others += box.id != c.id && panel.IsChecked(box.id);
        EXPECT_EQ(others, 0) << "one box, one setting";
        panel.OnToggle(c.id, false);
        EXPECT_FALSE(c.setting(*vdp1, *vdp2) || panel.IsChecked(c.id));
    }
    panel.OnPress(kPanelBackgroundViewer), panel.OnPress(kPanelTextureEditor);
    EXPECT_EQ(opened, "viewer editor ");
    EXPECT_NE(panel.CacheText().find("VDP2 cells: 0 cells, 0 pictures"), std::string::npos) << panel.CacheText();
}

// Backgrounds as the viewer reads them: 1 in cell mode (each plane's texels its number), 2 a bitmap, 3 too large.
struct FakeBackgrounds final : CBackgroundSource {
    std::string Information(int bg) override { return bg == 4 ? "" : "background " + std::to_string(bg); }
    void Size(int bg, int& w, int& h) override { w = bg == 3 ? 100000 : 4, h = bg == 3 ? 1 : 2; }
    bool InCellMode(int bg) override { return bg != 2; }
    void DecodeBitmap(int, uint32_t* texels) override { std::fill(texels, texels + 8, 0xB17u); }
    void RenderPlane(int, int plane, uint32_t* texels) override { std::fill(texels, texels + 8, uint32_t(plane)); }
};

TEST(BackgroundViewerPresenterTest, ABoxSelectsItsBackgroundAloneAndViewDrawsItsPlaneOrBitmapAtTheNextFrame) {
    CBackgroundViewerPresenter::ResetSelection();
    CBackgroundViewerPresenter viewer;
    FakeBackgrounds source;
    std::string text;
    BackgroundPicture picture;
    const auto checked = [&] {
        std::string boxes;
        for (const ViewerBox& box : kViewerBoxes) boxes += viewer.IsChecked(box.id) ? box.text : "";
        return boxes;
    };
    EXPECT_EQ(checked(), "") << "no box shows the stored choice until one is clicked";
    EXPECT_FALSE(CBackgroundViewerPresenter::Serve(source, text, picture)) << "no picture until View";
    EXPECT_EQ(text, "background 0");
    const struct { int box, plane; const char* text; int width; uint32_t texel; } cases[] = {
        {1023, 2, "background 1", 4, 2}, {1024, 0, "background 2", 4, 0xB17}, {1025, 0, "background 3", 0, 0},
        {1026, 0, kNoInformation, 4, 0}};
    for (const auto& c : cases) {
        viewer.OnBackground(c.box), viewer.OnPlane(c.plane), viewer.OnPlane(16);  // 16 is no plane: ignored
        viewer.OnView();
        ASSERT_TRUE(CBackgroundViewerPresenter::Serve(source, text, picture));
        EXPECT_EQ(checked(), kViewerBoxes[CBackgroundViewerPresenter::SelectedBackground()].text);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(picture.width, c.width) << "a size beyond any plane gives an empty picture";
        if (c.width) {
            EXPECT_EQ(picture.texels.back(), c.texel);
        }
        EXPECT_FALSE(CBackgroundViewerPresenter::Serve(source, text, picture)) << "one picture a View";
    }
    int w = 0, h = 0;
    CBackgroundViewerPresenter::WindowSizeFor(512, 256, w, h);
    EXPECT_EQ(std::pair(w, h), std::pair(757, 296));
    EXPECT_EQ(PlaneName(0) + PlaneName(15), "plane Aplane P");
}

}  // namespace
}  // namespace vdpgl
