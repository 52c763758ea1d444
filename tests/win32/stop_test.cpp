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
    EXPECT_EQ(menu_enabled(desktop), "about") << "a stop is asked for once";
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    const std::string shown = mask_seconds(console_text(desktop));
    const std::string expected = std::string("Executing D3 deposition ... \r\n") + STOP_LINE +
                                 "All process steps completed in # sec\r\n\r\n"
                                 "Use left and right arrows to browse through the process steps\r\n\r\n";
    const size_t at = shown.find("Executing D3");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(shown.substr(at), expected) << "the stopped step tells no time";
    EXPECT_EQ(g_app->image_count, 4) << "substrate, D1, D2 and D3";
    EXPECT_EQ(window_text(desktop.main), "Cross section after D3 deposition");
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

TEST(Stop, TheNextRunStartsAfresh) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D1"));
    menu_choose(desktop, MENU_STOP);
    desktop_settle(desktop);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"q.txt", depositions(5))));
    EXPECT_EQ(g_app->image_count, 6);
    EXPECT_EQ(g_app->stop_requested, 0);
}

TEST(CloseDuringARun, FinishesTheStepCleansUpAndEnds) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D2"));
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);
    desktop_settle(desktop);
    EXPECT_EQ(WaitForSingleObject(desktop.thread, 200), WAIT_TIMEOUT) << "the step under way has to finish";
    EXPECT_TRUE(IsWindowVisible(desktop.main));
    EXPECT_EQ(status_text(desktop, 3), "Closing after this step");
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);  // an impatient user
    desktop_settle(desktop);
    console_release();
    EXPECT_EQ(desktop_wait_end(&desktop), 0);
    const std::string run = mask_seconds(console_written());
    const size_t at = run.find("Executing D2");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(
        run.substr(at),
        "Executing D2 deposition ... \r\nAll process steps completed in # sec\r\n\r\nCleaning up ...\r\n");
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
    EXPECT_EQ(desktop_wait_end(&desktop), 0);
    EXPECT_EQ(console_written().find("Use left and right arrows"), std::string::npos);
}

TEST(CloseDuringARun, AtAnyMoment) {
    Desktop desktop;
    for (i32 round = 0; round < 8; ++round) {
        SetCurrentDirectoryW(desktop.folder.path.c_str());
        ASSERT_TRUE(desktop_start(&desktop));
        ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
        ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", depositions(4))));
        Sleep(static_cast<DWORD>(round) * 17);
        EXPECT_EQ(desktop_close(&desktop), 0) << round;
    }
}

TEST(Moving, PicturesAreKeptButNotShown) {
    Desktop desktop;
    ASSERT_TRUE(start_and_hold(&desktop, "D2"));
    SendMessageW(desktop.main, WM_ENTERSIZEMOVE, 0, 0);
    painted_frames_forget();
    console_hold_again_at(L"Executing D7 ");
    ASSERT_TRUE(console_wait_held());
    EXPECT_EQ(g_app->image_count, 7) << "substrate and D1 to D6";
    EXPECT_EQ(g_app->current_image, 1) << "the picture from before the move stays";
    EXPECT_EQ(painted_frames_count(), 0);
    EXPECT_EQ(window_text(desktop.main), "Cross section after D1 deposition") << "the picture's";
    SendMessageW(desktop.main, WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(g_app->current_image, 6) << "the newest one is shown as soon as the window is let go";
    EXPECT_EQ(window_text(desktop.main), "Cross section after D6 deposition");
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->image_count, 11);
    EXPECT_EQ(g_app->current_image, 10);
    std::vector<PaintedFrame> frames = painted_frames();
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames.front().image, 7) << "the first one shown after the move";
    EXPECT_EQ(frames.back().image, 10);
}
