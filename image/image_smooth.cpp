#include "image/image_smooth.h"

#include <cassert>

// Lengths along one side are counted in parts of which a source pixel has `scaled_size` and a scaled pixel
// `source_size`, so that every border falls between two parts.
struct Span {
    i32 first, last;  // source pixels that a scaled one covers, wholly or in part
};

static Span span_of(i32 index, i32 scaled_size, i32 source_size) {
    const i64 start = i64{index} * source_size;
    const i64 end = start + source_size;
    return {static_cast<i32>(start / scaled_size), static_cast<i32>((end - 1) / scaled_size)};
}

// How many parts of source pixel `source` lie in scaled pixel `index`.
static i64 shared_parts(i32 source, i32 index, i32 scaled_size, i32 source_size) {
    const i64 source_start = i64{source} * scaled_size;
    const i64 start = i64{index} * source_size;
    const i64 from = source_start > start ? source_start : start;
    const i64 source_end = source_start + scaled_size;
    const i64 end = start + source_size;
    const i64 to = source_end < end ? source_end : end;
    return to - from;
}

// Sums over the area of one scaled pixel. A picture of 2^31 pixels stays far below 2^63.
struct AreaSum {
    u64 parts;
    u64 alpha;      // parts x alpha
    u64 colors[3];  // parts x alpha x colour
};

static u8 rounded(u64 sum, u64 count) {
    return static_cast<u8>((sum + count / 2) / count);
}

static void store(u8 *pixel, const AreaSum *sum) {
    assert(sum->parts > 0);  // every scaled pixel covers some of the source
    for (i32 c = 0; c < 3; ++c) {
        pixel[c] = sum->alpha > 0 ? rounded(sum->colors[c], sum->alpha) : u8{0};
    }
    pixel[3] = rounded(sum->alpha, sum->parts);
}

static AreaSum sum_area(const PixelImage *image, const PixelImage *scaled, i32 x, i32 y) {
    const Span columns = span_of(x, scaled->width, image->width);
    const Span rows = span_of(y, scaled->height, image->height);
    AreaSum sum = {};
    for (i32 m = rows.first; m <= rows.last; ++m) {
        const auto row_parts = static_cast<u64>(shared_parts(m, y, scaled->height, image->height));
        const u8 *pixel = image->pixels + (i64{m} * image->width + columns.first) * 4;
        for (i32 n = columns.first; n <= columns.last; ++n, pixel += 4) {
            const u64 parts = row_parts * static_cast<u64>(shared_parts(n, x, scaled->width, image->width));
            const u64 weight = parts * pixel[3];
            sum.parts += parts;
            sum.alpha += weight;
            for (i32 c = 0; c < 3; ++c) {
                sum.colors[c] += weight * pixel[c];
            }
        }
    }
    return sum;
}

PixelImage *image_scale_smooth(const PixelImage *image, f32 scale) {
    assert(image != nullptr);
    const i32 height = truncate_i32(static_cast<f32>(image->height) * scale);
    const i32 width = truncate_i32(static_cast<f32>(image->width) * scale);
    PixelImage *scaled = image_create(width, height, wstring_text(image->title));
    if (image_is_empty(scaled)) {
        return scaled;
    }
    u8 *to = scaled->pixels;
    for (i32 y = 0; y < height; ++y) {
        for (i32 x = 0; x < width; ++x, to += 4) {
            const AreaSum sum = sum_area(image, scaled, x, y);
            store(to, &sum);
        }
    }
    return scaled;
}
