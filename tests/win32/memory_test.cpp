// Lack of memory in the window: the message and the exit status, whichever allocation fails on whichever
// thread, while a layout is loaded, run with pictures and saved. The usual run tries a sample; all of them
// (memory_trips.h) take half an hour, for which QUARN_TEST_DEADLINE must be longer.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/app/app_inputs.h"
#include "tests/desktop/memory_trips.h"
#include "tests/win32/second_program.h"
#include "tests/win32/window_driver.h"

static std::string read_if_there(const std::wstring &path) {
    return test_file_exists(path) ? test_text_read(path) : "";
}

// Starts the program with a user inside, who loads, runs, saves and closes.
//   trip   allocations that succeed before one fails
static TrippedRun run_tripped(const Desktop &desktop, i64 trip) {
    const std::wstring report = desktop.file(L"report");
    DeleteFileW(report.c_str());
    DeleteFileW(desktop_log_path(desktop).c_str());
    SecondProgram program;
    EXPECT_TRUE(second_program_launch(&program, desktop.folder.path, desktop.file(L"local"),
                                      static_cast<i32>(trip), report));
    const i32 status = second_program_wait_end(&program);
    return {status, read_if_there(report), read_if_there(desktop_log_path(desktop)),
            trip_take_files(desktop.folder.path)};
}

TEST(LackOfMemory, IsToldWhicheverAllocationFails) {
    const Desktop desktop;  // prepares the folders
    write_layout(desktop, L"a.gds");
    write_process(desktop, L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B"));
    TrippedRun plain = run_tripped(desktop, TRIP_FAR_AWAY);
    const i64 count = trip_take_allocations(&plain.shown);
    ASSERT_GT(count, 500) << plain.shown;
    EXPECT_EQ(std::count(plain.files.begin(), plain.files.end(), '\n'), 5)
        << "heights, three pictures and the polygons\n"
        << plain.files;
    plain.shown = trip_comparable(plain.shown);
    TripCounts counts = {};
    trip_each(count, 1, plain, &counts, [&](i64 trip) {
        TrippedRun run = run_tripped(desktop, trip);
        trip_take_allocations(&run.shown);
        return run;
    });
    trip_report(counts);
    EXPECT_GT(counts.boxes, 4);
    EXPECT_EQ(counts.terminal, 0) << "there is none";
}
