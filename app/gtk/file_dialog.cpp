#include "app/gtk/file_dialog.h"

#include <gtk/gtk.h>

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"
#include "platform/thread_role.h"

// The dialog on show.
struct OpenDialog {
    GMainLoop *loop;
    gint response;
};

static void on_response(GtkNativeDialog *, gint response, gpointer) {
    OpenDialog *open = g_desktop->files.open;
    if (open != nullptr) {
        open->response = response;
        g_main_loop_quit(open->loop);
    }
}

void file_dialog_cancel() {
    on_response(nullptr, GTK_RESPONSE_CANCEL, nullptr);
}

void file_dialog_remember_folder(const wchar_t *path) {
    assert(thread_role_fits(THREAD_WINDOW) && path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    g_autofree char *absolute = g_canonicalize_filename(name.get(), nullptr);
    g_free(g_desktop->files.last_folder);
    g_desktop->files.last_folder = g_path_get_dirname(absolute);
}

// Names in capitals are shown too.
static GtkFileFilter *create_filter(const FileDialogTexts *texts) {
    GtkFileFilter *filter = gtk_file_filter_new();
    const NarrowText name = gtk_text_from_wide(texts->filter_name);
    const NarrowText pattern = gtk_text_from_wide(texts->pattern);
    g_autofree char *capitals = g_ascii_strup(pattern.get(), -1);
    gtk_file_filter_set_name(filter, name.get());
    gtk_file_filter_add_pattern(filter, pattern.get());
    gtk_file_filter_add_pattern(filter, capitals);
    return filter;
}

// A dialog of the main window, freed with g_object_unref.
static GtkFileChooserNative *create_dialog(AppState *state, const wchar_t *title,
                                           GtkFileChooserAction action) {
    const NarrowText text = gtk_text_from_wide(title);
    GtkFileChooserNative *dialog = gtk_file_chooser_native_new(
        text.get(), static_cast<GtkWindow *>(state->main_window), action, nullptr, nullptr);
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog), TRUE);
    return dialog;
}

// Shows the dialog and runs the main loop until it has its answer, or is cancelled from outside.
static gint run_dialog(GtkFileChooserNative *dialog) {
    OpenDialog running = {g_main_loop_new(nullptr, FALSE), GTK_RESPONSE_CANCEL};
    g_desktop->files.open = &running;
    g_signal_connect(dialog, "response", G_CALLBACK(on_response), nullptr);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(dialog));
    g_main_loop_run(running.loop);
    g_desktop->files.open = nullptr;
    gtk_native_dialog_hide(GTK_NATIVE_DIALOG(dialog));
    g_main_loop_unref(running.loop);
    return running.response;
}

// Shows the dialog, destroys it and gives what was chosen, a new string; null when cancelled.
static WString *choose(GtkFileChooserNative *dialog) {
    const gint response = run_dialog(dialog);
    g_autofree char *name =
        response == GTK_RESPONSE_ACCEPT ? gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog)) : nullptr;
    gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(dialog));
    if (name == nullptr) {
        return nullptr;
    }
    const WideText wide = platform_wide_from_system(name);
    return wstring_copy(wide.get());
}

WString *file_dialog_choose(AppState *state, FileKind kind) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    const FileDialogTexts texts = file_dialog_texts(kind);
    g_autoptr(GtkFileChooserNative) dialog = create_dialog(state, texts.title, GTK_FILE_CHOOSER_ACTION_OPEN);
    gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(dialog), create_filter(&texts));
    char **folder = &g_desktop->files.last_folder;
    if (*folder == nullptr) {
        *folder = g_get_current_dir();
    }
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), *folder);
    return choose(dialog);
}

// The nearest folder above the path that is there, as the system names it, freed with g_free.
static char *existing_parent(const wchar_t *path) {
    const NarrowText name = platform_system_from_wide(path);
    g_autofree char *absolute = g_canonicalize_filename(name.get(), nullptr);
    char *parent = g_path_get_dirname(absolute);
    while (!g_file_test(parent, G_FILE_TEST_IS_DIR)) {  // "/" is
        g_autofree char *missing = parent;
        parent = g_path_get_dirname(missing);
    }
    return parent;
}

WString *folder_dialog_choose(AppState *state, const wchar_t *failed) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && failed != nullptr);
    g_autoptr(GtkFileChooserNative) dialog =
        create_dialog(state, L"Save images into folder", GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER);
    gtk_file_chooser_set_create_folders(GTK_FILE_CHOOSER(dialog), TRUE);
    g_autofree char *parent = existing_parent(failed);
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), parent);
    return choose(dialog);
}
