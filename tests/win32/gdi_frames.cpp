#include "tests/win32/gdi_frames.h"

#include <windows.h>

#include <cstdlib>
#include <mutex>

#include "app/app_state.h"
#include "app/presentation.h"
#include "image/image_pack.h"
#include "tests/win32/import_patch.h"

static decltype(SetDIBitsToDevice) *paint_original;
static std::mutex frames_mutex;
static std::vector<GdiFrame> frames;

static int WINAPI paint_watched(HDC context, int x, int y, DWORD width, DWORD height, int from_x, int from_y,
                                UINT first, UINT lines, const void *bits, const BITMAPINFO *format,
                                UINT usage) {
    if (g_app != nullptr && WindowFromDC(context) == g_app->render_window) {
        GdiFrame frame = {};
        frame.image = g_app->current_image;
        frame.width = static_cast<i32>(width);
        frame.height = static_cast<i32>(height);
        frame.thread_id = GetCurrentThreadId();
        const auto *bytes = static_cast<const u8 *>(bits);
        frame.pixels.assign(bytes, bytes + static_cast<size_t>(width) * height * 4);
        const std::lock_guard<std::mutex> lock(frames_mutex);
        frames.push_back(frame);
    }
    return paint_original(context, x, y, width, height, from_x, from_y, first, lines, bits, format, usage);
}

void gdi_frames_watch() {
    if (paint_original == nullptr) {
        paint_original = import_replace("SetDIBitsToDevice", paint_watched);
    }
    const std::lock_guard<std::mutex> lock(frames_mutex);
    frames.clear();
}

std::vector<GdiFrame> gdi_frames() {
    const std::lock_guard<std::mutex> lock(frames_mutex);
    return frames;
}

i32 gdi_frame_wrong_pixels(const GdiFrame &frame) {
    const Owned<PixelImage> image(image_unpack(g_app->images[frame.image]));
    const PicturePlace place =
        picture_place(image->width, image->height, g_app->render_width, g_app->render_height);
    const Owned<PixelImage> scaled(image_scale(image.get(), place.scale));
    i32 wrong = frame.width == g_app->render_width && frame.height == g_app->render_height ? 0 : 1;
    for (i32 y = 0; y < frame.height; ++y) {
        for (i32 x = 0; x < frame.width; ++x) {
            const i32 sx = x - place.x;
            const i32 sy = y - place.y;
            const bool inside = sx >= 0 && sy >= 0 && sx < scaled->width && sy < scaled->height;
            const u8 *seen = frame.pixels.data() + (i64{y} * frame.width + x) * 4;
            for (i32 c = 0; c < 3; ++c) {
                const u8 *source = inside ? scaled->pixels + (i64{sy} * scaled->width + sx) * 4 : nullptr;
                const f64 share = inside ? source[3] / 255.0 : 0.0;
                const f64 expected = inside ? source[c] * share + 255.0 * (1.0 - share) : 255.0;
                wrong += std::abs(expected - seen[c]) > 0.51 ? 1 : 0;
            }
        }
    }
    return wrong;
}
