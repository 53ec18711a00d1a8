// COpenGl: the screenshot key's picture, saved as a PNG file named by the
// date and time under screenshots/ in the current folder.
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "common/png_file.h"
#include "platform/message_box.h"
#include "render/opengl/opengl.h"

namespace vdpgl {

namespace {

// screenshots/2026-11-23_22-57-00.png; a second one within the same second
// gets "-2", and so on, so none is overwritten.
std::filesystem::path FreeScreenshotPath(const std::filesystem::path& folder) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d_%H-%M-%S", &local);
    std::error_code ec;
    std::filesystem::path path = folder / (std::string(stamp) + ".png");
    for (int n = 2; std::filesystem::exists(path, ec) && n < 1000; ++n)
        path = folder / (std::string(stamp) + "-" + std::to_string(n) + ".png");
    return path;
}

}  // namespace

void COpenGl::SaveScreenshot() {
    const int w = frameBuffers.Width(), h = frameBuffers.Height();
    std::vector<uint8_t> rgba(static_cast<size_t>(w) * static_cast<size_t>(h) * 4);
    if (!frameBuffers.ReadFront(rgba.data(), w, h)) return;
    // Transparent dots show the black behind the picture, as in the window.
    for (size_t i = 3; i < rgba.size(); i += 4) rgba[i] = 255;

    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::current_path(ec) / "screenshots";
    std::filesystem::create_directories(folder, ec);
    const std::filesystem::path path = FreeScreenshotPath(folder);
    std::string error;
    if (ec || !WritePng(path.string(), rgba.data(), w, h, error)) {
        const std::string text =
            "The screenshot could not be saved: " + (ec ? folder.string() + ": " + ec.message() : error);
        // Said without waiting for the user: the emulation goes on.
        platform::PostMessageBox("Screenshot", text.c_str(), platform::MessageIcon::Exclamation);
        return;
    }
    std::fprintf(stderr, "vdpgl: screenshot saved as %s\n", path.string().c_str());
}

}  // namespace vdpgl
