// multisample.h: a framebuffer with several samples a pixel beside the picture's own. What is drawn into it
// is drawn several times, moved by parts of a pixel, so that the picture gets as many samples as it should
// have whatever the graphics offer at a time. Needs a current context.
#pragma once
#include "platform/owned.h"

inline constexpr i32 SAMPLES_A_PIXEL = 8;  // together
inline constexpr i32 MOST_PASSES = 4;

struct MultisampleTarget {
    u32 picture;                  // framebuffer that was bound and receives the picture; not owned
    u32 fbo, color_rb, depth_rb;  // of the samples; 0: the picture's own framebuffer is drawn into
    u32 pass_fbo, pass_texture;   // one pass, one sample a pixel
    i32 width, height;            // pixels
    i32 samples;                  // a pixel in one pass, at least 1
    i32 passes;                   // how often to draw
};

// A target for the bound framebuffer of width x height pixels. Where memory or the graphics do not
// bear 8 samples there are fewer, down to one, which diagnostic_write is told once.
// Freed with multisample_free.
MultisampleTarget *multisample_create(i32 width, i32 height);
void multisample_free(MultisampleTarget *target);  // takes null

template <>
struct Freed<MultisampleTarget> {
    void operator()(MultisampleTarget *target) const { multisample_free(target); }
};

// Binds what a pass (from 0) is drawn into, and tells how far it must be moved, pixels.
void multisample_begin(const MultisampleTarget *target, i32 pass, f32 *dx, f32 *dy);

// Adds the pass to the picture, with the depths of the first one, and binds the picture's framebuffer. The
// passes follow each other from 0. Leaves no program in use; blending and viewport stay.
void multisample_end(const MultisampleTarget *target, i32 pass);
