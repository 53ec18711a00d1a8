#pragma once
// COpenGl: the renderer. It owns the GL context (current on the emulation
// thread), the offscreen frame buffers, every texture object and the drawing
// primitives, and its settings: emulated size, rendering scale and size,
// wireframe. The menu changes the settings from the UI thread; the emulation
// thread applies them at the next V-blank-out, hence the atomics. Without a
// context every GL operation does nothing.
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/module_log.h"
#include "render/cell_staging.h"
#include "render/draw_list.h"
#include "render/texture_atlas.h"
#include "render/opengl/frame_buffers.h"
#include "render/opengl/pattern_program.h"
#include "render/opengl/rendering_scales.h"

namespace vdpgl {

namespace platform {
class CGlContext;
}

class COpenGl {
public:
    explicit COpenGl(void* instanceHandle);
    ~COpenGl();
    COpenGl(const COpenGl&) = delete;
    COpenGl& operator=(const COpenGl&) = delete;

    // Context. InitGl makes a context current on the calling thread (failures
    // are shown to the user and leave no context); ReleaseGl gives it up.
    void InitGl(void* window);
    void ReleaseGl();
    bool HasContext() const { return context != nullptr; }

    // At every V-blank-out, before anything is drawn: a resize or wireframe
    // switch chosen since the last frame takes effect.
    void ApplyPendingChanges();
    void ChangeRenderingResolution();

    // Frame end. A swap presents the picture just composed; a clear asked
    // for with RequestClear happens right after the next swap.
    void SwapFrameBuffers();
    void ClearFrameBuffer();
    void RequestClear() { clearRequested.store(true, std::memory_order_relaxed); }
    // The display window's screenshot key: the picture of the next swap is
    // saved as screenshots/<date>_<time>.png under the current folder.
    void RequestScreenshot() { screenshotRequested.store(true, std::memory_order_relaxed); }
    // The picture of the last swap, RGBA, top row first; false before the
    // first swap, for another size, or off the emulation thread.
    bool CaptureDisplay(uint8_t* rgba, int width, int height);

    // VDP1 textures (the texture cache creates and deletes them here), known
    // by a handle: up to 64 x 64 texels they share the atlas's pages, larger
    // ones have a texture of their own. A handle of a released context is
    // ignored.
    void CreateVdp1Texture(int height, int width, const uint32_t* pixels, uint32_t* handle);
    void DeleteVdp1Texture(uint32_t handle);
    // Where a handle's texels are; nothing (texture 0) for an unknown one.
    TextureRect Vdp1TextureRect(uint32_t handle) const;
    // Normal backgrounds' plane textures [bgNumber 0-3][plane 0-3] and
    // NBG0/NBG1 bitmap textures.
    void CreatePlaneTexture(int bgNumber, int plane, int width, int height);
    void LinkPlaneTexture(int bgNumber, int srcPlane, int dstPlane);
    void DeletePlaneTexture(int bgNumber, int plane);
    void UpdatePlaneTextureCell(int bgNumber, int plane, const uint32_t* cell8x8, int x, int y);
    void CreateBitmapTexture(int bgNumber, int width, int height);
    // The bitmap's rows [firstRow, firstRow + rows) from pixels, which
    // holds all of it (rows < 0: every row).
    void UpdateBitmapTexture(int bgNumber, const uint32_t* pixels, int firstRow = 0, int rows = -1);

    // The frame's drawing: VDP1's parts append to it, and the backgrounds
    // below. FlushDrawing submits what was appended; it runs by itself
    // before anything that would change what the list draws (a background
    // texture's update, a swap, a clear, a wireframe switch). A VDP1 texture
    // is made in a place no listed part samples, and one given back keeps
    // its place until the list is submitted.
    CDrawList& Drawing() { return drawList; }
    void FlushDrawing();

    // Primitives, in console pixels of the emulated screen.
    // Backgrounds are sampled nearest, or bilinear when `filtered` (the
    // control panel's "Filter backgrounds").
    void DrawPlane(int bgNumber, int plane, int x1, int y1, int x2, int y2, float s1, float s2, float t1, float t2,
                   float red, float green, float blue, float secondaryRed, float secondaryGreen, float secondaryBlue,
                   float alpha, bool filtered = false);
    void DrawBitmap(int bgNumber, int x1, int y1, int x2, int y2, float s1, float s2, float t1, float t2, float red,
                    float green, float blue, float secondaryRed, float secondaryGreen, float secondaryBlue,
                    float alpha, bool filtered = false);
    void DrawRotationBackground(int bgNumber, const uint32_t* pixels, int width, int height, bool filtered = false);

    // Emulated screen size, from VDP2's TVMD decoding.
    void SetSaturnResolution(int hRes, int vRes);
    // Scale chosen in the menu; an unchanged value does nothing.
    void SetRenderingScale(float scale);
    // Recomputes the rendering size and marks it for the next V-blank-out.
    void AdjustRenderingResolution();

    void SetWireframe(bool on);
    bool IsWireframe() const { return wireframe.load(std::memory_order_relaxed); }

