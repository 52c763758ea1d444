// The console: what the program writes is what it shows, whatever the user does meanwhile.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "log/log.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/window_driver.h"

TEST(Console, PercentSignsAndHighBytes) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    console_clear();
    console_append(L"100 %s of %d\r\n");
    console_printf_w(L"%d %ls\r\n", 5, L"Ω");
    console_printf("%s\r\n", "\x80\xFF");
    std::wstring expected = L"100 %s of %d\r\n5 Ω\r\n";
    expected += {static_cast<wchar_t>(0xFF80), static_cast<wchar_t>(0xFFFF), L'\r', L'\n'};
    EXPECT_EQ(console_text(desktop), test_utf8(expected));
}

TEST(Console, TakesMoreThanAUserCouldType) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const LRESULT limit = SendMessageW(desktop.console, EM_GETLIMITTEXT, 0, 0);
    ASSERT_LT(limit, 100'000);
    console_clear();
    std::string expected;
    for (i32 i = 0; i < 50; ++i) {
        std::string lines;
        for (i32 k = 0; k < 100; ++k) {
            lines += "line " + std::to_string(i * 100 + k) + " of the console\r\n";
        }
        console_append_narrow(lines.c_str());
        expected += lines;
    }
    ASSERT_GT(expected.size(), 100'000U);
    EXPECT_EQ(console_text(desktop), expected);
    EXPECT_EQ(limit, SendMessageW(desktop.console, EM_GETLIMITTEXT, 0, 0)) << "stays for typing";
}

TEST(Console, SaysWhereTheRestIsWhenItIsFull) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    console_clear();
    // Four million characters, in lines of a thousand.
    std::wstring block;
    for (i32 i = 0; i < 1000; ++i) {
        block += std::wstring(998, L'x') + L"\r\n";
    }
    for (i32 i = 0; i < 4; ++i) {
        console_append(block.c_str());
    }
    console_append(L"one more line\r\n");
    console_append(L"\r\n");
    console_append(L"and another\r\n\r\n");
    const std::string shown = console_text(desktop);
    EXPECT_EQ(shown.substr(4'000'000), "\r\nNote: the console is full; what follows is in " +
                                           test_utf8(desktop_log_path(desktop)) + "\r\n");
    std::string log = desktop_log(desktop);
    const std::string painted = "No bitmap to render\r\n";  // whenever the system asks for it
    for (size_t at = 0; (at = log.find(painted, at)) != std::string::npos;) {
        log.erase(at, painted.size());
    }
    EXPECT_NE(
        log.find("The console is full; what follows would stand there\r\none more line\r\nand another\r\n"),
        std::string::npos)
        << log;
    console_clear();
    console_append(L"empty again\r\n");
    EXPECT_EQ(console_text(desktop), "empty again\r\n");
}

TEST(Console, LastLineIsVisible) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    for (i32 i = 0; i < 300; ++i) {
        console_printf("line %d\r\n", i);
    }
    auto first = static_cast<i32>(SendMessageW(desktop.console, EM_GETFIRSTVISIBLELINE, 0, 0));
    auto count = static_cast<i32>(SendMessageW(desktop.console, EM_GETLINECOUNT, 0, 0));
    RECT area = {};
    SendMessageW(desktop.console, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    EXPECT_EQ(count, 303) << "two lines of the start, 300, and the empty one behind";
    // At least ten pixels a line.
    EXPECT_GE(first + (area.bottom - area.top) / 10, count - 1);
    EXPECT_GT(first, 100);
}

TEST(Console, UserCannotWriteIntoIt) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string before = console_text(desktop);
    PostMessageW(desktop.console, WM_CHAR, L'x', 1);
    PostMessageW(desktop.console, WM_KEYDOWN, VK_DELETE, 1);
    desktop_settle(desktop);
    EXPECT_EQ(before, console_text(desktop));
}

static constexpr i32 SMALL_PICTURE = 320;  // pixels; many steps are to be quick to draw

// Films that are taken off again, so that the stack stays low however many steps there are.
static std::string films_on_and_off(i32 count) {
    std::string lines;
    for (i32 i = 1; i <= count; ++i) {
        const std::string name = "D" + std::to_string(i);
        lines += deposition_line(name) + "release -name R" + name + " -targets t_" + name + "\n";
    }
    return lines;
}

// The figures of the clock are "#".
static std::string expected_run(i32 count) {
    std::string text = "Running process ...\r\n\r\n";
    for (i32 i = 1; i <= count; ++i) {
        const std::string name = "D" + std::to_string(i);
        text += "Executing " + name + " deposition ... \r\nCompleted in # s\r\n\r\n";
        text += "Executing RD" + std::to_string(i) + " etching ... \r\nCompleted in # s\r\n\r\n";
    }
    return text +
           "All process steps completed in # sec\r\n\r\n"
           "Use left and right arrows to browse through the process steps\r\n\r\n";
}

