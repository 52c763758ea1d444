#include "render/picture_text.h"

#include <GL/glew.h>

#include <cassert>
#include <cmath>
#include <cwchar>
#include <mutex>

#include "platform/platform.h"
#include "platform/text_bitmap.h"
#include "platform/wide_text.h"

static constexpr i32 WEIGHT = 700;

// The faces made so far: few, one for each kind of text.
struct KeptFace {
    i32 height;
    PlatformTextFace *face;  // owned
};

// Several threads may draw texts at a time; a face serves one of them.
static std::mutex faces_lock;
static KeptFace *kept_faces;
static i32 kept_count;
static i32 kept_capacity;

static PlatformTextFace *face_get(i32 height) {
    assert(height > 0);
    for (i32 i = 0; i < kept_count; ++i) {
        if (kept_faces[i].height == height) {
            return kept_faces[i].face;
        }
    }
    const KeptFace kept = {height, platform_text_face_create(height, WEIGHT)};
    array_append(&kept_faces, &kept_count, &kept_capacity, kept, 8);
    return kept.face;
}

void picture_text_free_faces() {
    const std::lock_guard<std::mutex> lock(faces_lock);
    for (i32 i = 0; i < kept_count; ++i) {
        platform_text_face_free(kept_faces[i].face);
    }
    memory_free(kept_faces);
    kept_faces = nullptr;
    kept_count = 0;
    kept_capacity = 0;
}

i32 picture_text_width(const wchar_t *text, i32 height) {
    assert(text != nullptr);
    const std::lock_guard<std::mutex> lock(faces_lock);
    return platform_text_width(face_get(height), text);
}

i32 picture_text_place(f32 coordinate) {
    constexpr f32 FAR_OUTSIDE = 1e6F;
    if (coordinate > FAR_OUTSIDE) {
        return static_cast<i32>(FAR_OUTSIDE);
    }
    return coordinate > -FAR_OUTSIDE ? static_cast<i32>(coordinate) : -static_cast<i32>(FAR_OUTSIDE);
}

i32 picture_text_drop(i32 height) {
    return height / 3;
}

// How far the edge reaches around the letters, pixels.
static i32 edge_reach(i32 height) {
    const i32 reach = (height + 8) / 16;
    return reach < 1 ? 1 : reach;
}

// Whether a pixel of the ink has full ink around it, so that its edge lies within that of its neighbours.
static bool is_inside(const PlatformTextBitmap *ink, i32 x, i32 y) {
    if (x < 1 || y < 1 || x + 1 >= ink->width || y + 1 >= ink->height) {
        return false;
    }
    const u8 *at = ink->coverage.get() + i64{y} * ink->width + x;
    return at[0] == 255 && at[-1] == 255 && at[1] == 255 && at[-ink->width] == 255 && at[ink->width] == 255;
}

// The share of the edge in pixels up to `reach` away from a full pixel of ink, (2 reach + 1) squared.
static Owned<f32[]> edge_stamp(i32 reach) {
    const i32 side = 2 * reach + 1;
    Owned<f32[]> stamp = memory_scratch<f32>(i64{side} * side);
    for (i32 y = 0; y < side; ++y) {
        for (i32 x = 0; x < side; ++x) {
            const f32 distance = std::hypot(static_cast<f32>(x - reach), static_cast<f32>(y - reach));
            const f32 share = static_cast<f32>(reach) + 0.5F - distance;
            stamp[i64{y} * side + x] = share < 0.0F ? 0.0F : share > 1.0F ? 1.0F : share;
        }
    }
    return stamp;
}

// Puts the edge of one pixel of ink into the alpha of the pixels around it: the larger one stands.
static void stamp_edge(EdgedText *edged, i32 x, i32 y, u8 coverage, const f32 *stamp, i32 reach) {
    const i32 side = 2 * reach + 1;
    for (i32 row = 0; row < side; ++row) {
        u8 *to = edged->pixels.get() + (i64{y + row} * edged->width + x) * 4 + 3;
        for (i32 column = 0; column < side; ++column, to += 4) {
            const f32 share = stamp[i64{row} * side + column] * static_cast<f32>(coverage);
            const u8 alpha = static_cast<u8>(truncate_i32(share + 0.5F));
            *to = alpha > *to ? alpha : *to;
        }
    }
}

// Lays the black ink over the white edge, whose alpha is there.
static void lay_ink(u8 *pixel, u8 coverage) {
    const u32 ink = coverage;
    const u32 edge = pixel[3];
    const u32 rest = edge * (255 - ink);  // of the edge, 255 times
    const u32 alpha = ink * 255 + rest;   // 255 times
    const u8 grey = alpha > 0 ? static_cast<u8>((rest * 255 + alpha / 2) / alpha) : u8{255};
    pixel[0] = grey;
    pixel[1] = grey;
    pixel[2] = grey;
    pixel[3] = static_cast<u8>((alpha + 127) / 255);
}

