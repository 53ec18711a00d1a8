// CVdp1CharacterPattern: the texture cache protocol, table mapping and the
// editor's accessors. The decoders are in vdp1_pattern_decoders.cpp.
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <optional>

#include "common/consistency_check.h"
#include "common/console_vram.h"
#include "common/frame_profile.h"
#include "platform/message_box.h"
#include "vdp1/vdp1_character_pattern/texture_dump.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_part.h"
#include "vdp2/vdp2.h"

namespace vdpgl {

namespace {

constexpr uint32_t kTableMask = CVdp1::kPatternTableSize - 1;
constexpr const char* kModeLabels[6] = {"\t16 colors color bank\n", "\t16 colors LUT\n",
                                        "\t64 colors color bank\n", "\t128 colors color bank\n",
                                        "\t256 colors color bank\n", "\t32K colors\n"};

bool IsColorBankMode(uint32_t mode) { return mode == 0 || (mode >= 2 && mode <= 4); }

// Visits the table entries of every 8-byte unit that a pattern's data
// touches, the partial last one included, and at least the first; data
// running past the end of VRAM wraps to 0.
template <typename Visit>
void ForEachEntry(uint32_t startAddress, uint32_t endAddress, Visit visit) {
    uint32_t i = startAddress >> 3;
    const uint32_t end = (endAddress + 7) >> 3;
    do {
        visit(i & kTableMask);
        ++i;
    } while (i < end);
}

}  // namespace

const std::array<CVdp1CharacterPattern::TextureDecoder, 6> CVdp1CharacterPattern::kTextureDecoders = {
    &CVdp1CharacterPattern::DecodeTexture16ColorsColorBank,  &CVdp1CharacterPattern::DecodeTexture16ColorsLut,
    &CVdp1CharacterPattern::DecodeTexture64ColorsColorBank,  &CVdp1CharacterPattern::DecodeTexture128ColorsColorBank,
    &CVdp1CharacterPattern::DecodeTexture256ColorsColorBank, &CVdp1CharacterPattern::DecodeTexture32KColors};
const std::array<CVdp1CharacterPattern::ImageDecoder, 6> CVdp1CharacterPattern::kImageDecoders = {
    &CVdp1CharacterPattern::DecodeImage16ColorsColorBank,  &CVdp1CharacterPattern::DecodeImage16ColorsLut,
    &CVdp1CharacterPattern::DecodeImage64ColorsColorBank,  &CVdp1CharacterPattern::DecodeImage128ColorsColorBank,
    &CVdp1CharacterPattern::DecodeImage256ColorsColorBank, &CVdp1CharacterPattern::DecodeImage32KColors};

CVdp1CharacterPattern::Statics CVdp1CharacterPattern::statics;
std::atomic<int> CVdp1CharacterPattern::patternCount{0};

CVdp1CharacterPattern::CVdp1CharacterPattern() { patternCount.fetch_add(1, std::memory_order_relaxed); }

CVdp1CharacterPattern::~CVdp1CharacterPattern() {
    statics.log.Log("destroying CVdp1CharacterPattern\n");
    Unmap();
    while (textures) DeleteTexture(textures);
    while (CVdp1CharacterPattern* variant = nextVariant) {
        nextVariant = variant->nextVariant;
        variant->nextVariant = variant->primary = nullptr;
        delete variant;
    }
    patternCount.fetch_sub(1, std::memory_order_relaxed);
}

void CVdp1CharacterPattern::Unmap() {
    if (!mapped) return;
    mapped = false;
    statics.log.Log("unmapping texture in cache from 0x%08X to 0x%08X\n", startAddress >> 3, mappedEnd >> 3);
    CVdp1CharacterPattern** table = statics.characterPatterns;
    if (!table) return;
    ForEachEntry(startAddress, mappedEnd, [&](uint32_t i) {
        if (table[i] == this)
            table[i] = nullptr;
        else
            statics.log.Log("\ttexture emplacement overwritten in cache!!\n");
    });
}

void CVdp1CharacterPattern::DeleteTexture(CVdp1Texture* texture) {
    const uint32_t id = statics.textures.Remove(texture, textures);
    if (id && statics.renderer) statics.renderer->DeleteVdp1Texture(id);
}

void CVdp1CharacterPattern::InitializeStatics(CVdp1CharacterPattern** table, COpenGl* renderer, CVdp1* vdp1,
                                              CVdp2* vdp2) {
    statics.characterPatterns = table;
    statics.renderer = renderer;
    statics.vdp1 = vdp1;
    statics.vdp2 = vdp2;
    statics.vram = vdp1 ? &vdp1->vram : nullptr;
    // VDP1's RGB words convert exactly as colour RAM's do: one table serves both.
    statics.rgb555ToRgba = vdp2 ? vdp2->colorTable : nullptr;
    // Large enough for the biggest pattern (504 x 255 in a 512 x 256 texture).
    if (statics.texelBuffer.size() < 512u * 256u) statics.texelBuffer.resize(512u * 256u);
    statics.replacementTexturesEnabled.store(false, std::memory_order_release);
    statics.replacementTextures.clear();
    statics.ceilingReported = false;
    patternCount.store(0, std::memory_order_relaxed);
    statics.log.SetUp("vdp1_character_pattern.log", false);
}

void CVdp1CharacterPattern::EnableReplacementTextures(const std::vector<Vdp1ReplacementTexture>& textures) {
    if (!statics.vdp1) return;
    {
        std::lock_guard lock(statics.vdp1->cacheMutex);
        statics.replacementTextures = textures;
    }
    statics.vdp1->RequestCacheClear();
    statics.replacementTexturesEnabled.store(true, std::memory_order_release);
    std::vector<std::string> paths;
    paths.reserve(textures.size());
    for (const Vdp1ReplacementTexture& entry : textures) paths.push_back(entry.fileName);
    statics.images.Preload(std::move(paths));
}

void CVdp1CharacterPattern::CheckReplacementFiles() {
    if (!ReplacementTexturesEnabled() || !statics.vdp1) return;
    if (statics.replacementCheckCountdown-- > 0) return;
    statics.replacementCheckCountdown = 29;
    bool changed = false;
    {
        std::lock_guard lock(statics.vdp1->cacheMutex);
        for (const Vdp1ReplacementTexture& entry : statics.replacementTextures)
            if ((changed = statics.images.Changed(entry.fileName))) break;
    }
    if (changed) statics.vdp1->RequestCacheClear();
}

void CVdp1CharacterPattern::SetHarvestFolder(const std::string& folder) {
    statics.harvestFolder = folder;
    statics.harvested.clear();
    statics.harvestFailed = false;
    if (folder.empty()) return;
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
}

void CVdp1CharacterPattern::Harvest() {
    if (statics.harvestFolder.empty() || statics.harvestFailed || width <= 0 || height <= 0) return;
    if (!statics.harvested.insert(uint64_t{crc} << 32 | colorCtrl).second) return;
    char name[32];
    std::snprintf(name, sizeof name, "%08X_%08X.tif", crc, colorCtrl);
    const std::string path = (std::filesystem::path(statics.harvestFolder) / name).string();
    std::error_code ec;
    if (std::filesystem::exists(path, ec)) return;  // from an earlier run
    statics.harvestBuffer.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0u);
    GetImage(statics.harvestBuffer.data());
    std::string error;
    if (!WriteTextureDump(path, statics.harvestBuffer.data(), width, height, error)) {
        // Said once; the harvest stops, the emulation goes on.
        statics.harvestFailed = true;
        platform::PostMessageBox("Texture harvest", (error + "; no more textures are dumped").c_str(),
                                 platform::MessageIcon::Error);
    }
}

