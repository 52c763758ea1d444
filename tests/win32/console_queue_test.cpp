// Long texts of the console: the window goes on answering while they come into it piece by piece, and whoever
// reads, marks or scrolls it meanwhile finds all of them.
#include <gtest/gtest.h>

#include "log/log.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static HWND timer_window;  // null: no timer runs
static UINT_PTR timer_id;
static bool timers_are_refused;

static UINT_PTR WINAPI hold_timer(HWND window, UINT_PTR id, UINT, TIMERPROC) {
    if (timers_are_refused) {
        return 0;
    }
    timer_window = window;
    timer_id = id;
    return id;
}

static BOOL WINAPI end_timer(HWND, UINT_PTR) {
    timer_window = nullptr;
    return TRUE;
}

// The program with its console empty and its timers in the hands of the test.
static bool start_with_held_timers(Desktop *desktop) {
    import_replace("SetTimer", hold_timer);
    import_replace("KillTimer", end_timer);
    const bool up = desktop_start(desktop);
    console_clear();
    console_forget_written();
    return up;
}

// Lets the message loop become idle once.
static void tick() {
    ASSERT_NE(timer_window, nullptr) << "nothing waits for the loop to become idle";
    SendMessageW(timer_window, WM_TIMER, timer_id, 0);
}

static std::wstring lines_of_console(i32 count) {
    std::wstring lines;
    for (i32 i = 0; i < count; ++i) {
        lines += L"line " + std::to_wstring(i) + L" of the console\r\n";
    }
    return lines;
}

static bool ends_line(const std::string &text) {
    return text.size() >= 2 && text.compare(text.size() - 2, 2, "\r\n") == 0;
}

static constexpr size_t MOST_A_PIECE = 40'000;  // characters; some 500 lines of a list of cells

TEST(ConsoleQueue, ALongTextComesInPiecesWhileTheWindowAnswers) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    const std::wstring text = lines_of_console(10'000);
    const std::string all = test_utf8(text + L"behind it\r\nand once more\r\n");
    console_append(text.c_str());
    console_append(L"behind it\r\n");
    size_t shown = console_written().size();
    EXPECT_LE(shown, MOST_A_PIECE) << "the window did nothing else meanwhile";
    tick();
    EXPECT_TRUE(desktop_answers(desktop, 2000));
    console_append(L"and once more\r\n");
    while (timer_window != nullptr && !HasFailure()) {
        const std::string written = console_written();
        EXPECT_EQ(all.substr(0, written.size()), written) << "in order";
        EXPECT_LE(written.size() - shown, MOST_A_PIECE);
        EXPECT_TRUE(ends_line(written));
        shown = written.size();
        tick();
        EXPECT_GT(console_written().size(), shown) << "each time some of it";
    }
    EXPECT_EQ(console_written(), all);
    EXPECT_EQ(console_text(desktop), all);
    EXPECT_GT(console_texts_written(), 6) << "of 240,000 characters";
}

TEST(ConsoleQueue, AShortTextIsThereAtOnce) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    console_append(L"short\r\n");
    EXPECT_EQ(console_written(), "short\r\n");
    EXPECT_EQ(timer_window, nullptr);
}

TEST(ConsoleQueue, ClearForgetsWhatIsYetToCome) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    console_append(lines_of_console(10'000).c_str());
    tick();
    console_clear();
    EXPECT_EQ(timer_window, nullptr);
    console_append(L"anew\r\n");
    EXPECT_EQ(console_text(desktop), "anew\r\n");
}

TEST(ConsoleQueue, WithoutATimerATextIsThereAtOnce) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    timers_are_refused = true;
    const std::wstring text = lines_of_console(10'000);
    console_append(text.c_str());
    EXPECT_EQ(console_written(), test_utf8(text));
}

TEST(ConsoleQueue, WhoReadsMarksOrScrollsFindsAllOfIt) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    static const struct {
        const char *what;
        UINT message;
        WPARAM wparam;
        LPARAM lparam;
    } acts[] = {
        {"the length of the text", WM_GETTEXTLENGTH, 0, 0},
        {"the number of lines", EM_GETLINECOUNT, 0, 0},
        {"marking all", EM_SETSEL, 0, -1},
        {"copying", WM_COPY, 0, 0},
        {"a click", WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 20)},
        {"the scroll bar", WM_VSCROLL, SB_TOP, 0},
        {"a turn of the wheel", WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0},
    };
    const std::wstring text = lines_of_console(10'000);
    for (const auto &act : acts) {
        console_clear();
        console_forget_written();
        console_append(text.c_str());
        ASSERT_NE(console_written(), test_utf8(text)) << "nothing is yet to come";
        SendMessageW(desktop.console, act.message, act.wparam, act.lparam);
        EXPECT_EQ(console_written(), test_utf8(text)) << act.what;
        EXPECT_EQ(timer_window, nullptr) << act.what;
        PostMessageW(desktop.console, WM_LBUTTONUP, 0, 0);
        desktop_settle(desktop);
    }
}

TEST(ConsoleQueue, WhatTheUserScrollsToStays) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    console_append(lines_of_console(10'000).c_str());
    tick();
    EXPECT_GT(SendMessageW(desktop.console, EM_GETFIRSTVISIBLELINE, 0, 0), 100) << "the last lines are shown";
    SendMessageW(desktop.console, WM_VSCROLL, SB_TOP, 0);
    if (timer_window != nullptr) {
        tick();  // another piece would bring the last lines into view
    }
    EXPECT_EQ(SendMessageW(desktop.console, EM_GETFIRSTVISIBLELINE, 0, 0), 0);
}

// Characters beyond 16 bits are pairs of units, and a window shows a half of one as a box. The first unit
// lets pieces of an even size end within a pair.
TEST(ConsoleQueue, ALineWithoutEndIsCutBetweenItsCharacters) {
    Desktop desktop;
    ASSERT_TRUE(start_with_held_timers(&desktop));
    std::wstring text = L"x";
    for (i32 i = 0; i < 17'000; ++i) {
        text += L"\xD83D\xDE00";
    }
    console_append(text.c_str());
    while (timer_window != nullptr && !HasFailure()) {
        EXPECT_EQ(console_written().find('?'), std::string::npos) << "half a character";
        tick();
    }
    EXPECT_EQ(console_written(), test_utf8(text));
    EXPECT_GT(console_texts_written(), 1);
}
