// Lack of memory in the window: the message and the exit status, whichever allocation fails on whichever
// thread, while a layout is loaded, run with pictures and saved.
//
// Every allocation takes half an hour, so the usual run tries a sample. QUARN_TRIP_STRIDE names the distance
// from one allocation to the next (1: all of them), QUARN_TRIP_START the first.
#include <cstdlib>
#include <cstring>

#include "tests/gtk/window_driver.h"

static i64 environment_number(const char *name, i64 otherwise) {
    const char *value = std::getenv(name);
    return value != nullptr ? std::atoll(value) : otherwise;
}

// Starts the program with a user inside, who loads, runs, saves and closes.
//   trip   allocations that succeed before one fails; -1: none fails
static ProgramResult run_tripped(const BatchFixture &files, i64 trip) {
    files.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
    const std::string scratch = test_utf8(files.scratch.path);
    ProgramCall call = files.call({"a.gds", "p.txt"});
    call.program = QUARN_TRIPPED_PROGRAM;
    call.environment = {"XDG_DATA_HOME=" + scratch + "/data", "HOME=" + scratch, "LC_ALL=C.UTF-8",
                        "NO_AT_BRIDGE=1", "QUARN_TEST_USER=1"};
    if (trip >= 0) {
        call.environment.push_back("QUARN_TEST_TRIP=" + std::to_string(trip));
    }
    return files.run_call(call);
}

// The allocations of a run in which none fails; without the line that tells them the output is what a run
// shows that could do without the one that failed.
static i64 allocation_count(std::string *output) {
    const std::string label = "allocations: ";
    const size_t at = output->find(label);
    if (at == std::string::npos) {
        ADD_FAILURE() << *output;
        return 0;
    }
    const i64 count = std::atoll(output->c_str() + at + label.size());
    output->resize(at);
    return count;
}

// What can differ from run to run is masked: timings, and the time in the folder's name.
static std::string comparable(const std::string &text) {
    std::string out = mask_seconds(text);
    const size_t at = out.find("\"p ");
    return at == std::string::npos ? out : out.replace(at, std::strlen("\"p 2026-01-02 03-04-05"), "\"p");
}

static bool has_message(const std::string &text) {
    return text.find("Memory allocation error\n") != std::string::npos ||
           text.find("Memory reallocation error\n") != std::string::npos;
}

struct TripCounts {
    i32 boxes, terminal, same, told;
};

static std::string log_of(const BatchFixture &files) {
    const std::wstring path = files.scratch.file(L"data/Dalvine/Quarn/log.txt");
    return test_file_exists(path) ? test_file_read(path) : "";
}

// The program has ended for lack of memory, or has come to its end without what failed: then it shows what it
// always does, or says that memory was lacking.
static void check_trip(i64 trip, const std::string &plain, TripCounts *counts) {
    const BatchFixture files;
    const ProgramResult result = run_tripped(files, trip);
    const std::string all = result.output + result.error + log_of(files);
    EXPECT_EQ(result.signal, 0) << trip << (result.signal == SIGALRM ? ": hangs" : "") << "\n" << all;
    EXPECT_EQ(all.find("(null)"), std::string::npos) << trip << "\n" << all;
    if (result.status == 255) {
        EXPECT_TRUE(has_message(result.error)) << trip << "\n" << all;
        const bool box = result.output.find("box: ") != std::string::npos;
        EXPECT_TRUE(!box || has_message(result.output)) << trip << "\n" << all;
        counts->boxes += box ? 1 : 0;
        counts->terminal += box ? 0 : 1;
        return;
    }
    EXPECT_EQ(result.status, 0) << trip << "\n" << all;
    const bool same = comparable(result.output) == plain;
    EXPECT_TRUE(same || all.find("memory") != std::string::npos) << trip << "\n" << all;
    counts->same += same ? 1 : 0;
    counts->told += same ? 0 : 1;
}

TEST(LackOfMemory, IsToldWhicheverAllocationFails) {
    NEEDS_WINDOW();
    const BatchFixture files;
    std::string plain = run_tripped(files, -1).output;
    const i64 count = allocation_count(&plain);
    EXPECT_GT(count, 500) << plain;
    EXPECT_EQ(files.list("").size(), 4U) << "layout, process file, heights and pictures";
    plain = comparable(plain);
    TripCounts counts = {};
    const i64 stride = environment_number("QUARN_TRIP_STRIDE", count / 12 + 1);
    for (i64 trip = environment_number("QUARN_TRIP_START", 1); trip < count; trip += stride) {
        check_trip(trip, plain, &counts);
    }
    std::printf("%d in a box, %d on the terminal, %d runs as usual, %d told\n", counts.boxes, counts.terminal,
                counts.same, counts.told);
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
