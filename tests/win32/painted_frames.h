// painted_frames.h: what the program under test paints: the back buffer of the render area, read each time
// it is about to be shown, and compared with the picture on show.
#pragma once
#include <vector>

#include "platform/base.h"

struct PaintedFrame {
    i32 image;               // index of the picture on show
    i32 width, height;       // of the render window's inside, pixels
    i32 picture_pixels;      // pixels that the scaled picture covers
    i32 border_pixels;       // pixels beside it
    i32 wrong_pixels;        // pixels that are neither the scaled picture's nor, beside it, the clear colour
    u32 thread_id;           // that painted
    std::vector<u8> pixels;  // blue, green, red, alpha; bottom row first; kept for the last frame only
};

void painted_frames_watch();                // from now on, for the whole program
void painted_frames_compare(bool compare);  // reading back is slow; false: frames are only counted
// Starts the list anew.
void painted_frames_forget();
// Frames since then.
i32 painted_frames_count();
// The frames since then, in their order.
std::vector<PaintedFrame> painted_frames();
