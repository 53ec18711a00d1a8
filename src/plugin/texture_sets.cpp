// Replacement texture sets as hosts reach them: the environment at
// initialisation and the ActivateTextureSet export.
#include "plugin/texture_sets.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>

#include "platform/message_box.h"
#include "plugin/plugin_state.h"
#include "ui/replacement_sets.h"
#include "ui/set_chooser_presenter.h"
#include "ui/texture_editor_presenter.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"
#include "vdpgl/vdpgl.h"

namespace vdpgl {

namespace {

// The set operations' refusals, shown without holding up the caller.
class CMessageBoxSink final : public ui::CMessageSink {
public:
    void Message(const char* title, const char* text) override {
        platform::PostMessageBox(title, text, platform::MessageIcon::Error);
    }
};

struct TextureSets {
    CMessageBoxSink sink;
    std::unique_ptr<ui::CReplacementSets> sets;
};

// The editor (UI thread) and the export (any thread) share the loaded set.
std::mutex setsMutex;
TextureSets* textureSets = nullptr;

int Activate(const char* name) {
    std::lock_guard lock(setsMutex);
    if (!textureSets) return 0;
    if (!name) {
        CVdp1CharacterPattern::DisableReplacementTextures();
        return 1;
    }
    if (!textureSets->sets->Load(name)) return 0;
    CVdp1CharacterPattern::EnableReplacementTextures(textureSets->sets->ActivationList());
    return 1;
}

class CChooserTarget final : public ui::CSetChooserTarget {
public:
    std::vector<ui::SetRow> Sets() override {
        std::vector<ui::SetRow> rows;
        std::lock_guard lock(setsMutex);
        if (!textureSets) return rows;
        for (const std::string& name : textureSets->sets->List())
            rows.push_back({name, textureSets->sets->ReadDescription(name)});
        return rows;
    }
    bool Activate(const std::string& name) override { return vdpgl::Activate(name.c_str()) == 1; }
    std::string SetFolder() const override { return plugin.replacementTextureSetPath; }
};

// A pattern snapshot read under the cache's lock.
bool ReadPattern(uint32_t address, ui::PatternSnapshot& pattern, std::string& information) {
    if (!plugin.vdp1) return false;
    std::lock_guard lock(plugin.vdp1->cacheMutex);
    const CVdp1CharacterPattern* p = plugin.vdp1->characterPatterns[(address & 0x7FFFF) >> 3];
    if (!p || p->GetStartAddress() != address || p->width <= 0 || p->height <= 0) return false;
    pattern.crc = p->GetCrc();
    pattern.colorCtrl = p->GetColorCtrl();
    pattern.width = p->width;
    pattern.height = p->height;
    pattern.rgba.assign(static_cast<size_t>(p->width) * static_cast<size_t>(p->height), 0u);
    p->GetImage(pattern.rgba.data());
    char text[256];
    p->GetInformation(text, sizeof text);
    information = text;
    return true;
}

// The editor's question for the emulation thread, answered at the end of a frame.
struct EditorRequest {
    std::mutex mutex;
    std::condition_variable served;
    bool pending = false;
    uint32_t address = 0;
    bool found = false;
    ui::PatternSnapshot pattern;
    std::string information;

    void Reset() {
        pending = found = false;
        address = 0;
        pattern = {};
        information.clear();
    }
};
EditorRequest editorRequest;

class CEditorTarget final : public ui::CTextureEditorTarget {
public:
    std::vector<uint32_t> CachedPatterns() override {
        std::vector<uint32_t> addresses;
        if (!plugin.vdp1) return addresses;
        std::lock_guard lock(plugin.vdp1->cacheMutex);
        const CVdp1CharacterPattern* previous = nullptr;
        for (const CVdp1CharacterPattern* p : plugin.vdp1->characterPatterns) {
            if (!p || p == previous) continue;
            previous = p;
            if (!p->modified.load(std::memory_order_relaxed)) addresses.push_back(p->GetStartAddress());
        }
        // A pattern that wraps past the end of VRAM is met at both ends.
        std::sort(addresses.begin(), addresses.end());
        addresses.erase(std::unique(addresses.begin(), addresses.end()), addresses.end());
        return addresses;
    }
    // The picture is decoded from VRAM, which the game writes between frames
    // without a lock: while frames come, the emulation thread reads it at the
    // end of one (ServeTextureEditor); when none comes within a quarter
    // second, nothing writes VRAM and it is read here.
    bool Pattern(uint32_t address, ui::PatternSnapshot& pattern, std::string& information) override {
        std::unique_lock lock(editorRequest.mutex);
        editorRequest.Reset();
        editorRequest.address = address;
        editorRequest.pending = true;
        if (editorRequest.served.wait_for(lock, std::chrono::milliseconds(250), [] { return !editorRequest.pending; })) {
            if (!editorRequest.found) return false;
            pattern = std::move(editorRequest.pattern);
            information = std::move(editorRequest.information);
            return true;
        }
        editorRequest.pending = false;
        lock.unlock();
        return ReadPattern(address, pattern, information);
    }
    void WithSets(const std::function<void(ui::CReplacementSets&)>& use) override {
        std::lock_guard lock(setsMutex);
        if (textureSets) use(*textureSets->sets);
    }
    void Activate(const std::vector<Vdp1ReplacementTexture>& list) override {
        CVdp1CharacterPattern::EnableReplacementTextures(list);
    }
    void Deactivate() override { CVdp1CharacterPattern::DisableReplacementTextures(); }
    ui::CMessageSink& Messages() override { return sink; }

private:
    CMessageBoxSink sink;
};

}  // namespace

ui::CTextureEditorTarget& TextureEditorTarget() {
    static CEditorTarget target;
    return target;
}

ui::CSetChooserTarget& SetChooserTarget() {
    static CChooserTarget target;
    return target;
}

void ServeTextureEditor() {
    std::lock_guard lock(editorRequest.mutex);
    if (!editorRequest.pending) return;
    editorRequest.found = ReadPattern(editorRequest.address, editorRequest.pattern, editorRequest.information);
    editorRequest.pending = false;
    editorRequest.served.notify_all();
}

void CreateTextureSets() {
    DestroyTextureSets();
    {
        std::lock_guard lock(setsMutex);
        textureSets = new TextureSets;
        textureSets->sets = std::make_unique<ui::CReplacementSets>(plugin.replacementTextureSetPath, textureSets->sink);
    }
    const char* harvest = std::getenv("VDPGL_DUMP_TEXTURES");
    CVdp1CharacterPattern::SetHarvestFolder(harvest ? harvest : "");
    if (const char* set = std::getenv("VDPGL_TEXTURE_SET"); set && *set && !Activate(set))
        std::fprintf(stderr, "vdpgl: VDPGL_TEXTURE_SET=%s: no such set in \"%s\" (a folder holding %s.ini); no set "
                             "is active\n",
                     set, plugin.replacementTextureSetPath.c_str(), set);
}

void DestroyTextureSets() {
    CVdp1CharacterPattern::ReplacementImages().StopPreload();
    std::lock_guard lock(setsMutex);
    delete textureSets;
    textureSets = nullptr;
}

}  // namespace vdpgl

extern "C" int ActivateTextureSet(const char* name) { return vdpgl::Activate(name); }
