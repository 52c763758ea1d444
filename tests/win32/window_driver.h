// window_driver.h: the window program, run inside a test and used as a person uses it: through its windows,
// menu, keys and dialogs. The program runs on a thread of its own with its real message loop; the test acts
// from outside. Its user data lie in a temporary folder, which is also the current one and holds the data
// files. Whatever is waited for has a deadline; a missed one fails the test.
#pragma once
#include <windows.h>

#include <string>

#include "app/app_state.h"
#include "app/picture_options.h"
#include "tests/support/test_support.h"
#include "tests/win32/window_search.h"

inline const std::string BROWSE_HINT =
    "Use left and right arrows to browse through the process steps\r\n\r\n";

// One at a time. The destructor closes the program when it still runs.
struct Desktop {
    Desktop();
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    TemporaryFolder folder;
    std::wstring home;  // the current folder before
    HANDLE thread;      // that the program runs on; null when it does not
    DWORD thread_id;
    HWND main, render, console, status;

    std::wstring file(const std::wstring &name) const { return folder.file(name); }
};

// From now on the system names this folder as the user's local data; empty: it names none.
void desktop_redirect_user_data(const std::wstring &path);

// From now on the program takes itself for this file, so that it looks for its data there; at first one in a
// folder that is not there.
void desktop_redirect_program(const std::wstring &path);

// From now on the screen says that it has so many dots per inch, whatever it has: 96 are a scale of 100 %.
void desktop_redirect_scale(i32 dots_per_inch);

// A measure of the window at 100 %, at the scale that the screen of this session really has.
i32 screen_scaled(i32 pixels);

// Files that the program is started with, as on its command line; empty for none.
void desktop_name_files(const std::wstring &layout, const std::wstring &process);

// How pictures are to look in the programs started from here on, as on their command line.
void desktop_name_pictures(const PictureOptions &pictures);

// The log file of the program.
std::wstring desktop_log_path(const Desktop &desktop);
std::string desktop_log(const Desktop &desktop);  // the log file, bytes

// Starts the program and does not wait.
void desktop_launch(Desktop *desktop);

// Starts the program and waits for its first console text. False when it did not come up.
bool desktop_start(Desktop *desktop);

// Waits for the end of the program. Its exit code; -1000 when it does not end.
i32 desktop_wait_end(Desktop *desktop, i32 seconds = PATIENCE_S);

// Closes the window and waits for the end. The exit code.
i32 desktop_close(Desktop *desktop);

// Whether the message loop answers within that time.
bool desktop_answers(const Desktop &desktop, u32 milliseconds);

// Waits until the message loop has worked off what was sent and posted so far.
void desktop_settle(const Desktop &desktop);

// The text of a field of the status bar, UTF-8.
std::string status_text(const Desktop &desktop, i32 part);
// All that the console shows, UTF-8.
std::string console_text(const Desktop &desktop);

// Without the lines that begin with "Note: ", which help beside what every front end says alike.
std::string without_notes(const std::string &text);

// Waits until the console shows a text; fails the test when it does not.
bool console_shows(const Desktop &desktop, const std::string &text, i32 seconds = PATIENCE_S);

// The enabled commands in the order of the menu bar, such as "load about"; an item that is not there, or is
// greyed in an unknown manner, shows as "?".
std::string menu_enabled(const Desktop &desktop);

// Picks a command from the menu, which must be enabled.
void menu_choose(const Desktop &desktop, MenuCommand command);

// Paints the render area anew and waits for it.
void desktop_repaint(const Desktop &desktop);

// Presses and releases a key, through the message queue.
void key_press(HWND window, WPARAM key);

// Whole commands, with their dialogs, up to their end. They return whether that was reached.
bool load_layout(Desktop *desktop, const std::wstring &path);
bool run_start(Desktop *desktop, const std::wstring &path);  // up to the start of the run
// Waits for the hint how to browse; false, and a failure, when it does not come.
bool run_wait_end(const Desktop &desktop);
bool run_process(Desktop *desktop, const std::wstring &path);  // up to the hint how to browse

// A small layout and process files on the smallest grid; see tests/app/app_inputs.h.
std::wstring write_layout(const Desktop &desktop, const std::wstring &name = L"layout.gds");
// Its path.
std::wstring write_process(const Desktop &desktop, const std::wstring &name, const std::string &steps);
std::string depositions(i32 count);  // step lines named D1, D2, ...

// Console texts as they were written, in order, by any thread; never shortened by the control's limit.
std::string console_written();
i32 console_texts_written();  // how many they were
// Both start anew.
void console_forget_written();

// Lets the worker write the next text that contains `text`, then holds it until console_release.
void console_hold_at(const std::wstring &text);
bool console_wait_held();  // waits until it is held
// Lets the worker go on.
void console_release();
void console_hold_again_at(const std::wstring &text);  // releases it up to that text

// Starts a run and waits until its worker is held at `text`. Whether it is.
bool run_start_held(Desktop *desktop, const std::wstring &path, const std::wstring &text);
