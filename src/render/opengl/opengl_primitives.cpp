// COpenGl: the frame's drawing. Backgrounds append their quads to the draw
// list, as VDP1's parts do; FlushDrawing submits the list, one glDrawArrays
// a run, over client arrays of positions, texture coordinates, primary and
// secondary colours. Positions are device coordinates already (the matrices
// stay the identity), so the emulated screen fills the viewport.
#include <cstddef>

#include "common/consistency_check.h"
#include "render/opengl/gl_headers.h"
#include "render/opengl/opengl.h"

namespace vdpgl {

void COpenGl::DrawTexturedQuad(uint32_t texture, int x1, int y1, int x2, int y2, float s1, float s2, float t1,
                               float t2, float red, float green, float blue, float secondaryRed, float secondaryGreen,
                               float secondaryBlue, float alpha, bool filtered) {
    const float dx1 = drawList.DeviceX(x1), dy1 = drawList.DeviceY(y1);
    const float dx2 = drawList.DeviceX(x2), dy2 = drawList.DeviceY(y2);
    DrawVertex* v = drawList.Add(DrawPrimitive::kQuads, texture, filtered, 4);
    const float xs[4] = {dx1, dx2, dx2, dx1}, ys[4] = {dy1, dy1, dy2, dy2};
    const float ss[4] = {s1, s2, s2, s1}, ts[4] = {t1, t1, t2, t2};
    for (int i = 0; i < 4; ++i)
        v[i] = {.x = xs[i], .y = ys[i], .s = ss[i], .t = ts[i], .red = red, .green = green, .blue = blue,
                .alpha = alpha, .secondaryRed = secondaryRed, .secondaryGreen = secondaryGreen,
                .secondaryBlue = secondaryBlue};
}

void COpenGl::DrawPlane(int bgNumber, int plane, int x1, int y1, int x2, int y2, float s1, float s2, float t1,
                        float t2, float red, float green, float blue, float secondaryRed, float secondaryGreen,
                        float secondaryBlue, float alpha, bool filtered) {
    if (!context || bgNumber < 0 || bgNumber > 3 || plane < 0 || plane > 3) return;
    UploadStagedCells(normalBackgroundPlanesTextureIds[bgNumber][plane]);
    DrawTexturedQuad(normalBackgroundPlanesTextureIds[bgNumber][plane], x1, y1, x2, y2, s1, s2, t1, t2, red, green,
                     blue, secondaryRed, secondaryGreen, secondaryBlue, alpha, filtered);
}

void COpenGl::DrawBitmap(int bgNumber, int x1, int y1, int x2, int y2, float s1, float s2, float t1, float t2,
                         float red, float green, float blue, float secondaryRed, float secondaryGreen,
                         float secondaryBlue, float alpha, bool filtered) {
    if (!context || (bgNumber != 0 && bgNumber != 1)) return;
    // Spelled as the check's message names it.
    VDPGL_CHECK_OR_RETURN(normalBackgroundBitmapTextureIds[bgNumber]!=0, "opengl");
    DrawTexturedQuad(normalBackgroundBitmapTextureIds[bgNumber], x1, y1, x2, y2, s1, s2, t1, t2, red, green, blue,
                     secondaryRed, secondaryGreen, secondaryBlue, alpha, filtered);
}

void COpenGl::DrawRotationBackground(int bgNumber, const uint32_t* pixels, int width, int height, bool filtered) {
    if (!context || (bgNumber != 4 && bgNumber != 5) || !pixels || width <= 0 || height <= 0) return;
    FlushDrawing();  // the texture changes under what was drawn with it
    const int n = bgNumber - 4;
    uint32_t& texture = rotationBackgroundTextureIds[n];
    // 256 x 256, or larger when the picture is sampled per screen dot.
    if (!texture || width > rotationTextureWidths[n] || height > rotationTextureHeights[n]) {
        if (texture) glDeleteTextures(1, &texture);
        rotationTextureWidths[n] = width > 256 ? width : 256;
        rotationTextureHeights[n] = height > 256 ? height : 256;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, rotationTextureWidths[n], rotationTextureHeights[n], 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, nullptr);
    }
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    // The whole viewport, stretched; the buffer's first row lands at the
    // bottom edge (the rotation backgrounds render bottom row first).
    const float s = static_cast<float>(width) / static_cast<float>(rotationTextureWidths[n]);
    const float t = static_cast<float>(height) / static_cast<float>(rotationTextureHeights[n]);
    DrawVertex* v = drawList.Add(DrawPrimitive::kQuads, texture, filtered, 4);
    const float xs[4] = {-1.0f, 1.0f, 1.0f, -1.0f}, ys[4] = {-1.0f, -1.0f, 1.0f, 1.0f};
    const float ss[4] = {0.0f, s, s, 0.0f}, ts[4] = {0.0f, 0.0f, t, t};
    for (int i = 0; i < 4; ++i)
        v[i] = {.x = xs[i], .y = ys[i], .s = ss[i], .t = ts[i], .red = 1.0f, .green = 1.0f, .blue = 1.0f, .alpha = 1.0f};
}

