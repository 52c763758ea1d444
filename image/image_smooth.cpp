#include "image/image_smooth.h"

#include <cassert>
#include <cstring>

#include "platform/memory.h"

// Along either side the unit is 1 / (source count x count) of the side: a source pixel is `count` units long,
// a pixel of the result `source_count` units, so that all shares are whole numbers.

// Sums the shares of the source rows that the row `y` of the result covers.
static void sum_rows(const PixelImage *image, i32 y, i32 height, u32 *sums) {
    i64 row_size = static_cast<i64>(image->width) * 4;
    std::memset(sums, 0, static_cast<size_t>(row_size) * sizeof(u32));
    i64 begin = static_cast<i64>(y) * image->height;
    i64 end = begin + image->height;
    for (i64 row = begin / height; row * height < end; row++) {
        i64 from = row * height > begin ? row * height : begin;
        i64 to = (row + 1) * height < end ? (row + 1) * height : end;
        auto share = static_cast<u32>(to - from);
        const u8 *pixels = image->pixels + row * row_size;
        for (i64 i = 0; i < row_size; i++) {
            sums[i] += share * pixels[i];
        }
    }
}

// One row of the result from the sums of its source rows.
static void average_columns(const u32 *sums, const PixelImage *image, i32 width, u8 *pixels) {
    u64 whole = static_cast<u64>(image->width) * static_cast<u64>(image->height);
    for (i32 x = 0; x < width; x++) {
        u64 mean[4] = {whole / 2, whole / 2, whole / 2, whole / 2};
        i64 begin = static_cast<i64>(x) * image->width;
        i64 end = begin + image->width;
        for (i64 column = begin / width; column * width < end; column++) {
            i64 from = column * width > begin ? column * width : begin;
            i64 to = (column + 1) * width < end ? (column + 1) * width : end;
            auto share = static_cast<u64>(to - from);
            for (i32 byte = 0; byte < 4; byte++) {
                mean[byte] += share * sums[column * 4 + byte];
            }
        }
        for (i32 byte = 0; byte < 4; byte++) {
            pixels[x * 4 + byte] = static_cast<u8>(mean[byte] / whole);
        }
    }
}

PixelImage *image_smooth(const PixelImage *image, i32 width, i32 height) {
    assert(image->pixels != nullptr && image->width > 0 && image->height > 0 && width > 0 && height > 0);
    assert(image->height <= MOST_ROWS);
    auto *sums = static_cast<u32 *>(memory_try_allocate(static_cast<i64>(image->width) * 4, sizeof(u32)));
    PixelImage *smooth = image_try_create(width, height, wstring_text(image->title));
    if (sums != nullptr && smooth != nullptr) {
        for (i32 y = 0; y < height; y++) {
            sum_rows(image, y, height, sums);
            average_columns(sums, image, width, smooth->pixels + static_cast<i64>(y) * width * 4);
        }
    } else {
        image_free(smooth);
        smooth = nullptr;
    }
    memory_free(sums);
    return smooth;
}

void image_lay_on_white(PixelImage *image) {
    i64 count = static_cast<i64>(image->width) * image->height;
    for (u8 *pixel = image->pixels; count > 0; count--, pixel += 4) {
        u32 alpha = pixel[3];
        for (i32 i = 0; i < 3 && alpha != 255; i++) {
            pixel[i] = static_cast<u8>((pixel[i] * alpha + 255 * (255 - alpha) + 127) / 255);
        }
        pixel[3] = 255;
    }
}
