#pragma once
// Where the control panel's widgets sit, in the dialog's own pixels. Shared
// by the view and by the UI tests, which click the boxes where they are.
namespace vdpgl::platform::panel {

struct Rect {
    int x, y, w, h;
};

inline constexpr int kWidth = 380;
inline constexpr Rect kEditorButton = {10, 10, 175, 25};
inline constexpr Rect kViewerButton = {195, 10, 175, 25};
inline constexpr int kGroupTop = 70;
inline constexpr int kRowHeight = 24;

// The three groups of six boxes: two of backgrounds (three to a row), then
// the part kinds (two to a row, their names being longer).
constexpr Rect GroupRect(int group) {
    const int y = kGroupTop + group * 82;
    return {20, y, 340, group < 2 ? 76 : 100};
}

// Box `index` in the order of the presenter's box list.
constexpr Rect BoxRect(int index) {
    const int group = index / 6, i = index % 6;
    const Rect g = GroupRect(group);
    if (group < 2) return {30 + (i % 3) * 110, g.y + 22 + (i / 3) * kRowHeight, 100, 22};
    return {30 + (i % 2) * 165, g.y + 22 + (i / 2) * kRowHeight, 160, 22};
}

inline constexpr Rect kOptionsFrame = {10, 48, 360, GroupRect(2).y + GroupRect(2).h + 10 - 48};
inline constexpr Rect kCacheText = {10, kOptionsFrame.y + kOptionsFrame.h + 8, 360, 40};
inline constexpr int kHeight = kCacheText.y + kCacheText.h + 10;

}  // namespace vdpgl::platform::panel
