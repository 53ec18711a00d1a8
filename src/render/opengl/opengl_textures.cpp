// COpenGl: texture objects. Every texture is RGBA, 8 bits a component (the
// colour word's bytes), sampled nearest with no mipmaps. A change to any
// texture first submits what was drawn before it.
#include <algorithm>
#include <vector>

#include "common/consistency_check.h"
#include "common/frame_profile.h"
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

// Transparent black for clearing textures a band of rows at a time, so that
// clearing a large texture needs no buffer of its size (a 4 MiB buffer made
// and dropped at every plane change left holes in the heap).
constexpr int kZeroTexels = 1024 * 16;
const uint32_t kZeros[kZeroTexels] = {};

// Fills the bound texture with transparent black.
void ClearBoundTexture(int width, int height) {
    if (width <= 0 || height <= 0) return;
    const int rowsPerBand = width >= kZeroTexels ? 1 : kZeroTexels / width;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    for (int y = 0; y < height; y += rowsPerBand) {
        if (width > kZeroTexels) {
            for (int x = 0; x < width; x += kZeroTexels)
                glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, std::min(kZeroTexels, width - x), 1, GL_RGBA,
                                GL_UNSIGNED_BYTE, kZeros);
        } else {
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, y, width, std::min(rowsPerBand, height - y), GL_RGBA,
                            GL_UNSIGNED_BYTE, kZeros);
        }
    }
}

