#pragma once
// The VDP2 background viewer: six mutually exclusive background boxes, a
// plane list, "View", and the chosen background's information text. The
// selections outlive the dialog. What the viewer shows is read on the
// emulation thread at the end of each frame (Serve), where the backgrounds
// are not changing, and handed to the view.
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace vdpgl::ui {

inline constexpr const char* kViewerTitle = "VDP2 background viewer";
inline constexpr const char* kNoInformation = "no informations available";
inline constexpr int kViewerPlanes = 16;

struct ViewerBox {
    int id;
    const char* text;
};
// In order of the background they select, NBG0 to RBG1.
inline constexpr ViewerBox kViewerBoxes[] = {{1021, "NBG0"}, {1023, "NBG1"}, {1024, "NBG2"},
                                             {1025, "NBG3"}, {1026, "RBG0"}, {1027, "RBG1"}};

// "plane A" to "plane P".
std::string PlaneName(int plane);

struct BackgroundPicture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> texels;  // width x height, top row first, bytes red, green, blue, alpha
};

// What the viewer reads of the backgrounds (on the emulation thread).
class CBackgroundSource {
public:
    virtual std::string Information(int background) = 0;
    virtual void Size(int background, int& width, int& height) = 0;
    virtual bool InCellMode(int background) = 0;
    virtual void DecodeBitmap(int background, uint32_t* texels) = 0;
    virtual void RenderPlane(int background, int plane, uint32_t* texels) = 0;

protected:
    ~CBackgroundSource() = default;
};

class CBackgroundViewerPresenter {
public:
    // A box was clicked: its background is the one shown, its box alone is
    // checked, and the text is asked for at once.
    void OnBackground(int id);
    void OnPlane(int plane);
    void OnView() { viewRequested.store(true, std::memory_order_relaxed); }
    // The boxes show nothing until one is clicked in this dialog.
    bool IsChecked(int id) const { return id == checkedBox; }

    static int SelectedBackground() { return background.load(std::memory_order_relaxed); }
    static int SelectedPlane() { return plane.load(std::memory_order_relaxed); }
    static void ResetSelection() { background = 0, plane = 0; }

    // The emulation thread's turn: the information text of the selected
    // background, and its picture when "View" was pressed since the last
    // turn (else `picture` is left alone). Returns whether a picture was made.
    static bool Serve(CBackgroundSource& source, std::string& information, BackgroundPicture& picture);
    // The dialog's size that shows a picture of this size beside the controls.
    static void WindowSizeFor(int width, int height, int& windowWidth, int& windowHeight) {
        windowWidth = width + 245, windowHeight = height + 40;
    }

private:
    int checkedBox = 0;
    static std::atomic<int> background;
    static std::atomic<int> plane;
    static std::atomic<bool> viewRequested;
};

}  // namespace vdpgl::ui
