// The texture replacement editor without a window: the preview fits, the refusals, and a pack author's
// session answered as the view would, over a real set folder and patterns held in memory.
#include "ui/texture_editor_presenter.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <tuple>

#include "common/png_file.h"
#include "temp_dir.h"
#include "vdp1/vdp1_character_pattern/replacement_image.h"

namespace vdpgl::ui {
namespace {

namespace fs = std::filesystem;

struct FakeTarget final : CTextureEditorTarget, CMessageSink {
    std::map<uint32_t, PatternSnapshot> patterns;
    std::vector<std::string> messages;
    std::vector<Vdp1ReplacementTexture> active;
    int deactivations = 0;
    test::ScopedTempDir tmp;
    CReplacementSets sets{(tmp.Path() / "sets").string(), *this};

    std::vector<uint32_t> CachedPatterns() override {
        std::vector<uint32_t> addresses;
        for (const auto& [address, pattern] : patterns) addresses.push_back(address);
        return addresses;
    }
    bool Pattern(uint32_t address, PatternSnapshot& pattern, std::string& information) override {
        if (!patterns.count(address)) return false;
        pattern = patterns[address];
        information = "size " + std::to_string(pattern.width) + "x" + std::to_string(pattern.height);
        return true;
    }
    void WithSets(const std::function<void(CReplacementSets&)>& use) override { use(sets); }
    void Activate(const std::vector<Vdp1ReplacementTexture>& list) override { active = list; }
    void Deactivate() override { ++deactivations; }
    CMessageSink& Messages() override { return *this; }
    void Message(const char* title, const char* text) override { messages.push_back(std::string(title) + ": " + text); }
};

PatternSnapshot Snapshot(uint32_t crc, int width, int height) {
    std::vector<uint32_t> rgba(size_t(width) * size_t(height));
    for (size_t i = 0; i < rgba.size(); ++i) rgba[i] = 0xFF000000u | uint32_t(i * 0x010203u);
    return {crc, 0x8000, width, height, rgba};
}

class TextureEditorTest : public testing::Test {
protected:
    TextureEditorTest() {
        CTextureEditorPresenter::ResetZoom();
        fs::create_directories(target.tmp.Path() / "sets");
        target.patterns = {{0x0007FFE0, Snapshot(0xAB, 16, 8)}, {0x1000, Snapshot(0xCD, 8, 64)}};
    }
    FakeTarget target;
};

TEST_F(TextureEditorTest, PicturesFitTheirBoxesByAspectRatioWithSidesTruncated) {
    const struct {
        PreviewBox box;
        int width, height;
        PicturePlacement expected;
    } cases[] = {
        {kPatternBox, 16, 8, {170, 20, 504, 252}},   // wider than 504/255: the width fills
        {kPatternBox, 8, 64, {170, 20, 31, 255}},    // 31.875 truncated
        {kPatternBox, 504, 255, {170, 20, 504, 255}},
        {kPatternBox, 8, 3, {170, 20, 504, 189}},
        {kReplacementBox, 220, 223, {300, 380, 220, 223}},
        {kReplacementBox, 221, 223, {300, 380, 220, 221}},  // just wider than the box
        {kReplacementBox, 100, 446, {300, 380, 50, 223}},
        {kReplacedBox, 80, 100, {535, 380, 178, 223}},  // 0.8: below 180/223
        {kReplacedBox, 90, 100, {535, 380, 180, 200}},
        {kReplacedBox, 0, 0, {535, 380, 0, 0}},
    };
    for (const auto& c : cases) {
        const PicturePlacement p = FitPicture(c.width, c.height, c.box);
        EXPECT_EQ(std::tie(p.x, p.y, p.width, p.height), std::tie(c.expected.x, c.expected.y, c.expected.width, c.expected.height))
            << c.width << "x" << c.height << " in " << c.box.width << "x" << c.box.height;
    }
}

TEST_F(TextureEditorTest, ZoomScalesThePatternPreviewAndOutlivesTheDialog) {
    {
        CTextureEditorPresenter editor(target);
        ASSERT_EQ(editor.PatternRows(), (std::vector<std::string>{"texture @0x00001000", "texture @0x0007FFE0"}));
        editor.SelectPattern(0);
        EXPECT_EQ(editor.PatternPlacement().width, 8);  // natural size at the box's corner
        EXPECT_EQ(editor.PatternPlacement().height, 64);
        editor.ToggleZoom();
        EXPECT_EQ(editor.PatternPlacement().height, 255);
    }
    CTextureEditorPresenter reopened(target);
    EXPECT_TRUE(CTextureEditorPresenter::Zoom());
    reopened.SelectPattern(1);
    EXPECT_EQ(reopened.PatternPlacement().width, 504);
    EXPECT_EQ(reopened.Information(), "size 16x8");
}

TEST_F(TextureEditorTest, RefusedCommandsSayWhyAndAskNothing) {
    const struct {
        const char* name;
        std::function<void(CTextureEditorPresenter&)> command;
        const char* message;  // null: silently nothing
    } cases[] = {
        {"save", [](auto& e) { e.SaveSet(); }, CReplacementSets::kNotLoaded},
        {"save as", [](auto& e) { e.SaveSetAs(); }, CReplacementSets::kNotLoaded},
        {"add", [](auto& e) { e.AddImage(); }, CReplacementSets::kNotLoaded},
        {"unload", [](auto& e) { e.UnloadSet(); }, CReplacementSets::kNotLoaded},
        {"load", [](auto& e) { e.LoadSet(); }, CReplacementSets::kNoSetSelected},
        {"delete", [](auto& e) { e.DeleteImage(); }, CReplacementSets::kNoEntry},
        {"dump", [](auto& e) { e.Dump(); }, CReplacementSets::kNoPattern},
        {"associate", [](auto& e) { e.SelectPattern(0), e.Associate(); }, nullptr},
        {"out of range", [](auto& e) { e.SelectPattern(2), e.SelectSet(0), e.SelectAssociation(0); }, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        target.messages.clear();
        CTextureEditorPresenter editor(target);
        c.command(editor);
        EXPECT_EQ(target.messages, c.message ? std::vector<std::string>{std::string("Error: ") + c.message}
                                             : std::vector<std::string>{});
        EXPECT_EQ(editor.Request().kind, EditorRequest::kNone);
        EXPECT_EQ(editor.GroupTitle(), "Current replacement texture set: no set loaded");
    }
}

TEST_F(TextureEditorTest, PackAuthorCreatesAssociatesActivatesSavesAndReloadsASet) {
    const fs::path image = target.tmp.Path() / "hero.png";
    const std::vector<uint32_t> texels(40 * 20, 0xFF00FF00u);
    std::string error;
    ASSERT_TRUE(WritePng(image.string(), reinterpret_cast<const uint8_t*>(texels.data()), 40, 20, error)) << error;
    {
        CTextureEditorPresenter editor(target);
        editor.NewSet();
        EXPECT_EQ(std::tie(editor.Request().kind, editor.Request().title, editor.Request().name),
                  std::make_tuple(EditorRequest::kSetDetails, kNewSetTitle, ""));
        editor.AnswerSetDetails("pack", "my pack");
        EXPECT_EQ(editor.GroupTitle(), "Current replacement texture set: pack");
        EXPECT_EQ(editor.SetRows(), std::vector<std::string>{"pack"});
        editor.AddImage();
        EXPECT_EQ(std::tie(editor.Request().kind, editor.Request().filter), std::make_tuple(EditorRequest::kOpenFile, kAddImageFilter));
        editor.AnswerFile(image.string());
        ASSERT_EQ(editor.AssociationRows(), std::vector<std::string>{"hero.png"});
        editor.SelectAssociation(0);
        EXPECT_EQ(editor.ReplacementPicture().texels, texels);
        EXPECT_EQ(editor.ReplacementPlacement().height, 110);  // 40x20 in 220x223
        EXPECT_EQ(editor.ReplacedText(), kNoDumpText);
        EXPECT_EQ(editor.CrcText(), "crc: 0xFFFFFFFF\ncolor control: 0xFFFFFFFF\n");

        editor.SelectPattern(1);
        editor.Associate();
        EXPECT_EQ(editor.SelectedAssociation(), 0);
        EXPECT_EQ(editor.ReplacedText(), "");
        EXPECT_EQ(editor.ReplacedPicture().texels, target.patterns[0x0007FFE0].rgba);  // the dump, read back
        EXPECT_EQ(editor.ReplacedPlacement().height, 90);
        EXPECT_EQ(editor.CrcText(), "crc: 0xAB\ncolor control: 0x8000\n");
        editor.ActivateSet();
        ASSERT_EQ(target.active.size(), 1u);
        EXPECT_EQ(target.active[0].fileName, (target.tmp.Path() / "sets/pack/hero.png").string());
        EXPECT_EQ(target.active[0].crc, 0xABu);
        editor.ClearAssociations();
        EXPECT_EQ(target.deactivations, 1);
        editor.SaveSet();
        editor.UnloadSet();
        EXPECT_EQ(editor.GroupTitle(), "Current replacement texture set: no set loaded");
        EXPECT_TRUE(editor.AssociationRows().empty() && editor.CrcText().empty());
    }
    CTextureEditorPresenter reopened(target);
    reopened.SelectSet(0);
    EXPECT_EQ(reopened.SetDescription(), "my pack");
    reopened.LoadSet();
    ASSERT_EQ(reopened.AssociationRows(), std::vector<std::string>{"hero.png"});
    reopened.SelectAssociation(0);
    EXPECT_EQ(reopened.CrcText(), "crc: 0xAB\ncolor control: 0x8000\n");
    reopened.SaveSetAs();
    EXPECT_EQ(std::tie(reopened.Request().title, reopened.Request().name, reopened.Request().description),
              std::make_tuple(kSaveSetAsTitle, "pack", "my pack"));
    reopened.AnswerSetDetails("copy", "copied");
    EXPECT_EQ(reopened.SetRows(), (std::vector<std::string>{"copy", "pack"}));
    EXPECT_EQ(reopened.GroupTitle(), "Current replacement texture set: copy");
    reopened.DeleteImage();
    EXPECT_TRUE(reopened.AssociationRows().empty());
    EXPECT_TRUE(target.messages.empty()) << target.messages[0];
}

TEST_F(TextureEditorTest, DumpWritesTheNameAsTypedAndSaysWhenItCannot) {
    CTextureEditorPresenter editor(target);
    editor.SelectPattern(1);
    const struct {
        std::string path;
        bool answer, written;
    } cases[] = {{"cancelled.tif", false, false}, {"dump", true, true}, {"/nonexistent/dump.tif", true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        editor.Dump();
        EXPECT_EQ(std::tie(editor.Request().kind, editor.Request().title), std::make_tuple(EditorRequest::kSaveFile, kDumpTitle));
        c.answer ? editor.AnswerFile(c.path) : editor.CancelRequest();
        EXPECT_EQ(editor.Request().kind, EditorRequest::kNone);
        vdpgl::ReplacementPicture picture;
        std::string error;
        EXPECT_EQ(ReadReplacementImage(c.path, picture, error), c.written);
        if (c.written) {
            EXPECT_EQ(picture.texels, target.patterns[0x0007FFE0].rgba);
        }
    }
    EXPECT_EQ(target.messages.size(), 1u);  // the unwritable path
}

TEST_F(TextureEditorTest, RefreshDropsPatternsGoneFromTheCacheAndKeepsTheSelectedOne) {
    CTextureEditorPresenter editor(target);
    editor.SelectPattern(1);
    target.patterns.erase(0x1000);
    editor.Refresh();
    EXPECT_EQ(editor.PatternRows(), std::vector<std::string>{"texture @0x0007FFE0"});
    EXPECT_EQ(editor.SelectedPattern(), 0);
    target.patterns.clear();
    editor.Refresh();
    EXPECT_TRUE(editor.PatternRows().empty());
    EXPECT_EQ(editor.SelectedPattern(), -1);
    EXPECT_TRUE(editor.Information().empty() && editor.PatternPicture().texels.empty());
}

}  // namespace
}  // namespace vdpgl::ui