// A new texture of this size from pixels, or fully transparent black.
GLuint CreateTexture(int width, int height, const void* pixels) {
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    if (!pixels) ClearBoundTexture(width, height);
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
    *handle = 0;
    Vdp1TextureEntry entry;
    bool newPage = false;
    // Pages need the pattern program; without it every texture is its own.
    if (patternProgram.Loaded()) entry.slot = atlas.Allocate(width, height, newPage);
    if (entry.slot.page >= 0) {
        const size_t page = static_cast<size_t>(entry.slot.page);
        if (newPage) CreateAtlasPage(entry.slot.page);
        if (pixels) {
            const size_t texels = static_cast<size_t>(width) * static_cast<size_t>(height);
            if (pendingTexels.size() + texels > kMostPendingTexels) UploadPendingTextures();
            const size_t first = pendingTexels.size();
            pendingTexels.insert(pendingTexels.end(), pixels, pixels + texels);
            pendingUploads.push_back({pageTextures[page], entry.slot.x, entry.slot.y, width, height, first});
        }
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
    if (drawList.Empty())
        ReleaseVdp1Texture(entry);
    else
        retiredVdp1Textures.push_back(entry);
    entry = {};
    freeHandles.push_back(index);
}

void COpenGl::ReleaseVdp1Texture(const Vdp1TextureEntry& entry) {
    if (entry.slot.page < 0) {
        glDeleteTextures(1, &entry.rect.texture);
    } else if (atlas.Free(entry.slot)) {
        UploadPendingTextures();  // none may go to a page that is gone
        glDeleteTextures(1, &pageTextures[static_cast<size_t>(entry.slot.page)]);
        pageTextures[static_cast<size_t>(entry.slot.page)] = 0;
    }
}

void COpenGl::UploadPendingTextures() {
    if (pendingUploads.empty()) return;
    CPhaseScope uploading(kPhaseTextures);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    uint32_t bound = 0;
    for (const PendingUpload& u : pendingUploads) {
        if (u.texture != bound) glBindTexture(GL_TEXTURE_2D, bound = u.texture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, u.x, u.y, u.width, u.height, GL_RGBA, GL_UNSIGNED_BYTE,
                        pendingTexels.data() + u.first);
    }
    pendingUploads.clear();
    pendingTexels.clear();
}

uint32_t COpenGl::ClearedTexture(int width, int height) {
    for (size_t i = 0; i < spareTextures.size(); ++i) {
        const SpareTexture spare = spareTextures[i];
        if (spare.width != width || spare.height != height) continue;
        spareTextures.erase(spareTextures.begin() + static_cast<std::ptrdiff_t>(i));
        glBindTexture(GL_TEXTURE_2D, spare.id);
        ClearBoundTexture(width, height);
        return spare.id;
    }
    return CreateTexture(width, height, nullptr);
}

void COpenGl::KeepSpareTexture(uint32_t id, int width, int height) {
    // A name shared by linked planes comes here once per plane: kept once.
    for (const SpareTexture& spare : spareTextures)
        if (spare.id == id) return;
    if (spareTextures.size() >= kMostSpareTextures) {
        glDeleteTextures(1, &spareTextures.front().id);
        spareTextures.erase(spareTextures.begin());
    }
    spareTextures.push_back({id, width, height});
}

void COpenGl::CreatePlaneTexture(int bgNumber, int plane, int width, int height) {
    FlushDrawing();
    if (!context || !ValidNormal(bgNumber, plane)) return;
    DeletePlaneTexture(bgNumber, plane);
    const uint32_t texture = ClearedTexture(width, height);
    normalBackgroundPlanesTextureIds[bgNumber][plane] = texture;
    planeTextureWidths[bgNumber][plane] = width;
    planeTextureHeights[bgNumber][plane] = height;
    // Transparent black now: no cell written before stands.
    std::erase_if(cellStaging, [&](const CCellStaging& s) { return s.Texture() == texture; });
}

void COpenGl::LinkPlaneTexture(int bgNumber, int srcPlane, int dstPlane) {
    FlushDrawing();
    if (!context || !ValidNormal(bgNumber, srcPlane) || !ValidNormal(bgNumber, dstPlane)) return;
    VDPGL_CHECK_OR_RETURN(normalBackgroundPlanesTextureIds[bgNumber][srcPlane], "opengl");
    normalBackgroundPlanesTextureIds[bgNumber][dstPlane] = normalBackgroundPlanesTextureIds[bgNumber][srcPlane];
    planeTextureWidths[bgNumber][dstPlane] = planeTextureWidths[bgNumber][srcPlane];
    planeTextureHeights[bgNumber][dstPlane] = planeTextureHeights[bgNumber][srcPlane];
}

void COpenGl::DeletePlaneTexture(int bgNumber, int plane) {
    FlushDrawing();
    if (!ValidNormal(bgNumber, plane)) return;
    uint32_t& slot = normalBackgroundPlanesTextureIds[bgNumber][plane];
    // The texture is kept for the next plane of its size (planes are made
    // anew at every reset and plane change), so that the driver's storage
    // is not freed and allocated again each time.
    const uint32_t texture = slot;
    if (slot && context) KeepSpareTexture(slot, planeTextureWidths[bgNumber][plane], planeTextureHeights[bgNumber][plane]);
    slot = 0;
    if (texture) ForgetStagedCells(texture);
}

void COpenGl::UpdatePlaneTextureCell(int bgNumber, int plane, const uint32_t* cell8x8, int x, int y) {
    if (!context || !ValidNormal(bgNumber, plane) || !cell8x8) return;
    const uint32_t texture = normalBackgroundPlanesTextureIds[bgNumber][plane];
    if (!texture) return;
    // A load pass writes a background's cells one after another: the copy
    // of the last cell's texture is looked at first.
    if (lastStaging >= cellStaging.size() || cellStaging[lastStaging].Texture() != texture) {
        lastStaging = static_cast<size_t>(
            std::find_if(cellStaging.begin(), cellStaging.end(),
                         [&](const CCellStaging& s) { return s.Texture() == texture; }) -
            cellStaging.begin());
        if (lastStaging == cellStaging.size())
            cellStaging.emplace_back(texture, planeTextureWidths[bgNumber][plane], planeTextureHeights[bgNumber][plane]);
    }
    cellStaging[lastStaging].Write(cell8x8, x, y);
}

void COpenGl::UploadStagedCells(uint32_t texture) {
    const auto staging = std::find_if(cellStaging.begin(), cellStaging.end(),
                                      [&](const CCellStaging& s) { return s.Texture() == texture; });
    if (staging == cellStaging.end() || !staging->Dirty()) return;
    CPhaseScope loading(kPhaseVdp2);  // the load pass's, though done as the plane is drawn
    FlushDrawing();  // what was drawn before sees the texture as it was
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, staging->Width());
    staging->TakeChanges([](int x, int y, int width, int height, const uint32_t* texels) {
        glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    });
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

void COpenGl::ForgetStagedCells(uint32_t texture) {
    // Only once no plane draws with it.
    for (const auto& planes : normalBackgroundPlanesTextureIds)
        for (uint32_t id : planes)
            if (id == texture) return;
    std::erase_if(cellStaging, [&](const CCellStaging& s) { return s.Texture() == texture; });
}

void COpenGl::CreateBitmapTexture(int bgNumber, int width, int height) {
    FlushDrawing();
    if (!context || !ValidBitmap(bgNumber)) return;
    uint32_t& slot = normalBackgroundBitmapTextureIds[bgNumber];
    if (slot) KeepSpareTexture(slot, bitmapWidths[bgNumber], bitmapHeights[bgNumber]);
    bitmapWidths[bgNumber] = width;
    bitmapHeights[bgNumber] = height;
    slot = ClearedTexture(width, height);
}

void COpenGl::UpdateBitmapTexture(int bgNumber, const uint32_t* pixels, int firstRow, int rows) {
    FlushDrawing();
    if (!context || !ValidBitmap(bgNumber) || !pixels || !normalBackgroundBitmapTextureIds[bgNumber]) return;
    const int height = bitmapHeights[bgNumber];
    firstRow = std::clamp(firstRow, 0, height);
    rows = rows < 0 ? height - firstRow : std::min(rows, height - firstRow);
    if (rows == 0) return;
    glBindTexture(GL_TEXTURE_2D, normalBackgroundBitmapTextureIds[bgNumber]);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, firstRow, bitmapWidths[bgNumber], rows, GL_RGBA, GL_UNSIGNED_BYTE,
                    pixels + static_cast<size_t>(firstRow) * static_cast<size_t>(bitmapWidths[bgNumber]));
}

}  // namespace vdpgl
