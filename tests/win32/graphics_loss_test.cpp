// Graphics that fail in the middle: a context that does not come back, fonts that cannot be made.
#include <gtest/gtest.h>

#include <cstring>

#include "image/image_pack.h"
#include "tests/app/app_scene.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/gdi_frames.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static decltype(wglMakeCurrent) *current_original;
static DWORD refused_thread;  // gets no context; 0: every thread gets it

static BOOL WINAPI current_refusing(HDC device, HGLRC context) {
    if (context != nullptr && GetCurrentThreadId() == refused_thread) {
        return FALSE;
    }
    return current_original(device, context);
}

TEST(GraphicsLoss, ContextThatIsNotGivenBackAfterARunIsTold) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    current_original = import_replace("wglMakeCurrent", current_refusing);
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(2)), L"All process"));
    refused_thread = desktop.thread_id;
    gdi_frames_watch();
    console_release();
    const MessageBoxSeen box = message_box_wait();
    EXPECT_EQ(box.text, "Could not initialize graphics");
    message_box_press_ok(box);
    ASSERT_TRUE(console_shows(desktop, "\r\nNote: the graphics cannot be used any more"));
    desktop_settle(desktop);
    // The pictures can be looked at and saved all the same.
    key_press(desktop.main, VK_LEFT);
    ASSERT_TRUE(wait_until([] { return !gdi_frames().empty() && gdi_frames().back().image == 1; }));
    EXPECT_EQ(gdi_frame_wrong_pixels(gdi_frames().back()), 0);
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
    refused_thread = 0;
}

static decltype(CreateFontA) *font_original;
static bool refuse_fonts;

static HFONT WINAPI font_refusing(int height, int width, int escapement, int orientation, int weight,
                                  DWORD italic, DWORD underline, DWORD strikeout, DWORD charset,
                                  DWORD out_precision, DWORD clip_precision, DWORD quality, DWORD pitch,
                                  LPCSTR face) {
    return refuse_fonts
               ? nullptr
               : font_original(height, width, escapement, orientation, weight, italic, underline, strikeout,
                               charset, out_precision, clip_precision, quality, pitch, face);
}

static i64 black_pixels(const PixelImage *packed) {
    const Owned<PixelImage> image(image_unpack(packed));
    i64 count = 0;
    for (i64 i = 0; i < i64{image->width} * image->height; ++i) {
        const u8 *pixel = image->pixels + i * 4;
        count += pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0 ? 1 : 0;
    }
    return count;
}

TEST(GraphicsLoss, FontsThatCouldNotBeMadeAreTriedAgain) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    const std::wstring process = write_process(desktop, L"p.txt", "");
    font_original = import_replace("CreateFontA", font_refusing);
    refuse_fonts = true;
    ASSERT_TRUE(run_process(&desktop, process));
    EXPECT_EQ(black_pixels(g_app->images[0]), 0) << "no text, and nothing else is black";
    refuse_fonts = false;
    ASSERT_TRUE(run_process(&desktop, process));
    EXPECT_GT(black_pixels(g_app->images[0]), 50) << "the label of the width";
}