void CVdp1CharacterPattern::DisableReplacementTextures() {
    statics.images.StopPreload();
    if (!statics.vdp1) return;
    {
        std::lock_guard lock(statics.vdp1->cacheMutex);
        statics.replacementTextures.clear();
    }
    statics.replacementTexturesEnabled.store(false, std::memory_order_release);
    statics.vdp1->RequestCacheClear();
}

int32_t CVdp1CharacterPattern::TextureDimension(int32_t used) {
    return used <= 0 ? 0 : static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(used)));
}

int32_t CVdp1CharacterPattern::DataSize(uint32_t colorMode, int32_t width, int32_t height) {
    switch (colorMode) {
    case 0:
    case 1: return width * height / 2;
    case 2:
    case 3:
    case 4: return width * height;
    case 5: return width * height * 2;
    default: return 0;
    }
}

uint32_t CVdp1CharacterPattern::TextureKey(const CVdp1SpritePart& part) {
    if (IsColorBankMode(part.colorMode)) return part.ComputeVdp2PaletteIndex();
    return part.colorMode == 1 ? part.colorCtrl : 0u;
}

bool CVdp1CharacterPattern::HoldsCharacterOf(const CVdp1SpritePart& part) const {
    return characterSize == part.characterSize && startAddress == part.characterAddress &&
           endAddress == part.characterAddress + dataSize && colorMode == part.colorMode;
}

