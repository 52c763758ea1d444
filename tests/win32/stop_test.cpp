// Ending a run early, closing the window in the middle of one, moving it meanwhile.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "tests/app/app_scene.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/window_driver.h"

static const char *const STOP_LINE =
    "Handling \"Stop\" request: wait for current process step to complete ...\r\n";

// Starts a run of ten steps and holds the worker where it announces that one.
static bool start_and_hold(Desktop *desktop, const std::string &step) {
    if (!desktop_start(desktop) || !load_layout(desktop, write_layout(*desktop))) {
        return false;
    }
    return run_start_held(desktop, write_process(*desktop, L"p.txt", depositions(10)),
                          test_wide("Executing " + step + " "));
}

TEST(Stop, TheStepUnderWayFinishesAndIsDrawn) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D3"));
    menu_choose(desktop, MENU_STOP);
    ASSERT_TRUE(console_shows(desktop, STOP_LINE));
    desktop_settle(desktop);
    EXPECT_EQ("about", menu_enabled(desktop)) << "a stop is asked for once";
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    std::string shown = mask_seconds(console_text(desktop));
    std::string expected = std::string("Executing D3 deposition ... \r\n") + STOP_LINE +
                           "All process steps completed in # sec\r\n\r\n"
                           "Use left and right arrows to browse through the process steps\r\n\r\n";
    size_t at = shown.find("Executing D3");
    ASSERT_NE(std::string::npos, at);
    EXPECT_EQ(expected, shown.substr(at)) << "the stopped step tells no time";
    EXPECT_EQ(4, g_app->image_count) << "substrate, D1, D2 and D3";
    EXPECT_EQ("Cross section after D3 deposition", window_text(desktop.main));
    EXPECT_EQ("save run load about", menu_enabled(desktop));
}

TEST(Stop, TheNextRunStartsAfresh) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D1"));
    menu_choose(desktop, MENU_STOP);
    desktop_settle(desktop);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"q.txt", depositions(5))));
    EXPECT_EQ(6, g_app->image_count);
    EXPECT_EQ(0, g_app->stop_requested);
}

TEST(CloseDuringARun, FinishesTheStepCleansUpAndEnds) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D2"));
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);
    desktop_settle(desktop);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(desktop.thread, 200)) << "the step under way has to finish";
    EXPECT_TRUE(IsWindowVisible(desktop.main));
    EXPECT_EQ("Closing after this step", status_text(desktop, 3));
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);  // an impatient user
    desktop_settle(desktop);
    console_release();
    EXPECT_EQ(0, desktop_wait_end(&desktop));
    std::string run = mask_seconds(console_written());
    size_t at = run.find("Executing D2");
    ASSERT_NE(std::string::npos, at);
    EXPECT_EQ(
        "Executing D2 deposition ... \r\nAll process steps completed in # sec\r\n\r\nCleaning up ...\r\n",
        run.substr(at));
    EXPECT_FALSE(IsWindow(desktop.main));
}

TEST(CloseDuringARun, AfterStop) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D2"));
    menu_choose(desktop, MENU_STOP);
    desktop_settle(desktop);
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);
    desktop_settle(desktop);
    console_release();
    EXPECT_EQ(0, desktop_wait_end(&desktop));
    EXPECT_EQ(std::string::npos, console_written().find("Use left and right arrows"));
}

TEST(CloseDuringARun, AtAnyMoment) {
    Desktop desktop;
    for (i32 round = 0; round < 8; round++) {
        SetCurrentDirectoryW(desktop.folder.path.c_str());
        ASSERT_TRUE(desktop_start(&desktop));
        ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
        ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", depositions(4))));
        Sleep(static_cast<DWORD>(round) * 17);
        EXPECT_EQ(0, desktop_close(&desktop)) << round;
    }
}

TEST(Moving, PicturesAreKeptButNotShown) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D2"));
    SendMessageW(desktop.main, WM_ENTERSIZEMOVE, 0, 0);
    painted_frames_forget();
    console_hold_again_at(L"Executing D7 ");
    ASSERT_TRUE(console_wait_held());
    EXPECT_EQ(7, g_app->image_count) << "substrate and D1 to D6";
    EXPECT_EQ(1, g_app->current_image) << "the picture from before the move stays";
    EXPECT_EQ(0, painted_frames_count());
    EXPECT_EQ("Cross section after D1 deposition", window_text(desktop.main)) << "the picture's";
    SendMessageW(desktop.main, WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(6, g_app->current_image) << "the newest one is shown as soon as the window is let go";
    EXPECT_EQ("Cross section after D6 deposition", window_text(desktop.main));
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(11, g_app->image_count);
    EXPECT_EQ(10, g_app->current_image);
    std::vector<PaintedFrame> frames = painted_frames();
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(7, frames.front().image) << "the first one shown after the move";
    EXPECT_EQ(10, frames.back().image);
}
