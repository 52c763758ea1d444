// gdi_frames.h: what the program under test paints without OpenGL.
#pragma once
#include <vector>

#include "platform/base.h"

struct GdiFrame {
    i32 image;               // index of the picture on show
    i32 width, height;       // pixels
    u32 thread_id;           // that painted
    std::vector<u8> pixels;  // blue, green, red and one more byte; bottom row first
};

void gdi_frames_watch();  // from now on, for the whole program; forgets those before
// What was painted since, in order.
std::vector<GdiFrame> gdi_frames();

// Number of pixels that are not those of the picture on show: scaled to the nearest pixel, centred, over
// white.
i32 gdi_frame_wrong_pixels(const GdiFrame &frame);
