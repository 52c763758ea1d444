#include "tests/gtk/window_driver.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

static bool wait_until(const std::function<bool()> &condition) {
    return wait_for_value(true, condition);
}

// The program.

WindowProgram::~WindowProgram() {
    if (!over) {
        program_signal(run, SIGKILL);
        program_finish(&run);
    }
}

void program_launch(WindowProgram *program, const WindowCall &call) {
    const std::string scratch = test_utf8(program->files.scratch.path);
    ProgramCall start = program->files.call(call.arguments);
    start.program = call.program;
    start.environment = {"XDG_DATA_HOME=" + scratch + "/data", "HOME=" + scratch, "TZ=UTC", "LC_ALL=C.UTF-8"};
    start.environment.insert(start.environment.end(), call.environment.begin(), call.environment.end());
    program->over = false;
    program->application = {};
    program->run = program_start(start, scratch);
}

static Accessible frame_of(const WindowProgram &program) {
    for (const Accessible &window : accessible_children(program.application)) {
        if (accessible_role(window) == "frame") {
            return window;
        }
    }
    return {};
}

// Whether the program can be talked to; it tells the bus about itself some time after its start.
static bool find_application(WindowProgram *program) {
    if (!accessible_exists(program->application)) {
        program->application = accessible_program(program->run.process);
    }
    return accessible_exists(program->application);
}

bool program_connect(WindowProgram *program) {
    return wait_until([&] { return find_application(program) || !program_running(program); }) &&
           !program->over;
}

bool program_open(WindowProgram *program, const WindowCall &call) {
    program_launch(program, call);
    bool greets = call.arguments.empty();
    const bool ready = wait_until([&] {
        const bool there = find_application(program) && window_active(*program) &&
                           (!greets || window_console_has(*program, WELCOME_TEXT));
        return there || !program_running(program);
    });
    const bool opened = ready && !program->over;
    EXPECT_TRUE(opened) << program_report(*program);
    return opened;
}

u64 program_window(const WindowProgram &program) {
    std::vector<u64> windows;
    EXPECT_TRUE(wait_until([&] {
        windows = screen_windows(program.run.process);
        return !windows.empty();
    })) << program_report(program);
    return windows.empty() ? 0 : windows[0];
}

bool program_running(WindowProgram *program) {
    if (program->over) {
        return false;
    }
    siginfo_t end = {};
    waitid(P_PID, static_cast<id_t>(program->run.process), &end, WEXITED | WNOHANG | WNOWAIT);
    if (end.si_pid == 0) {
        return true;
    }
    program->result = program_finish(&program->run);
    program->over = true;
    return false;
}

bool program_wait(WindowProgram *program) {
    return wait_until([&] { return !program_running(program); });
}

void program_close(WindowProgram *program) {
    const u64 id = program_window(*program);
    ASSERT_NE(id, 0U) << "there is no window to close";
    screen_close_window(id);
    ASSERT_TRUE(program_wait(program)) << "the program does not end";
    EXPECT_EQ(program->result.status, 0) << program->result.error;
    EXPECT_EQ(program->result.signal, 0) << program->result.error;
    EXPECT_EQ(program->result.error, "") << "nothing is complained of";
}

std::string program_log(const WindowProgram &program) {
    return test_file_read(program.files.scratch.file(L"data/Dalvine/Quarn/log.txt"));
}

std::string program_report(const WindowProgram &program) {
    if (program.over) {
        return "The program is over: status " + std::to_string(program.result.status) + ", signal " +
               std::to_string(program.result.signal) + "\n" + program.result.error;
    }
    return "title \"" + window_title(program) + "\"\n" + accessible_tree(program.application) +
           window_console(program) + test_file_read(test_wide(program.run.error_path));
}

// What the window shows.

Accessible window_part(const WindowProgram &program, const std::string &name) {
    return accessible_find(frame_of(program), "", name);
}

std::string window_title(const WindowProgram &program) {
    std::vector<u64> windows = screen_windows(program.run.process);
    return windows.empty() ? accessible_name(frame_of(program)) : screen_title(windows[0]);
}

static Accessible menu_item(const WindowProgram &program, const std::string &label) {
    return accessible_find(accessible_find(frame_of(program), "menu bar", "*"), "menu item", label);
}

std::string window_menu(const WindowProgram &program) {
    std::string enabled;
    for (const Accessible &item :
         accessible_find_all(accessible_find(frame_of(program), "menu bar", "*"), "menu item")) {
        if (accessible_has_state(item, STATE_SENSITIVE)) {
            enabled += (enabled.empty() ? "" : ", ") + accessible_name(item);
        }
    }
    return enabled;
}

std::string window_console(const WindowProgram &program) {
    return accessible_text(window_part(program, "Console"));
}

bool window_console_has(const WindowProgram &program, const std::string &text) {
    return window_console(program).find(text) != std::string::npos;
}

std::vector<std::string> window_status(const WindowProgram &program) {
    std::vector<std::string> texts;
    for (const Accessible &label : accessible_find_all(window_part(program, "Status bar"), "label")) {
        texts.push_back(accessible_text(label));
    }
    return texts;
}

std::string window_picture(const WindowProgram &program) {
    return accessible_description(window_part(program, "Cross section"));
}

bool window_active(const WindowProgram &program) {
    return accessible_has_state(frame_of(program), STATE_ACTIVE);
}

// Menu and dialogs.

void window_command(const WindowProgram &program, const std::string &label) {
    const ScreenBox box = accessible_box(menu_item(program, label));
    ASSERT_GT(box.width, 0) << "no command " << label << "\n" << program_report(program);
    screen_click(box.x + box.width / 2, box.y + box.height / 2);
}

