#pragma once
// COpenGl: the renderer. This part holds its settings, which need no context:
// the emulated screen size, the rendering scale and size, and wireframe mode.
// The menu changes them from the UI thread; the emulation thread applies them
// at the next V-blank-out, hence the atomics.
#include <atomic>
#include <cstdint>
#include <string>

#include "common/module_log.h"

namespace vdpgl {

class CVdp1CharacterPattern;

// The factors offered by the display menu's Resolution submenu, with the
// texts of their items.
struct RenderingScaleChoice {
    const char* label;
    float scale;
};
inline constexpr RenderingScaleChoice kRenderingScales[] = {
    {"original", 1.0f}, {"x 1.25", 1.25f}, {"x 2", 2.0f}, {"x 2.5", 2.5f},
    {"x 3", 3.0f},      {"x 3.2", 3.2f},   {"x 4", 4.0f}, {"x 5", 5.0f},
};

class COpenGl {
public:
    explicit COpenGl(void* instanceHandle);
    COpenGl(const COpenGl&) = delete;
    COpenGl& operator=(const COpenGl&) = delete;

    void SetVdp1TextureTable(CVdp1CharacterPattern** table) { vdp1TextureTable = table; }

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
    CVdp1CharacterPattern** vdp1TextureTable = nullptr;

private:
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
