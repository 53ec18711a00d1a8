#include "render/opengl/pattern_program.h"

#include <cstring>

#include "platform/gl_context.h"

namespace vdpgl {

namespace {

// texcoord[0]: the sprite's own coordinates, then the pattern's texture
// width and height (w + 2048 h) and its place in the page (x + 2048 y), in
// texels, each packed into one component: every attribute a vertex carries
// costs the driver's triangle setup on our thread. Taking them apart is
// exact (whole numbers below 2^24, a power of two as divisor), and so is one
// over the width and height (powers of two). env[0]: one over the page's
// width and height.
constexpr const char* kProgram =
    "!!ARBfp1.0\n"
    "PARAM k = {0.00048828125, 2048.0, 0.5, 0.0};\n"
    "TEMP c, q, texel, high, low, size, place, inv;\n"
    "MUL high, fragment.texcoord[0].zwzw, k.x;\n"
    "FLR high, high;\n"
    "MAD low, -high, k.y, fragment.texcoord[0].zwzw;\n"
    "MOV size, low;\n"
    "MOV size.y, high.x;\n"
    "MOV place, high.yyyy;\n"
    "MOV place.x, low.y;\n"
    "RCP inv.x, size.x;\n"
    "RCP inv.y, size.y;\n"
    "MUL c, fragment.texcoord[0], size;\n"
    "FLR c, c;\n"
    "MUL q, c, inv;\n"
    "FLR q, q;\n"
    "MAD c, -q, size, c;\n"
    "ADD c, c, place;\n"
    "ADD c, c, k.z;\n"
    "MUL c, c, program.env[0];\n"
    "TEX texel, c, texture[0], 2D;\n"
    "MUL texel, texel, fragment.color.primary;\n"
    "ADD_SAT result.color.xyz, texel, fragment.color.secondary;\n"
    "MOV result.color.w, texel.w;\n"
    "END\n";

template <typename T>
T Lookup(platform::CGlContext& context, const char* name) {
    return reinterpret_cast<T>(context.GetProcAddress(name));
}

}  // namespace

bool CPatternProgram::Load(platform::CGlContext& context) {
    Release();
    genPrograms = Lookup<PFNGLGENPROGRAMSARBPROC>(context, "glGenProgramsARB");
    deletePrograms = Lookup<PFNGLDELETEPROGRAMSARBPROC>(context, "glDeleteProgramsARB");
    bindProgram = Lookup<PFNGLBINDPROGRAMARBPROC>(context, "glBindProgramARB");
    programString = Lookup<PFNGLPROGRAMSTRINGARBPROC>(context, "glProgramStringARB");
    programEnvParameter = Lookup<PFNGLPROGRAMENVPARAMETER4FARBPROC>(context, "glProgramEnvParameter4fARB");
    const char* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (!extensions || !std::strstr(extensions, "GL_ARB_fragment_program") || !genPrograms || !deletePrograms ||
        !bindProgram || !programString || !programEnvParameter)
        return false;
    while (glGetError() != GL_NO_ERROR) {
    }
    genPrograms(1, &program);
    bindProgram(GL_FRAGMENT_PROGRAM_ARB, program);
    programString(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(kProgram)),
                  kProgram);
    GLint errorAt = -1;
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &errorAt);
    bindProgram(GL_FRAGMENT_PROGRAM_ARB, 0);
    if (glGetError() != GL_NO_ERROR || errorAt != -1) {
        deletePrograms(1, &program);
        program = 0;
        return false;
    }
    return true;
}

void CPatternProgram::Release() {
    if (program && deletePrograms) deletePrograms(1, &program);
    program = 0;
}

void CPatternProgram::Begin(float pageWidth, float pageHeight) {
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    bindProgram(GL_FRAGMENT_PROGRAM_ARB, program);
    programEnvParameter(GL_FRAGMENT_PROGRAM_ARB, 0, 1.0f / pageWidth, 1.0f / pageHeight, 0.0f, 0.0f);
}

void CPatternProgram::End() { glDisable(GL_FRAGMENT_PROGRAM_ARB); }

}  // namespace vdpgl
