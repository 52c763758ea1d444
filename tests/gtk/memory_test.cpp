// Lack of memory in the window: the message and the exit status, whichever allocation fails on whichever
// thread.
#include "tests/gtk/window_driver.h"

static bool is_message(const std::string &text) {
    return text == "Memory allocation error" || text == "Memory reallocation error";
}

enum Outcome {
    OUTCOME_BOX,       // the message in a box, and exit status 255
    OUTCOME_TERMINAL,  // the same on the terminal only, since there was no box yet
    OUTCOME_SURVIVED,  // the run came to its end: what failed can be done without, or nothing did
};

// Starts a small run whose allocation number `trip` fails (from 0).
//   in_run   set to whether the worker had begun
static Outcome run_tripped(i64 trip, bool *in_run) {
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
    const WindowCall call = {
        {"a.gds", "p.txt"}, {"QUARN_TEST_TRIP=" + std::to_string(trip)}, QUARN_TRIPPED_PROGRAM};
    program_launch(&window, call);
    Outcome outcome = OUTCOME_TERMINAL;
    auto settled = [&] {
        const bool over = !program_running(&window);
        const bool box = !over && dialog_shows(window, "Quarn");
        const bool done = !over && !box && window_console_has(window, BROWSE_TEXT);
        outcome = box ? OUTCOME_BOX : done ? OUTCOME_SURVIVED : OUTCOME_TERMINAL;
        return over || box || done;
    };
    EXPECT_TRUE(program_connect(&window) || window.over) << trip;
    EXPECT_SOON(true, settled()) << trip << "\n" << program_report(window);
    if (outcome == OUTCOME_SURVIVED) {
        program_close(&window);
        return outcome;
    }
    if (outcome == OUTCOME_BOX) {
        const std::string message = window_message(window);
        EXPECT_TRUE(is_message(message)) << trip << ": " << message;
    }
    EXPECT_TRUE(program_wait(&window)) << trip << ": hangs";
    EXPECT_EQ(window.result.status, 255) << trip << "\n" << window.result.error;
    EXPECT_EQ(window.result.signal, 0) << trip;
    *in_run = test_file_exists(window.files.scratch.file(L"data/Dalvine/Quarn/log.txt")) &&
              program_log(window).find("Running process thread") != std::string::npos;
    EXPECT_NE(std::string::npos, window.result.error.find("Memory ")) << trip << window.result.error;
    return outcome;
}

// Every allocation would take too long: each sample is a quarter as far again as the one before, up to more
// than the run takes.
TEST(LackOfMemory, EndsTheProgramWithAMessage) {
    NEEDS_WINDOW();
    i32 boxes = 0;
    i32 in_runs = 0;
    i32 survived = 0;
    for (i64 trip = 1; survived < 6 || boxes == 0; trip += trip / 4 + 1) {
        bool in_run = false;
        const Outcome outcome = run_tripped(trip, &in_run);
        boxes += outcome == OUTCOME_BOX ? 1 : 0;
        in_runs += in_run ? 1 : 0;
        survived = outcome == OUTCOME_SURVIVED ? survived + 1 : 0;
    }
    EXPECT_LT(8, boxes);
    EXPECT_LT(0, in_runs);
}
