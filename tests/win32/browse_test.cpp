// Keys, focus, wheel and mouse.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "log/log.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/window_driver.h"

// A program after a run of that many pictures, 0 for none.
static bool start_with_pictures(Desktop *desktop, i32 count) {
    if (!desktop_start(desktop)) {
        return false;
    }
    if (count == 0) {
        return true;
    }
    return load_layout(desktop, write_layout(*desktop)) &&
           run_process(desktop, write_process(*desktop, L"p.txt", depositions(count - 1)));
}

static std::string title_of(i32 image) {
    return image == 0 ? "The substrate" : "Cross section after D" + std::to_string(image) + " deposition";
}

// Presses an arrow key and waits until the picture is there.
static void press_and_expect(const Desktop &desktop, WPARAM key, i32 image) {
    painted_frames_forget();
    key_press(desktop.main, key);
    ASSERT_TRUE(wait_until([] { return painted_frames_count() > 0; })) << "nothing is painted";
    desktop_settle(desktop);
    EXPECT_EQ(image, g_app->current_image);
    EXPECT_EQ(title_of(image), window_text(desktop.main));
    EXPECT_EQ(image, painted_frames().back().image);
    EXPECT_EQ(painted_frames().back().wrong_pixels, 0);
}

TEST(Browse, ArrowsWrapAtBothEnds) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 4));
    EXPECT_EQ(g_app->current_image, 3) << "the last picture of the run is on show";
    press_and_expect(desktop, VK_RIGHT, 0);
    press_and_expect(desktop, VK_RIGHT, 1);
    press_and_expect(desktop, VK_RIGHT, 2);
    press_and_expect(desktop, VK_RIGHT, 3);
    press_and_expect(desktop, VK_RIGHT, 0);
    press_and_expect(desktop, VK_LEFT, 3);
    press_and_expect(desktop, VK_LEFT, 2);
}

TEST(Browse, OnePictureStays) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 1));
    press_and_expect(desktop, VK_RIGHT, 0);
    press_and_expect(desktop, VK_LEFT, 0);
}

TEST(Browse, NoPictureIsIgnored) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 0));
    for (const WPARAM key : {VK_LEFT, VK_RIGHT, VK_RIGHT, VK_LEFT}) {
        key_press(desktop.main, key);
    }
    desktop_settle(desktop);
    EXPECT_EQ(g_app->current_image, 0);
    EXPECT_EQ(window_text(desktop.main), "Quarn");
    EXPECT_EQ(painted_frames_count(), 0);
}

TEST(Browse, OtherKeysAreSwallowed) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 2));
    painted_frames_forget();
    for (const WPARAM key : {VK_ESCAPE, VK_RETURN, VK_UP, VK_DOWN, VK_HOME, VK_END, VK_SPACE, VK_F5}) {
        EXPECT_EQ(SendMessageW(desktop.main, WM_KEYDOWN, key, 1), 0);
    }
    desktop_settle(desktop);
    EXPECT_EQ(g_app->current_image, 1);
    EXPECT_EQ(title_of(1), window_text(desktop.main));
    EXPECT_TRUE(IsWindow(desktop.main));
}

TEST(Browse, DuringARunTheKeysGoThroughWhatIsThere) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 0));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(4)), L"Executing D3"));
    // The worker holds the OpenGL context, so that nothing can be painted; the title tells.
    key_press(desktop.main, VK_RIGHT);
    EXPECT_TRUE(wait_until([&] { return window_text(desktop.main) == title_of(0); }));
    key_press(desktop.main, VK_LEFT);
    EXPECT_TRUE(wait_until([&] { return window_text(desktop.main) == title_of(2); }));
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->current_image, 4) << "a new picture is shown when it comes";
    EXPECT_EQ(g_app->image_count, 5);
}

// The focus of the thread that the program runs on.
static HWND focus_of(const Desktop &desktop) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(desktop.thread_id, &info) != 0 ? info.hwndFocus : nullptr;
}

static void click(HWND window, int x, int y) {
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
}

TEST(Focus, ComesBackFromTheConsole) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 2));
    ASSERT_TRUE(wait_until([&] { return focus_of(desktop) == desktop.main; })) << "at start";
    // A click into an edit control takes the focus for it.
    click(desktop.console, 30, 30);
    desktop_settle(desktop);
    EXPECT_TRUE(wait_until([&] { return focus_of(desktop) == desktop.main; }));
    press_and_expect(desktop, VK_LEFT, 0);
}

TEST(Focus, ClickInTheRenderAreaKeepsTheKeysAlive) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 2));
    click(desktop.render, 100, 100);
    desktop_settle(desktop);
    EXPECT_TRUE(wait_until([&] { return focus_of(desktop) == desktop.main; }));
    EXPECT_EQ(g_app->current_image, 1);
    press_and_expect(desktop, VK_LEFT, 0);
}

TEST(Focus, ClickInTheWindowTakesTheFocus) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 0));
    EXPECT_EQ(SendMessageW(desktop.main, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5)), 0);
    EXPECT_EQ(desktop.main, focus_of(desktop));
}

static i32 first_line(const Desktop &desktop) {
    return static_cast<i32>(SendMessageW(desktop.console, EM_GETFIRSTVISIBLELINE, 0, 0));
}

TEST(Wheel, ScrollsTheConsoleWhereverThePointerIs) {
    Desktop desktop;
    ASSERT_TRUE(start_with_pictures(&desktop, 0));
    for (i32 i = 0; i < 100; ++i) {
        console_printf("line %d\r\n", i);
    }
    const i32 at_end = first_line(desktop);
    ASSERT_GT(at_end, 10) << "the console shows its last lines";
    // A point in the render area; the message goes to the window with the focus.
    RECT window = {};
    GetWindowRect(desktop.render, &window);
    const LPARAM point = MAKELPARAM(window.left + 50, window.top + 50);
    EXPECT_EQ(SendMessageW(desktop.main, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), point), 0);
    const i32 up = first_line(desktop);
    EXPECT_LT(up, at_end);
    EXPECT_EQ(
        SendMessageW(desktop.main, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)), point), 0);
    EXPECT_EQ(at_end, first_line(desktop));
    for (i32 i = 0; i < 50; ++i) {
        SendMessageW(desktop.main, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), point);
    }
    EXPECT_EQ(first_line(desktop), 0);
    EXPECT_TRUE(desktop_answers(desktop, 1000));
}
