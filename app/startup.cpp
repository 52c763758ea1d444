#include "app/startup.h"

#include "app/commands.h"
#include "app/frontend.h"
#include "log/log.h"
#include "platform/memory.h"
#include "process/color_table.h"
#include "sim/stack_setup.h"

i32 appdata_folder_init(AppState *state) {
    const WideText user_data = platform_user_data_folder();
    if (user_data == nullptr) {
        return 1;
    }
    const wchar_t *s = PLATFORM_SEPARATOR;
    WString *folder = wstring_make(L"%ls%ls%ls%ls%ls", user_data.get(), s, L"Dalvine", s, L"Quarn");
    if (!platform_folder_exists(wstring_text(folder))) {
        // The parents of a user's data folder may be missing too on a fresh account.
        platform_folder_create_all(wstring_text(folder));
    }
    if (!platform_folder_exists(wstring_text(folder))) {
        wstring_free(folder);
        return 1;
    }
    state->appdata_path = folder;
    return 0;
}

static void start_log(const AppState *state) {
    WString *path = wstring_make(L"%ls%lslog.txt", wstring_text(state->appdata_path), PLATFORM_SEPARATOR);
    log_start(wstring_text(path));
    wstring_free(path);
}

i32 app_start(AppState *state, const wchar_t *colors_path) {
    *state = {};
    state->image_width = PICTURE_WIDTH;
    g_app = state;
    if (appdata_folder_init(state) != 0) {
        message_show(L"Could not initialize application data folder.");
        return 1;
    }
    start_log(state);
    if (color_table_load_file(colors_path) != 0) {
        message_show(L"Could not load color file. Redo installation.");
        return 1;
    }
    return 0;
}

void app_load_shaders(AppState *state, const wchar_t *surface_path, const wchar_t *point_path) {
    state->surface_program = shader_program_load(surface_path);
    state->point_program = shader_program_load(point_path);
    log_write(L"Shaders loaded and compiled");
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
    shader_program_free(state->point_program);
    state->point_program = nullptr;
    shader_program_free(state->surface_program);
    state->surface_program = nullptr;
    wstring_free(state->appdata_path);
    state->appdata_path = nullptr;
    color_table_free();
    log_end();
    g_app = nullptr;
}

i32 app_close(AppState *state) {
    state->stop_requested = 1;
    if (state->run_active != 0) {
        state->quit_pending = 1;
        frontend_set_status(state, STATUS_PROCESS, L"Closing after this step");
        return 0;
    }
    stack_free(state->stack);
    state->stack = nullptr;
    app_cleanup(state);
    return 1;
}
