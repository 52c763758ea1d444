#include "tests/app/test_frontend.h"

#include <gtest/gtest.h>

#include <mutex>

#include "app/commands.h"
#include "app/startup.h"
#include "log/log.h"

// The recording itself, written by both threads.
struct Record {
    std::string console;
    std::string messages;
    std::string diagnostics;
    std::vector<std::string> calls;
    std::map<i32, std::string> status;
    std::map<i32, bool> menu;
    std::string title;
};

static std::mutex record_mutex;
static Record record;
static TestFrontEnd *front_end = nullptr;
static PlatformSemaphore *run_over = nullptr;
static PlatformSemaphore *run_done_taken = nullptr;

static void add_call(const std::string &call) {
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.calls.push_back(call);
}

static void record_console(const wchar_t *text) {
    const std::string narrow = test_utf8(text);
    add_call("console " + narrow);
    {
        const std::lock_guard<std::mutex> lock(record_mutex);
        record.console += narrow;
    }
    if (front_end->on_console) {
        front_end->on_console(narrow);
    }
}

static void record_clear() {
    add_call("clear");
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.console.clear();
}

static void record_message(const wchar_t *text) {
    add_call("message " + test_utf8(text));
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.messages += test_utf8(text) + "\n";
}

static void record_diagnostic(const wchar_t *line) {
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.diagnostics += test_utf8(line) + "\n";
}

TestFrontEnd::TestFrontEnd(const char *data_folder) : state(), run_done_result(-1) {
    record = Record{};
    front_end = this;
    run_over = platform_semaphore_create();
    run_done_taken = platform_semaphore_create();
    app_start(&state, &TEST_FRONTEND, data_folder);
}

TestFrontEnd::~TestFrontEnd() {
    on_console = nullptr;
    PlatformGl *gl_context = state.gl_context;
    if (g_app == &state) {
        app_cleanup(&state);
        app_end(&state);
    }
    platform_gl_free(gl_context);
    platform_semaphore_free(run_over);
    platform_semaphore_free(run_done_taken);
    front_end = nullptr;
}

std::string TestFrontEnd::console() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.console;
}

std::string TestFrontEnd::messages() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.messages;
}

std::string TestFrontEnd::diagnostics() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.diagnostics;
}

std::vector<std::string> TestFrontEnd::calls() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.calls;
}

std::map<i32, std::string> TestFrontEnd::status() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.status;
}

std::map<i32, bool> TestFrontEnd::menu() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.menu;
}

std::string TestFrontEnd::title() const {
    const std::lock_guard<std::mutex> lock(record_mutex);
    return record.title;
}

void TestFrontEnd::forget_calls() {
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.calls.clear();
}

i32 TestFrontEnd::run() {
    const i32 result = run_command(&state);
    if (result == 0) {
        platform_semaphore_wait(run_over);
        run_done_result = run_done(&state);
        platform_semaphore_post(run_done_taken);
        platform_thread_join(state.worker_thread);
        state.worker_thread = nullptr;
    }
    return result;
}

i32 call_index(const std::vector<std::string> &calls, const std::string &call, i32 from) {
    for (size_t i = static_cast<size_t>(from); i < calls.size(); ++i) {
        if (calls[i] == call) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

// What the application asks of its front end.

static WString *choose_file(AppState *, FileKind kind) {
    const std::wstring &path = kind == FILE_LAYOUT ? front_end->layout_path : front_end->process_path;
    add_call(kind == FILE_LAYOUT ? "choose layout" : "choose process");
    return path.empty() ? nullptr : wstring_copy(path.c_str());
}

static WString *choose_folder(AppState *, const wchar_t *failed) {
    add_call("choose folder instead of " + test_utf8(failed));
    if (front_end->other_folders.empty()) {
        return nullptr;
    }
    const std::wstring folder = front_end->other_folders.front();
    front_end->other_folders.erase(front_end->other_folders.begin());
    return wstring_copy(folder.c_str());
}

static void paint_now(AppState *) {
    add_call("paint now");
}

static void set_title(AppState *, const wchar_t *title) {
    const std::string narrow = title != nullptr ? test_utf8(title) : "(none)";
    add_call("title " + narrow);
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.title = narrow;
}

static void set_status(AppState *, StatusPart part, const wchar_t *text) {
    add_call("status " + std::to_string(part) + " " + test_utf8(text));
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.status[part] = test_utf8(text);
}

static void menu_enable(AppState *, MenuCommand command, bool enabled) {
    add_call("enable " + std::to_string(command) + (enabled ? " 1" : " 0"));
    const std::lock_guard<std::mutex> lock(record_mutex);
    record.menu[command] = enabled;
}

static void menu_redraw(AppState *) {
    add_call("redraw");
}

static void repaint(AppState *state) {
    EXPECT_FALSE(platform_gl_is_current()) << "the worker must have let the context go";
    add_call("repaint " + std::to_string(state->current_image) + " of " + std::to_string(state->image_count));
    if (front_end->on_repaint) {
        front_end->on_repaint();
    }
}

static void tell_run_done(AppState *state) {
    EXPECT_FALSE(platform_gl_is_current()) << "the worker must have let the context go";
    EXPECT_EQ(state->running, 0);
    add_call("run done");
    platform_semaphore_post(run_over);
    platform_semaphore_wait(run_done_taken);
}

// clang-format off
const Frontend TEST_FRONTEND = {
    choose_file,
    choose_folder,
    paint_now,
    set_title,
    set_status,
    menu_enable,
    menu_redraw,
    repaint,
    tell_run_done,
    record_console,
    record_clear,
    record_message,
    record_diagnostic,
    nullptr,            // diagnostic_early
    nullptr,            // progress
    nullptr,            // memory_failed
};
// clang-format on
