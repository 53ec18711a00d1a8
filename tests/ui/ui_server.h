#pragma once
// What every UI test shares: the process's Xvfb and screenshots for the record.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "x11_session.h"

namespace vdpgl::test {

inline constexpr std::chrono::seconds kWait{5};

// One server for the process, never stopped by the test: the plug-in's UI connection stays open until the process
// ends, and a server gone before it would end the process from inside Xlib. It goes when the process does.
inline void StartServer() {
    static test::CXvfbServer* server = nullptr;
    if (server) return;
    unsetenv("VDPGL_HEADLESS");
    server = new test::CXvfbServer;
    ASSERT_TRUE(server->Start()) << server->Error();
}

// A screenshot for the record, once the window shows more than its background.
inline void SaveDrawn(test::CX11Session& x11, unsigned long window, const char* name) {
    std::vector<uint8_t> rgba;
    int w = 0, h = 0;
    for (auto end = std::chrono::steady_clock::now() + kWait; std::chrono::steady_clock::now() < end;) {
        const auto differs = [&](size_t i) { return std::memcmp(rgba.data(), rgba.data() + i, 4) != 0; };
        bool drawn = false;
        if (x11.Capture(window, rgba, w, h))
            for (size_t i = 4; i < rgba.size() && !drawn; i += 4) drawn = differs(i);
        if (drawn)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_TRUE(x11.SavePng(window, std::string(VDPGL_UI_SCREENSHOTS "/") + name)) << x11.Error();
}

// Keys at a person's pace: a menu opens its popups as the keys come, and keys faster than that land on the wrong
// level of it.
inline void Type(CX11Session& x11, std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
        x11.Key(key);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

// Rendering > Resolution > x 2, from the keyboard.
inline void ChooseScale2(CX11Session& x11, unsigned long window) {
    x11.Focus(window);
    x11.Key("r", {"Alt_L"});
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    Type(x11, {"Down", "Right", "Down", "Down", "Return"});
}

}  // namespace vdpgl::test