// Message boxes are called "Error" or "Information" by screen readers, whatever their caption.
static bool has_caption(const WindowProgram &program, const Accessible &dialog, const std::string &title) {
    if (accessible_role(dialog) != "alert") {
        return accessible_name(dialog) == title;
    }
    std::vector<u64> windows = screen_windows(program.run.process);
    return std::any_of(windows.begin(), windows.end(),
                       [&](u64 window) { return screen_title(window) == title; });
}

static Accessible find_dialog(const WindowProgram &program, const std::string &title) {
    for (const Accessible &window : accessible_children(program.application)) {
        if (accessible_role(window) != "frame" && accessible_has_state(window, STATE_SHOWING) &&
            has_caption(program, window, title)) {
            return window;
        }
    }
    return {};
}

Accessible window_dialog(const WindowProgram &program, const std::string &title) {
    wait_until([&] { return dialog_shows(program, title); });
    return find_dialog(program, title);
}

bool dialog_shows(const WindowProgram &program, const std::string &title) {
    return accessible_has_state(find_dialog(program, title), STATE_ACTIVE);
}

bool dialog_gone(const WindowProgram &program, const std::string &title) {
    return wait_until([&] { return !accessible_exists(find_dialog(program, title)); });
}

void window_choose(const WindowProgram &program, const std::string &title, const std::string &path) {
    Accessible dialog = window_dialog(program, title);
    ASSERT_TRUE(accessible_exists(dialog)) << "no dialog " << title << "\n" << program_report(program);
    screen_key("slash");  // opens the field for a path
    Accessible field = {};
    auto field_ready = [&] {
        field = accessible_find(dialog, "text", "*");
        return accessible_exists(field) && accessible_has_state(field, STATE_FOCUSED);
    };
    ASSERT_TRUE(wait_until(field_ready)) << accessible_tree(dialog);
    accessible_set_text(field, path);
    EXPECT_SOON(path, accessible_text(field));
    screen_key("Return");
    ASSERT_TRUE(dialog_gone(program, title)) << accessible_tree(dialog);
}

void window_cancel(const WindowProgram &program, const std::string &title) {
    ASSERT_TRUE(accessible_exists(window_dialog(program, title))) << program_report(program);
    screen_key("Escape");
    ASSERT_TRUE(dialog_gone(program, title)) << program_report(program);
}

std::string window_message(const WindowProgram &program) {
    const Accessible box = window_dialog(program, "Quarn");
    if (!accessible_exists(box)) {
        return "no message box\n" + program_report(program);
    }
    std::string text;
    for (const Accessible &label : accessible_find_all(box, "label")) {
        text += accessible_text(label);
    }
    accessible_activate(accessible_find(box, "push button", "OK"));
    // This one: another may follow at once.
    EXPECT_TRUE(wait_until([&] { return !accessible_has_state(box, STATE_SHOWING); }));
    return text;
}

void window_load(const WindowProgram &program, const std::string &path) {
    window_command(program, "Load GDS");
    window_choose(program, "Open GDS file", path);
    EXPECT_TRUE(wait_until([&] {
        return window_console_has(program, "GDS database finished loading in ") ||
               window_console_has(program, "Loading GDS database failed with error: ");
    })) << program_report(program);
}

void window_run(const WindowProgram &program, const std::string &path) {
    window_command(program, "Run Process");
    window_choose(program, "Open process file", path);
}

bool window_run_done(const WindowProgram &program) {
    return wait_until(
        [&] { return window_console_has(program, BROWSE_TEXT) && window_menu(program) == MENU_DONE; });
}

DropResult window_drop(const WindowProgram &program, const std::vector<std::string> &paths) {
    std::vector<u64> windows = screen_windows(program.run.process);
    if (windows.empty()) {
        return DROP_SILENCE;
    }
    const ScreenBox box = screen_window_box(windows[0]);
    return drop_files(windows[0], box.x + box.width / 2, box.y + box.height / 2, paths);
}

void window_key(const WindowProgram &program, const std::string &key) {
    EXPECT_TRUE(wait_until([&] { return window_active(program); })) << program_report(program);
    screen_key(key);
}

// The gate.

void gate_make(const WindowProgram &program) {
    ASSERT_EQ(mkfifo(program.files.path("VertexData.txt").c_str(), 0600), 0);
}

// The pipe holds less than a dump, so the first bytes come while the dump is being written. A new pipe then
// takes the place of this one, and the next dump waits there.
void gate_open(const WindowProgram &program) {
    const int smallest_pipe = 4096;
    const std::string path = program.files.path("VertexData.txt");
    int pipe = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(pipe, 0);
    fcntl(pipe, F_SETPIPE_SZ, smallest_pipe);
    char buffer[smallest_pipe];
    const bool comes = wait_until([&] { return read(pipe, buffer, sizeof buffer) > 0; });
    const std::string next = path + ".next";
    EXPECT_TRUE(comes) << "no dump comes\n" << program_report(program);
    EXPECT_EQ(mkfifo(next.c_str(), 0600), 0);
    EXPECT_EQ(rename(next.c_str(), path.c_str()), 0);
    EXPECT_TRUE(!comes || wait_until([&] { return read(pipe, buffer, sizeof buffer) == 0; }));
    close(pipe);
}

bool program_open_held(WindowProgram *program) {
    gate_make(*program);
    program->files.write("p.txt", process_text("dump\n"));
    const bool opened = program_open(program, {{"a.gds", "p.txt"}});
    EXPECT_SOON(MENU_RUNNING, window_menu(*program));
    EXPECT_SOON("The substrate", window_picture(*program));
    return opened && !testing::Test::HasFailure();
}
