#include "ui/replacement_sets.h"

// char strings only, so no wide-character converter; the parser's member
// definitions are compiled here, the header's only user.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#include <SimpleIni.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "vdp1/vdp1_character_pattern/texture_dump.h"

namespace fs = std::filesystem;

namespace vdpgl::ui {

namespace {

constexpr const char* kInfos = "infos";
constexpr const char* kNone = "none";
constexpr uint32_t kMatchesNothing = 0xFFFFFFFFu;
// The section names are read as one list of zero-terminated names of at most
// this many bytes; names past it are not part of the set.
constexpr size_t kSectionListBytes = 10000;
// Longest value texts kept: descriptions and file names.
constexpr size_t kDescriptionChars = 9999;
constexpr size_t kFileNameChars = 4999;

bool EqualsNoCase(const std::string& a, const char* b) {
    size_t i = 0;
    for (; i < a.size() && b[i]; ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
    return i == a.size() && !b[i];
}

bool EndsWithNoCase(const std::string& s, const char* suffix) {
    const size_t n = std::char_traits<char>::length(suffix);
    return s.size() >= n && EqualsNoCase(s.substr(s.size() - n), suffix);
}

// A name that stays inside the folder it is joined to.
bool IsPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find_first_of("/\\:") == std::string::npos &&
           name.find('\0') == std::string::npos;
}

// "0x" followed by one to eight hexadecimal digits; anything else matches nothing.
uint32_t ParseHex(const char* text) {
    if (!text || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return kMatchesNothing;
    uint32_t value = 0;
    int digits = 0;
    for (const char* p = text + 2; *p; ++p, ++digits) {
        const int c = std::tolower(static_cast<unsigned char>(*p));
        if (digits == 8 || !std::isxdigit(c)) return kMatchesNothing;
        value = value << 4 | static_cast<uint32_t>(c <= '9' ? c - '0' : c - 'a' + 10);
    }
    return digits ? value : kMatchesNothing;
}

std::string FormatHex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

void Configure(CSimpleIniA& ini) {
    ini.SetUnicode(false);
    ini.SetMultiKey(false);
    ini.SetMultiLine(true);  // descriptions come from a multi-line edit
    ini.SetSpaces(false);     // key=value, as private-profile files have it
}

bool CopyOver(const fs::path& from, const fs::path& to) {
    std::error_code ec;
    if (!fs::is_regular_file(from, ec)) return false;
    if (fs::equivalent(from, to, ec)) return true;
    return fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
}

}  // namespace

CReplacementSets::CReplacementSets(std::string root, CMessageSink& sink) : root(std::move(root)), sink(sink) {}

void CReplacementSets::Error(const std::string& text) const { sink.Message("Error", text.c_str()); }

std::string CReplacementSets::SetFolder(const std::string& set) const { return (fs::path(root) / set).string(); }

std::string CReplacementSets::IniPath(const std::string& set) const {
    return (fs::path(root) / set / (set + ".ini")).string();
}

std::vector<std::string> CReplacementSets::List() const {
    std::vector<std::string> sets;
    std::error_code ec;
    for (fs::directory_iterator it(root, ec), end; !ec && it != end; it.increment(ec))
        if (it->is_directory(ec)) sets.push_back(it->path().filename().string());
    std::sort(sets.begin(), sets.end());
    return sets;
}

std::string CReplacementSets::ReadDescription(const std::string& set) const {
    CSimpleIniA ini;
    Configure(ini);
    const char* description = nullptr;
    if (IsPlainName(set) && ini.LoadFile(IniPath(set).c_str()) == SI_OK)
        description = ini.GetValue(kInfos, "description", nullptr);
    if (!description) return "No description for this set";
    return std::string(description).substr(0, kDescriptionChars);
}

bool CReplacementSets::Load(const std::string& set) {
    if (set.empty()) {
        Error(kNoSetSelected);
        return false;
    }
    if (!IsPlainName(set) || set == kNoSetLoaded) {
        Error(kBadSetName);
        return false;
    }
    std::error_code ec;
    CSimpleIniA ini;
    Configure(ini);
    if (!fs::is_directory(SetFolder(set), ec) || !fs::is_regular_file(IniPath(set), ec) ||
        ini.LoadFile(IniPath(set).c_str()) != SI_OK) {
        Error("The set \"" + set + "\" has no readable INI file");
        return false;
    }
    CSimpleIniA::TNamesDepend sections;
    ini.GetAllSections(sections);
    sections.sort(CSimpleIniA::Entry::LoadOrder());

    std::vector<TextureAssociation> loaded;
    size_t listBytes = 0;
    for (const CSimpleIniA::Entry& section : sections) {
        const std::string name = section.pItem;
        listBytes += name.size() + 1;
        if (listBytes > kSectionListBytes) break;
        if (EqualsNoCase(name, kInfos) || !IsPlainName(name)) continue;
        TextureAssociation entry;
        entry.name = name;
        std::string replaced = ini.GetValue(name.c_str(), "replacedTexture", kNone);
        replaced = replaced.substr(0, kFileNameChars);
        entry.replacedTexture = IsPlainName(replaced) ? replaced : kNone;
        entry.crc = ParseHex(ini.GetValue(name.c_str(), "crc", nullptr));
        entry.colorCtrl = ParseHex(ini.GetValue(name.c_str(), "colorCtrl", nullptr));
        loaded.push_back(std::move(entry));
    }
    currentSetName = set;
    currentSetDescription = std::string(ini.GetValue(kInfos, "description", "")).substr(0, kDescriptionChars);
    associations = std::move(loaded);
    return true;
}

bool CReplacementSets::WriteIni(const std::string& set) const {
    CSimpleIniA ini;
    Configure(ini);
    ini.SetValue(kInfos, "description", currentSetDescription.c_str());
    // Entries with one name share one section: the later entry's keys win.
    for (const TextureAssociation& entry : associations) {
        const char* section = entry.name.c_str();
        ini.SetValue(section, "replacedTexture", entry.replacedTexture.c_str());
        ini.SetValue(section, "crc", FormatHex(entry.crc).c_str());
        ini.SetValue(section, "colorCtrl", FormatHex(entry.colorCtrl).c_str());
    }
    const std::string path = IniPath(set), temporary = path + ".tmp";
    std::error_code ec;
    if (ini.SaveFile(temporary.c_str(), false) != SI_OK) {
        fs::remove(temporary, ec);
        Error("Cannot write " + temporary);
        return false;
    }
    fs::rename(temporary, path, ec);
    if (ec) {
        fs::remove(temporary, ec);
        Error("Cannot replace " + path);
        return false;
    }
    return true;
}

bool CReplacementSets::Save() {
    if (!IsLoaded()) {
        Error(kNotLoaded);
        return false;
    }
    return WriteIni(currentSetName);
}

// A new set's name must be usable as a folder and free; an existing name
// leaves no set loaded.
bool CReplacementSets::CheckNewSet(const std::string& name) {
    if (!IsPlainName(name) || name == kNoSetLoaded) {
        Error(kBadSetName);
        return false;
    }
    std::error_code ec;
    if (fs::exists(fs::symlink_status(SetFolder(name), ec))) {
        Error(kSetExists);
        Clear();
        return false;
    }
    fs::create_directories(SetFolder(name), ec);
    if (ec) {
        Error("Cannot create the folder " + SetFolder(name));
        return false;
    }
    return true;
}

bool CReplacementSets::Create(const std::string& name, const std::string& description) {
    if (!CheckNewSet(name)) return false;
    currentSetName = name;
    currentSetDescription = description;
    associations.clear();
    return WriteIni(name);
}

bool CReplacementSets::SaveAs(const std::string& name, const std::string& description) {
    if (!IsLoaded()) {
        Error(kNotLoaded);
        return false;
    }
    if (!CheckNewSet(name)) return false;
    const fs::path from = SetFolder(currentSetName), to = SetFolder(name);
    for (const TextureAssociation& entry : associations)
        for (const std::string* file : {&entry.name, &entry.replacedTexture})
            if (IsPlainName(*file)) CopyOver(from / *file, to / *file);  // "none" has no source
    currentSetName = name;
    currentSetDescription = description;
    return WriteIni(name);
}

bool CReplacementSets::Add(const std::string& imagePath) {
    if (!IsLoaded()) {
        Error(kNotLoaded);
        return false;
    }
    const std::string name = fs::path(imagePath).filename().string();
    if (!IsPlainName(name) || EqualsNoCase(name, kInfos) || EqualsNoCase(name, (currentSetName + ".ini").c_str())) {
        Error("\"" + name + "\" cannot name a replacement texture");
        return false;
    }
    if (!CopyOver(imagePath, fs::path(SetFolder(currentSetName)) / name)) {
        Error("Cannot copy " + imagePath + " into the set");
        return false;
    }
    associations.push_back({name, kNone, kMatchesNothing, kMatchesNothing});
    return true;
}

bool CReplacementSets::HasEntry(size_t index) {
    if (!IsLoaded()) {
        Error(kNotLoaded);
        return false;
    }
    if (index >= associations.size()) {
        Error(kNoEntry);
        return false;
    }
    return true;
}

bool CReplacementSets::Delete(size_t index) {
    if (!HasEntry(index)) return false;
    const TextureAssociation& entry = associations[index];
    std::error_code ec;
    for (const std::string* file : {&entry.name, &entry.replacedTexture})
        if (IsPlainName(*file) && *file != kNone) fs::remove(fs::path(SetFolder(currentSetName)) / *file, ec);
    associations.erase(associations.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

std::string CReplacementSets::DumpName(const std::string& imageName) {
    std::string stem = imageName;
    if (EndsWithNoCase(stem, ".tif") || EndsWithNoCase(stem, ".png")) stem.resize(stem.size() - 4);
    return stem + "_associated.tif";
}

bool CReplacementSets::Associate(size_t index, const PatternSnapshot& pattern) {
    if (!HasEntry(index)) return false;
    if (pattern.width <= 0 || pattern.height <= 0 ||
        pattern.rgba.size() != static_cast<size_t>(pattern.width) * static_cast<size_t>(pattern.height)) {
        Error(kNoPattern);
        return false;
    }
    TextureAssociation& entry = associations[index];
    entry.crc = pattern.crc;
    entry.colorCtrl = pattern.colorCtrl;
    entry.replacedTexture = DumpName(entry.name);
    std::string error;
    const std::string path = (fs::path(SetFolder(currentSetName)) / entry.replacedTexture).string();
    if (!WriteTextureDump(path, pattern.rgba.data(), pattern.width, pattern.height, error)) {
        Error(error);
        return false;
    }
    return true;
}

void CReplacementSets::Unload() {
    if (!IsLoaded()) Error(kNotLoaded);
    Clear();
}

void CReplacementSets::Clear() {
    associations.clear();
    currentSetName = kNoSetLoaded;
    currentSetDescription.clear();
}

std::vector<Vdp1ReplacementTexture> CReplacementSets::ActivationList() const {
    std::vector<Vdp1ReplacementTexture> list;
    if (!IsLoaded()) return list;
    for (const TextureAssociation& entry : associations)
        list.push_back({(fs::path(SetFolder(currentSetName)) / entry.name).string(), entry.crc, entry.colorCtrl});
    return list;
}

}  // namespace vdpgl::ui
