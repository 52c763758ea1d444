// The end of the program gives back all that it took.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <psapi.h>

#include "app/commands.h"
#include "platform/memory.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/resource_watch.h"
#include "tests/win32/window_driver.h"

static const char *const STEPS_WITH_ALL =
    "photo -name M -mask_id 1 -type 1 -res 0.1 -thickness 400\n"
    "etch -name E -targets t_D1 -depth 50\n"
    "strip -name M\n"
    "release -targets t_D2\n";

// A process with every kind of step, a legend and labels, so that every kind of object is made.
static std::wstring write_full_process(const Desktop &desktop) {
    std::string text = process_text(depositions(3) + STEPS_WITH_ALL);
    text.insert(text.find("-N 200") + 6, " -legend -heights");
    std::wstring path = desktop.file(L"full.txt");
    test_file_write(path, text);
    return path;
}

TEST(Cleanup, FreesEverythingAfterRuns) {
    Desktop desktop;
    resource_watch();
    const i64 blocks = memory_live_blocks();
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    for (i32 run = 0; run < 2; ++run) {
        ASSERT_TRUE(run_process(&desktop, write_full_process(desktop)));
    }
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop, L"again.gds")));
    key_press(desktop.main, VK_LEFT);
    menu_choose(desktop, MENU_SAVE_IMAGES);
    desktop_settle(desktop);
    std::map<std::string, i64> live = resources_live();
    for (const char *kind : {"buffer", "vertex array", "framebuffer", "renderbuffer", "program",
                             "display lists", "context", "drawing object"}) {
        EXPECT_GT(live[kind], 0) << kind << ": the count sees nothing of it";
    }
    EXPECT_GT(memory_live_blocks(), blocks);
    EXPECT_EQ(desktop_close(&desktop), 0);
    EXPECT_EQ(resources_text(), "");
    EXPECT_EQ(blocks, memory_live_blocks());
    const std::string written = console_written();
    const std::string end = "Cleaning up ...\r\n";
    EXPECT_EQ(end, written.substr(written.size() - end.size())) << "the last words";
}

TEST(Cleanup, FreesEverythingWithoutARun) {
    Desktop desktop;
    resource_watch();
    const i64 blocks = memory_live_blocks();
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(desktop_close(&desktop), 0);
    EXPECT_EQ(resources_text(), "");
    EXPECT_EQ(blocks, memory_live_blocks());
}

TEST(Cleanup, FreesEverythingWhenClosedDuringARun) {
    Desktop desktop;
    resource_watch();
    const i64 blocks = memory_live_blocks();
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_full_process(desktop), L"Executing D2"));
    PostMessageW(desktop.main, WM_CLOSE, 0, 0);
    desktop_settle(desktop);
    console_release();
    EXPECT_EQ(desktop_wait_end(&desktop), 0);
    EXPECT_EQ(resources_text(), "");
    EXPECT_EQ(blocks, memory_live_blocks());
}

TEST(Cleanup, RunsLeaveNothingBehind) {
    Desktop desktop;
    resource_watch();
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    const std::wstring process = write_full_process(desktop);
    ASSERT_TRUE(run_process(&desktop, process));
    ASSERT_TRUE(run_process(&desktop, process));
    const std::string live = resources_text();
    const i64 blocks = memory_live_blocks();
    for (i32 run = 0; run < 3; ++run) {
        ASSERT_TRUE(run_process(&desktop, process));
    }
    EXPECT_EQ(live, resources_text());
    EXPECT_EQ(blocks, memory_live_blocks());
}

// Memory of this process, bytes.
static u64 memory_in_use() {
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PagefileUsage;
}

TEST(Cleanup, TenThousandRepaintsAndResizesLeakNothing) {
    Desktop desktop;
    resource_watch();
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_full_process(desktop)));
    painted_frames_compare(false);
    // The render area is resized and painted each time; the whole window, which takes the window manager's
    // time, less often.
    auto disturb = [&](i32 count) {
        const UINT keep = SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE;
        for (i32 i = 0; i < count; ++i) {
            if (i % 20 == 0) {
                SetWindowPos(desktop.main, nullptr, 0, 0, 220 + i % 7, 200 + i % 5, keep);
            }
            SetWindowPos(desktop.render, nullptr, 0, 0, 200 + i % 7, 90 + i % 5, keep);
            RedrawWindow(desktop.render, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        }
        desktop_settle(desktop);
    };
    disturb(200);  // what the system keeps for good is there afterwards
    painted_frames_forget();
    const std::string live = resources_text();
    const i64 blocks = memory_live_blocks();
    const i64 made = resources_made();
    const u64 memory = memory_in_use();
    disturb(10000);
    EXPECT_GE(painted_frames_count(), 10000);
    EXPECT_EQ(live, resources_text());
    EXPECT_EQ(made, resources_made()) << "painting makes no objects";
    EXPECT_EQ(blocks, memory_live_blocks());
    // A picture of this size has about 60,000 bytes: leaking one in each repaint would be 600 MB.
    EXPECT_LT(memory_in_use(), memory + 20'000'000);
    EXPECT_EQ(desktop_close(&desktop), 0);
}
