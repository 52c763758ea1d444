#include "app/gtk/file_dialog.h"

#include <gtk/gtk.h>

#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"
#include "platform/memory.h"

static constexpr guint REDRAW_MS = 50;  // some frames

// The dialog on show.
struct OpenDialog {
    GMainLoop *loop;
    gint response;
};

static OpenDialog *open_dialog = nullptr;
static char *last_folder = nullptr;  // as the system names it; null until the first dialog

static void on_response(GtkNativeDialog *, gint response, gpointer) {
    if (open_dialog != nullptr) {
        open_dialog->response = response;
        g_main_loop_quit(open_dialog->loop);
    }
}

void file_dialog_cancel() {
    on_response(nullptr, GTK_RESPONSE_CANCEL, nullptr);
}

void file_dialog_remember_folder(const wchar_t *path) {
    char *name = platform_system_from_wide(path);
    char *absolute = g_canonicalize_filename(name, nullptr);
    memory_free(name);
    g_free(last_folder);
    last_folder = g_path_get_dirname(absolute);
    g_free(absolute);
}

// Names in capitals are shown too.
static GtkFileFilter *create_filter(const FileDialogTexts *texts) {
    GtkFileFilter *filter = gtk_file_filter_new();
    char *name = gtk_text_from_wide(texts->filter_name);
    char *pattern = gtk_text_from_wide(texts->pattern);
    char *capitals = g_ascii_strup(pattern, -1);
    gtk_file_filter_set_name(filter, name);
    gtk_file_filter_add_pattern(filter, pattern);
    gtk_file_filter_add_pattern(filter, capitals);
    g_free(capitals);
    g_free(pattern);
    g_free(name);
    return filter;
}

static GtkFileChooserNative *create_dialog(AppState *state, FileKind kind) {
    FileDialogTexts texts = file_dialog_texts(kind);
    char *title = gtk_text_from_wide(texts.title);
    GtkFileChooserNative *dialog = gtk_file_chooser_native_new(
        title, static_cast<GtkWindow *>(state->main_window), GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr);
    g_free(title);
    gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(dialog), create_filter(&texts));
    if (last_folder == nullptr) {
        last_folder = g_get_current_dir();
    }
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), last_folder);
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog), TRUE);
    return dialog;
}

static gboolean end_loop(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_REMOVE;
}

// Shows the dialog and runs the main loop until it has its answer, or is cancelled from outside.
static gint run_dialog(GtkFileChooserNative *dialog) {
    OpenDialog running = {g_main_loop_new(nullptr, FALSE), GTK_RESPONSE_CANCEL};
    open_dialog = &running;
    g_signal_connect(dialog, "response", G_CALLBACK(on_response), nullptr);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(dialog));
    g_main_loop_run(running.loop);
    open_dialog = nullptr;
    gtk_native_dialog_hide(GTK_NATIVE_DIALOG(dialog));
    // What the file is wanted for may take long, so the window is drawn before.
    g_timeout_add(REDRAW_MS, end_loop, running.loop);
    g_main_loop_run(running.loop);
    g_main_loop_unref(running.loop);
    return running.response;
}

WString *file_dialog_choose(AppState *state, FileKind kind) {
    GtkFileChooserNative *dialog = create_dialog(state, kind);
    WString *path = nullptr;
    if (run_dialog(dialog) == GTK_RESPONSE_ACCEPT) {
        char *name = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog));
        if (name != nullptr) {
            wchar_t *wide = platform_wide_from_system(name);
            path = wstring_copy(wide);
            memory_free(wide);
            g_free(name);
        }
    }
    gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(dialog));
    g_object_unref(dialog);
    return path;
}
