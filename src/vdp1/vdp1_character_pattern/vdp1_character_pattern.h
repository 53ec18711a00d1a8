#pragma once
// CVdp1CharacterPattern: one cached VDP1 character pattern, a run of VDP1 VRAM
// that a sprite used as its character. It keeps the pattern's geometry and
// colour mode, a CRC-32 of its data (what replacement sets match on) and one
// GL texture per palette it was drawn with. CVdp1's table maps every 8-byte
// unit of VRAM that a pattern's data touches, the partial last one included,
// to the pattern covering it; a VRAM write that changes a byte there marks it
// modified, and modified patterns are rebuilt by the next sprite that uses
// them or purged after the frame.
//
// Patterns that start at one address with other sizes or colour modes are
// kept together as variants of the pattern the table holds, so that a list
// alternating two sizes on one address decodes each once. A pattern replaced
// during a walk (modified, overlapped, another part at its address) is only
// retired: its textures live until the frame is drawn, since each part
// draws with the texture that was built for it.
//
// Textures are charged against a memory budget; when it is exceeded, those
// not used for the longest time are given back, never one that the latest
// walk uses. A pattern whose last texture was given back is built again
// through GenerateTexture the next time a part needs it.
//
// The emulation thread changes the table and the patterns only while holding
// CVdp1::cacheMutex; the editor reads them under the same lock.
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "common/module_log.h"
#include "vdp1/vdp1_character_pattern/replacement_image.h"
#include "vdp1/vdp1_character_pattern/replacement_texture.h"
#include "vdp1/vdp1_character_pattern/vdp1_texture_store.h"

namespace vdpgl {

class COpenGl;
class CConsoleVram;
class CVdp1;
class CVdp1SpritePart;
class CVdp2;

// Result of comparing a cached pattern with a part that uses its address.
enum Vdp1PatternMatch : int { kPatternEqual = 0, kPatternOtherPalette = 1, kPatternOtherPart = 2 };

class CVdp1CharacterPattern {
public:
    static constexpr uint32_t kOpaqueBlack = 0xFF000000u;
    // Patterns kept at one start address, the table's own included.
    static constexpr int kMaxVariants = 8;

    CVdp1CharacterPattern();
    ~CVdp1CharacterPattern();
    CVdp1CharacterPattern(const CVdp1CharacterPattern&) = delete;
    CVdp1CharacterPattern& operator=(const CVdp1CharacterPattern&) = delete;

    // Module set-up when VDP1 is linked to VDP2: the table, renderer and both
    // processors; resets the pattern count and deletes the module's old log.
    static void InitializeStatics(CVdp1CharacterPattern** table, COpenGl* renderer, CVdp1* vdp1, CVdp2* vdp2);
    // What the cache holds; readable from any thread.
    static int PatternCount() { return patternCount.load(std::memory_order_relaxed); }
    static int TextureCount() { return statics.textures.Count(); }
    static uint64_t TextureBytes() { return statics.textures.Bytes(); }
    static uint64_t TextureBudget() { return statics.textures.Budget(); }
    // Texture memory the cache may keep, in bytes (charges as the store
    // counts them); takes effect at the next texture created.
    static void SetTextureBudget(uint64_t bytes) { statics.textures.SetBudget(bytes); }
    // Replacement sets: the cache is cleared at the start of the next frame
    // so that every pattern is generated anew with or without them.
    static void EnableReplacementTextures(const std::vector<Vdp1ReplacementTexture>& textures);
    static void DisableReplacementTextures();
    // While a set is active, at every 30th call (one a frame): an image
    // saved over since it was read clears the cache, so that it shows
    // within about half a second without activating the set again.
    static void CheckReplacementFiles();
    // VDPGL_DUMP_TEXTURES: every pattern newly decoded from VRAM is dumped
    // once into this folder as <CRC>_<CMDCOLR>.tif (empty: no harvest).
    static void SetHarvestFolder(const std::string& folder);
    static bool ReplacementTexturesEnabled() { return statics.replacementTexturesEnabled.load(std::memory_order_acquire); }
    static const uint32_t* Rgb555ToRgba() { return statics.rgb555ToRgba; }
    // The decoded replacement images, kept by path.
    static CReplacementImages& ReplacementImages() { return statics.images; }
    // Power-of-two texture size for a used size (0 stays 0).
    static int32_t TextureDimension(int32_t used);
    // Pixel data bytes of a pattern of this size in this colour mode.
    static int32_t DataSize(uint32_t colorMode, int32_t width, int32_t height);

