#include "app/gtk/file_dialog.h"

#include <gtk/gtk.h>

#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"
#include "platform/memory.h"

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
    const NarrowText name = platform_system_from_wide(path);
    char *absolute = g_canonicalize_filename(name.get(), nullptr);
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

// A dialog of the main window, freed with g_object_unref.
static GtkFileChooserNative *create_dialog(AppState *state, const wchar_t *title,
                                           GtkFileChooserAction action) {
    char *text = gtk_text_from_wide(title);
    GtkFileChooserNative *dialog = gtk_file_chooser_native_new(
        text, static_cast<GtkWindow *>(state->main_window), action, nullptr, nullptr);
    g_free(text);
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog), TRUE);
    return dialog;
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
    g_main_loop_unref(running.loop);
    return running.response;
}

// Shows the dialog, frees it and gives what was chosen; null when cancelled.
static WString *choose_and_free(GtkFileChooserNative *dialog) {
    WString *path = nullptr;
    if (run_dialog(dialog) == GTK_RESPONSE_ACCEPT) {
        char *name = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog));
        if (name != nullptr) {
            const WideText wide = platform_wide_from_system(name);
            path = wstring_copy(wide.get());
            g_free(name);
        }
    }
    gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(dialog));
    g_object_unref(dialog);
    return path;
}

WString *file_dialog_choose(AppState *state, FileKind kind) {
    const FileDialogTexts texts = file_dialog_texts(kind);
    GtkFileChooserNative *dialog = create_dialog(state, texts.title, GTK_FILE_CHOOSER_ACTION_OPEN);
    gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(dialog), create_filter(&texts));
    if (last_folder == nullptr) {
        last_folder = g_get_current_dir();
    }
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), last_folder);
    return choose_and_free(dialog);
}

// The nearest folder above the path that is there, as the system names it, freed with g_free.
static char *existing_parent(const wchar_t *path) {
    const NarrowText name = platform_system_from_wide(path);
    char *parent = g_canonicalize_filename(name.get(), nullptr);
    do {
        char *above = g_path_get_dirname(parent);
        g_free(parent);
        parent = above;
    } while (!g_file_test(parent, G_FILE_TEST_IS_DIR));  // "/" is
    return parent;
}

WString *folder_dialog_choose(AppState *state, const wchar_t *failed) {
    GtkFileChooserNative *dialog =
        create_dialog(state, L"Save images into folder", GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER);
    gtk_file_chooser_set_create_folders(GTK_FILE_CHOOSER(dialog), TRUE);
    char *parent = existing_parent(failed);
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), parent);
    g_free(parent);
    return choose_and_free(dialog);
}
