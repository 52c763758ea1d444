#include "app/win32/shown_picture.h"

#include <cassert>
#include <cstring>

#include "app/presentation.h"
#include "app/win32/win32_desktop.h"
#include "image/image_on_white.h"
#include "image/image_pack.h"
#include "image/image_smooth.h"
#include "platform/memory.h"
#include "platform/thread_role.h"

static bool same_key(const ShownKey *one, const ShownKey *other) {
    return one->run_number == other->run_number && one->image == other->image &&
           one->area_width == other->area_width && one->area_height == other->area_height &&
           one->smooth == other->smooth;
}

static PixelImage *scale_to_fit(const PixelImage *packed, const ShownKey *key) {
    const Owned<PixelImage> image(image_unpack(packed));
    if (image == nullptr) {
        return nullptr;
    }
    const PicturePlace place = picture_place(image->width, image->height, key->area_width, key->area_height);
    return key->smooth ? image_scale_smooth(image.get(), place.scale) : image_scale(image.get(), place.scale);
}

const PixelImage *shown_picture(const AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    ShownPicture *shown = &g_desktop->picture;
    const ShownKey key = {state->run_number, state->current_image, state->render_width, state->render_height,
                          shown->smooth_wanted};
    if (key.image < 0 || key.image >= state->image_count || state->images[key.image] == nullptr) {
        return nullptr;
    }
    if (shown->scaled == nullptr || !same_key(&shown->key, &key)) {
        shown_picture_free();
        shown->scaled = scale_to_fit(state->images[key.image], &key);
        shown->key = key;
    }
    return shown->scaled;
}

// The whole area, bottom row first, opaque; null when memory is lacking.
static Owned<u8[]> compose(const PixelImage *scaled, i32 width, i32 height) {
    const i64 size = i64{width} * height * 4;
    Owned<u8[]> area(static_cast<u8 *>(memory_try_allocate(size, 1)));
    if (area == nullptr) {
        return nullptr;
    }
    std::memset(area.get(), 255, static_cast<size_t>(size));
    const i32 left = scaled->width < width ? (width - scaled->width) / 2 : 0;
    const i32 bottom = scaled->height < height ? (height - scaled->height) / 2 : 0;
    for (i32 y = 0; y < scaled->height && bottom + y < height; ++y) {
        const u8 *from = scaled->pixels + i64{y} * scaled->width * 4;
        u8 *to = area.get() + (i64{bottom + y} * width + left) * 4;
        for (i32 x = 0; x < scaled->width && left + x < width; ++x, from += 4, to += 4) {
            for (i32 c = 0; c < 3; ++c) {
                to[c] = color_over_white(from[c], from[3]);
            }
        }
    }
    return area;
}

void shown_picture_paint(const AppState *state, HDC context) {
    assert(thread_role_fits(THREAD_WINDOW));
    const PixelImage *scaled = shown_picture(state);
    const i32 width = state->render_width;
    const i32 height = state->render_height;
    const Owned<u8[]> area =
        scaled != nullptr && width > 0 && height > 0 ? compose(scaled, width, height) : nullptr;
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
                      static_cast<UINT>(height), area.get(), &format, DIB_RGB_COLORS);
}

bool shown_picture_is_smooth() {
    return g_desktop->picture.smooth_wanted;
}

void shown_picture_set_smooth(bool smooth) {
    g_desktop->picture.smooth_wanted = smooth;
}

void shown_picture_free() {
    image_free(g_desktop->picture.scaled);
    g_desktop->picture.scaled = nullptr;
}
