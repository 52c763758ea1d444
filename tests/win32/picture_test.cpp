// The picture and its title stay together, whoever holds the OpenGL context; "Smooth picture".
#include <gtest/gtest.h>

#include "app/win32/picture_menu.h"
#include "app/win32/shown_picture.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/gdi_frames.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/window_driver.h"

// A run of four films whose worker is held where it announces that one.
static bool start_and_hold(Desktop *desktop, const std::wstring &text) {
    return desktop_start(desktop) && load_layout(desktop, write_layout(*desktop)) &&
           run_start_held(desktop, write_process(*desktop, L"p.txt", depositions(4)), text);
}

TEST(PictureDuringARun, IsPaintedWithoutTheContextThatTheWorkerHolds) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, L"Executing D2"));
    gdi_frames_watch();
    desktop_repaint(desktop);
    std::vector<GdiFrame> frames = gdi_frames();
    ASSERT_FALSE(frames.empty()) << "the area would stay black";
    EXPECT_EQ(frames.back().image, 1);
    EXPECT_EQ(desktop.thread_id, frames.back().thread_id);
    EXPECT_EQ(gdi_frame_wrong_pixels(frames.back()), 0);
    EXPECT_FALSE(GetUpdateRect(desktop.render, nullptr, FALSE));
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
}

static bool newest_frame_is(i32 image) {
    std::vector<GdiFrame> frames = gdi_frames();
    return !frames.empty() && frames.back().image == image;
}

TEST(PictureDuringARun, ComesBackWithTheWindow) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, L"Executing D3"));
    ShowWindow(desktop.main, SW_MINIMIZE);
    desktop_settle(desktop);
    gdi_frames_watch();
    ShowWindow(desktop.main, SW_RESTORE);
    EXPECT_TRUE(wait_until([] { return newest_frame_is(2); })) << "the step is still under way";
    EXPECT_EQ(gdi_frame_wrong_pixels(gdi_frames().back()), 0);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
}

TEST(PictureDuringARun, ArrowsChangeTitleAndPictureTogether) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, L"Executing D3"));
    const struct {
        WPARAM key;
        i32 image;
        const char *title;
    } presses[] = {{VK_RIGHT, 0, "The substrate"},
                   {VK_RIGHT, 1, "Cross section after D1 deposition"},
                   {VK_LEFT, 0, "The substrate"}};
    for (const auto &press : presses) {
        gdi_frames_watch();
        key_press(desktop.main, press.key);
        ASSERT_TRUE(wait_until([&] { return newest_frame_is(press.image); })) << press.image;
        desktop_settle(desktop);
        EXPECT_EQ(press.title, window_text(desktop.main));
        EXPECT_EQ(gdi_frame_wrong_pixels(gdi_frames().back()), 0);
    }
    // The next picture comes with its own title.
    painted_frames_forget();
    console_hold_again_at(L"Executing D4");
    ASSERT_TRUE(console_wait_held());
    EXPECT_EQ(painted_frames().back().image, 3);
    EXPECT_EQ(window_text(desktop.main), "Cross section after D3 deposition");
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
}

TEST(PictureDuringARun, IsWhiteBeforeTheFirstOne) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    static bool filled;
    static decltype(FillRect) *fill_original;
    fill_original = import_replace<decltype(FillRect)>(
        "FillRect", [](HDC context, const RECT *area, HBRUSH brush) -> int {
            filled = filled ||
                     (brush == GetStockObject(WHITE_BRUSH) && WindowFromDC(context) == g_app->render_window);
            return fill_original(context, area, brush);
        });
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1))));
    // As in a run whose first step has not ended yet.
    g_app->run_active = 1;
    const i32 count = g_app->image_count;
    g_app->image_count = 0;
    filled = false;
    desktop_repaint(desktop);
    EXPECT_TRUE(filled);
    g_app->image_count = count;
    g_app->run_active = 0;
}

