// "Run Process" in the window: success, refusal, stop, close and browsing, during a run and after it.
#include "tests/gtk/window_driver.h"

using Texts = std::vector<std::string>;

static const char *const RUN_BANNER = "--- Handling \"Run\" command ---\n\n";
static const char *const STOP_TEXT =
    "Handling \"Stop\" request: wait for current process step to complete ...\n";

static std::string after(const std::string &name) {
    return "Cross section after " + name + " deposition";
}

// A window with the layout "a.gds", loaded.
static bool open_loaded(WindowProgram *window) {
    const bool opened = program_open(window, {{"a.gds"}});
    EXPECT_SOON(MENU_LOADED, window_menu(*window));
    return opened;
}

// A window with a run under way that waits in a dump step. Another dump is before it, since no stop is looked
// for between the two: what the test does next finds the run in the second one.
static bool open_running(WindowProgram *window, const std::string &steps, const std::string &later_steps) {
    gate_make(*window);
    window->files.write("p.txt", process_text(steps + "dump\ndump\n" + later_steps));
    const bool opened = program_open(window, {{"a.gds", "p.txt"}});
    EXPECT_SOON(MENU_RUNNING, window_menu(*window));
    gate_open(*window);
    return opened;
}

TEST(RunProcess, TellsItsStepsAndShowsThem) {
    NEEDS_WINDOW();
    WindowProgram window;
    const std::string path = window.files.path("p.txt");
    window.files.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    ASSERT_TRUE(open_loaded(&window));
    window_run(window, path);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(RUN_BANNER + ("Successfully read process file \"" + path) +
                  "\"\n\n"
                  "Extracting polygons ...\n"
                  "Found 1 polygons with smallest size 2.500 um\n\n"
                  "GDS cell TOP at (0.000 um, 0.000 um)\n"
                  "Grid size: 200 x 50\n"
                  "Grid spacing: 0.050 um\n"
                  "GDS cell: TOP\n\n"
                  "Running process ...\n\n"
                  "Executing A deposition ... \n"
                  "Completed in # s\n\n"
                  "Executing B deposition ... \n"
                  "Completed in # s\n\n"
                  "All process steps completed in # sec\n\n" +
                  BROWSE_TEXT,
              mask_seconds(window_console(window)));
    EXPECT_EQ(after("B"), window_title(window));
    EXPECT_EQ(after("B"), window_picture(window));
    EXPECT_EQ((Texts{"GDS file:", "a.gds", "Process file:", ""}), window_status(window));
    program_close(&window);
}

TEST(RunProcess, TheStatusBarNamesTheRunBefore) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(""));
    window.files.write("q.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(open_loaded(&window));
    const struct {
        const char *file;
        const char *status;
        const char *picture;
    } runs[] = {{"p.txt", "", "The substrate"},
                {"q.txt", "p.txt", "Cross section after A deposition"},
                {"p.txt", "q.txt", "The substrate"}};
    for (const auto &run : runs) {
        window_run(window, window.files.path(run.file));
        EXPECT_SOON(run.picture, window_picture(window));
        ASSERT_TRUE(window_run_done(window)) << program_report(window);
        const std::string status = run.status[0] == 0 ? "" : window.files.path(run.status);
        EXPECT_EQ(status, window_status(window)[3]);
        EXPECT_EQ(run.picture, window_title(window));
    }
    program_close(&window);
}

TEST(RunProcess, CancelAndFaultsKeepTheRunBefore) {
    NEEDS_WINDOW();
    WindowProgram window;
    std::string nowhere = process_text("");
    nowhere.replace(nowhere.find("TOP"), 3, "NOWHERE");
    const struct {
        const char *console;
        std::string process;  // empty: the dialog is cancelled
    } refused[] = {
        {"Process file selection canceled\n\n", ""},
        {"Error in line 4: Unknown command\n", process_text("nonsense\n")},
        {"NOWHERE", nowhere},
        {"Opening process file ", "\n"},
    };
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window));
    const Texts status = window_status(window);
    for (const auto &run : refused) {
        if (run.process.empty()) {
            window_command(window, "Run Process");
            ASSERT_TRUE(accessible_exists(window_dialog(window, "Open process file")));
            EXPECT_EQ(window_menu(window), MENU_STOPPING) << "only About while the dialog is open";
            window_cancel(window, "Open process file");
        } else {
            window.files.write("bad.txt", run.process);
            window_run(window, window.files.path("bad.txt"));
            EXPECT_SOON(true, window_console_has(window, "Run process canceled\n\n"));
        }
        EXPECT_SOON(true, window_console_has(window, run.console)) << window_console(window);
        EXPECT_EQ(window_console(window).find(RUN_BANNER), 0U);
        EXPECT_SOON(MENU_DONE, window_menu(window));
        EXPECT_EQ(status, window_status(window));
        EXPECT_EQ(after("A"), window_picture(window));
        EXPECT_EQ(after("A"), window_title(window));
    }
    window_key(window, "Left");
    EXPECT_SOON("The substrate", window_picture(window)) << "the pictures are still there";
    program_close(&window);
}

