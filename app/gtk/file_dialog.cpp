#include "app/gtk/file_dialog.h"

#include <gtk/gtk.h>

#include <cassert>
#include <cwchar>

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
static GtkFileFilter *create_filter(const wchar_t *filter_name, const wchar_t *filter_pattern) {
    GtkFileFilter *filter = gtk_file_filter_new();
    const NarrowText name = gtk_text_from_wide(filter_name);
    const NarrowText pattern = gtk_text_from_wide(filter_pattern);
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

// Destroys the dialog and gives what was chosen in it, a new string; null when cancelled.
static WString *chosen(GtkFileChooserNative *dialog, gint response) {
    g_autofree char *name =
        response == GTK_RESPONSE_ACCEPT ? gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog)) : nullptr;
    gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(dialog));
    if (name == nullptr) {
        return nullptr;
    }
    const WideText wide = platform_wide_from_system(name);
    return wstring_copy(wide.get());
}

// Shows the dialog up to its answer, which is given as above.
static WString *choose(GtkFileChooserNative *dialog) {
    return chosen(dialog, run_dialog(dialog));
}

// Where dialogs start.
static const char *last_folder() {
    char **folder = &g_desktop->files.last_folder;
    if (*folder == nullptr) {
        *folder = g_get_current_dir();
    }
    return *folder;
}

WString *file_dialog_choose(AppState *state, FileKind kind) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    const FileDialogTexts texts = file_dialog_texts(kind);
    g_autoptr(GtkFileChooserNative) dialog = create_dialog(state, texts.title, GTK_FILE_CHOOSER_ACTION_OPEN);
    gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(dialog), create_filter(texts.filter_name, texts.pattern));
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), last_folder());
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

// The kind of files that the dialog shows.
static i32 kind_on_show(GtkFileChooser *dialog) {
    const GtkFileFilter *filter = gtk_file_chooser_get_filter(dialog);
    const void *kind = filter != nullptr ? g_object_get_data(G_OBJECT(filter), "kind") : nullptr;
    return GPOINTER_TO_INT(kind);
}

// The dialog for saving, freed with g_object_unref.
static GtkFileChooserNative *create_save_dialog(AppState *state, const SaveForm *form, const wchar_t *name,
                                                i32 kind) {
    GtkFileChooserNative *dialog = create_dialog(state, form->title, GTK_FILE_CHOOSER_ACTION_SAVE);
    auto *chooser = GTK_FILE_CHOOSER(dialog);
    for (i32 i = 0; i < form->kind_count; ++i) {
        const Owned<WString> pattern(wstring_make(L"*%ls", form->kinds[i].extension));
        GtkFileFilter *filter = create_filter(form->kinds[i].name, wstring_text(pattern.get()));
        g_object_set_data(G_OBJECT(filter), "kind", GINT_TO_POINTER(i));
        gtk_file_chooser_add_filter(chooser, filter);
        if (i == kind) {
            gtk_file_chooser_set_filter(chooser, filter);
        }
    }
    const char *folder = g_desktop->files.save_folder;
    gtk_file_chooser_set_current_folder(chooser, folder != nullptr ? folder : last_folder());
    const NarrowText text = gtk_text_from_wide(name);
    gtk_file_chooser_set_current_name(chooser, text.get());
    gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
    return dialog;
}

// The name with the extension of a kind, in the place of another kind's; a new string.
static WString *renamed(const SaveForm *form, const wchar_t *path, i32 kind) {
    const i32 named = save_kind_of(form, path);
    const size_t cut = named < form->kind_count ? std::wcslen(form->kinds[named].extension) : 0;
    return wstring_make(L"%.*ls%ls", static_cast<int>(std::wcslen(path) - cut), path,
                        form->kinds[kind].extension);
}

static bool may_replace(const wchar_t *path) {
    const NarrowText name = platform_system_from_wide(path);
    if (!g_file_test(name.get(), G_FILE_TEST_EXISTS)) {
        return true;
    }
    const Owned<WString> question(wstring_make(L"\"%ls\" is there already. Replace it?", path));
    return message_dialog_ask(wstring_text(question.get()));
}

// The path to write to, for what the dialog gave, which is taken over. The dialog does not change the name
// that stands there when another kind of files is chosen, and adds no extension: both is done here, and leads
// to another file than the one about which the dialog has asked. Null when a file that is there is to stay.
static WString *completed(const SaveForm *form, WString *typed, i32 proposed, i32 chosen) {
    Owned<WString> path(typed);
    const i32 named = save_kind_of(form, wstring_text(typed));
    if (named == form->kind_count || (chosen != proposed && named != chosen)) {
        path.reset(renamed(form, wstring_text(typed), chosen));
        if (!may_replace(wstring_text(path.get()))) {
            return nullptr;
        }
    }
    return path.release();
}

static void remember_save_folder(const wchar_t *path) {
    const NarrowText name = platform_system_from_wide(path);
    g_free(g_desktop->files.save_folder);
    g_desktop->files.save_folder = g_path_get_dirname(name.get());
}

WString *file_dialog_save(AppState *state, const SaveForm *form, const wchar_t *name, i32 *kind) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && form != nullptr && name != nullptr);
    assert(kind != nullptr && *kind >= 0 && *kind < form->kind_count);
    const i32 proposed = *kind;
    WString *path = nullptr;
    // A window that was closed meanwhile asks no more.
    while (path == nullptr && !g_desktop->commands.close_wanted) {
        g_autoptr(GtkFileChooserNative) dialog = create_save_dialog(state, form, name, proposed);
        const gint response = run_dialog(dialog);
        *kind = kind_on_show(GTK_FILE_CHOOSER(dialog));
        WString *typed = chosen(dialog, response);
        if (typed == nullptr) {
            return nullptr;
        }
        remember_save_folder(wstring_text(typed));
        path = completed(form, typed, proposed, *kind);
    }
    return path;
}
