// Lack of memory in the window: the message and the exit status, whichever allocation fails on whichever
// thread, while a layout is loaded, run with pictures and saved. The usual run tries a sample; all of them
// (memory_trips.h) take a quarter of an hour. It runs best without a window manager (scripts/window-session).
#include <algorithm>

#include "tests/desktop/memory_trips.h"
#include "tests/gtk/window_driver.h"

// Starts the program with a user inside, who loads, runs, saves and closes.
//   trip   allocations that succeed before one fails; -1: none fails
static TrippedRun run_tripped(const BatchFixture &files, i64 trip) {
    files.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
    const std::string scratch = test_utf8(files.scratch.path);
    ProgramCall call = files.call({"a.gds", "p.txt"});
    call.program = QUARN_TRIPPED_PROGRAM;
    call.environment = {"XDG_DATA_HOME=" + scratch + "/data", "HOME=" + scratch, "LC_ALL=C.UTF-8",
                        "NO_AT_BRIDGE=1", "QUARN_TEST_USER=1"};
    if (trip >= 0) {
        call.environment.push_back("QUARN_TEST_TRIP=" + std::to_string(trip));
    }
    const ProgramResult result = files.run_call(call);
    const std::wstring log = files.scratch.file(L"data/Dalvine/Quarn/log.txt");
    EXPECT_EQ(result.signal, 0) << trip << (result.signal == SIGALRM ? ": hangs" : "");
    EXPECT_TRUE(result.status != TEST_OUT_OF_MEMORY || result.error.find("Memory ") != std::string::npos)
        << trip << " is not told on the terminal";
    return {result.status, result.output, result.error + (test_file_exists(log) ? test_file_read(log) : ""),
            trip_take_files(files.folder.path)};
}

TEST(LackOfMemory, IsToldWhicheverAllocationFails) {
    NEEDS_WINDOW();
    TrippedRun plain = run_tripped(BatchFixture(), -1);
    const i64 count = trip_take_allocations(&plain.shown);
    ASSERT_GT(count, 500) << plain.shown;
    EXPECT_EQ(std::count(plain.files.begin(), plain.files.end(), '\n'), 5)
        << "heights, three pictures and the polygons\n"
        << plain.files;
    plain.shown = trip_comparable(plain.shown);
    TripCounts counts = {};
    trip_each(count, 1, plain, &counts, [](i64 trip) { return run_tripped(BatchFixture(), trip); });
    trip_report(counts);
    EXPECT_GT(counts.boxes, 4);
}

// The box as a person sees it, from outside.
TEST(LackOfMemory, IsShownInABox) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    program_launch(&window, {{"a.gds", "p.txt"}, {"QUARN_TEST_TRIP=300"}, QUARN_TRIPPED_PROGRAM});
    ASSERT_TRUE(program_connect(&window)) << program_report(window);
    EXPECT_EQ(window_message(window), "Memory allocation error");
    EXPECT_TRUE(program_wait(&window)) << "hangs";
    EXPECT_EQ(window.result.status, 255);
    EXPECT_EQ(window.result.error, "quarn: Memory allocation error\n");
}