TEST(PictureDuringARun, IsPaintedWithTheContextWhenTheRunIsOver) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, L"All process steps"));
    key_press(desktop.main, VK_LEFT);
    desktop_settle(desktop);
    painted_frames_forget();
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    ASSERT_TRUE(wait_until([] { return painted_frames_count() > 0; }));
    EXPECT_EQ(painted_frames().back().image, 3) << "what the user has gone to stays";
    EXPECT_EQ(window_text(desktop.main), "Cross section after D3 deposition");
    EXPECT_EQ(painted_frames().back().wrong_pixels, 0);
}

// "Smooth picture".

static std::vector<u8> painted_pixels(const Desktop &desktop) {
    painted_frames_forget();
    desktop_repaint(desktop);
    std::vector<PaintedFrame> frames = painted_frames();
    EXPECT_FALSE(frames.empty());
    EXPECT_EQ(frames.back().wrong_pixels, 0);
    return frames.empty() ? std::vector<u8>() : frames.back().pixels;
}

static std::string settings(const Desktop &desktop) {
    const std::wstring path = desktop.file(L"local\\Dalvine\\Quarn\\window.ini");
    return test_file_exists(path) ? test_file_read(path) : "";
}

TEST(SmoothPicture, IsOffAtFirstAndRemembered) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1))));
    EXPECT_EQ(settings(desktop), "");
    const std::vector<u8> nearest = painted_pixels(desktop);
    SendMessageW(desktop.main, WM_COMMAND, PICTURE_SMOOTH, 0);
    EXPECT_TRUE(shown_picture_is_smooth());
    EXPECT_NE(nearest, painted_pixels(desktop));
    EXPECT_NE(settings(desktop).find("smooth=1"), std::string::npos) << settings(desktop);
    EXPECT_EQ(desktop_close(&desktop), 0);

    SetCurrentDirectoryW(desktop.folder.path.c_str());
    ASSERT_TRUE(desktop_start(&desktop));
    desktop_settle(desktop);
    EXPECT_TRUE(shown_picture_is_smooth()) << "as it was left";
    SendMessageW(desktop.main, WM_COMMAND, PICTURE_SMOOTH, 0);
    EXPECT_FALSE(shown_picture_is_smooth());
    EXPECT_NE(settings(desktop).find("smooth=0"), std::string::npos) << settings(desktop);
    EXPECT_EQ(menu_enabled(desktop), "load about") << "no command of the menu bar";
}

TEST(SmoothPicture, GarbledSettingsAreHarmless) {
    for (const char *content : {"", "\xFF\xFE\x01", "[picture]\nsmooth=maybe\n", "[picture\nsmooth"}) {
        Desktop desktop;
        for (const wchar_t *folder : {L"local\\Dalvine", L"local\\Dalvine\\Quarn"}) {
            CreateDirectoryW(desktop.file(folder).c_str(), nullptr);
        }
        test_file_write(desktop.file(L"local\\Dalvine\\Quarn\\window.ini"), content);
        ASSERT_TRUE(desktop_start(&desktop));
        desktop_settle(desktop);
        EXPECT_FALSE(shown_picture_is_smooth()) << content;
        EXPECT_EQ(desktop_close(&desktop), 0);
    }
}

TEST(SmoothPicture, StandsInTheMenuOfThePicture) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    static std::vector<std::string> shown;
    import_replace<decltype(TrackPopupMenu)>(
        "TrackPopupMenu", [](HMENU menu, UINT, int, int, int, HWND owner, const RECT *) -> BOOL {
            wchar_t text[64] = {};
            GetMenuStringW(menu, PICTURE_SMOOTH, text, 64, MF_BYCOMMAND);
            const bool checked = (GetMenuState(menu, PICTURE_SMOOTH, MF_BYCOMMAND) & MF_CHECKED) != 0;
            shown.push_back(test_utf8(text) + (checked ? " on" : " off"));
            return PostMessageW(owner, WM_COMMAND, PICTURE_SMOOTH, 0);
        });
    for (i32 i = 0; i < 2; ++i) {
        SendMessageW(desktop.render, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(desktop.render),
                     MAKELPARAM(300, 300));
        desktop_settle(desktop);
    }
    EXPECT_EQ(shown, (std::vector<std::string>{"S&mooth picture off", "S&mooth picture on"}));
    EXPECT_FALSE(shown_picture_is_smooth());
}