    // The texture cache protocol, run by a sprite when it is built: finds,
    // adds or (re)generates the texture of the part's pattern and palette,
    // and hands the part its texture name and coordinates. Returns the
    // pattern the part uses.
    static CVdp1CharacterPattern* UseTexture(CVdp1SpritePart& part);
    // A walk begins: textures it uses are stamped with its number.
    static void BeginWalk();
    // After a frame is drawn (and at the next walk): patterns retired during
    // the walk are deleted with their textures.
    static void ReleaseRetiredPatterns();
    // The budget's turn (after each new texture, and after each frame):
    // textures not used by the latest walk go, oldest first, until the cache
    // is within the budget again.
    static void GiveBackTextures();

    // Each returns the texture it filed for the part's palette, or null.
    CVdp1Texture* GenerateTexture(const CVdp1SpritePart& part);
    CVdp1Texture* AddTexture(const CVdp1SpritePart& part);
    // Whether the pattern is the part's character and has a texture for its
    // palette; the texture itself goes to found when asked for.
    Vdp1PatternMatch Compare(const CVdp1SpritePart& part, CVdp1Texture** found = nullptr) const;
    // This pattern's texture for the palette `key`, or nullptr.
    CVdp1Texture* FindTexture(uint32_t key) const;
    bool FindReplacementTexture(const CVdp1SpritePart& part, Vdp1ReplacementTexture& found) const;

    // For the editor: the pattern as a tight width x height picture (the
    // caller's buffer holds at least width x height texels), and its
    // description. Both use the values of the parts that drew it.
    void GetImage(uint32_t* destination) const;
    void GetInformation(char* buffer, std::size_t size) const;

    uint32_t GetColorCtrl() const { return colorCtrl; }
    uint32_t GetCrc() const { return crc; }
    uint32_t GetStartAddress() const { return startAddress; }

    // The twelve decoders, one texture and one image decoder per colour mode.
    // Texture decoders fill texels with row stride textureWidth and clear
    // allBlack when a texel is not opaque black.
    void DecodeTexture16ColorsColorBank(const CVdp1SpritePart& part);
    void DecodeTexture16ColorsLut(const CVdp1SpritePart& part);
    void DecodeTexture64ColorsColorBank(const CVdp1SpritePart& part);
    void DecodeTexture128ColorsColorBank(const CVdp1SpritePart& part);
    void DecodeTexture256ColorsColorBank(const CVdp1SpritePart& part);
    void DecodeTexture32KColors(const CVdp1SpritePart& part);
    void DecodeImage16ColorsColorBank(uint32_t* destination) const;
    void DecodeImage16ColorsLut(uint32_t* destination) const;
    void DecodeImage64ColorsColorBank(uint32_t* destination) const;
    void DecodeImage128ColorsColorBank(uint32_t* destination) const;
    void DecodeImage256ColorsColorBank(uint32_t* destination) const;
    void DecodeImage32KColors(uint32_t* destination) const;

