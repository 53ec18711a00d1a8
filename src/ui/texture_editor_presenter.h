#pragma once
// The texture replacement editor: the VDP1 patterns in the texture cache with
// a preview of the selected one, and the management of replacement texture
// sets (list, create, load, save, copy, unload; add, delete and associate
// replacement images; switch replacement on and off in the renderer).
//
// The presenter holds everything the view shows and decides every command;
// the questions it has (a set's name and description, an image to add, a
// file to dump to) are requests: the view shows the pending one and answers
// it (or cancels), and tests answer them the same way. Refusals go to the
// target's message sink under the title "Error". Everything here runs on the
// UI thread.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ui/replacement_sets.h"
#include "vdp1/vdp1_character_pattern/replacement_texture.h"

namespace vdpgl::ui {

inline constexpr const char* kEditorTitle = "Texture replacement editor";

struct EditorPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> texels;  // RGBA, top row first
};
struct PicturePlacement {
    int x = 0, y = 0, width = 0, height = 0;  // drawn nearest-neighbour here
};

class CTextureEditorTarget {  // called on the UI thread
public:
    virtual std::vector<uint32_t> CachedPatterns() = 0;  // start addresses, address order, modified ones left out
    virtual bool Pattern(uint32_t address, PatternSnapshot& pattern, std::string& information) = 0;  // false: gone
    virtual void WithSets(const std::function<void(CReplacementSets&)>& use) = 0;  // the shared model, locked
    virtual void Activate(const std::vector<Vdp1ReplacementTexture>& list) = 0;
    virtual void Deactivate() = 0;
    virtual CMessageSink& Messages() = 0;

protected:
    ~CTextureEditorTarget() = default;
};

// The preview boxes: a picture is drawn at the box's top-left corner.
struct PreviewBox {
    int x, y, width, height;
};
inline constexpr PreviewBox kPatternBox{170, 20, 504, 255};      // white, framed in black
inline constexpr PreviewBox kReplacementBox{300, 380, 220, 223};  // pale background
inline constexpr PreviewBox kReplacedBox{535, 380, 180, 223};     // pale background
inline constexpr uint32_t kPreviewBackground = 0xFFFFFFE1u;      // texel bytes 225, 255, 255, 255: pale cyan
inline constexpr const char* kNoDumpText = "No VDP1 texture\n     associated";

// The picture scaled to fill the box's height, or its width when the picture
// is relatively wider than the box; sides truncated to whole pixels.
PicturePlacement FitPicture(int width, int height, const PreviewBox& box);

// Buttons drawn as pictures are labelled by what they do.
struct EditorButton {
    const char* label;
    const char* tooltip;
};
inline constexpr EditorButton kLoadSetButton{"Load set", "Load the texture replacement set selected in the list"};
inline constexpr EditorButton kSaveSetButton{"Save set", "Write the current set's associations to its INI file"};
inline constexpr EditorButton kSaveSetAsButton{"Save set as", "Copy the current set under a new name and make the copy current"};
inline constexpr EditorButton kAssociateButton{"Associate",
                                               "Make the selected replacement texture stand for the selected VDP1 texture"};
inline constexpr EditorButton kNewSetButton{"New set", "Create an empty texture replacement set and make it current"};
inline constexpr EditorButton kActivateButton{"Activate", "Replace textures with the current set's associations"};
inline constexpr EditorButton kUnloadButton{"Unload", "Unload the current set; its files stay on disk"};
inline constexpr EditorButton kClearButton{"Clear texture replacement associations",
                                           "Switch texture replacement off; the sets are not changed"};

inline constexpr const char* kNewSetTitle = "New texture replacement set";
inline constexpr const char* kSaveSetAsTitle = "Save set as...";
inline constexpr const char* kAddImageTitle = "Choose replacement texture to add to the set";
inline constexpr const char* kAddImageFilter = "Image files (*.{tif,tiff,png})";
inline constexpr const char* kDumpTitle = "Enter name of VDP1 texture dump";
inline constexpr const char* kDumpFilter = "TIFF files (*.{tif,tiff})";

// A question for the view: a set's name and description (the fields start
// filled with these), an existing image to open, or a file name to write.
struct EditorRequest {
    enum Kind { kNone, kSetDetails, kOpenFile, kSaveFile } kind = kNone;
    std::string title, filter;
    std::string name, description;
};

class CTextureEditorPresenter {
public:
    // Fills the pattern, set and association lists; the zoom flag is kept.
    explicit CTextureEditorPresenter(CTextureEditorTarget& target);

    // Patterns in the cache, one row each; -1: no selection.
    const std::vector<std::string>& PatternRows() const { return patternRows; }
    int SelectedPattern() const { return selectedPattern; }
    const std::string& Information() const { return information; }
    const EditorPicture& PatternPicture() const { return patternPicture; }
    PicturePlacement PatternPlacement() const;
    // The zoom flag belongs to the plug-in: it survives the dialog.
    static bool Zoom() { return zoom; }

    const std::vector<std::string>& SetRows() const { return setRows; }
    int SelectedSet() const { return selectedSet; }
    const std::string& SetDescription() const { return setDescription; }
    const std::string& GroupTitle() const { return groupTitle; }

    const std::vector<std::string>& AssociationRows() const { return associationRows; }
    int SelectedAssociation() const { return selectedAssociation; }
    const EditorPicture& ReplacementPicture() const { return replacement; }
    PicturePlacement ReplacementPlacement() const { return FitPicture(replacement.width, replacement.height, kReplacementBox); }
    const EditorPicture& ReplacedPicture() const { return replaced; }
    PicturePlacement ReplacedPlacement() const { return FitPicture(replaced.width, replaced.height, kReplacedBox); }
    // kNoDumpText when the selected entry has no dump, else empty.
    const std::string& ReplacedText() const { return replacedText; }
    const std::string& CrcText() const { return crcText; }

    // The question waiting for the view; kind kNone when there is none.
    const EditorRequest& Request() const { return request; }
    void AnswerSetDetails(const std::string& name, const std::string& description);
    void AnswerFile(const std::string& path);
    void CancelRequest() { request = {}; }

    // Commands.
    void SelectPattern(int row);
    void SelectSet(int row);
    void SelectAssociation(int row);
    void Refresh();
    void ToggleZoom();
    void LoadSet();
    void SaveSet();
    void SaveSetAs();
    void NewSet();
    void AddImage();
    void DeleteImage();
    void Associate();
    void ActivateSet();
    void UnloadSet();
    void ClearAssociations() { target.Deactivate(); }
    void Dump();

    static void ResetZoom() { zoom = false; }

private:
    enum class Pending { kNone, kNewSet, kSaveAs, kAddImage, kDump };
    void Error(const char* text) { target.Messages().Message("Error", text); }
    bool SetLoaded();
    void FillSets();
    void FillAssociations(int keepSelection);
    void ShowPattern();
    void ClearPattern();
    void Ask(Pending what, EditorRequest question);
    bool ReadPicture(const std::string& path, EditorPicture& picture);

    CTextureEditorTarget& target;
    std::vector<uint32_t> addresses;
    std::vector<std::string> patternRows, setRows, associationRows;
    int selectedPattern = -1, selectedSet = -1, selectedAssociation = -1;
    std::string information, setDescription, groupTitle, replacedText, crcText;
    EditorPicture patternPicture, replacement, replaced;
    EditorRequest request;
    Pending pending = Pending::kNone;
    uint32_t dumpAddress = 0;
    static inline bool zoom = false;
};

}  // namespace vdpgl::ui
