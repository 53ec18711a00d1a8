// COpenGl: drawing primitives in immediate mode, one begin/end a primitive.
// Positions are console pixels mapped straight to device coordinates (the
// matrices stay the identity), so the emulated screen fills the viewport.
#include "common/consistency_check.h"
#include "render/opengl/gl_headers.h"
#include "render/opengl/opengl.h"
#include "vdp1/vdp1_part.h"

namespace vdpgl {

namespace {

void SetFilter(bool filtered) {
    const GLint filter = filtered ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

}  // namespace

void COpenGl::DrawTexturedQuad(uint32_t texture, int x1, int y1, int x2, int y2, float s1, float s2, float t1,
                               float t2, float red, float green, float blue, float secondaryRed, float secondaryGreen,
                               float secondaryBlue, float alpha, bool filtered) {
    const float dx1 = DeviceX(x1), dy1 = DeviceY(y1), dx2 = DeviceX(x2), dy2 = DeviceY(y2);
    glBindTexture(GL_TEXTURE_2D, texture);
    SetFilter(filtered);
    glEnable(GL_TEXTURE_2D);
    glBegin(GL_QUADS);
    glColor4f(red, green, blue, alpha);
    secondaryColorFunction(secondaryRed, secondaryGreen, secondaryBlue);
    glTexCoord2f(s1, t1);
    glVertex2f(dx1, dy1);
    glTexCoord2f(s2, t1);
    glVertex2f(dx2, dy1);
    glTexCoord2f(s2, t2);
    glVertex2f(dx2, dy2);
    glTexCoord2f(s1, t2);
    glVertex2f(dx1, dy2);
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void COpenGl::DrawPlane(int bgNumber, int plane, int x1, int y1, int x2, int y2, float s1, float s2, float t1,
                        float t2, float red, float green, float blue, float secondaryRed, float secondaryGreen,
                        float secondaryBlue, float alpha, bool filtered) {
    if (!context || bgNumber < 0 || bgNumber > 3 || plane < 0 || plane > 3) return;
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
    SetFilter(filtered);
    glEnable(GL_TEXTURE_2D);
    // The whole viewport, stretched; the buffer's first row lands at the
    // bottom edge (the rotation backgrounds render bottom row first).
    const float s = static_cast<float>(width) / static_cast<float>(rotationTextureWidths[n]);
    const float t = static_cast<float>(height) / static_cast<float>(rotationTextureHeights[n]);
    glBegin(GL_QUADS);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    secondaryColorFunction(0.0f, 0.0f, 0.0f);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(-1.0f, -1.0f);
    glTexCoord2f(s, 0.0f);
    glVertex2f(1.0f, -1.0f);
    glTexCoord2f(s, t);
    glVertex2f(1.0f, 1.0f);
    glTexCoord2f(0.0f, t);
    glVertex2f(-1.0f, 1.0f);
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void COpenGl::DrawTexturedPart(const CVdp1SpritePart& part) {
    const uint32_t texture = part.textureId;
    if (!context || !texture) return;  // texture 0 would draw the part as a plain quad

    // Corners A, B, C, D; a flip moves the far texture edge to the other side.
    const float sMax = part.uMax, tMax = part.vMax;
    float s[4] = {}, t[4] = {};
    if (part.IsFlippedHorizontally())
        s[0] = s[3] = sMax;
    else
        s[1] = s[2] = sMax;
    if (part.IsFlippedVertically())
        t[0] = t[1] = tMax;
    else
        t[2] = t[3] = tMax;

    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glEnable(GL_TEXTURE_2D);
    glBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i) {
        const Vdp1Rgb& c = part.colors[i];
        const Vdp1Rgb& offset = part.secondaryColors[i];
        glTexCoord2f(s[i], t[i]);
        glColor4f(c.red, c.green, c.blue, part.alpha);
        secondaryColorFunction(offset.red, offset.green, offset.blue);
        glVertex2f(DeviceX(part.vertices[i].x), DeviceY(part.vertices[i].y));
    }
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void COpenGl::DrawUntexturedPart(const CVdp1Part& part, unsigned mode, int vertexCount) {
    if (!context) return;
    // Colour sum stays on: shapes carry their colour offset in the primary
    // colour, so no secondary colour is left over from a textured primitive.
    glBegin(mode);
    secondaryColorFunction(0.0f, 0.0f, 0.0f);
    for (int i = 0; i < vertexCount; ++i) {
        const Vdp1Rgb& c = part.colors[i];
        glColor4f(c.red, c.green, c.blue, part.alpha);
        glVertex2f(DeviceX(part.vertices[i].x), DeviceY(part.vertices[i].y));
    }
    glEnd();
}

void COpenGl::DrawPolygon(const CVdp1Part& part) { DrawUntexturedPart(part, GL_QUADS, 4); }
void COpenGl::DrawPolyline(const CVdp1Part& part) { DrawUntexturedPart(part, GL_LINE_LOOP, 4); }
void COpenGl::DrawLine(const CVdp1Part& part) { DrawUntexturedPart(part, GL_LINES, 2); }

}  // namespace vdpgl
