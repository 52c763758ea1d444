// What the render area shows.
#include <gtest/gtest.h>

#include <cstring>

#include "app/presentation.h"
#include "image/image_pack.h"
#include "tests/app/app_scene.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/window_driver.h"

static bool start_and_run(Desktop *desktop, const std::string &steps) {
    return desktop_start(desktop) && load_layout(desktop, write_layout(*desktop)) &&
           run_process(desktop, write_process(*desktop, L"p.txt", steps));
}

// Without a picture.

static decltype(FillRect) *fill_original;
static std::vector<RECT> filled;

static int WINAPI fill_watched(HDC context, const RECT *area, HBRUSH brush) {
    if (brush == GetStockObject(WHITE_BRUSH) && WindowFromDC(context) == g_app->render_window) {
        filled.push_back(*area);
    }
    return fill_original(context, area, brush);
}

TEST(Presentation, WhiteWithoutAPicture) {
    Desktop desktop;
    fill_original = import_replace("FillRect", fill_watched);
    ASSERT_TRUE(desktop_start(&desktop));
    RECT client = {};
    GetClientRect(desktop.render, &client);
    const RECT part = {10, 20, 110, 70};
    for (const RECT &invalid : {client, part}) {
        // The screen asks for paints of its own while the window appears; they come to an end.
        EXPECT_TRUE(wait_until(
            [&]() {
                desktop_settle(desktop);
                filled.clear();
                RedrawWindow(desktop.render, &invalid, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
                desktop_settle(desktop);
                return filled.size() == 1 && EqualRect(&invalid, filled.data()) &&
                       !GetUpdateRect(desktop.render, nullptr, FALSE);
            },
            5))
            << "what is invalid is filled, and no more, and is valid again";
    }
    EXPECT_EQ(painted_frames_count(), 0) << "nothing is drawn with OpenGL";
    EXPECT_NE(desktop_log(desktop).find("No bitmap to render\r\n"), std::string::npos);
}

// With a picture.

TEST(Presentation, BackBufferIsTheScaledPictureWithBordersInTheClearColour) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, depositions(3)));
    struct Size {
        int width, height;
        bool beside, above;  // where borders must be
    };
    // Outer sizes of the main window: as it is, narrow, flat. The picture is nearly three times as wide as
    // high.
    for (const Size &size :
         {Size{1200, 800, false, true}, Size{500, 800, false, true}, Size{1200, 360, true, false}}) {
        SetWindowPos(desktop.main, nullptr, 0, 0, size.width, size.height, SWP_NOMOVE | SWP_NOZORDER);
        desktop_settle(desktop);
        // Graphics without a device of their own learn of the window's new size a moment later.
        std::vector<PaintedFrame> frames;
        wait_until(
            [&]() {
                painted_frames_forget();
                desktop_repaint(desktop);
                frames = painted_frames();
                return !frames.empty() && frames.back().wrong_pixels == 0;
            },
            5);
        ASSERT_FALSE(frames.empty());
        const PaintedFrame &frame = frames.back();
        const PixelImage *image = g_app->images[3];
        const PicturePlace place =
            picture_place(image->width, image->height, g_app->render_width, g_app->render_height);
        EXPECT_EQ(size.beside, place.x > 0) << size.width << " x " << size.height;
        EXPECT_EQ(size.above, place.y > 0) << size.width << " x " << size.height;
        EXPECT_EQ(frame.wrong_pixels, 0) << size.width << " x " << size.height;
        EXPECT_GT(frame.picture_pixels, 1000);
        EXPECT_GT(frame.border_pixels, 1000);
    }
}

TEST(Presentation, PictureIsNotOfOneColour) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, depositions(2)));
    painted_frames_forget();
    desktop_repaint(desktop);
    std::vector<PaintedFrame> frames = painted_frames();
    ASSERT_FALSE(frames.empty());
    const std::vector<u8> &pixels = frames.back().pixels;
    std::map<u32, i32> colours;
    for (size_t i = 0; i + 3 < pixels.size(); i += 4) {
        colours[pixels[i] | static_cast<u32>(pixels[i + 1]) << 8 | static_cast<u32>(pixels[i + 2]) << 16]++;
    }
    EXPECT_GE(colours.size(), 5U) << "ground, letters, and the top and the cut face of the film";
}

TEST(Presentation, PaintThatTheSystemAsksForDuringARunLeavesTheContextToTheWorker) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(4)), L"Executing D2"));
    painted_frames_forget();
    desktop_repaint(desktop);
    EXPECT_EQ(painted_frames_count(), 0) << "the worker holds the context";
    EXPECT_FALSE(GetUpdateRect(desktop.render, nullptr, FALSE))
        << "validated, or it would be asked for for ever";
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->image_count, 5);
    for (const PaintedFrame &frame : painted_frames()) {
        EXPECT_EQ(frame.wrong_pixels, 0);
    }
}

TEST(Presentation, PaintsAllThroughARunDoNoHarm) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    painted_frames_compare(false);
    ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", depositions(12))));
    i32 asked = 0;
    while (console_written().find("Use left and right") == std::string::npos && asked < 20000) {
        RedrawWindow(desktop.render, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        ++asked;
    }
    ASSERT_TRUE(run_wait_end(desktop));
    painted_frames_compare(true);
    ASSERT_EQ(g_app->image_count, 13);
    for (i32 i = 0; i < 13; ++i) {
        key_press(desktop.main, VK_RIGHT);
        desktop_settle(desktop);
        EXPECT_EQ(painted_frames().back().wrong_pixels, 0) << i;
    }
    // A run that lost the context would have drawn nothing from some step on.
    for (i32 i = 2; i < 13; ++i) {
        const Owned<PixelImage> one(image_unpack(g_app->images[i - 1]));
        const Owned<PixelImage> next(image_unpack(g_app->images[i]));
        const bool same =
            one->height == next->height &&
            std::memcmp(one->pixels, next->pixels, static_cast<size_t>(one->height) * 1920 * 4) == 0;
        EXPECT_FALSE(same) << "pictures " << i - 1 << " and " << i;
    }
}
