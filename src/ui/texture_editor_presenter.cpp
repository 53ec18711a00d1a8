#include "ui/texture_editor_presenter.h"

#include <cstdio>
#include <filesystem>

#include "vdp1/vdp1_character_pattern/replacement_image.h"
#include "vdp1/vdp1_character_pattern/texture_dump.h"

namespace vdpgl::ui {

PicturePlacement FitPicture(int width, int height, const PreviewBox& box) {
    if (width <= 0 || height <= 0) return {box.x, box.y, 0, 0};
    // In integers, so that a side the scale makes exactly the box's is not truncated one short.
    const int64_t w = width, h = height;
    if (w * box.height <= int64_t{box.width} * h)  // no wider than the box: its height fills the box
        return {box.x, box.y, static_cast<int>(w * box.height / h), box.height};
    return {box.x, box.y, box.width, static_cast<int>(h * box.width / w)};
}

CTextureEditorPresenter::CTextureEditorPresenter(CTextureEditorTarget& target) : target(target) {
    Refresh();
    FillSets();
    FillAssociations(-1);
}

PicturePlacement CTextureEditorPresenter::PatternPlacement() const {
    if (zoom) return FitPicture(patternPicture.width, patternPicture.height, kPatternBox);
    return {kPatternBox.x, kPatternBox.y, patternPicture.width, patternPicture.height};
}

bool CTextureEditorPresenter::SetLoaded() {
    bool loaded = false;
    target.WithSets([&](CReplacementSets& sets) { loaded = sets.IsLoaded(); });
    return loaded;
}

void CTextureEditorPresenter::Refresh() {
    const uint32_t selected = selectedPattern >= 0 ? addresses[size_t(selectedPattern)] : 0;
    const bool hadSelection = selectedPattern >= 0;
    addresses = target.CachedPatterns();
    patternRows.clear();
    selectedPattern = -1;
    for (size_t i = 0; i < addresses.size(); ++i) {
        char row[32];
        std::snprintf(row, sizeof row, "texture @0x%08X", addresses[i]);
        patternRows.push_back(row);
        if (hadSelection && addresses[i] == selected) selectedPattern = int(i);
    }
    if (selectedPattern >= 0)
        ShowPattern();
    else
        ClearPattern();
}

void CTextureEditorPresenter::ClearPattern() {
    information.clear();
    patternPicture = {};
}

void CTextureEditorPresenter::SelectPattern(int row) {
    if (row < 0 || size_t(row) >= addresses.size()) return;
    selectedPattern = row;
    ShowPattern();
}

// A pattern gone from the cache since the list was filled leaves the preview as it was.
void CTextureEditorPresenter::ShowPattern() {
    PatternSnapshot pattern;
    std::string text;
    if (!target.Pattern(addresses[size_t(selectedPattern)], pattern, text)) return;
    information = text;
    patternPicture = {pattern.width, pattern.height, std::move(pattern.rgba)};
}

void CTextureEditorPresenter::ToggleZoom() {
    zoom = !zoom;
    if (selectedPattern >= 0) ShowPattern();
}

void CTextureEditorPresenter::FillSets() {
    target.WithSets([&](CReplacementSets& sets) { setRows = sets.List(); });
    selectedSet = -1;
    setDescription.clear();
}

void CTextureEditorPresenter::SelectSet(int row) {
    if (row < 0 || size_t(row) >= setRows.size()) return;
    selectedSet = row;
    target.WithSets([&](CReplacementSets& sets) { setDescription = sets.ReadDescription(setRows[size_t(row)]); });
}

// The entry names in list order; the selection (and its previews) kept at this row if it still exists.
void CTextureEditorPresenter::FillAssociations(int keepSelection) {
    associationRows.clear();
    target.WithSets([&](CReplacementSets& sets) {
        for (const TextureAssociation& entry : sets.Associations()) associationRows.push_back(entry.name);
        groupTitle = std::string("Current replacement texture set: ") + sets.CurrentSetName();
    });
    selectedAssociation = -1;
    replacement = replaced = {};
    replacedText.clear();
    crcText.clear();
    if (keepSelection >= 0) SelectAssociation(keepSelection);
}

bool CTextureEditorPresenter::ReadPicture(const std::string& path, EditorPicture& picture) {
    vdpgl::ReplacementPicture read;
    std::string error;
    if (!ReadReplacementImage(path, read, error)) {
        Error(error.c_str());
        return false;
    }
    picture = {read.width, read.height, std::move(read.texels)};
    return true;
}

void CTextureEditorPresenter::SelectAssociation(int row) {
    if (row < 0 || size_t(row) >= associationRows.size()) return;
    TextureAssociation entry;
    std::string folder;
    target.WithSets([&](CReplacementSets& sets) {
        if (size_t(row) >= sets.Associations().size()) return;
        entry = sets.Associations()[size_t(row)];
        folder = std::filesystem::path(sets.ActivationList()[size_t(row)].fileName).parent_path().string();
    });
    if (folder.empty()) return;
    selectedAssociation = row;
    replacement = replaced = {};
    ReadPicture((std::filesystem::path(folder) / entry.name).string(), replacement);
    const bool hasDump = entry.replacedTexture != "none";
    if (hasDump) ReadPicture((std::filesystem::path(folder) / entry.replacedTexture).string(), replaced);
    replacedText = hasDump ? "" : kNoDumpText;
    char text[64];
    std::snprintf(text, sizeof text, "crc: 0x%X\ncolor control: 0x%X\n", entry.crc, entry.colorCtrl);
    crcText = text;
}

void CTextureEditorPresenter::Ask(Pending what, EditorRequest question) {
    pending = what;
    request = std::move(question);
}

void CTextureEditorPresenter::LoadSet() {
    if (selectedSet < 0) return Error(CReplacementSets::kNoSetSelected);
    target.WithSets([&](CReplacementSets& sets) { sets.Load(setRows[size_t(selectedSet)]); });
    FillAssociations(-1);
}

void CTextureEditorPresenter::SaveSet() {
    if (!SetLoaded()) return Error(CReplacementSets::kNotLoaded);
    target.WithSets([](CReplacementSets& sets) { sets.Save(); });
}

void CTextureEditorPresenter::SaveSetAs() {
    EditorRequest question{EditorRequest::kSetDetails, kSaveSetAsTitle, "", "", ""};
    bool loaded = false;
    target.WithSets([&](CReplacementSets& sets) {
        loaded = sets.IsLoaded();
        question.name = sets.CurrentSetName();
        question.description = sets.Description();
    });
    if (!loaded) return Error(CReplacementSets::kNotLoaded);
    Ask(Pending::kSaveAs, std::move(question));
}

void CTextureEditorPresenter::NewSet() { Ask(Pending::kNewSet, {EditorRequest::kSetDetails, kNewSetTitle, "", "", ""}); }

void CTextureEditorPresenter::AnswerSetDetails(const std::string& name, const std::string& description) {
    const Pending what = pending;
    if (request.kind != EditorRequest::kSetDetails) return;
    CancelRequest();
    target.WithSets([&](CReplacementSets& sets) {
        if (what == Pending::kNewSet)
            sets.Create(name, description);
        else
            sets.SaveAs(name, description);
    });
    FillSets();
    FillAssociations(what == Pending::kSaveAs ? selectedAssociation : -1);
}

void CTextureEditorPresenter::AddImage() {
    if (!SetLoaded()) return Error(CReplacementSets::kNotLoaded);
    Ask(Pending::kAddImage, {EditorRequest::kOpenFile, kAddImageTitle, kAddImageFilter, "", ""});
}

void CTextureEditorPresenter::Dump() {
    if (selectedPattern < 0) return Error(CReplacementSets::kNoPattern);
    dumpAddress = addresses[size_t(selectedPattern)];
    Ask(Pending::kDump, {EditorRequest::kSaveFile, kDumpTitle, kDumpFilter, "", ""});
}

void CTextureEditorPresenter::AnswerFile(const std::string& path) {
    const Pending what = pending;
    if (request.kind != EditorRequest::kOpenFile && request.kind != EditorRequest::kSaveFile) return;
    CancelRequest();
    if (what == Pending::kAddImage) {
        target.WithSets([&](CReplacementSets& sets) { sets.Add(path); });
        return FillAssociations(selectedAssociation);
    }
    PatternSnapshot pattern;
    std::string text, error;
    if (!target.Pattern(dumpAddress, pattern, text)) return;  // gone since it was chosen
    if (!WriteTextureDump(path, pattern.rgba.data(), pattern.width, pattern.height, error)) Error(error.c_str());
}

void CTextureEditorPresenter::DeleteImage() {
    if (selectedAssociation < 0) return Error(CReplacementSets::kNoEntry);
    target.WithSets([&](CReplacementSets& sets) { sets.Delete(size_t(selectedAssociation)); });
    FillAssociations(-1);
}

void CTextureEditorPresenter::Associate() {
    if (selectedAssociation < 0 || selectedPattern < 0) return;
    PatternSnapshot pattern;
    std::string text;
    if (!target.Pattern(addresses[size_t(selectedPattern)], pattern, text)) return;
    target.WithSets([&](CReplacementSets& sets) { sets.Associate(size_t(selectedAssociation), pattern); });
    FillAssociations(selectedAssociation);
}

void CTextureEditorPresenter::ActivateSet() {
    std::vector<Vdp1ReplacementTexture> list;
    target.WithSets([&](CReplacementSets& sets) { list = sets.ActivationList(); });
    target.Activate(list);
}

void CTextureEditorPresenter::UnloadSet() {
    if (!SetLoaded()) return Error(CReplacementSets::kNotLoaded);
    target.WithSets([](CReplacementSets& sets) { sets.Unload(); });
    FillAssociations(-1);
}

}  // namespace vdpgl::ui
