// CVdp1CharacterPattern: the texture cache protocol, table mapping and the
// editor's accessors. The decoders are in vdp1_pattern_decoders.cpp.
#include "vdp1/vdp1_character_pattern/vdp1_character_pattern.h"

#include <zlib.h>

#include <bit>
#include <cstdio>
#include <mutex>

#include "common/consistency_check.h"
#include "common/console_vram.h"
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

// Visits the table entries a pattern covers: from its start unit, at least
// once, up to its end unit; data running past the end of VRAM wraps to 0.
template <typename Visit>
void ForEachEntry(uint32_t startAddress, uint32_t endAddress, Visit visit) {
    uint32_t i = startAddress >> 3;
    const uint32_t end = endAddress >> 3;
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
    statics.log.Log("unmapping texture in cache from 0x%08X to 0x%08X\n", startAddress >> 3, endAddress >> 3);
    if (CVdp1CharacterPattern** table = statics.characterPatterns) {
        ForEachEntry(startAddress, endAddress, [&](uint32_t i) {
            if (table[i] == this)
                table[i] = nullptr;
            else
                statics.log.Log("\ttexture emplacement overwritten in cache!!\n");
        });
    }
    if (COpenGl* renderer = statics.renderer) {
        for (const auto& [ctrl, id] : lutModeOpenglTextureIds) renderer->DeleteVdp1Texture(id);
        for (uint32_t id : cbModeOpenglTextureIds)
            if (id) renderer->DeleteVdp1Texture(id);
        if (rgbModeOpenglTextureId) renderer->DeleteVdp1Texture(rgbModeOpenglTextureId);
    }
    patternCount.fetch_sub(1, std::memory_order_relaxed);
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
}

