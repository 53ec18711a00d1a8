// COpenGl: texture objects. Every texture is RGBA, 8 bits a component (the
// colour word's bytes), sampled nearest with no mipmaps. A change to any
// texture first submits what was drawn before it.
#include <vector>

#include "common/consistency_check.h"
#include "render/opengl/gl_headers.h"
#include "render/opengl/opengl.h"

namespace vdpgl {

namespace {

bool ValidNormal(int bgNumber, int plane) { return bgNumber >= 0 && bgNumber < 4 && plane >= 0 && plane < 4; }
bool ValidBitmap(int bgNumber) { return bgNumber == 0 || bgNumber == 1; }

void SetNearest() {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
}

// A new texture of this size from pixels, or fully transparent black.
GLuint CreateTexture(int width, int height, const void* pixels) {
    std::vector<uint32_t> zeros;
    if (!pixels) {
        zeros.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0u);
        pixels = zeros.data();
    }
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    SetNearest();
    return id;
}

}  // namespace

namespace {

constexpr uint32_t kHandleIndexBits = 22;
constexpr uint32_t kHandleIndexMask = (1u << kHandleIndexBits) - 1;

}  // namespace

void COpenGl::CreateAtlasPage(int number) {
    const size_t page = static_cast<size_t>(number);
    if (pageTextures.size() <= page) pageTextures.resize(page + 1, 0);
    pageTextures[page] = CreateTexture(CTextureAtlas::kPageSide, CTextureAtlas::kPageSide, nullptr);
    const uint32_t white = 0xFFFFFFFFu;
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &white);
    if (page == 0) drawList.SetShapePage(pageTextures[0], CTextureAtlas::kPageSide, CTextureAtlas::kPageSide);
}

void COpenGl::CreateVdp1Texture(int height, int width, const uint32_t* pixels, uint32_t* handle) {
    if (!context || !handle) return;
    FlushDrawing();
    *handle = 0;
    Vdp1TextureEntry entry;
    bool newPage = false;
    // Pages need the pattern program; without it every texture is its own.
    if (patternProgram.Loaded()) entry.slot = atlas.Allocate(width, height, newPage);
    if (entry.slot.page >= 0) {
        const size_t page = static_cast<size_t>(entry.slot.page);
        if (newPage) CreateAtlasPage(entry.slot.page);
        glBindTexture(GL_TEXTURE_2D, pageTextures[page]);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glTexSubImage2D(GL_TEXTURE_2D, 0, entry.slot.x, entry.slot.y, width, height, GL_RGBA, GL_UNSIGNED_BYTE,
                        pixels);
        constexpr uint16_t kSide = CTextureAtlas::kPageSide;
        entry.rect = {pageTextures[page], static_cast<uint16_t>(entry.slot.x), static_cast<uint16_t>(entry.slot.y),
                      static_cast<uint16_t>(width), static_cast<uint16_t>(height), kSide, kSide};
    } else {
        entry.rect.texture = CreateTexture(width, height, pixels);
        entry.rect.width = static_cast<uint16_t>(width);
        entry.rect.height = static_cast<uint16_t>(height);
    }
    uint32_t index = 0;
    if (!freeHandles.empty()) {
        index = freeHandles.back();
        freeHandles.pop_back();
        vdp1Textures[index] = entry;
    } else {
        index = static_cast<uint32_t>(vdp1Textures.size());
        vdp1Textures.push_back(entry);
    }
    *handle = (handleGeneration << kHandleIndexBits) | (index + 1);
}

TextureRect COpenGl::Vdp1TextureRect(uint32_t handle) const {
    const uint32_t index = (handle & kHandleIndexMask) - 1;
    if ((handle >> kHandleIndexBits) != handleGeneration || index >= vdp1Textures.size()) return {};
    return vdp1Textures[index].rect;
}

void COpenGl::DeleteVdp1Texture(uint32_t handle) {
    const uint32_t index = (handle & kHandleIndexMask) - 1;
    if (!context || (handle >> kHandleIndexBits) != handleGeneration || index >= vdp1Textures.size()) return;
    Vdp1TextureEntry& entry = vdp1Textures[index];
    if (!entry.rect.texture) return;  // given back already
    FlushDrawing();
    if (entry.slot.page < 0) {
        glDeleteTextures(1, &entry.rect.texture);
    } else if (atlas.Free(entry.slot)) {
        glDeleteTextures(1, &pageTextures[static_cast<size_t>(entry.slot.page)]);
        pageTextures[static_cast<size_t>(entry.slot.page)] = 0;
    }
    entry = {};
    freeHandles.push_back(index);
}

void COpenGl::CreatePlaneTexture(int bgNumber, int plane, int width, int height) {
    FlushDrawing();
    if (!context || !ValidNormal(bgNumber, plane)) return;
    DeletePlaneTexture(bgNumber, plane);
    normalBackgroundPlanesTextureIds[bgNumber][plane] = CreateTexture(width, height, nullptr);
}

void COpenGl::LinkPlaneTexture(int bgNumber, int srcPlane, int dstPlane) {
    FlushDrawing();
    if (!context || !ValidNormal(bgNumber, srcPlane) || !ValidNormal(bgNumber, dstPlane)) return;
    VDPGL_CHECK_OR_RETURN(normalBackgroundPlanesTextureIds[bgNumber][srcPlane], "opengl");
    normalBackgroundPlanesTextureIds[bgNumber][dstPlane] = normalBackgroundPlanesTextureIds[bgNumber][srcPlane];
}

void COpenGl::DeletePlaneTexture(int bgNumber, int plane) {
    FlushDrawing();
    if (!ValidNormal(bgNumber, plane)) return;
    uint32_t& slot = normalBackgroundPlanesTextureIds[bgNumber][plane];
    // A name shared by linked planes is deleted once; GL ignores names it no
    // longer knows, so the later slots only forget it.
    if (slot && context) glDeleteTextures(1, &slot);
    slot = 0;
}

void COpenGl::UpdatePlaneTextureCell(int bgNumber, int plane, const uint32_t* cell8x8, int x, int y) {
    FlushDrawing();
    if (!context || !ValidNormal(bgNumber, plane) || !cell8x8) return;
    glBindTexture(GL_TEXTURE_2D, normalBackgroundPlanesTextureIds[bgNumber][plane]);
    glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, 8, 8, GL_RGBA, GL_UNSIGNED_BYTE, cell8x8);
}

void COpenGl::CreateBitmapTexture(int bgNumber, int width, int height) {
    FlushDrawing();
    if (!context || !ValidBitmap(bgNumber)) return;
    uint32_t& slot = normalBackgroundBitmapTextureIds[bgNumber];
    if (slot) glDeleteTextures(1, &slot);
    bitmapWidths[bgNumber] = width;
    bitmapHeights[bgNumber] = height;
    slot = CreateTexture(width, height, nullptr);
}

void COpenGl::UpdateBitmapTexture(int bgNumber, const uint32_t* pixels) {
    FlushDrawing();
    if (!context || !ValidBitmap(bgNumber) || !pixels || !normalBackgroundBitmapTextureIds[bgNumber]) return;
    glBindTexture(GL_TEXTURE_2D, normalBackgroundBitmapTextureIds[bgNumber]);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, bitmapWidths[bgNumber], bitmapHeights[bgNumber], GL_RGBA,
                    GL_UNSIGNED_BYTE, pixels);
}

}  // namespace vdpgl