TEST(Stop, TheStepUnderWayIsFinished) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_running(&window, deposition_line("A"), deposition_line("B") + deposition_line("C")));
    EXPECT_EQ(after("A"), window_picture(window));
    window_command(window, "Stop");
    EXPECT_SOON(true, window_console_has(window, STOP_TEXT));
    EXPECT_SOON(MENU_STOPPING, window_menu(window));
    gate_open(window);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    // A stop during a dump is honoured after the step behind it. The time of the first dump may come later
    // than the stop.
    std::string console = mask_seconds(window_console(window));
    const size_t dumped = console.find("Completed in # s\n\n", console.find(STOP_TEXT));
    if (dumped != std::string::npos) {
        console.erase(dumped, std::string("Completed in # s\n\n").size());
    }
    EXPECT_EQ(std::string(STOP_TEXT) +
                  "Executing B deposition ... \n"
                  "All process steps completed in # sec\n\n" +
                  BROWSE_TEXT,
              console.substr(console.find(STOP_TEXT)));
    EXPECT_EQ(after("B"), window_title(window));
    window_key(window, "Right");
    EXPECT_SOON("The substrate", window_title(window));
    window.files.write("q.txt", process_text(""));
    window_run(window, window.files.path("q.txt"));
    EXPECT_TRUE(window_run_done(window)) << "the next run is not stopped";
    program_close(&window);
}

TEST(Close, ARunIsFinishedFirst) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_running(&window, "", deposition_line("B") + deposition_line("C")));
    screen_close_window(program_window(window));
    EXPECT_SOON(MENU_RUNNING, window_menu(window)) << "still there, and answers";
    EXPECT_SOON("Closing after this step", std::string(window_status(window).at(3)));
    screen_close_window(program_window(window));  // once more does no harm
    EXPECT_TRUE(program_running(&window));
    gate_open(window);
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
    EXPECT_EQ(window.result.error, "");
}

TEST(Close, ASignalDuringARunDoesTheSame) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_running(&window, "", deposition_line("B")));
    program_signal(window.run, SIGTERM);
    EXPECT_SOON(true, program_running(&window));
    gate_open(window);
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
    EXPECT_EQ(window.result.error, "");
}

// A dialog that waits for an answer keeps its window from being closed; a signal ends both.
TEST(Close, ASignalEndsAnOpenDialogToo) {
    NEEDS_WINDOW();
    for (const char *command : {"Load GDS", "About"}) {
        WindowProgram window;
        ASSERT_TRUE(program_open(&window));
        window_command(window, command);
        const bool about = std::string(command) == "About";
        ASSERT_TRUE(accessible_exists(window_dialog(window, about ? "Quarn 3.0.0" : "Open GDS file")));
        screen_close_window(program_window(window));
        EXPECT_EQ(about ? MENU_IDLE : MENU_STOPPING, window_menu(window));
        program_signal(window.run, SIGTERM);
        ASSERT_TRUE(program_wait(&window));
        EXPECT_EQ(window.result.status, 0) << window.result.error;
        EXPECT_EQ(window.result.error, "");
    }
}

// The arrows with no, one and three pictures; each key and the title that it brings.
TEST(Browse, ArrowsWrapAround) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("one.txt", process_text(""));
    window.files.write("three.txt", process_text(deposition_line("A") + deposition_line("B")));
    ASSERT_TRUE(open_loaded(&window));
    for (const char *key : {"Left", "Right"}) {
        window_key(window, key);
    }
    window_run(window, window.files.path("one.txt"));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(window_title(window), "The substrate");
    for (const char *key : {"Right", "Left", "Left", "Right"}) {
        window_key(window, key);
        EXPECT_SOON("The substrate", window_title(window));
    }
    window_run(window, window.files.path("three.txt"));
    EXPECT_SOON(after("B"), window_title(window));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    const struct {
        const char *key;
        std::string title;
    } moves[] = {{"Right", "The substrate"}, {"Left", after("B")},    {"Left", after("A")},
                 {"Left", "The substrate"},  {"Left", after("B")},    {"Right", "The substrate"},
                 {"Right", after("A")},      {"KP_Right", after("B")}};
    for (const auto &move : moves) {
        window_key(window, move.key);
        EXPECT_SOON(move.title, window_title(window));
        EXPECT_SOON(move.title, window_picture(window));
    }
    program_close(&window);
}

TEST(Browse, WorksWhileAStepIsUnderWay) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_running(&window, deposition_line("A"), deposition_line("B")));
    ASSERT_SOON(after("A"), window_picture(window));
    for (const char *title : {"The substrate", "Cross section after A deposition", "The substrate"}) {
        window_key(window, "Left");
        EXPECT_SOON(title, window_title(window));
        EXPECT_SOON(title, window_picture(window));
    }
    EXPECT_EQ(window_menu(window), MENU_RUNNING);
    gate_open(window);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(after("B"), window_title(window)) << "the newest picture is shown";
    program_close(&window);
}

TEST(LongRun, StaysResponsive) {
    NEEDS_WINDOW();
    WindowProgram window;
    std::string steps;
    for (i32 i = 0; i < 200; ++i) {
        steps += deposition_line("L" + std::to_string(i));
    }
    window.files.write("p.txt", process_text(steps));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    for (const char *step : {"L5 ", "L15 ", "L25 "}) {
        ASSERT_SOON(true, window_console_has(window, std::string("Executing ") + step));
        // Each answer takes the program's main loop, which would be late if it waited for steps.
        EXPECT_EQ(window_menu(window), MENU_RUNNING);
        EXPECT_EQ(window_status(window).size(), 4U);
        window_key(window, "Left");
    }
    window_command(window, "Stop");
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_FALSE(window_console_has(window, "Executing L199 "));
    program_close(&window);
}
