// test_frontend.h: a front end that records what is asked of it, in order, together with the console
// text; a person at the window is played by the fields. One at a time.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/frontend.h"
#include "tests/support/test_support.h"

// The functions that record.
extern const Frontend TEST_FRONTEND;

struct TestFrontEnd {
    // Starts the application; the installed files lie in `data_folder`, or in the usual places when it is
    // null.
    explicit TestFrontEnd(const char *data_folder = nullptr);
    ~TestFrontEnd();
    TestFrontEnd(const TestFrontEnd &) = delete;
    TestFrontEnd &operator=(const TestFrontEnd &) = delete;

    AppState state;  // as at start, reachable through g_app; freed at the end unless app_end was called

    // What the person does: the next files chosen (empty: cancelled), and an act at each console
    // text, on the thread that writes it.
    std::wstring layout_path, process_path;
    std::vector<std::wstring> other_folders;  // chosen one after the other, then cancelled
    bool opens_files;                         // whether the system has a program for them
    std::function<void(const std::string &)> on_console;
    std::function<void()> on_repaint;  // on the worker

    std::string console() const;             // since the last clear
    std::string messages() const;            // message boxes, a line each
    std::string diagnostics() const;         // a line each
    std::vector<std::string> calls() const;  // "clear", "console TEXT", "enable 10 0", "title TEXT", ...
    std::map<i32, std::string> status() const;
    std::map<i32, bool> menu() const;  // enabled, by command
    std::string title() const;
    void forget_calls();

    // Runs the command and, when the worker was started, waits for the end of the run as a front end
    // does. Returns what run_command returned.
    i32 run();

    // The end of a worker that was started, as a front end takes it.
    void await_worker();

    // The result of run_done of the last run or export.
    i32 run_done_result;
};

// Index of the first call that equals `call` at or after `from`, or -1.
i32 call_index(const std::vector<std::string> &calls, const std::string &call, i32 from = 0);
