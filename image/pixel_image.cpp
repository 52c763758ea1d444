#include "image/pixel_image.h"

#include <cassert>
#include <cstring>

static i64 pixel_count(i32 width, i32 height) {
    return width > 0 && height > 0 ? static_cast<i64>(width) * height : 0;
}

PixelImage *image_create(i32 width, i32 height, const wchar_t *title) {
    auto *image = memory_new_zeroed<PixelImage>();
    image->pixels = static_cast<u8 *>(memory_allocate(pixel_count(width, height), 4));
    image->width = width;
    image->height = height;
    image->title = wstring_copy(title);
    return image;
}

PixelImage *image_try_create(i32 width, i32 height, const wchar_t *title) {
    Owned<u8[]> pixels(static_cast<u8 *>(memory_try_allocate(pixel_count(width, height), 4)));
    Owned<WString> copy(wstring_format(L"%ls", title != nullptr ? title : L""));
    if (pixels == nullptr || copy == nullptr || copy->text == nullptr) {
        return nullptr;
    }
    auto *image = static_cast<PixelImage *>(memory_try_allocate(1, sizeof(PixelImage)));
    if (image != nullptr) {
        *image = {};
        image->pixels = pixels.release();
        image->width = width;
        image->height = height;
        image->title = copy.release();
    }
    return image;
}

void image_free(PixelImage *image) {
    if (image == nullptr) {
        return;
    }
    image_drop_pixels(image);
    wstring_free(image->title);
    image_notes_free(image->notes);
    memory_free(image);
}

void image_drop_pixels(PixelImage *image) {
    assert(image != nullptr);
    memory_free(image->pixels);
    memory_free(image->packed);
    image->pixels = nullptr;
    image->packed = nullptr;
    image->packed_size = 0;
}

PixelImage *image_take_pixels(PixelImage *image) {
    assert(image != nullptr && image->pixels != nullptr && image->packed == nullptr);
    auto *taken = memory_new_zeroed<PixelImage>();
    taken->width = image->width;
    taken->height = image->height;
    taken->title = wstring_copy(wstring_text(image->title));
    taken->pixels = image->pixels;
    taken->notes = image->notes;
    taken->transparent = image->transparent;
    image->pixels = nullptr;
    image->notes = nullptr;
    return taken;
}

bool image_is_empty(const PixelImage *image) {
    assert(image != nullptr);
    return image->width < 1 || image->height < 1;
}

// The source row or column of a scaled one. For extreme scales the rounding of the division can reach
// one past the last, hence the limit.
static i32 source_index(i32 index, f32 scale, i32 source_count) {
    const f32 quotient = static_cast<f32>(index) / scale;
    const i32 source = truncate_i32(quotient);
    return source < source_count ? source : source_count - 1;
}

PixelImage *image_scale(const PixelImage *image, f32 scale) {
    assert(image_is_empty(image) || image->pixels != nullptr);
    const f32 scaled_height = static_cast<f32>(image->height) * scale;
    const f32 scaled_width = static_cast<f32>(image->width) * scale;
    const i32 height = truncate_i32(scaled_height);
    const i32 width = truncate_i32(scaled_width);
    PixelImage *scaled = image_create(width, height, wstring_text(image->title));
    if (image_is_empty(scaled)) {
        return scaled;
    }
    const auto columns = memory_scratch<i32>(width);
    for (i32 x = 0; x < width; ++x) {
        columns[x] = source_index(x, scale, image->width);
    }
    u8 *to = scaled->pixels;
    for (i32 y = 0; y < height; ++y) {
        const i64 source_row = static_cast<i64>(source_index(y, scale, image->height)) * image->width;
        const u8 *row = image->pixels + source_row * 4;
        for (i32 x = 0; x < width; ++x, to += 4) {
            std::memcpy(to, row + static_cast<i64>(columns[x]) * 4, 4);
        }
    }
    return scaled;
}
