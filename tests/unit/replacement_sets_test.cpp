// Replacement texture sets on disk: the INI written and read back, the files that adding, deleting,
// associating and copying a set leave in its folder, and the message each refused operation shows.
#include "ui/replacement_sets.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "temp_dir.h"

namespace vdpgl::ui {
namespace {

namespace fs = std::filesystem;

struct RecordingSink final : CMessageSink {
    std::vector<std::string> messages;
    void Message(const char* title, const char* text) override { messages.push_back(std::string(title) + ": " + text); }
};

class ReplacementSetsTest : public testing::Test {
protected:
    ReplacementSetsTest() { fs::create_directories(root); }
    static void Write(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
    static std::string Read(const fs::path& path) {
        std::stringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    // A loaded set "s" holding the given images (their contents are their names).
    void LoadedSet(std::initializer_list<const char*> images) {
        ASSERT_TRUE(sets.Create("s", "first set"));
        for (const char* image : images) {
            Write(tmp.Path() / image, image);
            ASSERT_TRUE(sets.Add((tmp.Path() / image).string()));
        }
    }
    static PatternSnapshot Pattern(uint32_t crc, int width, int height) {
        return {crc, 0x8000, width, height, std::vector<uint32_t>(size_t(width) * size_t(height), 0x800000FFu)};
    }
    test::ScopedTempDir tmp;
    fs::path root = tmp.Path() / "sets";
    RecordingSink sink;
    CReplacementSets sets{root.string(), sink};
};

TEST_F(ReplacementSetsTest, SavedSetReloadsInListOrderWithDuplicateNamesInOneSection) {
    LoadedSet({"b.tif", "a.png", "b.tif"});
    ASSERT_TRUE(sets.Associate(0, Pattern(0x1234ABCD, 2, 2)));
    ASSERT_TRUE(sets.Associate(1, Pattern(0xCAFE, 2, 2)));
    ASSERT_TRUE(sets.Save());
    EXPECT_EQ(Read(root / "s/s.ini"), "[infos]\ndescription=first set\n\n\n"
                                      "[b.tif]\nreplacedTexture=none\ncrc=0xFFFFFFFF\ncolorCtrl=0xFFFFFFFF\n\n\n"
                                      "[a.png]\nreplacedTexture=a_associated.tif\ncrc=0x0000CAFE\ncolorCtrl=0x00008000\n");
    EXPECT_FALSE(fs::exists(root / "s/s.ini.tmp"));
    sets.Unload();
    ASSERT_TRUE(sets.Load("s"));
    ASSERT_EQ(sets.Associations().size(), 2u);
    EXPECT_EQ(sets.Associations()[0].name, "b.tif");  // the later duplicate's keys won
    EXPECT_EQ(sets.Associations()[0].crc, 0xFFFFFFFFu);
    EXPECT_EQ(sets.Associations()[1].crc, 0xCAFEu);
    EXPECT_EQ(sets.Description(), "first set");
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(ReplacementSetsTest, HandWrittenIniLoadsSectionsInFileOrderWithinTheNameListLimit) {
    std::string limit = "[infos]\n";  // 6 bytes of the name list
    for (int i = 0; i < 99; ++i) limit += "[" + std::string(96, 'n') + std::to_string(100 + i) + "]\ncrc=0x1\n";
    limit += "[" + std::string(93, 'L') + "]\ncrc=0x2\n[X]\ncrc=0x3\n";  // ends at byte 10000, then one past it
    const struct {
        const char* name;
        std::string ini;
        size_t entries;
        std::vector<uint32_t> crcs;  // of the first entries
    } cases[] = {
        {"only infos", "[infos]\ndescription=x\n", 0, {}},
        {"file order, infos anywhere", "[z.tif]\ncrc=0x5\n[infos]\n[a.tif]\ncrc=0x0000000A\n", 2, {5, 10}},
        {"malformed numbers", "[a]\ncrc=1234\ncolorCtrl=0x\n[b]\ncrc=0xZZ\n[c]\ncrc=0x123456789\n[d]\n", 4,
         {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}},
        {"names escaping the folder", "[../up.tif]\n[ok.tif]\nreplacedTexture=../../x\n", 1, {0xFFFFFFFF}},
        {"garbage lines", "\x01\x02 junk\n[a]\n=\ncrc=0xff\n[[]\n", 2, {0xFF, 0xFFFFFFFF}},
        {"10000-byte name list", limit, 100, {1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::create_directories(root / "h");
        Write(root / "h/h.ini", c.ini);
        ASSERT_TRUE(sets.Load("h"));
        ASSERT_EQ(sets.Associations().size(), c.entries);
        for (size_t i = 0; i < c.crcs.size(); ++i) EXPECT_EQ(sets.Associations()[i].crc, c.crcs[i]) << i;
        for (const TextureAssociation& entry : sets.Associations()) EXPECT_EQ(entry.replacedTexture.find('/'), std::string::npos);
    }
    EXPECT_EQ(sets.Associations().back().name, std::string(93, 'L'));
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(ReplacementSetsTest, RefusedOperationsSayWhyAndChangeNothingElse) {
    const std::string notLoaded = CReplacementSets::kNotLoaded, badName = CReplacementSets::kBadSetName;
    const struct {
        const char* name;
        bool loaded;  // start with set "s" holding a.tif
        std::function<bool(CReplacementSets&)> action;
        std::string message;
        bool loadedAfter;
    } cases[] = {
        {"add", false, [](auto& s) { return s.Add("a.tif"); }, notLoaded, false},
        {"save", false, [](auto& s) { return s.Save(); }, notLoaded, false},
        {"save as", false, [](auto& s) { return s.SaveAs("t", ""); }, notLoaded, false},
        {"unload", false, [](auto& s) { return s.Unload(), false; }, notLoaded, false},
        {"delete", true, [](auto& s) { return s.Delete(1); }, CReplacementSets::kNoEntry, true},
        {"associate", true, [](auto& s) { return s.Associate(7, Pattern(1, 1, 1)); }, CReplacementSets::kNoEntry, true},
        {"empty pattern", true, [](auto& s) { return s.Associate(0, Pattern(1, 0, 8)); }, CReplacementSets::kNoPattern, true},
        {"load nothing", true, [](auto& s) { return s.Load(""); }, CReplacementSets::kNoSetSelected, true},
        {"load up", true, [](auto& s) { return s.Load(".."); }, badName, true},
        {"create in", true, [](auto& s) { return s.Create("a/b", ""); }, badName, true},
        {"create reserved", true, [](auto& s) { return s.Create(kNoSetLoaded, ""); }, badName, true},
        {"load missing", true, [](auto& s) { return s.Load("gone"); }, "The set \"gone\" has no readable INI file", true},
        {"add missing", true, [](auto& s) { return s.Add("/nonexistent/x.tif"); }, "Cannot copy /nonexistent/x.tif into the set", true},
        {"add infos", true, [](auto& s) { return s.Add("/tmp/INFOS"); }, "\"INFOS\" cannot name a replacement texture", true},
        {"create existing", true, [](auto& s) { return s.Create("s", ""); }, CReplacementSets::kSetExists, false},
        {"save as existing", true, [](auto& s) { return s.SaveAs("s", ""); }, CReplacementSets::kSetExists, false},
        {"dump blocked", true,
         [this](auto& s) { return fs::create_directory(root / "s/a_associated.tif") && s.Associate(0, Pattern(1, 1, 1)); },
         "\"" + (root / "s/a_associated.tif").string() + "\" could not be written", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(root / "s");
        if (c.loaded) LoadedSet({"a.tif"});
        sink.messages.clear();
        EXPECT_FALSE(c.action(sets));
        ASSERT_EQ(sink.messages.size(), 1u);
        EXPECT_EQ(sink.messages[0].substr(0, c.message.size() + 7), "Error: " + c.message);
        EXPECT_EQ(sets.IsLoaded(), c.loadedAfter);
        EXPECT_EQ(sets.Associations().size(), c.loadedAfter ? 1u : 0u);
        if (sets.IsLoaded()) sets.Unload();
    }
    EXPECT_EQ(sets.List(), std::vector<std::string>{"s"});
}

TEST_F(ReplacementSetsTest, SaveAsCopiesImagesAndDumpsAndSkipsUnassociatedDumps) {
    LoadedSet({"a.tif", "b.tif"});
    ASSERT_TRUE(sets.Associate(0, Pattern(0x77, 4, 2)));
    ASSERT_TRUE(sets.SaveAs("copy", "second"));
    EXPECT_EQ(sets.CurrentSetName(), "copy");
    std::vector<std::string> files;
    for (const auto& file : fs::directory_iterator(root / "copy")) files.push_back(file.path().filename().string());
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (std::vector<std::string>{"a.tif", "a_associated.tif", "b.tif", "copy.ini"}));
    EXPECT_EQ(Read(root / "copy/a_associated.tif"), Read(root / "s/a_associated.tif"));
    EXPECT_EQ(sets.ReadDescription("copy"), "second");
    EXPECT_EQ(sets.ReadDescription("s"), "first set");
    fs::create_directories(root / "bare");
    EXPECT_EQ(sets.ReadDescription("bare"), "No description for this set");
    EXPECT_EQ(sets.List(), (std::vector<std::string>{"bare", "copy", "s"}));
    ASSERT_TRUE(sets.Load("copy"));
    EXPECT_EQ(sets.Associations()[0].crc, 0x77u);
    EXPECT_TRUE(sink.messages.empty());
}

TEST_F(ReplacementSetsTest, ActivationKeepsListOrderAndDeleteRemovesTheEntrysFiles) {
    LoadedSet({"x.tif", "y.PNG", "z.tiff"});
    ASSERT_TRUE(sets.Associate(1, Pattern(9, 3, 5)));
    ASSERT_TRUE(sets.Associate(2, Pattern(9, 3, 5)));
    ASSERT_TRUE(sets.Associate(2, Pattern(9, 6, 1)));  // again: the dump is overwritten
    const std::vector<Vdp1ReplacementTexture> list = sets.ActivationList();
    ASSERT_EQ(list.size(), 3u);
    const char* names[] = {"x.tif", "y.PNG", "z.tiff"};
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(list[i].fileName, (root / "s" / names[i]).string());
    EXPECT_EQ(list[0].crc, 0xFFFFFFFFu);
    EXPECT_EQ(list[1].crc, 9u);
    EXPECT_EQ(list[1].colorCtrl, 0x8000u);
    for (const auto& [dump, width, height] : {std::tuple{"y_associated.tif", 3u, 5u}, {"z.tiff_associated.tif", 6u, 1u}}) {
        TIFF* tiff = TIFFOpen((root / "s" / dump).string().c_str(), "r");
        ASSERT_NE(tiff, nullptr) << dump;
        uint32_t w = 0, h = 0;
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &w);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &h);
        std::vector<uint32_t> texels(size_t(w) * h);
        EXPECT_TRUE(TIFFReadRGBAImage(tiff, w, h, texels.data(), 0));
        TIFFClose(tiff);
        EXPECT_EQ(std::tie(w, h), std::tie(width, height)) << dump;
        EXPECT_EQ(texels[0], 0x80000080u) << dump;  // red at half alpha, kept unassociated: the reader premultiplies
    }
    ASSERT_TRUE(sets.Delete(1));
    EXPECT_FALSE(fs::exists(root / "s/y.PNG") || fs::exists(root / "s/y_associated.tif"));
    EXPECT_TRUE(fs::exists(root / "s/z.tiff_associated.tif"));
    EXPECT_EQ(sets.ActivationList()[1].fileName, (root / "s/z.tiff").string());
    sets.Unload();
    EXPECT_TRUE(sets.ActivationList().empty());
    EXPECT_TRUE(sink.messages.empty());
}

}  // namespace
}  // namespace vdpgl::ui
