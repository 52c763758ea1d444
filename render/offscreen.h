// offscreen.h: the framebuffer that pictures are rendered into. Needs a current context.
#pragma once
#include "image/pixel_image.h"

struct OffscreenTarget {
    u32 fbo;       // the framebuffer
    u32 color_rb;  // GL_RGBA8
    u32 depth_rb;  // GL_DEPTH_COMPONENT24
};

// Frees *target when it exists, makes a new one of width x height pixels and leaves it bound.
// False when nothing can be drawn into it: the framebuffer is incomplete, which diagnostic_write is told.
bool offscreen_recreate(OffscreenTarget **target, i32 width, i32 height);

// Reads the bound framebuffer into the image's pixels, bottom row first, then binds the default one. False
// when what was read is no picture: the framebuffer is incomplete, the reading failed, or the graphics ran
// out of memory or were reset since the last call. diagnostic_write is told, and the pixels are of no use.
bool offscreen_read(PixelImage *image);

// Deletes the target's objects, unless the context is gone, and its record; takes null.
void offscreen_free(OffscreenTarget *target);

template <>
struct Freed<OffscreenTarget> {
    void operator()(OffscreenTarget *target) const { offscreen_free(target); }
};