    int GetSaturnHRes() const { return saturnHRes.load(std::memory_order_relaxed); }
    int GetSaturnVRes() const { return saturnVRes.load(std::memory_order_relaxed); }
    int GetRenderingHRes() const { return renderingHRes.load(std::memory_order_relaxed); }
    int GetRenderingVRes() const { return renderingVRes.load(std::memory_order_relaxed); }
    float GetRenderingScale() const { return renderingScale.load(std::memory_order_relaxed); }

    // Takes the pending-resize flag (true once per change, on the thread that
    // applies it).
    bool TakeRenderingResolutionChange() { return renderingResolutionChanged.exchange(false); }
    bool TakeWireframeChange() { return wireframeChanged.exchange(false); }

    // The display window's title for the current sizes and scale.
    std::string WindowTitle() const;

    void* windowHandle = nullptr;
    void* const instanceHandle;
    using SecondaryColorPointerFunction = void (*)(int, unsigned, int, const void*);
    SecondaryColorPointerFunction secondaryColorPointer = nullptr;
    using MultiDrawArraysFunction = void (*)(unsigned, const int*, const int*, int);
    MultiDrawArraysFunction multiDrawArrays = nullptr;
    uint32_t normalBackgroundPlanesTextureIds[4][4] = {};
    uint32_t normalBackgroundBitmapTextureIds[2] = {};
    int32_t planeTextureWidths[4][4] = {};
    int32_t planeTextureHeights[4][4] = {};
    int32_t bitmapWidths[2] = {};
    int32_t bitmapHeights[2] = {};
    uint32_t rotationBackgroundTextureIds[2] = {};
    int32_t rotationTextureWidths[2] = {};
    int32_t rotationTextureHeights[2] = {};

private:
    void ApplyPolygonMode();
    void DrawTexturedQuad(uint32_t texture, int x1, int y1, int x2, int y2, float s1, float s2, float t1, float t2,
                          float red, float green, float blue, float secondaryRed, float secondaryGreen,
                          float secondaryBlue, float alpha, bool filtered);
    void SaveScreenshot();
    void CreateAtlasPage(int number);
    // Plane textures' cells written this frame, uploaded a band at a time
    // when the texture is next drawn.
    void UploadStagedCells(uint32_t texture);
    void ForgetStagedCells(uint32_t texture);
    // A transparent black texture of this size: a spare of that size if one
    // is kept, else a new one.
    uint32_t ClearedTexture(int width, int height);
    // Keeps a background texture that is no longer used for the next one of
    // its size; the oldest spare goes when there are too many.
    void KeepSpareTexture(uint32_t id, int width, int height);

    std::unique_ptr<platform::CGlContext> context;
    CDrawList drawList;
    std::vector<CCellStaging> cellStaging;  // one a plane texture written since it was made
    size_t lastStaging = 0;                 // the one the last cell went to
    std::vector<int> multiFirsts, multiCounts;  // one multi-draw's draws
    struct Vdp1TextureEntry {
        TextureRect rect;
        CTextureAtlas::Slot slot;
    };
    CTextureAtlas atlas;
    CPatternProgram patternProgram;
    // A page's texture: transparent black but for its white texel.
    std::vector<uint32_t> pageTextures;  // by page number
    std::vector<Vdp1TextureEntry> vdp1Textures;  // by handle index
    std::vector<uint32_t> freeHandles;
    // Textures given back while the list still draws with them: their
    // places are freed once it has been submitted, so that a texture made
    // meanwhile never takes a place a listed part samples, and making one
    // need not submit the list.
    std::vector<Vdp1TextureEntry> retiredVdp1Textures;
    void ReleaseVdp1Texture(const Vdp1TextureEntry& entry);
    // Texels of atlas textures made since the list was last submitted. They
    // go up together just before it is: a page the driver is still drawing
    // the last frame from makes an upload wait, once rather than at every
    // texture, and the walk that makes them never waits.
    struct PendingUpload {
        uint32_t texture;
        int x, y, width, height;
        size_t first;  // into pendingTexels
    };
    static constexpr size_t kMostPendingTexels = size_t{1} << 20;  // 4 MiB; beyond, they go up at once
    std::vector<PendingUpload> pendingUploads;
    std::vector<uint32_t> pendingTexels;
    void UploadPendingTextures();
    struct SpareTexture {
        uint32_t id;
        int width, height;
    };
    // Four backgrounds of up to four planes each change together at a reset.
    static constexpr size_t kMostSpareTextures = 8;
    std::vector<SpareTexture> spareTextures;
    uint32_t handleGeneration = 1;  // of the context; in a handle's top bits
    CFrameBuffers frameBuffers;
    std::thread::id contextThread;
    uint64_t swapCount = 0;
    std::atomic<bool> clearRequested{false};
    std::atomic<bool> screenshotRequested{false};
    std::atomic<bool> wireframe{false};
    std::atomic<int> saturnHRes{320};
    std::atomic<int> saturnVRes{240};
    std::atomic<int> renderingHRes{320};
    std::atomic<int> renderingVRes{240};
    std::atomic<float> renderingScale{1.0f};
    std::atomic<bool> wireframeChanged{false};
    std::atomic<bool> renderingResolutionChanged{false};
    CModuleLog log{"opengl.log"};
};

}  // namespace vdpgl
