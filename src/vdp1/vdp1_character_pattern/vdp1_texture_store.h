#pragma once
// The textures of the VDP1 texture cache: one per pattern and palette, found
// by (pattern, palette key), kept in the order they were last used and
// charged against a memory budget. It holds no GL: the cache creates and
// deletes the GL names and asks the store which texture to give back next.
//
// The charge of a texture is its texels plus a fixed overhead, so that many
// small textures are bounded as well as a few large ones.
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace vdpgl {

class CVdp1CharacterPattern;

struct CVdp1Texture {
    uint32_t id = 0;   // GL texture name
    uint32_t key = 0;  // the palette: colour bank index, CMDCOLR or 0, by colour mode
    uint64_t bytes = 0;
    uint32_t lastUsedWalk = 0;
    CVdp1CharacterPattern* pattern = nullptr;
    // Use order, oldest first; a held texture is out of it.
    CVdp1Texture* older = nullptr;
    CVdp1Texture* newer = nullptr;
    bool held = false;
    // The other textures of the same pattern.
    CVdp1Texture* nextOfPattern = nullptr;
    CVdp1Texture* previousOfPattern = nullptr;
};

class CVdp1TextureStore {
public:
    static constexpr uint64_t kDefaultBudget = uint64_t{256} << 20;
    // Beside its texels, a texture object costs the GL driver about 2 KiB
    // (measured on Mesa: 20,000 8 x 8 textures take 2.4 KiB each), and its
    // pattern and this store's record about 0.5 KiB more.
    static constexpr uint64_t kOverheadBytes = 2560;

    CVdp1TextureStore() = default;
    CVdp1TextureStore(const CVdp1TextureStore&) = delete;
    CVdp1TextureStore& operator=(const CVdp1TextureStore&) = delete;

    CVdp1Texture* Find(const CVdp1CharacterPattern* pattern, uint32_t key) const {
        const auto it = textures.find({pattern, key});
        return it == textures.end() ? nullptr : const_cast<CVdp1Texture*>(&it->second);
    }
    // A walk begins: what it uses from now on is its own.
    void BeginWalk() {
        ++walk;
        walkBytes = 0;
    }
    uint32_t Walk() const { return walk; }
    // Bytes of the textures the current walk uses.
    uint64_t WalkBytes() const { return walkBytes; }
    // A new texture of this pattern and key (there is none yet), used by
    // the current walk; patternTextures is the pattern's list head.
    CVdp1Texture* Add(CVdp1CharacterPattern* pattern, CVdp1Texture*& patternTextures, uint32_t key, uint32_t id,
                      uint64_t texelBytes);
    // The current walk uses the texture: it becomes the newest.
    void Touch(CVdp1Texture* texture) {
        if (texture->lastUsedWalk != walk) {
            texture->lastUsedWalk = walk;
            walkBytes += texture->bytes;
        }
        if (texture->held || texture == newest) return;
        Unlink(texture);
        Append(texture);
    }
    // Out of the use order for good: Oldest() never offers it again.
    void Hold(CVdp1Texture* texture);
    // Forgets the texture; returns its GL name for the caller to delete.
    uint32_t Remove(CVdp1Texture* texture, CVdp1Texture*& patternTextures);
    // The texture not used for the longest time, among those not held.
    CVdp1Texture* Oldest() const { return oldest; }

    void SetBudget(uint64_t bytes) { budget.store(bytes, std::memory_order_relaxed); }
    uint64_t Budget() const { return budget.load(std::memory_order_relaxed); }
    bool OverBudget() const { return Bytes() > Budget(); }
    // Readable from any thread.
    uint64_t Bytes() const { return bytes.load(std::memory_order_relaxed); }
    int Count() const { return count.load(std::memory_order_relaxed); }

private:
    struct Key {
        const CVdp1CharacterPattern* pattern;
        uint32_t key;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& k) const {
            return std::hash<const void*>()(k.pattern) ^ (std::size_t{k.key} * 0x9E3779B97F4A7C15u);
        }
    };

    void Unlink(CVdp1Texture* texture);
    void Append(CVdp1Texture* texture);

    // Node-based: a texture's address stays valid until it is removed.
    std::unordered_map<Key, CVdp1Texture, KeyHash> textures;
    CVdp1Texture* oldest = nullptr;
    CVdp1Texture* newest = nullptr;
    uint32_t walk = 0;
    uint64_t walkBytes = 0;
    std::atomic<uint64_t> budget{kDefaultBudget};
    std::atomic<uint64_t> bytes{0};
    std::atomic<int> count{0};
};

}  // namespace vdpgl