    // The pattern's textures, one per palette, keyed by the part's colour
    // bank index (modes 0, 2, 3, 4), its CMDCOLR (lookup tables, mode 1) or 0
    // (32K colours, mode 5).
    CVdp1Texture* textures = nullptr;
    // Other patterns at the same start address; the table's pattern owns
    // them and maps the units of all of them.
    CVdp1CharacterPattern* nextVariant = nullptr;
    CVdp1CharacterPattern* primary = nullptr;  // of a variant: the table's pattern
    uint32_t mappedEnd = 0;  // the table's pattern: end of the mapped units' data
    bool mapped = false;
    uint32_t colorCtrl = 0;  // of the generating part
    int32_t width = 0;
    int32_t height = 0;
    uint16_t characterSize = 0;
    uint32_t colorMode = 0;
    uint32_t dataSize = 0;
    uint32_t startAddress = 0;
    uint32_t endAddress = 0;
    uint8_t transparentPixelDisabled = 0;
    // Set by the VRAM ports on the emulation thread, read by the editor too.
    std::atomic<bool> modified{false};
    uint8_t allBlack = 1;
    // Copies of the last generating or adding part's CMDCOLR and ECD: the
    // part itself is gone after the next walk, the editor asks at any time.
    uint32_t partColorCtrl = 0;
    uint8_t partEndCodeDisabled = 0;
    uint32_t* texels = nullptr;  // decoding buffer, only inside Generate/AddTexture
    int32_t textureHeight = 0;
    int32_t textureWidth = 0;
    float uMax = 0.0f;
    float vMax = 0.0f;
    uint32_t crc = 0;

private:
    // What one decode reads: the part's values for a texture, the pattern's
    // copies for an image.
    struct DecodeSource {
        uint32_t colorCtrl;
        uint32_t startAddress;
        bool endCodeDisabled;
        bool transparentPixelDisabled;
    };
    static DecodeSource SourceOf(const CVdp1SpritePart& part);
    DecodeSource ImageSource() const;
    // Decodes in the given mode into destination with this row stride;
    // returns false when a texel other than opaque black was produced.
    bool Decode(uint32_t mode, const DecodeSource& source, uint32_t* destination, int32_t stride) const;
    // The texture decoder of a colour mode, then the padding cleared.
    void RunTextureDecoder(uint32_t mode, const CVdp1SpritePart& part);
    void DecodeTextureInMode(const CVdp1SpritePart& part, uint32_t mode);
    CVdp1Texture* FileTexture(const CVdp1SpritePart& part, uint32_t id, bool adding);
    void MapInTable();
    void PrepareTexels();
    void Harvest();
    // The texels and texture size from the replacement's image; false when
    // it cannot be read (said once).
    bool UseReplacement(const Vdp1ReplacementTexture& replacement);
    static uint32_t TextureKey(const CVdp1SpritePart& part);
    // The part's character is this pattern: same address, size and mode.
    bool HoldsCharacterOf(const CVdp1SpritePart& part) const;
    int VariantCount() const;
    // Out of the table at once, deleted once the frame is drawn.
    static void Retire(CVdp1CharacterPattern* pattern);
    void Unmap();
    // Whether the walk may have another new texture.
    static bool RoomForAnotherTexture();
    void DeleteTexture(CVdp1Texture* texture);
    // A pattern left without textures goes too, unless it holds variants.
    static void DropIfEmpty(CVdp1CharacterPattern* pattern);

    // The decoders by colour mode.
    using TextureDecoder = void (CVdp1CharacterPattern::*)(const CVdp1SpritePart&);
    using ImageDecoder = void (CVdp1CharacterPattern::*)(uint32_t*) const;
    static const std::array<TextureDecoder, 6> kTextureDecoders;
    static const std::array<ImageDecoder, 6> kImageDecoders;

    struct Statics {
        CVdp1CharacterPattern** characterPatterns = nullptr;
        COpenGl* renderer = nullptr;
        CVdp1* vdp1 = nullptr;
        CVdp2* vdp2 = nullptr;
        const CConsoleVram* vram = nullptr;
        const uint32_t* rgb555ToRgba = nullptr;  // VDP2's RGB555 colour table
        std::atomic<bool> replacementTexturesEnabled{false};
        std::vector<Vdp1ReplacementTexture> replacementTextures;
        std::vector<uint32_t> texelBuffer;  // reused by every decode
        CVdp1TextureStore textures;
        CReplacementImages images;
        uint32_t replacementCheckCountdown = 0;
        std::string harvestFolder;
        std::unordered_set<uint64_t> harvested;  // (CRC << 32) | CMDCOLR
        std::vector<uint32_t> harvestBuffer;
        bool harvestFailed = false;
        std::vector<CVdp1CharacterPattern*> retired;
        bool ceilingReported = false;
        CModuleLog log;
    };
    static Statics statics;
    static std::atomic<int> patternCount;
};

}  // namespace vdpgl