int CVdp1CharacterPattern::VariantCount() const {
    int n = 0;
    for (const CVdp1CharacterPattern* p = this; p; p = p->nextVariant) ++n;
    return n;
}

void CVdp1CharacterPattern::BeginWalk() {
    ReleaseRetiredPatterns();
    statics.textures.BeginWalk();
}

CVdp1CharacterPattern* CVdp1CharacterPattern::UseTexture(CVdp1SpritePart& part) {
    part.textureRect = {};
    part.uMax = part.vMax = 0.0f;
    CVdp1CharacterPattern** table = statics.characterPatterns;
    if (!table) return nullptr;
    const uint32_t index = (part.characterAddress >> 3) & kTableMask;
    CVdp1CharacterPattern* group = table[index];
    // Changed data, or a pattern that only runs through this address.
    if (group && (group->modified.load(std::memory_order_relaxed) || group->startAddress != part.characterAddress)) {
        Retire(group);
        group = nullptr;
    }
    CVdp1CharacterPattern* pattern = group;
    CVdp1Texture* texture = nullptr;
    while (pattern && pattern->Compare(part, &texture) == kPatternOtherPart) pattern = pattern->nextVariant;
    const bool found = texture != nullptr;
    // Decoding, uploading and giving back are the textures' share of a frame.
    std::optional<CShortPhaseScope> decoding;
    if (!found) {
        decoding.emplace(kPhaseTextures);
        if (!RoomForAnotherTexture()) return pattern;
        if (!pattern) {
            if (group && group->VariantCount() >= kMaxVariants) {
                Retire(group);
                group = nullptr;
            }
            pattern = new CVdp1CharacterPattern;
            if (group) {
                pattern->primary = group;
                pattern->nextVariant = group->nextVariant;
                group->nextVariant = pattern;
            }
            texture = pattern->GenerateTexture(part);
        } else if (!pattern->textures) {
            texture = pattern->GenerateTexture(part);  // every texture was given back
        } else {
            texture = pattern->AddTexture(part);
        }
    }
    if (texture) {
        statics.textures.Touch(texture);
        if (statics.renderer) part.textureRect = statics.renderer->Vdp1TextureRect(texture->id);
        part.uMax = pattern->uMax;
        part.vMax = pattern->vMax;
    }
    // Only a new texture makes room: giving back on every use would throw
    // out, part by part, the textures the rest of this list needs next.
    if (!found) GiveBackTextures();
    return pattern;
}

bool CVdp1CharacterPattern::RoomForAnotherTexture() {
    // A list whose one frame needs more than twice the budget is no game's:
    // its further new textures are not made (those parts are not drawn), so
    // that neither the frame's memory nor its decoding explodes.
    if (statics.textures.WalkBytes() < 2 * statics.textures.Budget()) return true;
    if (!statics.ceilingReported) {
        statics.ceilingReported = true;
        std::fprintf(stderr,
                     "vdpgl: the sprites of one frame need more than %llu MiB of textures; those beyond are not "
                     "drawn (VDPGL_TEXTURE_MEMORY_MB sets half of that)\n",
                     static_cast<unsigned long long>(2 * statics.textures.Budget() >> 20));
    }
    return false;
}