static std::string run_part(const std::string &text) {
    const size_t at = text.find("Running process ...");
    return at == std::string::npos ? text : mask_seconds(text.substr(at));
}

// What a restless user does to the window, over and over.
static void fidget(const Desktop &desktop, i32 round) {
    switch (round % 8) {
        case 0: PostMessageW(desktop.main, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0); break;
        case 1: PostMessageW(desktop.console, WM_VSCROLL, SB_TOP, 0); break;
        case 2: PostMessageW(desktop.console, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 20)); break;
        case 3: PostMessageW(desktop.console, WM_LBUTTONUP, 0, MAKELPARAM(90, 60)); break;
        case 4: PostMessageW(desktop.console, EM_SETSEL, 0, -1); break;
        case 5: PostMessageW(desktop.main, WM_ENTERSIZEMOVE, 0, 0); break;
        case 6: SetWindowPos(desktop.main, nullptr, round % 50, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER); break;
        default: PostMessageW(desktop.main, WM_EXITSIZEMOVE, 0, 0); break;
    }
}

TEST(Console, KeepsOrderWhileTheUserScrollsSelectsAndMoves) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    g_app->picture_style.width = SMALL_PICTURE;
    ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", films_on_and_off(30))));
    for (i32 round = 0; console_written().find("Use left and right") == std::string::npos && round < 40000;
         ++round) {
        fidget(desktop, round);
        Sleep(round % 4 == 0 ? 1 : 0);
    }
    PostMessageW(desktop.main, WM_EXITSIZEMOVE, 0, 0);
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(expected_run(30), run_part(console_text(desktop)));
    EXPECT_EQ(g_app->image_count, 61);
}

TEST(Console, TextsOfTwoThreadsDoNotMix) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    console_clear();
    // Stop writes on the user-interface thread while this thread writes as the worker does. A text
    // that goes to a place that was the end before the other one came would be seen in its middle.
    const std::string stop = "Handling \"Stop\" request: wait for current process step to complete ...\r\n";
    const i32 rounds = 150;
    for (i32 i = 0; i < rounds; ++i) {
        PostMessageW(desktop.main, WM_COMMAND, MENU_STOP, 0);
        PostMessageW(desktop.console, EM_SETSEL, 0, 0);
        console_printf("line %03d of the worker\r\n", i);
    }
    desktop_settle(desktop);
    const std::string shown = console_text(desktop);
    i32 stops = 0;
    i32 lines = 0;
    for (size_t at = 0; at < shown.size();) {
        const std::string line = shown.substr(at, shown.find("\r\n", at) + 2 - at);
        char expected[64];
        std::snprintf(expected, sizeof(expected), "line %03d of the worker\r\n", lines);
        if (line == stop) {
            ++stops;
        } else {
            ASSERT_EQ(line, expected) << "after " << shown.substr(0, at).size() << " characters";
            ++lines;
        }
        at += line.size();
    }
    EXPECT_EQ(rounds, lines);
    EXPECT_EQ(rounds, stops);
}

TEST(Console, TwoHundredStepsStayResponsive) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    g_app->picture_style.width = SMALL_PICTURE;
    ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", films_on_and_off(100))));
    i32 slow = 0;
    while (console_written().find("Use left and right") == std::string::npos &&
           WaitForSingleObject(desktop.thread, 10) == WAIT_TIMEOUT) {
        slow += desktop_answers(desktop, 2000) ? 0 : 1;
        ASSERT_LT(slow, 3) << "the window does not answer";
    }
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(slow, 0);
    EXPECT_EQ(g_app->image_count, 201);
    EXPECT_EQ(expected_run(100), run_part(console_written())) << "all was written, in order";
}

TEST(Console, HundredThousandLinesDoNotStopARun) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(3)), L"Executing D1"));
    std::string block;
    for (i32 i = 0; i < 1000; ++i) {
        block += "a line of the console\r\n";
    }
    for (i32 i = 0; i < 100; ++i) {
        console_append_narrow(block.c_str());
    }
    EXPECT_TRUE(desktop_answers(desktop, 2000));
    EXPECT_GT(console_text(desktop).size(), 100 * block.size());
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->image_count, 4);
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
    // The next command clears the console, and it works as before.
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", films_on_and_off(1))));
    EXPECT_EQ(expected_run(1), run_part(console_text(desktop)));
}
