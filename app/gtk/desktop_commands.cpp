#include "app/gtk/desktop_commands.h"

#include <gtk/gtk.h>

#include <cassert>

#include "app/commands.h"
#include "app/gtk/gtk_desktop.h"
#include "app/startup.h"
#include "log/log.h"
#include "platform/thread_role.h"

// Files that wait for the main loop.
struct OpenRequest {
    AppState *state;
    char *layout_path;
    char *process_path;
};

static void end_main_loop() {
    g_desktop->commands.ended = true;
    gtk_main_quit();
}

void desktop_close(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    CommandRule *rule = &g_desktop->commands;
    if (rule->ended) {
        return;
    }
    if (rule->under_way) {
        rule->close_wanted = true;
        file_dialog_cancel();
        message_dialog_cancel();
        return;
    }
    if (app_close(state) != 0) {
        end_main_loop();
    }
}

// The old pictures are gone when a run has started.
static void run_process(AppState *state) {
    if (run_command(state) == 0) {
        render_area_show(nullptr);
    }
}

static void do_command(AppState *state, MenuCommand command) {
    switch (command) {
        case MENU_RUN: run_process(state); break;
        case MENU_STOP: stop_command(state); break;
        case MENU_LOAD_GDS: load_gds_command(state); break;
        case MENU_SAVE_IMAGES: save_images_command(state); break;
        case MENU_ABOUT: about_dialog_show(); break;
    }
}

// The window may have been closed meanwhile.
static void end_command(AppState *state) {
    g_desktop->commands.under_way = false;
    if (g_desktop->commands.close_wanted) {
        desktop_close(state);
    }
}

bool desktop_is_free() {
    return !g_desktop->commands.under_way && !g_desktop->commands.ended;
}

void desktop_command(AppState *state, MenuCommand command) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (!desktop_is_free()) {
        return;
    }
    g_desktop->commands.under_way = true;
    do_command(state, command);
    end_command(state);
}

void desktop_picture_command(AppState *state, i32 command) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (!desktop_is_free()) {
        return;
    }
    g_desktop->commands.under_way = true;
    picture_menu_command(state, command);
    end_command(state);
}

// Why the command is greyed; null when it is not.
static const wchar_t *greyed_reason(const AppState *state, MenuCommand command) {
    if (command == MENU_ABOUT) {
        return nullptr;
    }
    if (state->run_active != 0) {
        return L"the run has not ended: images can be saved, and files opened, when it has";
    }
    if (command == MENU_RUN && state->layout == nullptr) {
        return L"no layout is loaded: load one before a process file can be run";
    }
    if (command == MENU_SAVE_IMAGES && state->image_count < 1) {
        return L"there are no images to save: run a process file first";
    }
    return nullptr;
}

void desktop_command_by_key(AppState *state, MenuCommand command) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    const wchar_t *reason = greyed_reason(state, command);
    if (reason == nullptr) {
        desktop_command(state, command);
    } else if (desktop_is_free()) {
        diagnostic_write(L"%ls", reason);
        diagnostics_show();
    }
}

void desktop_browse(AppState *state, i32 direction) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (!g_desktop->commands.ended && browse_images(state, direction) != 0) {
        render_area_show(state->images[state->current_image]);
    }
}

void desktop_browse_to_end(AppState *state, i32 direction) {
    if (!g_desktop->commands.ended && state->image_count > 0) {
        state->current_image = -1;  // no picture: from there, back leads to the last one and on to the first
        desktop_browse(state, -direction);
    }
}

bool desktop_accepts_files(const AppState *state) {
    return desktop_is_free() && state->run_active == 0;
}

// Runs a command with its file named beforehand.
static void command_with_file(AppState *state, MenuCommand command, FileKind kind, const char *path) {
    const WideText wide = platform_wide_from_system(path);
    WString **named = &g_desktop->commands.named_files[kind];
    *named = wstring_copy(wide.get());
    desktop_command(state, command);
    wstring_free(*named);  // when the command has not taken it
    *named = nullptr;
}

static gboolean open_files(gpointer data) {
    auto *request = static_cast<OpenRequest *>(data);
    AppState *state = request->state;
    bool loaded = true;
    if (request->layout_path != nullptr && desktop_accepts_files(state)) {
        command_with_file(state, MENU_LOAD_GDS, FILE_LAYOUT, request->layout_path);
        loaded = state->load_result == 0;
    }
    if (request->process_path != nullptr && loaded && state->layout != nullptr &&
        desktop_accepts_files(state)) {
        command_with_file(state, MENU_RUN, FILE_PROCESS, request->process_path);
    }
    return G_SOURCE_REMOVE;
}

static void free_request(gpointer data) {
    auto *request = static_cast<OpenRequest *>(data);
    g_free(request->layout_path);
    g_free(request->process_path);
    g_free(request);
}

void desktop_open_later(AppState *state, const char *layout_path, const char *process_path) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (layout_path == nullptr && process_path == nullptr) {
        return;
    }
    auto *request = g_new0(OpenRequest, 1);
    request->state = state;
    request->layout_path = g_strdup(layout_path);
    request->process_path = g_strdup(process_path);
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, open_files, request, free_request);
}

// A message box is a command like the others: nothing else starts until it is read.
static gboolean show_message(gpointer text) {
    if (desktop_is_free()) {
        g_desktop->commands.under_way = true;
        message_show(static_cast<const wchar_t *>(text));
        end_command(g_desktop->state);
    }
    return G_SOURCE_REMOVE;
}

void desktop_message_later(const wchar_t *text) {
    assert(text != nullptr);
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, show_message, const_cast<wchar_t *>(text), nullptr);
}

WString *desktop_take_named_file(FileKind kind) {
    assert(thread_role_fits(THREAD_WINDOW) && kind >= 0 && kind < FILE_KIND_COUNT);
    WString *path = g_desktop->commands.named_files[kind];
    g_desktop->commands.named_files[kind] = nullptr;
    return path;
}

void desktop_run_done(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (run_done(state) != 0) {
        end_main_loop();
    }
}