void CVdp1CharacterPattern::Retire(CVdp1CharacterPattern* pattern) {
    pattern->Unmap();
    // Only what this walk's parts draw with must outlive the table entry.
    bool held = false;
    for (CVdp1CharacterPattern* p = pattern; p; p = p->nextVariant) {
        for (CVdp1Texture* t = p->textures, *next = nullptr; t; t = next) {
            next = t->nextOfPattern;
            if (t->lastUsedWalk == statics.textures.Walk()) {
                statics.textures.Hold(t);
                held = true;
            } else {
                p->DeleteTexture(t);
            }
        }
    }
    if (held)
        statics.retired.push_back(pattern);
    else
        delete pattern;
}

void CVdp1CharacterPattern::ReleaseRetiredPatterns() {
    for (CVdp1CharacterPattern* p : statics.retired) delete p;
    statics.retired.clear();
}

void CVdp1CharacterPattern::GiveBackTextures() {
    CVdp1TextureStore& store = statics.textures;
    while (store.OverBudget()) {
        CVdp1Texture* texture = store.Oldest();
        if (!texture || texture->lastUsedWalk == statics.textures.Walk()) break;
        CVdp1CharacterPattern* pattern = texture->pattern;
        pattern->DeleteTexture(texture);
        if (!pattern->textures) DropIfEmpty(pattern);
    }
}

void CVdp1CharacterPattern::DropIfEmpty(CVdp1CharacterPattern* pattern) {
    if (CVdp1CharacterPattern* owner = pattern->primary) {
        CVdp1CharacterPattern** link = &owner->nextVariant;
        while (*link != pattern) link = &(*link)->nextVariant;
        *link = pattern->nextVariant;
        pattern->nextVariant = nullptr;
        delete pattern;
    } else if (!pattern->nextVariant) {
        delete pattern;  // unmaps itself
    }
}

void CVdp1CharacterPattern::PrepareTexels() {
    const size_t needed = static_cast<size_t>(textureWidth) * static_cast<size_t>(textureHeight);
    if (statics.texelBuffer.size() < needed) statics.texelBuffer.resize(needed);
    texels = statics.texelBuffer.data();
}

void CVdp1CharacterPattern::RunTextureDecoder(uint32_t mode, const CVdp1SpritePart& part) {
    VDPGL_CHECK_OR_RETURN(mode <= 5, "vdp1_character_pattern");
    (this->*kTextureDecoders[mode])(part);
    statics.log.Log("%s", kModeLabels[mode]);
    // The padding is never sampled; clearing it keeps every texture the same
    // from run to run.
    for (int32_t y = 0; y < height; ++y)
        std::fill(texels + y * textureWidth + width, texels + (y + 1) * textureWidth, 0u);
    std::fill(texels + height * textureWidth, texels + textureHeight * textureWidth, 0u);
}

CVdp1Texture* CVdp1CharacterPattern::FileTexture(const CVdp1SpritePart& part, uint32_t id, bool adding) {
    const uint32_t key = TextureKey(part);
    if (statics.textures.Find(this, key)) {
        // A second texture for one palette would leak the first.
        if (statics.renderer) statics.renderer->DeleteVdp1Texture(id);
        ReportFailedCheck(IsColorBankMode(part.colorMode) ? "cbModeOpenglTextureIds[part->ComputeVdp2PaletteIndex()]==0"
                          : part.colorMode == 1         ? "!found"
                                                        : "rgbModeOpenglTextureId==0",
                          "vdp1_character_pattern");
        return nullptr;
    }
    if (part.colorMode == 1)
        statics.log.Log(adding ? "\tlutModeOpenglTextureIds.push_back\n" : "lutModeOpenglTextureIds[0x%X]=%d\n",
                        part.colorCtrl, id);
    const uint64_t texelBytes = uint64_t{4} * static_cast<uint64_t>(textureWidth) * static_cast<uint64_t>(textureHeight);
    return statics.textures.Add(this, textures, key, id, texelBytes);
}

