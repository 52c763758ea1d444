#include "app/startup.h"

#include <cassert>

#include "app/frontend.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/thread_role.h"
#include "platform/whole_file.h"
#include "process/color_table.h"
#include "sim/stack_setup.h"

static constexpr const wchar_t *COLORS_FILE = L"colors.txt";
static constexpr const wchar_t *SURFACE_SHADER_FILE = L"surface.shader";
static constexpr const wchar_t *POINT_SHADER_FILE = L"point.shader";

static void set_sinks(const Frontend *frontend) {
    console_set_sink(frontend->console_append, frontend->console_clear);
    message_set_sink(frontend->message_show);
    if (frontend->memory_failed != nullptr) {
        memory_set_failure_hook(
            frontend->memory_failed);  // in the place of the one that message_set_sink sets
    }
    diagnostic_set_sink(frontend->diagnostic_early != nullptr ? frontend->diagnostic_early
                                                              : frontend->diagnostic);
    progress_set_sink(frontend->progress);
}

static void reset_sinks() {
    console_set_sink(nullptr, nullptr);
    message_set_sink(nullptr);
    diagnostic_set_sink(nullptr);
    progress_set_sink(nullptr);
}

// Before those of the front end: a folder that it has made for files can be removed only without them.
static void add_last_act() {
    static bool added = false;
    if (!added) {
        added = true;
        memory_add_last_act(whole_files_end);
    }
}

void app_start(AppState *state, const Frontend *frontend, const char *data_folder) {
    assert(state != nullptr && frontend != nullptr);
    assert(g_app == nullptr);  // one application at a time
    *state = {};
    state->frontend = frontend;
    state->picture_style = PLAIN_STYLE;
    g_app = state;
    thread_role_set(THREAD_WINDOW);
    set_sinks(frontend);
    add_last_act();
    const WideText folder = data_folder != nullptr ? platform_wide_from_system(data_folder) : nullptr;
    state->places = data_places(folder.get());
}

// Finds the per-user data folder, or makes it. Returns 0 and sets appdata_path, or 1.
static i32 open_appdata_folder(AppState *state) {
    const WideText user_data = platform_user_data_folder();
    if (user_data == nullptr) {
        return 1;
    }
    const wchar_t *s = PLATFORM_SEPARATOR;
    Owned<WString> folder(wstring_make(L"%ls%ls%ls%ls%ls", user_data.get(), s, L"Dalvine", s, L"Quarn"));
    if (!platform_folder_exists(wstring_text(folder.get()))) {
        // The parents of a user's data folder may be missing too on a fresh account.
        platform_folder_create_all(wstring_text(folder.get()));
    }
    if (!platform_folder_exists(wstring_text(folder.get()))) {
        return 1;
    }
    state->appdata_path = folder.release();
    return 0;
}

static void start_log(const AppState *state) {
    const Owned<WString> path(
        wstring_make(L"%ls%lslog.txt", wstring_text(state->appdata_path), PLATFORM_SEPARATOR));
    log_start(wstring_text(path.get()));
}

// `path` may be null: there is no such file, which has been told.
static i32 load_colors(const wchar_t *path) {
    if (path == nullptr || color_table_load_file(path) != 0) {
        message_show(L"Could not load color file. Redo installation.");
        return 1;
    }
    return 0;
}

i32 app_load_colors(AppState *state) {
    const Owned<WString> path(data_file_find(&state->places, COLORS_FILE));
    return load_colors(path != nullptr ? wstring_text(path.get()) : nullptr);
}

i32 app_open_files(AppState *state) {
    // Looked for before there is a log: who starts a program that is badly installed sees it in the terminal.
    const Owned<WString> colors(data_file_or_name(&state->places, COLORS_FILE));
    diagnostic_set_sink(state->frontend->diagnostic);
    if (open_appdata_folder(state) != 0) {
        message_show(L"Could not initialize application data folder.");
        return 1;
    }
    start_log(state);
    return load_colors(wstring_text(colors.get()));
}

static ShaderProgram *load_program(const AppState *state, const wchar_t *name) {
    const Owned<WString> path(data_file_or_name(&state->places, name));
    return shader_program_load(wstring_text(path.get()));
}

void app_load_shaders(AppState *state) {
    state->surface_program = load_program(state, SURFACE_SHADER_FILE);
    state->point_program = load_program(state, POINT_SHADER_FILE);
    log_write(L"Shaders loaded and compiled");
}

// Null after telling why not.
static ShaderProgram *require_program(const AppState *state, const wchar_t *name) {
    const Owned<WString> path(data_file_find(&state->places, name));
    if (path == nullptr) {
        diagnostic_write(L"no graphics: the shader file %ls is missing", name);
        return nullptr;
    }
    Owned<ShaderProgram> program(shader_program_load(wstring_text(path.get())));
    if (program->incomplete) {
        memory_end_program();  // there is nothing wrong with the graphics
    }
    if (!shader_program_is_usable(program.get())) {
        diagnostic_write(L"no graphics: the shader file %ls cannot be used", wstring_text(path.get()));
        return nullptr;
    }
    return program.release();
}

i32 app_require_shaders(AppState *state) {
    state->surface_program = require_program(state, SURFACE_SHADER_FILE);
    state->point_program = require_program(state, POINT_SHADER_FILE);
    return state->surface_program != nullptr && state->point_program != nullptr ? 0 : 1;
}

void app_welcome() {
    console_append(
        L"Select menu \"Load GDS\" to load a GDS database and then menu \"Run Process\" to run a "
        L"process file");
    console_append(L"\r\n");
    console_append(L"\r\n");
    diagnostics_show();
}

void app_end(AppState *state) {
    assert(g_app == state);
    if (state->worker_thread != nullptr) {
        platform_thread_join(state->worker_thread);
        state->worker_thread = nullptr;
    }
    shader_program_free(state->point_program);
    state->point_program = nullptr;
    shader_program_free(state->surface_program);
    state->surface_program = nullptr;
    wstring_free(state->appdata_path);
    state->appdata_path = nullptr;
    wstring_free(state->picture_title);
    state->picture_title = nullptr;
    state->picture_style = PLAIN_STYLE;
    data_places_free(&state->places);
    color_table_free();
    log_end();
    reset_sinks();
    thread_role_set(THREAD_UNNAMED);
    g_app = nullptr;
}

i32 app_close(AppState *state) {
    state->stop_requested = 1;
    if (state->run_active != 0) {
        state->quit_pending = 1;
        state->frontend->set_status(state, STATUS_PROCESS, L"Closing after this step");
        return 0;
    }
    stack_free(state->stack);
    state->stack = nullptr;
    app_cleanup(state);
    return 1;
}
