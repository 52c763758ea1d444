// The front end of the window: hands what the commands and the worker ask for over to the main thread.
#include "app/frontend.h"

#include <gtk/gtk.h>

#include "app/gtk/desktop_commands.h"
#include "app/gtk/file_dialog.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"
#include "app/gtk/menu_bar.h"
#include "app/gtk/render_area.h"
#include "app/gtk/status_bar.h"
#include "app/gtk/window_paint.h"

struct EnableRequest {
    MenuCommand command;
    bool enabled;
};

WString *frontend_choose_file(AppState *state, FileKind kind) {
    WString *path = desktop_take_named_file(kind);
    if (path == nullptr) {
        path = file_dialog_choose(state, kind);
    }
    if (path != nullptr) {
        file_dialog_remember_folder(wstring_text(path));
        frontend_paint_now(state);  // what the file is wanted for may take long
    }
    return path;
}

WString *frontend_choose_folder(AppState *state, const wchar_t *failed) {
    return folder_dialog_choose(state, failed);
}

void frontend_paint_now(AppState *state) {
    window_paint_now(static_cast<GtkWidget *>(state->main_window));
}

static void set_title(AppState *state, const wchar_t *text) {
    const NarrowText title = gtk_text_from_wide(text);
    gtk_window_set_title(GTK_WINDOW(state->main_window), title.get());
}

// The worker names a picture before it has read it from the graphics, which can take most of a step; the
// window keeps the title of the picture on show until the new one is there.
void frontend_set_title(AppState *state, const wchar_t *title) {
    if (main_thread_is_here()) {
        set_title(state, title);
    }
}

void frontend_set_status(AppState *, StatusPart part, const wchar_t *text) {
    status_bar_set(part, text);
}

static void menu_enable(void *data) {
    const auto *request = static_cast<EnableRequest *>(data);
    menu_bar_enable(request->command, request->enabled);
}

void frontend_menu_enable(AppState *, MenuCommand command, bool enabled) {
    EnableRequest request = {command, enabled};
    main_thread_call(menu_enable, &request);
}

// The window library draws what has changed.
void frontend_menu_redraw(AppState *) {}

// While the worker waits. The picture is drawn with the next frame, from a copy.
static void show_newest(void *data) {
    auto *state = static_cast<AppState *>(data);
    const PixelImage *picture = state->images[state->current_image];
    set_title(state, wstring_text(picture->title));
    render_area_show(picture);
}

void frontend_repaint(AppState *state) {
    main_thread_call(show_newest, state);
}

static void take_run_done(void *state) {
    desktop_run_done(static_cast<AppState *>(state));
}

void frontend_run_done(AppState *state) {
    main_thread_call(take_run_done, state);
}