CVdp1Texture* CVdp1CharacterPattern::GenerateTexture(const CVdp1SpritePart& part) {
    partColorCtrl = colorCtrl = part.colorCtrl;
    partEndCodeDisabled = part.endCodeDisabled;
    characterSize = static_cast<uint16_t>(part.characterSize);
    colorMode = part.colorMode;
    transparentPixelDisabled = part.transparentPixelDisabled;
    width = static_cast<int32_t>(((characterSize & 0x3F00) >> 8) * 8);
    height = characterSize & 0xFF;
    dataSize = static_cast<uint32_t>(DataSize(colorMode, width, height));
    startAddress = part.characterAddress;
    endAddress = startAddress + dataSize;

    // The CRC runs over the data as the host array holds it; data past the
    // end of VRAM continues at address 0.
    const uint8_t* data = statics.vram->Data();
    const uint32_t first = startAddress & CConsoleVram::kMask;
    const uint32_t head = std::min<uint32_t>(dataSize, CConsoleVram::kSize - first);
    uLong sum = crc32(0L, Z_NULL, 0);
    sum = crc32(sum, data + first, head);
    if (head < dataSize) sum = crc32(sum, data, dataSize - head);
    crc = static_cast<uint32_t>(sum);

    Vdp1ReplacementTexture replacement;
    if (ReplacementTexturesEnabled() && FindReplacementTexture(part, replacement) && UseReplacement(replacement)) {
        // The texture is the set's image, at the image's size.
    } else {
        textureWidth = TextureDimension(width);
        textureHeight = TextureDimension(height);
        uMax = textureWidth ? static_cast<float>(width) / static_cast<float>(textureWidth) : 0.0f;
        vMax = textureHeight ? static_cast<float>(height) / static_cast<float>(textureHeight) : 0.0f;
        PrepareTexels();
        statics.log.Log("GenerateTexture: %d*%d (%d*%d)\n", width, height, textureWidth, textureHeight);
        RunTextureDecoder(colorMode, part);
        Harvest();
    }

    uint32_t id = 0;
    if (statics.renderer) statics.renderer->CreateVdp1Texture(textureHeight, textureWidth, texels, &id);
    texels = nullptr;
    CVdp1Texture* texture = FileTexture(part, id, false);
    MapInTable();
    return texture;
}

bool CVdp1CharacterPattern::UseReplacement(const Vdp1ReplacementTexture& replacement) {
    std::string error;
    const std::shared_ptr<const ReplacementPicture> picture = statics.images.Get(replacement.fileName, error);
    // An image that cannot be read is said once; the pattern is decoded from
    // VRAM instead.
    if (!error.empty())
        platform::PostMessageBox("Replacement texture", (error + "; the game's own texture is drawn").c_str(),
                                 platform::MessageIcon::Exclamation);
    if (!picture) return false;
    textureWidth = TextureDimension(picture->width);
    textureHeight = TextureDimension(picture->height);
    uMax = static_cast<float>(picture->width) / static_cast<float>(textureWidth);
    vMax = static_cast<float>(picture->height) / static_cast<float>(textureHeight);
    PrepareTexels();
    // The image's rows, then the padding cleared as for a decoded pattern.
    allBlack = 1;
    for (int32_t y = 0; y < textureHeight; ++y) {
        uint32_t* row = texels + static_cast<size_t>(y) * static_cast<size_t>(textureWidth);
        if (y < picture->height) {
            const uint32_t* from = picture->texels.data() + static_cast<size_t>(y) * static_cast<size_t>(picture->width);
            std::copy(from, from + picture->width, row);
            std::fill(row + picture->width, row + textureWidth, 0u);
            for (int32_t x = 0; x < picture->width && allBlack; ++x) allBlack = from[x] == kOpaqueBlack;
        } else {
            std::fill(row, row + textureWidth, 0u);
        }
    }
    statics.log.Log("GenerateTexture: replacement %s, %d*%d\n", replacement.fileName.c_str(), picture->width,
                    picture->height);
    return true;
}

