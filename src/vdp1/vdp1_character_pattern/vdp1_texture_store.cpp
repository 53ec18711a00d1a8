#include "vdp1/vdp1_character_pattern/vdp1_texture_store.h"

namespace vdpgl {

CVdp1Texture* CVdp1TextureStore::Add(CVdp1CharacterPattern* pattern, CVdp1Texture*& patternTextures, uint32_t key,
                                     uint32_t id, uint64_t texelBytes) {
    CVdp1Texture& texture = textures[{pattern, key}];
    texture = CVdp1Texture{};
    texture.id = id;
    texture.key = key;
    texture.bytes = texelBytes + kOverheadBytes;
    texture.lastUsedWalk = walk;
    walkBytes += texture.bytes;
    texture.pattern = pattern;
    texture.nextOfPattern = patternTextures;
    if (patternTextures) patternTextures->previousOfPattern = &texture;
    patternTextures = &texture;
    Append(&texture);
    bytes.fetch_add(texture.bytes, std::memory_order_relaxed);
    count.fetch_add(1, std::memory_order_relaxed);
    return &texture;
}

void CVdp1TextureStore::Hold(CVdp1Texture* texture) {
    if (texture->held) return;
    Unlink(texture);
    texture->held = true;
}

uint32_t CVdp1TextureStore::Remove(CVdp1Texture* texture, CVdp1Texture*& patternTextures) {
    Hold(texture);
    if (texture->previousOfPattern)
        texture->previousOfPattern->nextOfPattern = texture->nextOfPattern;
    else
        patternTextures = texture->nextOfPattern;
    if (texture->nextOfPattern) texture->nextOfPattern->previousOfPattern = texture->previousOfPattern;
    const uint32_t id = texture->id;
    if (texture->lastUsedWalk == walk) walkBytes -= texture->bytes;
    bytes.fetch_sub(texture->bytes, std::memory_order_relaxed);
    count.fetch_sub(1, std::memory_order_relaxed);
    textures.erase({texture->pattern, texture->key});
    return id;
}

void CVdp1TextureStore::Unlink(CVdp1Texture* texture) {
    if (texture->older)
        texture->older->newer = texture->newer;
    else
        oldest = texture->newer;
    if (texture->newer)
        texture->newer->older = texture->older;
    else
        newest = texture->older;
    texture->older = texture->newer = nullptr;
}

void CVdp1TextureStore::Append(CVdp1Texture* texture) {
    texture->older = newest;
    texture->newer = nullptr;
    if (newest)
        newest->newer = texture;
    else
        oldest = texture;
    newest = texture;
}

}  // namespace vdpgl
