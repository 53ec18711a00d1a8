#include "render/opengl/pattern_program.h"

#include <cstring>

#include "platform/gl_context.h"

namespace vdpgl {

namespace {

// texcoord[0]: the sprite's own coordinates; texcoord[1]: the pattern's
// texture width and height and its place in the page, in texels (one over
// the width and height is exact: they are powers of two); env[0]: one over
// the page's width and height. Every attribute a vertex carries costs the
// driver's triangle setup on our thread: the reciprocals are worked out
// here rather than sent.
constexpr const char* kProgram =
    "!!ARBfp1.0\n"
    "TEMP c, q, texel, inv;\n"
    "RCP inv.x, fragment.texcoord[1].x;\n"
    "RCP inv.y, fragment.texcoord[1].y;\n"
    "MUL c, fragment.texcoord[0], fragment.texcoord[1];\n"
    "FLR c, c;\n"
    "MUL q, c, inv;\n"
    "FLR q, q;\n"
    "MAD c, -q, fragment.texcoord[1], c;\n"
    "ADD c, c, fragment.texcoord[1].zwzw;\n"
    "ADD c, c, 0.5;\n"
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
    clientActiveTexture = Lookup<PFNGLCLIENTACTIVETEXTUREARBPROC>(context, "glClientActiveTexture");
    const char* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (!extensions || !std::strstr(extensions, "GL_ARB_fragment_program") || !genPrograms || !deletePrograms ||
        !bindProgram || !programString || !programEnvParameter || !clientActiveTexture)
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

void CPatternProgram::PatternPointers(GLsizei stride, const void* place) {
    clientActiveTexture(GL_TEXTURE1);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(4, GL_FLOAT, stride, place);
    clientActiveTexture(GL_TEXTURE0);
}

void CPatternProgram::DisablePatternPointers() {
    clientActiveTexture(GL_TEXTURE1);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    clientActiveTexture(GL_TEXTURE0);
}

}  // namespace vdpgl
