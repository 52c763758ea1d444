// offscreen.h: the framebuffer that pictures are rendered into. Needs a current context.
#pragma once
#include "image/pixel_image.h"

struct OffscreenTarget {
    u32 fbo;
    u32 color_rb;  // GL_RGBA8
    u32 depth_rb;  // GL_DEPTH_COMPONENT24
};

// Frees *target when it exists, makes a new one of width x height pixels and leaves it bound.
// An incomplete framebuffer is told to diagnostic_write only.
void offscreen_recreate(OffscreenTarget **target, i32 width, i32 height);

// Reads the bound framebuffer into the image's pixels, bottom row first, then binds the default one.
void offscreen_read(PixelImage *image);

// Deletes the target's objects and its record; takes null.
void offscreen_free(OffscreenTarget *target);
