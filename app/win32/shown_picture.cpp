#include "app/win32/shown_picture.h"

#include "app/presentation.h"
#include "image/image_on_white.h"
#include "image/image_pack.h"
#include "image/image_smooth.h"
#include "platform/memory.h"

// What `scaled` was made from. Pictures of different runs can lie at the same address, hence the number.
struct ShownKey {
    i32 run_number, image;
    i32 area_width, area_height;
    bool smooth;
};

struct KeptPicture {
    PixelImage *scaled;  // null: none
    ShownKey key;
};

static KeptPicture kept = {};
static bool smooth_wanted = false;

static bool same_key(const ShownKey *one, const ShownKey *other) {
    return one->run_number == other->run_number && one->image == other->image &&
           one->area_width == other->area_width && one->area_height == other->area_height &&
           one->smooth == other->smooth;
}

static PixelImage *scale_to_fit(const PixelImage *packed, const ShownKey *key) {
    PixelImage *image = image_unpack(packed);
    if (image == nullptr) {
        return nullptr;
    }
    const PicturePlace place = picture_place(image->width, image->height, key->area_width, key->area_height);
    PixelImage *scaled =
        key->smooth ? image_scale_smooth(image, place.scale) : image_scale(image, place.scale);
    image_free(image);
    return scaled;
}

const PixelImage *shown_picture(const AppState *state) {
    const ShownKey key = {state->run_number, state->current_image, state->render_width, state->render_height,
                          smooth_wanted};
    if (key.image < 0 || key.image >= state->image_count || state->images[key.image] == nullptr) {
        return nullptr;
    }
    if (kept.scaled == nullptr || !same_key(&kept.key, &key)) {
        shown_picture_free();
        kept = {scale_to_fit(state->images[key.image], &key), key};
    }
    return kept.scaled;
}

// The whole area, bottom row first, opaque. A new block, freed with memory_free; null when memory is lacking.
static u8 *compose(const PixelImage *scaled, i32 width, i32 height) {
    const i64 size = i64{width} * height * 4;
    auto *area = static_cast<u8 *>(memory_try_allocate(size, 1));
    if (area == nullptr) {
        return nullptr;
    }
    for (i64 i = 0; i < size; ++i) {
        area[i] = 255;
    }
    const i32 left = scaled->width < width ? (width - scaled->width) / 2 : 0;
    const i32 bottom = scaled->height < height ? (height - scaled->height) / 2 : 0;
    for (i32 y = 0; y < scaled->height && bottom + y < height; ++y) {
        const u8 *from = scaled->pixels + i64{y} * scaled->width * 4;
        u8 *to = area + (i64{bottom + y} * width + left) * 4;
        for (i32 x = 0; x < scaled->width && left + x < width; x++, from += 4, to += 4) {
            for (i32 c = 0; c < 3; ++c) {
                to[c] = color_over_white(from[c], from[3]);
            }
        }
    }
    return area;
}

void shown_picture_paint(const AppState *state, HDC context) {
    const PixelImage *scaled = shown_picture(state);
    const i32 width = state->render_width;
    const i32 height = state->render_height;
    u8 *area = scaled != nullptr && width > 0 && height > 0 ? compose(scaled, width, height) : nullptr;
    if (area == nullptr) {
        return;
    }
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(format.bmiHeader);
    format.bmiHeader.biWidth = width;
    format.bmiHeader.biHeight = height;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;
    SetDIBitsToDevice(context, 0, 0, static_cast<DWORD>(width), static_cast<DWORD>(height), 0, 0, 0,
                      static_cast<UINT>(height), area, &format, DIB_RGB_COLORS);
    memory_free(area);
}

bool shown_picture_is_smooth() {
    return smooth_wanted;
}

void shown_picture_set_smooth(bool smooth) {
    smooth_wanted = smooth;
}

void shown_picture_free() {
    image_free(kept.scaled);
    kept.scaled = nullptr;
}
