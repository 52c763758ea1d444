#include "tests/win32/painted_frames.h"

#include <windows.h>
// After windows.h, whose types it would else declare anew.
#include <GL/glew.h>

#include <cmath>
#include <cstdlib>
#include <mutex>

#include "app/app_state.h"
#include "app/presentation.h"
#include "app/win32/shown_picture.h"
#include "image/image_pack.h"
#include "image/image_smooth.h"
#include "tests/win32/import_patch.h"

using SwapFunction = BOOL WINAPI(HDC);

static SwapFunction *swap_original;
static std::mutex frames_mutex;
static std::vector<PaintedFrame> frames;
static bool comparing = true;

// One colour of a pixel drawn over the clear colour; the scene is drawn with blending switched on.
static i32 blended(u8 source, u8 alpha, f32 clear) {
    const f32 share = static_cast<f32>(alpha) / 255.0F;
    return static_cast<i32>(std::lround(static_cast<f32>(source) * share + 255.0F * clear * (1.0F - share)));
}

static bool pixel_is(const u8 *seen, const u8 *source, const f32 *clear) {
    static constexpr i32 CLEAR_INDEX[3] = {2, 1, 0};  // pixels are blue, green, red
    const u8 alpha = source != nullptr ? source[3] : 0;
    for (i32 c = 0; c < 3; ++c) {
        const i32 expected = blended(source != nullptr ? source[c] : 0, alpha, clear[CLEAR_INDEX[c]]);
        const i32 tolerance = alpha == 255 ? 0 : 1;  // of rounding
        if (std::abs(expected - static_cast<i32>(seen[c])) > tolerance) {
            return false;
        }
    }
    return true;
}

static void compare(PaintedFrame *frame) {
    const Owned<PixelImage> image(image_unpack(g_app->images[frame->image]));
    const PicturePlace place =
        picture_place(image->width, image->height, g_app->render_width, g_app->render_height);
    const Owned<PixelImage> scaled(shown_picture_is_smooth() ? image_scale_smooth(image.get(), place.scale)
                                                             : image_scale(image.get(), place.scale));
    f32 clear[4] = {};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    for (i32 y = 0; y < frame->height; ++y) {
        for (i32 x = 0; x < frame->width; ++x) {
            const i32 sx = x - place.x;
            const i32 sy = y - place.y;
            const bool inside = sx >= 0 && sy >= 0 && sx < scaled->width && sy < scaled->height;
            const u8 *source = inside ? scaled->pixels + (i64{sy} * scaled->width + sx) * 4 : nullptr;
            const u8 *seen = frame->pixels.data() + (i64{y} * frame->width + x) * 4;
            ++(inside ? frame->picture_pixels : frame->border_pixels);
            frame->wrong_pixels += pixel_is(seen, source, clear) ? 0 : 1;
        }
    }
}

static void read_back(PaintedFrame *frame) {
    RECT client = {};
    GetClientRect(static_cast<HWND>(g_app->render_window), &client);
    frame->width = client.right;
    frame->height = client.bottom;
    frame->pixels.resize(static_cast<size_t>(frame->width) * static_cast<size_t>(frame->height) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, frame->width, frame->height, GL_BGRA, GL_UNSIGNED_BYTE, frame->pixels.data());
    compare(frame);
}

static BOOL WINAPI swap_watched(HDC context) {
    PaintedFrame frame = {};
    frame.image = g_app->current_image;
    frame.thread_id = GetCurrentThreadId();
    if (comparing) {
        read_back(&frame);
    }
    const std::lock_guard<std::mutex> lock(frames_mutex);
    if (!frames.empty()) {
        frames.back().pixels.clear();
    }
    frames.push_back(frame);
    return swap_original(context);
}

void painted_frames_watch() {
    swap_original = import_replace<SwapFunction>("SwapBuffers", swap_watched);
}

void painted_frames_compare(bool compare_them) {
    comparing = compare_them;
}

void painted_frames_forget() {
    const std::lock_guard<std::mutex> lock(frames_mutex);
    frames.clear();
}

i32 painted_frames_count() {
    const std::lock_guard<std::mutex> lock(frames_mutex);
    return static_cast<i32>(frames.size());
}

std::vector<PaintedFrame> painted_frames() {
    const std::lock_guard<std::mutex> lock(frames_mutex);
    return frames;
}