static PlatformTextBitmap draw_ink(const wchar_t *text, i32 height) {
    const std::lock_guard<std::mutex> lock(faces_lock);
    return platform_text_draw(face_get(height), text);
}

EdgedText picture_text_edged(const wchar_t *text, i32 height) {
    assert(text != nullptr && height > 0);
    const PlatformTextBitmap ink = draw_ink(text, height);
    EdgedText edged = {};
    if (ink.width < 1 || ink.height < 1) {
        return edged;
    }
    const i32 reach = edge_reach(height);
    edged.width = ink.width + 2 * reach;
    edged.height = ink.height + 2 * reach;
    edged.left = ink.left - reach;
    edged.bottom = ink.bottom - reach;
    edged.pixels = memory_scratch_zeroed<u8>(i64{edged.width} * edged.height * 4);
    const Owned<f32[]> stamp = edge_stamp(reach);
    for (i32 y = 0; y < ink.height; ++y) {
        for (i32 x = 0; x < ink.width; ++x) {
            const u8 coverage = ink.coverage[i64{y} * ink.width + x];
            if (coverage > 0 && is_inside(&ink, x, y)) {
                edged.pixels[(i64{y + reach} * edged.width + x + reach) * 4 + 3] = 255;
            } else if (coverage > 0) {
                stamp_edge(&edged, x, y, coverage, stamp.get(), reach);
            }
        }
    }
    for (i32 y = 0; y < edged.height; ++y) {
        for (i32 x = 0; x < edged.width; ++x) {
            const i32 n = x - reach;
            const i32 m = y - reach;
            const bool in_ink = n >= 0 && m >= 0 && n < ink.width && m < ink.height;
            lay_ink(edged.pixels.get() + (i64{y} * edged.width + x) * 4,
                    in_ink ? ink.coverage[i64{m} * ink.width + n] : u8{0});
        }
    }
    return edged;
}

// Draws pixels over what is there, whatever its depth. The alpha of the picture grows with that of the text,
// so that a transparent one is right behind it.
static void draw_pixels(i32 x, i32 y, i32 width, i32 height, const u8 *pixels) {
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glWindowPos2i(x, y);
    glDrawPixels(width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glPopClientAttrib();
    glPopAttrib();
}

void picture_text_draw(i32 x, i32 y, const wchar_t *text, i32 height) {
    assert(platform_gl_is_current());
    const EdgedText edged = picture_text_edged(text, height);
    if (edged.width > 0) {
        draw_pixels(x + edged.left, y + edged.bottom, edged.width, edged.height, edged.pixels.get());
    }
}

void picture_text_draw_upwards(i32 x, i32 y, const wchar_t *text, i32 height) {
    assert(platform_gl_is_current());
    const EdgedText edged = picture_text_edged(text, height);
    if (edged.width < 1) {
        return;
    }
    // What lay to the right lies above, what lay above lies to the left.
    const auto turned = memory_scratch<u8>(i64{edged.width} * edged.height * 4);
    for (i32 m = 0; m < edged.height; ++m) {
        for (i32 n = 0; n < edged.width; ++n) {
            const u8 *from = edged.pixels.get() + (i64{m} * edged.width + n) * 4;
            u8 *to = turned.get() + (i64{n} * edged.height + (edged.height - 1 - m)) * 4;
            for (i32 i = 0; i < 4; ++i) {
                to[i] = from[i];
            }
        }
    }
    draw_pixels(x - edged.bottom - edged.height, y + edged.left, edged.height, edged.width, turned.get());
}

// No letter of running text is narrower than this part of its line's height. Measuring a text takes time for
// each letter, so that more of them than can fit are not looked at.
static constexpr i64 NARROWEST_SHARE = 16;

WideText picture_text_start(const wchar_t *text, i32 height, i32 room) {
    assert(text != nullptr && height > 0);
    WideText start = wide_copy(text);
    const size_t most = static_cast<size_t>((room > 0 ? room : 0) * NARROWEST_SHARE / height + 16);
    if (std::wcslen(text) > most) {
        start[most] = 0;
    }
    return start;
}

WideText picture_text_fit(const wchar_t *text, i32 height, i32 room) {
    WideText whole = picture_text_start(text, height, room);
    if (picture_text_width(whole.get(), height) <= room) {
        return whole;
    }
    // The longest beginning that fits, between `fits` and `longer` characters.
    size_t fits = 0;
    size_t longer = std::wcslen(whole.get());
    while (longer - fits > 1) {
        const size_t middle = fits + (longer - fits) / 2;
        const wchar_t after = whole[middle];
        whole[middle] = 0;
        const WideText cut = wide_join(whole.get(), L"...");
        whole[middle] = after;
        if (picture_text_width(cut.get(), height) <= room) {
            fits = middle;
        } else {
            longer = middle;
        }
    }
    // Half a pair of UTF-16 is no letter.
    if (fits > 0 && sizeof(wchar_t) == 2 && (whole[fits - 1] & 0xFC00) == 0xD800) {
        --fits;
    }
    whole[fits] = 0;
    return wide_join(whole.get(), L"...");
}
