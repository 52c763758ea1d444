// ground.h: what a picture is drawn onto. Needs a current context.
#pragma once
#include "render/picture_style.h"

// Covers the bound framebuffer with the background of a style. Where that is transparent, colours are added
// up times their alpha from here on, as image_make_transparent takes them; so are they in a fine picture,
// whose stored alpha is then that of what is seen.
void ground_start(const PictureStyle *style);

// Goes back to the usual blending (render_state_init).
void ground_end();
