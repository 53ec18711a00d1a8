#pragma once
// The display window's menu: its items (ids, texts, where they sit), the
// check marks kept in step with the renderer, and what each command does.
// The view builds the menu from kDisplayMenu and forwards picks to Command;
// tests drive the presenter with a target of their own.
#include <atomic>
#include <cstdint>

namespace vdpgl::ui {

enum DisplayMenuId : int {
    kMenuLoadTextureSet = 40001,
    kMenuClearVdp1Cache = 40002,
    kMenuScaleOriginal = 40005,
    kMenuScale125 = 40006,
    kMenuScale2 = 40007,
    kMenuScale25 = 40008,
    kMenuScale3 = 40009,
    kMenuScale4 = 40010,
    kMenuScale5 = 40011,
    kMenuScale32 = 40012,
    kMenuWireframe = 40015,
    kMenuTextureEditor = 40016,
    kMenuControlPanel = 40017,
    kMenuClearVdp2Cache = 40018,
};

struct DisplayMenuItem {
    const char* popup;    // top-level popup, or nullptr for an item on the bar itself
    const char* submenu;  // popup inside it, or nullptr
    const char* text;
    int id;
    bool checkable;
};

// In menu order ("x 3.2" sits between "x 3" and "x 4" though its id is higher).
inline constexpr DisplayMenuItem kDisplayMenu[] = {
    {"File", nullptr, "Texture replacement editor", kMenuTextureEditor, false},
    {"File", nullptr, "Load texture replacement set", kMenuLoadTextureSet, false},
    {"Rendering", "Resolution", "original", kMenuScaleOriginal, true},
    {"Rendering", "Resolution", "x 1.25", kMenuScale125, true},
    {"Rendering", "Resolution", "x 2", kMenuScale2, true},
    {"Rendering", "Resolution", "x 2.5", kMenuScale25, true},
    {"Rendering", "Resolution", "x 3", kMenuScale3, true},
    {"Rendering", "Resolution", "x 3.2", kMenuScale32, true},
    {"Rendering", "Resolution", "x 4", kMenuScale4, true},
    {"Rendering", "Resolution", "x 5", kMenuScale5, true},
    {"Rendering", nullptr, "Wireframe", kMenuWireframe, true},
    {"Cache", nullptr, "Clear VDP1 cache", kMenuClearVdp1Cache, false},
    {"Cache", nullptr, "Clear VDP2 cache", kMenuClearVdp2Cache, false},
    {nullptr, nullptr, "Control panel", kMenuControlPanel, false},
};

// What the menu acts on: the renderer's settings, the caches, the dialogs.
class CDisplayMenuTarget {
public:
    virtual float GetRenderingScale() const = 0;
    virtual void SetRenderingScale(float scale) = 0;
    virtual bool IsWireframe() const = 0;
    virtual void SetWireframe(bool on) = 0;
    // Cache clears are requests the emulation thread carries out at its next frame.
    virtual void RequestVdp1CacheClear() = 0;
    virtual void RequestVdp2CacheClear() = 0;
    // Each opens its dialog unless it is open already.
    virtual void OpenTextureEditor() = 0;
    virtual void OpenControlPanel() = 0;
    virtual void OpenSetChooser() = 0;
    // The next frame shown is saved as a picture file.
    virtual void RequestScreenshot() = 0;

protected:
    ~CDisplayMenuTarget() = default;
};

class CDisplayMenuPresenter {
public:
    explicit CDisplayMenuPresenter(CDisplayMenuTarget& target) : target(target) {}

    // A display window is made: the check marks follow the renderer's
    // settings (a scale that no item has keeps the last checked item).
    void OnCreate();
    bool IsChecked(int id) const;
    // A menu pick.
    void Command(int id);
    // The screenshot key.
    void Screenshot() { target.RequestScreenshot(); }

    // The scale an item stands for; 0 for other ids.
    static float ScaleOf(int id);
    // The checked resolution item outlives every window; for tests.
    static void ResetCheckedScale() { checkedScale.store(kMenuScaleOriginal, std::memory_order_relaxed); }

private:
    CDisplayMenuTarget& target;
    bool wireframeChecked = false;
    static std::atomic<int> checkedScale;
};

}  // namespace vdpgl::ui
