// The front end of the window: hands what the commands and the worker ask for over to the main thread.
#include "app/gtk/gtk_frontend.h"

#include <gtk/gtk.h>

#include <cassert>

#include "app/gtk/console_view.h"
#include "app/gtk/desktop_commands.h"
#include "app/gtk/file_dialog.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"
#include "app/gtk/memory_box.h"
#include "app/gtk/menu_bar.h"
#include "app/gtk/message_dialog.h"
#include "app/gtk/render_area.h"
#include "app/gtk/status_bar.h"
#include "app/gtk/window_paint.h"
#include "platform/terminal.h"
#include "platform/thread_role.h"

struct EnableRequest {
    MenuCommand command;
    bool enabled;
};

static void paint_now(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    window_paint_now(static_cast<GtkWidget *>(state->main_window));
}

static WString *choose_file(AppState *state, FileKind kind) {
    WString *path = desktop_take_named_file(kind);
    if (path == nullptr) {
        path = file_dialog_choose(state, kind);
    }
    if (path != nullptr) {
        file_dialog_remember_folder(wstring_text(path));
        paint_now(state);  // what the file is wanted for may take long
    }
    return path;
}

static WString *choose_folder(AppState *state, const wchar_t *failed) {
    return folder_dialog_choose(state, failed);
}

static void show_title(AppState *state, const wchar_t *text) {
    const NarrowText title = gtk_text_from_wide(text);
    gtk_window_set_title(GTK_WINDOW(state->main_window), title.get());
}

// The worker names a picture before it has read it from the graphics, which can take most of a step; the
// window keeps the title of the picture on show until the new one is there.
static void set_title(AppState *state, const wchar_t *title) {
    if (main_thread_is_here()) {
        show_title(state, title);
    }
}

static void set_status(AppState *, StatusPart part, const wchar_t *text) {
    status_bar_set(part, text);
}

static void enable_command(void *data) {
    const auto *request = static_cast<EnableRequest *>(data);
    menu_bar_enable(request->command, request->enabled);
}

static void menu_enable(AppState *, MenuCommand command, bool enabled) {
    EnableRequest request = {command, enabled};
    main_thread_call(enable_command, &request);
}

// The window library draws what has changed.
static void menu_redraw(AppState *) {}

// While the worker waits. The picture is drawn with the next frame, from a copy.
static void show_newest(void *data) {
    auto *state = static_cast<AppState *>(data);
    assert(state->current_image >= 0 && state->current_image < state->image_count);
    const PixelImage *picture = state->images[state->current_image];
    show_title(state, wstring_text(picture->title));
    render_area_show(picture);
}

static void repaint(AppState *state) {
    assert(thread_role_fits(THREAD_WORKER));
    main_thread_call(show_newest, state);
}

static void take_run_done(void *state) {
    desktop_run_done(static_cast<AppState *>(state));
}

static void tell_run_done(AppState *state) {
    assert(thread_role_fits(THREAD_WORKER));
    main_thread_call(take_run_done, state);
}

// While there is no log: for those who start the program in a terminal.
static void diagnostic_to_terminal(const wchar_t *line) {
    const NarrowText text = platform_system_from_wide(line);
    terminal_write(stderr, "quarn: ", text.get(), "\n");
}

// clang-format off
const Frontend GTK_FRONTEND = {
    choose_file,
    choose_folder,
    paint_now,
    set_title,
    set_status,
    menu_enable,
    menu_redraw,
    repaint,
    tell_run_done,
    console_view_append,
    console_view_clear,
    message_dialog_show,
    nullptr,                 // diagnostic: to the log and the console
    diagnostic_to_terminal,
    nullptr,                 // progress: the pictures themselves show it
    memory_box_show,
};
// clang-format on