void CVdp1CharacterPattern::MapInTable() {
    // A variant's units are mapped to the table's pattern of its address.
    CVdp1CharacterPattern* owner = primary ? primary : this;
    const uint32_t end = owner->mapped ? std::max(owner->mappedEnd, endAddress) : endAddress;
    statics.log.Log("\tcharacter address: 0x%08X\n", startAddress);
    statics.log.Log("\tmapping from 0x%08X to 0x%08X\n", startAddress >> 3, end >> 3);
    CVdp1CharacterPattern** table = statics.characterPatterns;
    ForEachEntry(startAddress, end, [&](uint32_t i) {
        if (table[i] && table[i] != owner) {
            statics.log.Log("\ttexture overwritten in cache!!, deleting overwritten texture\n");
            Retire(table[i]);  // empties its own entries
        }
        table[i] = owner;
    });
    owner->mappedEnd = end;
    owner->mapped = true;
}

CVdp1Texture* CVdp1CharacterPattern::AddTexture(const CVdp1SpritePart& part) {
    if (ReplacementTexturesEnabled()) return nullptr;
    partColorCtrl = part.colorCtrl;
    partEndCodeDisabled = part.endCodeDisabled;
    PrepareTexels();
    statics.log.Log("AddTexture: %d*%d (%d*%d)\n", width, height, textureWidth, textureHeight);
    RunTextureDecoder(part.colorMode, part);
    uint32_t id = 0;
    if (statics.renderer) statics.renderer->CreateVdp1Texture(textureHeight, textureWidth, texels, &id);
    texels = nullptr;
    return FileTexture(part, id, true);
}

CVdp1Texture* CVdp1CharacterPattern::FindTexture(uint32_t key) const {
    // Most patterns have a texture or two: looking through them costs less
    // than hashing. One with many palettes has the store's map.
    constexpr int kLookedThrough = 4;
    int looked = 0;
    for (CVdp1Texture* t = textures; t; t = t->nextOfPattern) {
        if (t->key == key) return t;
        if (++looked == kLookedThrough) return statics.textures.Find(this, key);
    }
    return nullptr;
}

Vdp1PatternMatch CVdp1CharacterPattern::Compare(const CVdp1SpritePart& part, CVdp1Texture** found) const {
    statics.log.Log("comparing pattern data\n");
    if (!HoldsCharacterOf(part)) {
        statics.log.Log("\tdifferent part\n");
        return kPatternOtherPart;
    }
    CVdp1Texture* texture = textures ? FindTexture(TextureKey(part)) : nullptr;
    if (found) *found = texture;
    if (!texture) {
        statics.log.Log("\tdifferent palette\n");
        return kPatternOtherPalette;
    }
    statics.log.Log("\tequal\n");
    return kPatternEqual;
}

bool CVdp1CharacterPattern::FindReplacementTexture(const CVdp1SpritePart& part, Vdp1ReplacementTexture& found) const {
    for (const Vdp1ReplacementTexture& entry : statics.replacementTextures) {
        if (entry.crc == crc && entry.colorCtrl == part.colorCtrl) {
            statics.log.Log("replacement texture found\n");
            found = entry;
            return true;
        }
    }
    if (!statics.replacementTextures.empty()) statics.log.Log("replacement texture not found\n");
    return false;
}

void CVdp1CharacterPattern::GetImage(uint32_t* destination) const {
    if (!destination) return;
    VDPGL_CHECK_OR_RETURN(colorMode <= 5, "vdp1_character_pattern");
    (this->*kImageDecoders[colorMode])(destination);
}

void CVdp1CharacterPattern::GetInformation(char* buffer, std::size_t size) const {
    if (!buffer || !size) return;
    static constexpr const char* kNames[6] = {"16 colors color bank\n", "16 colors lookup table\n",
                                              "64 colors color bank\n", "128 colors color bank\n",
                                              "256 colors color bank\n", "32K colors\n"};
    VDPGL_CHECK_OR_RETURN(colorMode <= 5, "vdp1_character_pattern");
    char detail[64] = "";
    if (colorMode == 1)
        std::snprintf(detail, sizeof detail, "LUT address: 0x%X\n", partColorCtrl * 8);
    else if (colorMode != 5)
        std::snprintf(detail, sizeof detail, "color bank: 0x%X\n", partColorCtrl);
    std::snprintf(buffer, size, "Color mode: \n%s%ssize: %dx%d\n", kNames[colorMode], detail, width, height);
}

}  // namespace vdpgl
