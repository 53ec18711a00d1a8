#pragma once
// VDP1 and VDP2 linked as the plug-in links them, with a renderer that has no
// GL context, in a directory of the test's own: the modules delete their old
// logs in the current directory when they are built.
#include <gtest/gtest.h>

#include <memory>

#include "render/opengl/opengl.h"
#include "temp_dir.h"
#include "vdp1/vdp1.h"
#include "vdp2/vdp2.h"

namespace vdpgl::test {

class VdpTest : public ::testing::Test {
protected:
    VdpTest() {
        vdp1->Link(*vdp2);
        vdp2->Link(*vdp1);
    }

    ScopedTempDir tempDir;  // first, so that the objects below are built inside it
    std::unique_ptr<COpenGl> renderer = std::make_unique<COpenGl>(nullptr);
    std::unique_ptr<CVdp1> vdp1 = std::make_unique<CVdp1>(*renderer);
    std::unique_ptr<CVdp2> vdp2 = std::make_unique<CVdp2>(*renderer);
};

}  // namespace vdpgl::test
