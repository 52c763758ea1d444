// Lack of memory in the window: the message and the exit status, whichever allocation fails on whichever
// thread, while a layout is loaded, run with pictures and saved.
//
// Every allocation takes an hour, so the usual run tries a sample. QUARN_TRIP_STRIDE names the distance from
// one allocation to the next (1: all of them), QUARN_TRIP_START the first; QUARN_TEST_DEADLINE must be longer
// then.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/app/app_inputs.h"
#include "tests/win32/second_program.h"
#include "tests/win32/window_driver.h"

static constexpr i32 FAR_AWAY = 1'000'000;  // allocations, more than any run here takes

static i32 environment_number(const wchar_t *name, i32 otherwise) {
    wchar_t value[16] = {};
    return GetEnvironmentVariableW(name, value, 16) > 0 ? std::wcstol(value, nullptr, 10) : otherwise;
}

struct TrippedRun {
    i32 status;
    std::string report, log;
};

// Starts the program with a user inside, who loads, runs, saves and closes.
//   trip   allocations that succeed before one fails
static TrippedRun run_tripped(const Desktop &desktop, i32 trip) {
    TrippedRun run = {};
    const std::wstring path = desktop.file(L"report");
    DeleteFileW(path.c_str());
    DeleteFileW(desktop_log_path(desktop).c_str());
    SecondProgram program;
    EXPECT_TRUE(second_program_launch(&program, desktop.folder.path, desktop.file(L"local"), trip, path));
    run.status = second_program_wait_end(&program);
    run.report = test_file_exists(path) ? test_text_read(path) : "";
    const std::wstring log = desktop_log_path(desktop);
    run.log = test_file_exists(log) ? test_text_read(log) : "";
    return run;
}

// Removes the line that tells the allocations of a run and gives their number.
static i32 take_allocations(std::string *report) {
    const std::string label = "allocations: ";
    const size_t at = report->find(label);
    if (at == std::string::npos) {
        return -1;
    }
    const i32 count = std::atoi(report->c_str() + at + label.size());
    report->resize(at);
    return count;
}

// What can differ from run to run is masked: timings, and the time in the folder's name.
static std::string comparable(const std::string &text) {
    std::string out = mask_seconds(text);
    const size_t at = out.find("\"p ");
    return at == std::string::npos ? out : out.replace(at, std::strlen("\"p 2026-01-02 03-04-05"), "\"p");
}

struct TripCounts {
    i32 boxes, same, told;
};

// The program has ended for lack of memory, or has come to its end without what failed: then it shows what it
// always does, or says that memory was lacking.
static void check_trip(const Desktop &desktop, i32 trip, const std::string &plain, TripCounts *counts) {
    TrippedRun run = run_tripped(desktop, trip);
    take_allocations(&run.report);
    const std::string all = run.report + run.log;
    EXPECT_EQ(all.find("(null)"), std::string::npos) << trip << "\n" << all;
    if (run.status == -1) {
        const bool told = run.report.find("box: Memory allocation error\n") != std::string::npos ||
                          run.report.find("box: Memory reallocation error\n") != std::string::npos;
        EXPECT_TRUE(told) << trip << "\n" << all;
        ++counts->boxes;
        return;
    }
    EXPECT_EQ(run.status, 0) << trip << "\n" << all;
    const bool same = comparable(run.report) == plain;
    EXPECT_TRUE(same || all.find("memory") != std::string::npos) << trip << "\n" << all;
    counts->same += same ? 1 : 0;
    counts->told += same ? 0 : 1;
}

TEST(LackOfMemory, IsToldWhicheverAllocationFails) {
    const Desktop desktop;  // prepares the folders
    write_layout(desktop, L"a.gds");
    write_process(desktop, L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B"));
    TrippedRun whole = run_tripped(desktop, FAR_AWAY);
    const i32 count = take_allocations(&whole.report);
    ASSERT_GT(count, 500) << whole.report;
    EXPECT_NE(whole.report.find("Saving images completed"), std::string::npos) << whole.report;
    const std::string plain = comparable(whole.report);
    TripCounts counts = {};
    const i32 stride = environment_number(L"QUARN_TRIP_STRIDE", count / 12 + 1);
    // The very first is a string that may be empty: the program goes on without it.
    for (i32 trip = environment_number(L"QUARN_TRIP_START", 2); trip < count; trip += stride) {
        check_trip(desktop, trip, plain, &counts);
        if (trip % 100 < stride) {
            std::printf("%d of %d\n", trip, count);
            std::fflush(stdout);
        }
    }
    std::printf("%d in a box, %d runs as usual, %d told\n", counts.boxes, counts.same, counts.told);
    EXPECT_GT(counts.boxes, 4);
}