void CVdp1CharacterPattern::DisableReplacementTextures() {
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

CVdp1CharacterPattern* CVdp1CharacterPattern::UseTexture(const CVdp1SpritePart& part) {
    CVdp1CharacterPattern** table = statics.characterPatterns;
    if (!table) return nullptr;
    const uint32_t index = (part.characterAddress >> 3) & kTableMask;
    CVdp1CharacterPattern* entry = table[index];
    bool generate = false;
    if (!entry) {
        generate = true;
    } else if (entry->modified.load(std::memory_order_relaxed)) {
        delete entry;
        generate = true;
    } else {
        switch (entry->Compare(part)) {
        case kPatternEqual: break;
        case kPatternOtherPalette: entry->AddTexture(part); break;
        case kPatternOtherPart:
            delete entry;
            generate = true;
            break;
        }
    }
    if (generate) {
        CVdp1CharacterPattern* pattern = new CVdp1CharacterPattern;
        table[index] = pattern;
        pattern->GenerateTexture(part);
    }
    return table[index];
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

void CVdp1CharacterPattern::FileTexture(const CVdp1SpritePart& part, uint32_t id, bool adding) {
    const uint32_t mode = part.colorMode;
    if (IsColorBankMode(mode)) {
        uint32_t& slot = cbModeOpenglTextureIds[part.ComputeVdp2PaletteIndex()];
        if (adding) VDPGL_CHECK_OR_RETURN(cbModeOpenglTextureIds[part.ComputeVdp2PaletteIndex()]==0, "vdp1_character_pattern");
        slot = id;
    } else if (mode == 1) {
        bool found = false;
        for (auto& [ctrl, textureId] : lutModeOpenglTextureIds) {
            if (ctrl == part.colorCtrl) {
                statics.log.Log("\treplacing texture id\n");
                if (statics.renderer) statics.renderer->DeleteVdp1Texture(textureId);
                textureId = id;
                found = true;
            }
        }
        VDPGL_CHECK_OR_RETURN(!found, "vdp1_character_pattern");
        lutModeOpenglTextureIds.emplace_back(part.colorCtrl, id);
        statics.log.Log(adding ? "\tlutModeOpenglTextureIds.push_back\n" : "lutModeOpenglTextureIds[0x%X]=%d\n",
                        part.colorCtrl, id);
    } else if (mode == 5) {
        if (adding) VDPGL_CHECK_OR_RETURN(rgbModeOpenglTextureId==0, "vdp1_character_pattern");
        rgbModeOpenglTextureId = id;
    }
}

void CVdp1CharacterPattern::GenerateTexture(const CVdp1SpritePart& part) {
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
    if (ReplacementTexturesEnabled() && FindReplacementTexture(part, replacement)) {
        // Reading the set's image arrives with the texture sets; until then a
        // matched pattern is decoded from VRAM, as an unreadable image is.
    }
    textureWidth = TextureDimension(width);
    textureHeight = TextureDimension(height);
    uMax = textureWidth ? static_cast<float>(width) / static_cast<float>(textureWidth) : 0.0f;
    vMax = textureHeight ? static_cast<float>(height) / static_cast<float>(textureHeight) : 0.0f;
    PrepareTexels();
    statics.log.Log("GenerateTexture: %d*%d (%d*%d)\n", width, height, textureWidth, textureHeight);
    RunTextureDecoder(colorMode, part);

    uint32_t id = 0;
    if (statics.renderer) statics.renderer->CreateVdp1Texture(textureHeight, textureWidth, texels, &id);
    texels = nullptr;
    FileTexture(part, id, false);
    MapInTable();
}

void CVdp1CharacterPattern::MapInTable() {
    statics.log.Log("\tcharacter address: 0x%08X\n", startAddress);
    statics.log.Log("\tmapping from 0x%08X to 0x%08X\n", startAddress >> 3, endAddress >> 3);
    CVdp1CharacterPattern** table = statics.characterPatterns;
    ForEachEntry(startAddress, endAddress, [&](uint32_t i) {
        if (table[i] && table[i] != this) {
            statics.log.Log("\ttexture overwritten in cache!!, deleting overwritten texture\n");
            delete table[i];  // empties its own entries
        }
        table[i] = this;
    });
}

void CVdp1CharacterPattern::AddTexture(const CVdp1SpritePart& part) {
    if (ReplacementTexturesEnabled()) return;
    partColorCtrl = part.colorCtrl;
    partEndCodeDisabled = part.endCodeDisabled;
    PrepareTexels();
    statics.log.Log("AddTexture: %d*%d (%d*%d)\n", width, height, textureWidth, textureHeight);
    RunTextureDecoder(part.colorMode, part);
    uint32_t id = 0;
    if (statics.renderer) statics.renderer->CreateVdp1Texture(textureHeight, textureWidth, texels, &id);
    texels = nullptr;
    FileTexture(part, id, true);
}

Vdp1PatternMatch CVdp1CharacterPattern::Compare(const CVdp1SpritePart& part) const {
    statics.log.Log("comparing pattern data\n");
    if (characterSize != part.characterSize || startAddress != part.characterAddress ||
        endAddress != part.characterAddress + dataSize || colorMode != part.colorMode) {
        statics.log.Log("\tdifferent part\n");
        return kPatternOtherPart;
    }
    if (IsColorBankMode(colorMode)) {
        if (!cbModeOpenglTextureIds[part.ComputeVdp2PaletteIndex()]) {
            statics.log.Log("\tdifferent palette\n");
            return kPatternOtherPalette;
        }
    } else if (colorMode == 1) {
        bool found = false;
        for (const auto& [ctrl, id] : lutModeOpenglTextureIds) found = found || ctrl == part.colorCtrl;
        if (!found) {
            statics.log.Log("\tdifferent palette\n");
            return kPatternOtherPalette;
        }
    }
    statics.log.Log("\tequal\n");
    return kPatternEqual;
}

uint32_t CVdp1CharacterPattern::GetTextureId(const CVdp1SpritePart& part) const {
    statics.log.Log("looking for texture\n");
    uint32_t id = 0;
    const uint32_t mode = part.colorMode;
    if (IsColorBankMode(mode)) {
        id = cbModeOpenglTextureIds[part.ComputeVdp2PaletteIndex()];
    } else if (mode == 1) {
        for (const auto& [ctrl, textureId] : lutModeOpenglTextureIds) {
            if (ctrl == part.colorCtrl) {
                id = textureId;
                break;
            }
        }
    } else if (mode == 5) {
        id = rgbModeOpenglTextureId;
    } else {
        VDPGL_CHECK_OR_RETURN(mode <= 5, "vdp1_character_pattern", 0u);
    }
    if (!id) statics.log.Log("\ttexture not found!\n");
    return id;
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
