// text_bitmap.h: a line of text in any script as a smooth bitmap. Needs no OpenGL context. Letters that the
// face lacks come from another one that the system has. One thread at a time.
#pragma once
#include "platform/owned.h"

// "Arial", or what stands for it, at one size.
struct PlatformTextFace;

// A face whose cell is `height` pixels high; weight 400 is regular, 700 bold. One that the system does not
// have draws nothing. Never null; freed with platform_text_face_free.
PlatformTextFace *platform_text_face_create(i32 height, i32 weight);
void platform_text_face_free(PlatformTextFace *face);  // takes null

template <>
struct Freed<PlatformTextFace> {
    void operator()(PlatformTextFace *face) const { platform_text_face_free(face); }
};

struct PlatformTextBitmap {
    i32 width, height;     // pixels; 0 where the text has no ink
    i32 left, bottom;      // of the lower left corner from where the text starts on its baseline, pixels
    Owned<u8[]> coverage;  // width x height, bottom row first: 0 no ink to 255 all ink
};

// The ink of a text, from left to right, without control characters.
PlatformTextBitmap platform_text_draw(PlatformTextFace *face, const wchar_t *text);

// How far a text reaches to the right of its start, pixels.
i32 platform_text_width(PlatformTextFace *face, const wchar_t *text);
