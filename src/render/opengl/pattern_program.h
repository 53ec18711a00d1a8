#pragma once
// CPatternProgram: the fragment program VDP1's sprites are drawn with when
// their textures share atlas pages. A sprite keeps the texture coordinates
// its texture of its own would have; the program finds the texel as nearest
// sampling with repeat would in that texture (floor of coordinate times
// size, wrapped), moves it to the pattern's place in the page and samples
// the page at that texel's centre, then does what the fixed pipeline would:
// texel times primary colour, plus the secondary colour, clamped. So a
// sprite picks the same texels from a page as from a texture of its own,
// to the last rounding.
#include "render/opengl/gl_headers.h"

namespace vdpgl {

namespace platform {
class CGlContext;
}

class CPatternProgram {
public:
    // Looks up the entry points and compiles the program; false when the
    // driver cannot run it (then sprites keep textures of their own).
    bool Load(platform::CGlContext& context);
    void Release();
    bool Loaded() const { return program != 0; }

    // From here on fragments go through the program, sampling a page of
    // this size; End returns to the fixed pipeline.
    void Begin(float pageWidth, float pageHeight);
    void End();

private:
    PFNGLGENPROGRAMSARBPROC genPrograms = nullptr;
    PFNGLDELETEPROGRAMSARBPROC deletePrograms = nullptr;
    PFNGLBINDPROGRAMARBPROC bindProgram = nullptr;
    PFNGLPROGRAMSTRINGARBPROC programString = nullptr;
    PFNGLPROGRAMENVPARAMETER4FARBPROC programEnvParameter = nullptr;
    GLuint program = 0;
};

}  // namespace vdpgl
