// pixel_image.h: a picture as read back from the graphics: blue, green, red, alpha bytes, bottom row first.
#pragma once
#include "image/image_notes.h"
#include "log/text.h"

struct PixelImage {
    u8 *pixels;  // width x height x 4, rows from the bottom up, no padding; null while packed (image_pack.h)
                 // or dropped
    i32 width, height;
    WString *title;  // caption of the window and part of the file name
    u8 *packed;      // the pixels compressed, or null
    i64 packed_size;
    ImageNotes *notes;  // what files tell of the picture besides its pixels (image_notes.h), or null; owned
    bool transparent;   // the alpha bytes count: what lies behind the picture shows through
};

// A new picture with uninitialised pixels; the title is copied (null becomes "(null)").
// Freed with image_free.
PixelImage *image_create(i32 width, i32 height, const wchar_t *title);
void image_free(PixelImage *image);  // takes null

template <>
struct Freed<PixelImage> {
    void operator()(PixelImage *image) const { image_free(image); }
};

// Whether it has no pixel: a side below 1.
bool image_is_empty(const PixelImage *image);

// Frees the pixels, packed or not; the title and the size stay.
void image_drop_pixels(PixelImage *image);

// A new picture with all that a file of it needs: the pixels and the notes, which one that stays gives away,
// and its size and title. The pixels must not be packed. Freed with image_free.
PixelImage *image_take_pixels(PixelImage *image);

// image_create where lack of memory is the caller's: null, and nobody is told. Without a title it is empty.
PixelImage *image_try_create(i32 width, i32 height, const wchar_t *title);

// A new picture of truncated width x scale by height x scale, nearest neighbour, single precision. The source
// must not be packed. Freed with image_free.
PixelImage *image_scale(const PixelImage *image, f32 scale);