void COpenGl::FlushDrawing() {
    if (drawList.Empty()) return;
    if (!context) {
        drawList.Clear();
        retiredVdp1Textures.clear();
        return;
    }
    UploadPendingTextures();
    constexpr GLsizei kStride = sizeof(DrawVertex);
    const DrawVertex* base = drawList.Vertices();
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, kStride, &base->x);
    // s and t alone for the fixed pipeline; with the pattern's size and
    // place for the pattern program.
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, kStride, &base->s);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_FLOAT, kStride, &base->red);
    if (secondaryColorPointer) {
        glEnableClientState(GL_SECONDARY_COLOR_ARRAY);
        secondaryColorPointer(3, GL_FLOAT, kStride, &base->secondaryRed);
    }
    bool programOn = false;
    int pageWidth = 0, pageHeight = 0;
    uint32_t texture = 0;
    bool filtered = false;
    const std::vector<DrawRun>& runs = drawList.Runs();
    for (size_t i = 0; i < runs.size();) {
        const DrawRun& run = runs[i];
        if (run.pageWidth && (!programOn || run.pageWidth != pageWidth || run.pageHeight != pageHeight)) {
            patternProgram.Begin(run.pageWidth, run.pageHeight);
            if (!programOn) glTexCoordPointer(4, GL_FLOAT, kStride, &base->s);
            programOn = true;
            pageWidth = run.pageWidth;
            pageHeight = run.pageHeight;
        } else if (!run.pageWidth && programOn) {
            patternProgram.End();
            glTexCoordPointer(2, GL_FLOAT, kStride, &base->s);
            programOn = false;
        }
        // Lines and quads alternate over one page: its state is set once.
        if (run.texture != texture || run.filtered != filtered || i == 0) {
            texture = run.texture;
            filtered = run.filtered;
            if (run.texture) {
                glBindTexture(GL_TEXTURE_2D, run.texture);
                const GLint filter = run.filtered ? GL_LINEAR : GL_NEAREST;
                glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
                glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
                glEnable(GL_TEXTURE_2D);
            } else {
                glDisable(GL_TEXTURE_2D);
            }
        }
        // Runs kept apart only to be drawn apart (quads alone) go in one
        // call of several draws, each drawn as a call of its own would be.
        const GLenum mode = run.primitive == DrawPrimitive::kLines ? GL_LINES : GL_QUADS;
        size_t end = i + 1;
        while (end < runs.size() && runs[end].texture == run.texture && runs[end].filtered == run.filtered &&
               runs[end].pageWidth == run.pageWidth && runs[end].pageHeight == run.pageHeight &&
               runs[end].primitive == run.primitive)
            ++end;
        if (end - i > 1 && multiDrawArrays) {
            multiFirsts.clear();
            multiCounts.clear();
            for (size_t j = i; j < end; ++j) {
                multiFirsts.push_back(static_cast<GLint>(runs[j].first));
                multiCounts.push_back(static_cast<GLsizei>(runs[j].count));
            }
            multiDrawArrays(mode, multiFirsts.data(), multiCounts.data(), static_cast<GLsizei>(end - i));
        } else {
            for (size_t j = i; j < end; ++j)
                glDrawArrays(mode, static_cast<GLint>(runs[j].first), static_cast<GLsizei>(runs[j].count));
        }
        i = end;
    }
    glDisable(GL_TEXTURE_2D);
    if (programOn) patternProgram.End();
    if (secondaryColorPointer) glDisableClientState(GL_SECONDARY_COLOR_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    drawList.Clear();
    for (const Vdp1TextureEntry& entry : retiredVdp1Textures) ReleaseVdp1Texture(entry);
    retiredVdp1Textures.clear();
}

}  // namespace vdpgl
