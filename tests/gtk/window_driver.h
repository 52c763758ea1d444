// window_driver.h: the desktop program in a process of its own, used as a person would: menu, dialogs, keys
// and mouse from outside, and what its window shows read back. Everything that takes the program some time is
// waited for up to a deadline.
#pragma once
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "tests/app/batch_fixture.h"
#include "tests/gtk/accessible.h"
#include "tests/gtk/drop_source.h"
#include "tests/gtk/screen.h"

// Longest time for anything that a test waits for, on a busy machine and with the sanitizers too.
inline constexpr i32 DEADLINE_SECONDS = 60;

// Calls `read` until it gives what is expected or the time is over; its last answer.
template <typename Value, typename Read>
Value wait_for_value(const Value &expected, Read read) {
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(DEADLINE_SECONDS);
    Value value = read();
    while (!(value == expected) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        value = read();
    }
    return value;
}

#define EXPECT_SOON(expected, expression) \
    EXPECT_EQ(wait_for_value<decltype(expression)>(expected, [&] { return expression; }), expected)
#define ASSERT_SOON(expected, expression) \
    ASSERT_EQ(wait_for_value<decltype(expression)>(expected, [&] { return expression; }), expected)

// The texts of the menu, in its order, and those of the status bar's captions.
inline const char *const MENU_LABELS[] = {"Save images", "Run Process", "Stop", "Load GDS", "About"};

// What window_menu gives in each state of the program; a greyed command is missing.
inline const char *const MENU_IDLE = "Load GDS, About";
inline const char *const MENU_LOADED = "Run Process, Load GDS, About";
inline const char *const MENU_RUNNING = "Stop, About";
inline const char *const MENU_STOPPING = "About";
inline const char *const MENU_DONE = "Save images, Run Process, Load GDS, About";

inline const char *const WELCOME_TEXT =
    "Select menu \"Load GDS\" to load a GDS database and then menu \"Run Process\" to run a process file\n\n";
inline const char *const BROWSE_TEXT = "Use left and right arrows to browse through the process steps\n\n";

// How a program is started.
struct WindowCall {
    std::vector<std::string> arguments;
    std::vector<std::string> environment = {};  // NAME=VALUE
    std::string program = QUARN_PROGRAM;
};

// A started program. What is still going on at the end of a test is ended.
struct WindowProgram {
    BatchFixture files;  // its current folder, with "a.gds"; `scratch` holds its user's folders
    ProgramRun run = {-1, -1, "", ""};
    Accessible application;
    bool over = true;  // and `result` set
    ProgramResult result = {};

    WindowProgram() = default;
    ~WindowProgram();
    WindowProgram(const WindowProgram &) = delete;
    WindowProgram &operator=(const WindowProgram &) = delete;
};

// Starts the program; the second form also waits until its window is ready for keys and mouse, and fails the
// test when that does not come. The user's data folder is "data" in `files.scratch`.
void program_launch(WindowProgram *program, const WindowCall &call);
[[nodiscard]] bool program_open(WindowProgram *program, const WindowCall &call = {});

// The program's first window by the window manager's list, which may name it a moment after it is there.
// Fails the test when it does not, and is then 0, which is no window.
u64 program_window(const WindowProgram &program);

// Waits until a launched program has told the accessibility bus about itself; it may only have a message box.
[[nodiscard]] bool program_connect(WindowProgram *program);

// Waits for the end; false when it does not come. `result` tells how it ended.
bool program_wait(WindowProgram *program);
// Whether it has not ended yet; when it has, `result` tells how.
bool program_running(WindowProgram *program);

// Closes the window by its frame and waits for the end, which must be a clean one.
void program_close(WindowProgram *program);

// Its log file.
std::string program_log(const WindowProgram &program);

// What the window shows.
std::string window_title(const WindowProgram &program);
std::string window_menu(const WindowProgram &program);  // the enabled commands, ", " between them
// All that the console shows.
std::string window_console(const WindowProgram &program);
// The texts of the status bar, from the left.
std::vector<std::string> window_status(const WindowProgram &program);
std::string window_picture(const WindowProgram &program);  // title of the picture on show
// Whether the console shows a text, at once.
bool window_console_has(const WindowProgram &program, const std::string &text);
bool window_active(const WindowProgram &program);  // the keys go to the main window

Accessible window_part(const WindowProgram &program,
                       const std::string &name);  // "Console", "Cross section", ...

// Clicks on a command of the menu.
void window_command(const WindowProgram &program, const std::string &label);

// A dialog of that title, waited for; nothing when it does not come.
Accessible window_dialog(const WindowProgram &program, const std::string &title);
bool dialog_shows(const WindowProgram &program, const std::string &title);  // and takes keys; at once
// Waits until no dialog of that title is left.
bool dialog_gone(const WindowProgram &program, const std::string &title);

// Answers a file dialog of that title: with a path, or with Escape.
void window_choose(const WindowProgram &program, const std::string &title, const std::string &path);
// Waits for the dialog, presses Escape, and waits until it is gone.
void window_cancel(const WindowProgram &program, const std::string &title);

// The text of a message box (caption "Quarn"), which is closed by its button.
std::string window_message(const WindowProgram &program);

// Whole commands: menu, dialog, and the wait for what comes of it.
void window_load(const WindowProgram &program, const std::string &path);
// Up to the answered dialog; the run then starts.
void window_run(const WindowProgram &program, const std::string &path);
// Waits for the end of a run; false when it does not come.
bool window_run_done(const WindowProgram &program);

// Drops files on the middle of the window.
DropResult window_drop(const WindowProgram &program, const std::vector<std::string> &paths);

// A key for the main window.
void window_key(const WindowProgram &program, const std::string &key);

// Holds a run in its dump step: the file that the dump goes to is a pipe, and nobody reads it until the gate
// is opened, once for each dump step.
void gate_make(const WindowProgram &program);
// Lets the dump step that waits go on.
void gate_open(const WindowProgram &program);

// Opens the program with a run that is held in its only step, a dump, with the substrate on show. False when
// it does not get there.
bool program_open_held(WindowProgram *program);

// Skips the test where no window can be shown.
#define NEEDS_WINDOW()                 \
    NEEDS_GRAPHICS();                  \
    if (!screen_available()) {         \
        GTEST_SKIP() << "no X screen"; \
    }

// What can be seen of the program from outside, for messages of tests.
std::string program_report(const WindowProgram &program);
