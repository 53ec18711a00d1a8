#pragma once
// The control panel ("VDP plugin control"): its buttons and check boxes
// (ids, texts, groups), the boxes' states read from the settings when it
// opens, what a click changes, and the cache counts it shows while open.
// The settings live in VDP1 and the backgrounds, not in the panel.
#include <cstdint>
#include <string>

#include "vdpgl/vdpgl.h"

namespace vdpgl::ui {

inline constexpr const char* kControlPanelTitle = "VDP plugin control";

enum ControlPanelId : int {
    kPanelTextureEditor = 1018,
    kPanelBackgroundViewer = 1019,
};

struct ControlPanelBox {
    int id;
    const char* text;
    const char* group;
};

inline constexpr const char* kDisableBackgrounds = "Disable backgrounds";
inline constexpr const char* kFilterBackgrounds = "Filter backgrounds";
inline constexpr const char* kDisableParts = "Disable parts";

// The check boxes in dialog order: backgrounds NBG0-RBG1 in each background
// group; the part kinds as the dialog lists them (their ids map to kinds out
// of order).
inline constexpr ControlPanelBox kControlPanelBoxes[] = {
    {1022, "NBG0", kDisableBackgrounds}, {1033, "NBG1", kDisableBackgrounds}, {1034, "NBG2", kDisableBackgrounds},
    {1035, "NBG3", kDisableBackgrounds}, {1036, "RBG0", kDisableBackgrounds}, {1037, "RBG1", kDisableBackgrounds},
    {1023, "NBG0", kFilterBackgrounds},  {1038, "NBG1", kFilterBackgrounds},  {1040, "NBG2", kFilterBackgrounds},
    {1041, "NBG3", kFilterBackgrounds},  {1042, "RBG0", kFilterBackgrounds},  {1043, "RBG1", kFilterBackgrounds},
    {1024, "Polygons", kDisableParts},   {1045, "Polylines", kDisableParts},  {1046, "Distorted sprites", kDisableParts},
    {1047, "Normal sprites", kDisableParts}, {1048, "Scaled sprites", kDisableParts}, {1049, "Lines", kDisableParts},
};

// What the panel reads and sets.
class CControlPanelTarget {
public:
    virtual bool IsBackgroundDisabled(int bgNumber) const = 0;
    virtual void SetBackgroundDisabled(int bgNumber, bool off) = 0;
    virtual bool IsBackgroundFiltered(int bgNumber) const = 0;
    virtual void SetBackgroundFiltered(int bgNumber, bool on) = 0;
    // Part kinds 0-5: normal, scaled, distorted sprites, polygons, polylines, lines.
    virtual bool IsPartEnabled(int kind) const = 0;
    virtual void SetPartEnabled(int kind, bool enabled) = 0;
    virtual void OpenTextureEditor() = 0;
    virtual void OpenBackgroundViewer() = 0;
    // False before the plug-in is initialised.
    virtual bool GetCacheCounters(VdpglCacheCounters& counters) const = 0;

protected:
    ~CControlPanelTarget() = default;
};

class CControlPanelPresenter {
public:
    explicit CControlPanelPresenter(CControlPanelTarget& target) : target(target) {}

    // Whether box `id` shows checked: read from the settings each time, so
    // the panel opened again shows what holds now.
    bool IsChecked(int id) const;
    // Box `id` was clicked and now shows `checked`.
    void OnToggle(int id, bool checked);
    // A button was pressed.
    void OnPress(int id);
    // The caches' counts, a line each, for a label refreshed while open.
    std::string CacheText() const;

private:
    CControlPanelTarget& target;
};

}  // namespace vdpgl::ui
