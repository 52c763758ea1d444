// shown_picture.h: the picture on show as the render area needs it: unpacked, scaled, and kept until another
// picture, another size or another way of scaling is wanted. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// What `scaled` was made from. Pictures of different runs can lie at the same address, hence the number.
struct ShownKey {
    i32 run_number, image;
    i32 area_width, area_height;
    bool smooth;
};

struct ShownPicture {
    PixelImage *scaled;  // owned; null: none
    ShownKey key;
    bool smooth_wanted;
};

// The picture on show, scaled to fit the render area; null when there is none, or no memory for it. Valid
// until the next call of a function of this file.
const PixelImage *shown_picture(const AppState *state);

// Paints the picture on show without OpenGL: centred, laid over the white that pictures are drawn on, and
// white around it. Does nothing without one.
void shown_picture_paint(const AppState *state, HDC context);

// Whether pictures are scaled by the mean of areas rather than by taking the nearest pixel.
bool shown_picture_is_smooth();

// Chooses between the two; the picture is scaled anew when it is asked for.
void shown_picture_set_smooth(bool smooth);

// Frees what is kept.
void shown_picture_free();
