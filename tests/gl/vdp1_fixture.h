#pragma once
// VDP1 and VDP2 on a real headless context, driven through their ports as the
// plug-in drives them, with the presented picture read back.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <vector>

#include "../support/vdp1_commands.h"
#include "../unit/temp_dir.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1.h"
#include "vdp1/vdp1_registers.h"
#include "vdp2/vdp2.h"
#include "vdp2/vdp2_registers.h"

namespace vdpgl::test {

struct Pixel {
    int r, g, b, a;
    bool operator==(const Pixel&) const = default;
};
inline std::ostream& operator<<(std::ostream& os, const Pixel& p) {
    return os << "(" << p.r << "," << p.g << "," << p.b << "," << p.a << ")";
}

// A colour-RAM / RGB555 colour as the picture shows it: 5 bits widened by a
// shift, opaque.
inline Pixel Rgb555(uint16_t c) { return {(c & 0x1F) << 3, ((c >> 5) & 0x1F) << 3, ((c >> 10) & 0x1F) << 3, 255}; }

class Vdp1GlTest : public ::testing::Test {
protected:
    void SetUp() override {
        vdp1->Link(*vdp2);
        vdp2->Link(*vdp1);
        renderer->InitGl(nullptr);
        ASSERT_TRUE(renderer->HasContext());
        vdp2->WriteRegisterWord(vdp2reg::TVMD, 0x8000);  // display on, 320 x 224
        // One-cycle mode with automatic drawing: every frame draws, swaps, erases.
        vdp1->WriteRegister(vdp1reg::TVMR, 0);
        vdp1->WriteRegister(vdp1reg::FBCR, 0);
        vdp1->WriteRegister(vdp1reg::PTMR, 2);
    }
    void TearDown() override {
        vdp1.reset();  // patterns delete their textures while the context exists
        renderer->ReleaseGl();
    }

    WordWriter Vram() {
        return [this](uint32_t a, uint16_t v) { vdp1->WriteVramWord(a, v); };
    }
    void Cram(uint32_t index, uint16_t colour) { vdp2->WriteCramWord(index * 2, colour); }

    // One V-blank-out as the plug-in runs it, then the presented picture.
    void RunFrame() {
        renderer->ApplyPendingChanges();
        vdp2->OnVblankOut();
        vdp1->Frame();
        width = renderer->GetRenderingHRes();
        height = renderer->GetRenderingVRes();
        pixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height) * 4, 0);
        captured = renderer->CaptureDisplay(pixels.data(), width, height);
    }
    Pixel At(int x, int y) const {
        const uint8_t* p = &pixels[(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4];
        return {p[0], p[1], p[2], p[3]};
    }
    // Pixels of [x0, x1) x [y0, y1) that are not transparent black.
    int Drawn(int x0, int y0, int x1, int y1) const {
        int n = 0;
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) n += !(At(x, y) == Pixel{0, 0, 0, 0});
        return n;
    }

    ScopedTempDir dir;  // first: the modules delete their old logs when built
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    int width = 0, height = 0;
    bool captured = false;
    std::vector<uint8_t> pixels;
};

}  // namespace vdpgl::test
