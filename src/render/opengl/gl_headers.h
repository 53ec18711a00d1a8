#pragma once
// OpenGL declarations for the renderer: GL 1.1 from gl.h, the extension
// types and tokens from glext.h. Entry points beyond 1.1 are looked up at
// run time through the context.
#include <GL/gl.h>
#include <GL/glext.h>
