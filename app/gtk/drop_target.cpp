#include "app/gtk/drop_target.h"

#include "app/gtk/desktop_commands.h"
#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"

// The first file of each kind, as the system names it, freed with g_free; null for none.
struct DroppedFiles {
    char *layout_path;
    char *process_path;
};

// Whether the name ends in the extension of that kind, whatever its case.
static bool is_of_kind(const char *path, FileKind kind) {
    char *extension = gtk_text_from_wide(file_dialog_texts(kind).extension);
    const char *dot = g_strrstr(path, ".");
    const bool matches = dot != nullptr && g_ascii_strcasecmp(dot + 1, extension) == 0;
    g_free(extension);
    return matches;
}

// Keeps the path or frees it.
static void add_file(DroppedFiles *files, char *path) {
    if (files->layout_path == nullptr && is_of_kind(path, FILE_LAYOUT)) {
        files->layout_path = path;
    } else if (files->process_path == nullptr && is_of_kind(path, FILE_PROCESS)) {
        files->process_path = path;
    } else {
        g_free(path);
    }
}

static DroppedFiles dropped_files(GtkSelectionData *data) {
    DroppedFiles files = {};
    gchar **uris = gtk_selection_data_get_uris(data);
    for (gchar **uri = uris; uri != nullptr && *uri != nullptr; ++uri) {
        char *path = g_filename_from_uri(*uri, nullptr, nullptr);  // null when it is not on this machine
        if (path != nullptr) {
            add_file(&files, path);
        }
    }
    g_strfreev(uris);
    return files;
}

static bool can_open(const AppState *state, const DroppedFiles *files) {
    if (!desktop_accepts_files(state)) {
        return false;
    }
    return files->layout_path != nullptr || (files->process_path != nullptr && state->layout != nullptr);
}

// What to tell about a drop that is of no use, though files can be taken; a new string.
static WString *useless_reason(const DroppedFiles *files) {
    if (files->process_path != nullptr) {
        return wstring_copy(
            L"A process file needs a layout. Load the layout first, or drop both files together.");
    }
    return wstring_copy(
        L"Quarn opens layouts (.gds) and process files (.txt). Nothing else can be dropped here.");
}

// The source of the drag waits for the answer, so the files are opened after it.
static void on_drop(GtkWidget *, GdkDragContext *context, gint, gint, GtkSelectionData *data, guint,
                    guint time, gpointer user_data) {
    auto *state = static_cast<AppState *>(user_data);
    const DroppedFiles files = dropped_files(data);
    const bool accepted = can_open(state, &files);
    gtk_drag_finish(context, accepted ? TRUE : FALSE, FALSE, time);
    if (accepted) {
        desktop_open_later(state, files.layout_path, files.process_path);
    } else if (desktop_accepts_files(state)) {
        desktop_message_later(useless_reason(&files));
    }
    g_free(files.layout_path);
    g_free(files.process_path);
}

// Asks the source for the names of its files, which then arrive in on_drop.
static gboolean on_release(GtkWidget *widget, GdkDragContext *context, gint, gint, guint time, gpointer) {
    GdkAtom target = gtk_drag_dest_find_target(widget, context, nullptr);
    if (target == GDK_NONE) {
        return FALSE;
    }
    gtk_drag_get_data(widget, context, target, time);
    return TRUE;
}

void drop_target_create(AppState *state, GtkWidget *window) {
    auto flags = static_cast<GtkDestDefaults>(GTK_DEST_DEFAULT_MOTION | GTK_DEST_DEFAULT_HIGHLIGHT);
    gtk_drag_dest_set(window, flags, nullptr, 0, GDK_ACTION_COPY);
    gtk_drag_dest_add_uri_targets(window);
    g_signal_connect(window, "drag-drop", G_CALLBACK(on_release), nullptr);
    g_signal_connect(window, "drag-data-received", G_CALLBACK(on_drop), state);
}
