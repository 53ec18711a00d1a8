#pragma once
// Replacement texture sets: named folders under a set root, each holding
// <set>.ini and the set's images. The INI has an "infos" section (key
// description) followed by one section per replacement image, named by the
// image's file name, with keys replacedTexture (the dump of the pattern it
// stands for, or "none"), crc and colorCtrl ("0x%08X").
//
// The model keeps one current set in memory. Adding, deleting and associating
// change the set's image files at once but the INI only on Save. Refusals and
// failures are told through a CMessageSink under the title "Error"; nothing
// here touches a path outside the set root, whatever names it is given.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vdp1/vdp1_character_pattern/replacement_texture.h"

namespace vdpgl::ui {

struct TextureAssociation {
    std::string name;                    // replacement image file name = INI section name
    std::string replacedTexture = "none";
    uint32_t crc = 0xFFFFFFFFu;          // 0xFFFFFFFF: matches nothing
    uint32_t colorCtrl = 0xFFFFFFFFu;
};

// Where the model's messages go (the views show them in boxes; tests record them).
class CMessageSink {
public:
    virtual void Message(const char* title, const char* text) = 0;  // error messages, title "Error"

protected:
    ~CMessageSink() = default;
};

// What an association needs of a cached pattern, taken by the caller under the cache's lock.
struct PatternSnapshot {
    uint32_t crc = 0, colorCtrl = 0;
    int width = 0, height = 0;
    std::vector<uint32_t> rgba;  // width*height texels, top row first, bytes R,G,B,A
};

inline constexpr const char* kNoSetLoaded = "no set loaded";

class CReplacementSets {
public:
    static constexpr const char* kSetExists = "A replacement texture set already exists with this name";
    static constexpr const char* kNotLoaded = "No replacement texture loaded";
    static constexpr const char* kNoEntry = "No replacement texture selected";
    static constexpr const char* kNoSetSelected = "No set selected in list";
    static constexpr const char* kNoPattern = "No VDP1 texture selected";
    static constexpr const char* kBadSetName = "A set name cannot be empty, \"no set loaded\", \".\", \"..\" or hold a path separator";

    CReplacementSets(std::string root, CMessageSink& sink);  // root = the set root folder

    // Leaf names of the root's subfolders, sorted; every subfolder counts.
    std::vector<std::string> List() const;
    // The set's description, "No description for this set" when it has none.
    std::string ReadDescription(const std::string& set) const;
    // Makes `set` current with the associations of its INI, in section order
    // ("infos" skipped; only the names within the first 10000 bytes of the
    // zero-terminated name list). False, with nothing changed, when the set
    // has no folder or no readable INI.
    bool Load(const std::string& set);
    // Rewrites the current set's INI from memory (through a temporary file).
    bool Save();
    // A new empty set, made current. An existing name is refused and leaves
    // no set loaded.
    bool Create(const std::string& name, const std::string& description);
    // A copy of the current set (INI, images and dumps) under a new name, made
    // current; the associations stay as they are. Refused like Create.
    bool SaveAs(const std::string& name, const std::string& description);
    // Copies the image into the set folder (overwriting) under its file name
    // and appends an unassociated entry.
    bool Add(const std::string& imagePath);
    // Deletes the entry's image and dump and removes the entry.
    bool Delete(size_t index);
    // Records the pattern's crc and colour control in the entry and dumps the
    // pattern beside the image as <image name>_associated.tif.
    bool Associate(size_t index, const PatternSnapshot& pattern);
    // Empties the entries and leaves no set loaded.
    void Unload();

    bool IsLoaded() const { return currentSetName != kNoSetLoaded; }
    const std::string& CurrentSetName() const { return currentSetName; }  // kNoSetLoaded when none
    const std::string& Description() const { return currentSetDescription; }
    const std::vector<TextureAssociation>& Associations() const { return associations; }
    // One {full path of the image, crc, colorCtrl} per association, in list
    // order: the first entry that matches a pattern wins.
    std::vector<Vdp1ReplacementTexture> ActivationList() const;

    // The dump's file name for a replacement image name.
    static std::string DumpName(const std::string& imageName);

private:
    // A loaded set and an entry at this index, else the message that says which is missing.
    bool HasEntry(size_t index);
    bool CheckNewSet(const std::string& name);
    void Clear();
    bool WriteIni(const std::string& set) const;
    std::string SetFolder(const std::string& set) const;
    std::string IniPath(const std::string& set) const;
    void Error(const std::string& text) const;

    std::string root;
    CMessageSink& sink;
    std::string currentSetName = kNoSetLoaded;
    std::string currentSetDescription;
    std::vector<TextureAssociation> associations;
};

}  // namespace vdpgl::ui
