#include "app/gtk/drop_target.h"

#include <cassert>
#include <memory>
#include <utility>

#include "app/gtk/desktop_commands.h"
#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"
#include "platform/thread_role.h"

struct GFreed {
    void operator()(char *text) const { g_free(text); }
};

// A name as the system has it, owned; null for none.
using FileName = std::unique_ptr<char, GFreed>;

// The first file of each kind.
struct DroppedFiles {
    FileName layout_path, process_path;
};

// Whether the name ends in the extension of that kind, whatever its case.
static bool is_of_kind(const char *path, FileKind kind) {
    const NarrowText extension = gtk_text_from_wide(file_dialog_texts(kind).extension);
    const char *dot = g_strrstr(path, ".");
    return dot != nullptr && g_ascii_strcasecmp(dot + 1, extension.get()) == 0;
}

static void add_file(DroppedFiles *files, FileName path) {
    if (files->layout_path == nullptr && is_of_kind(path.get(), FILE_LAYOUT)) {
        files->layout_path = std::move(path);
    } else if (files->process_path == nullptr && is_of_kind(path.get(), FILE_PROCESS)) {
        files->process_path = std::move(path);
    }
}

static DroppedFiles dropped_files(GtkSelectionData *data) {
    DroppedFiles files = {};
    g_auto(GStrv) uris = gtk_selection_data_get_uris(data);
    for (gchar **uri = uris; uri != nullptr && *uri != nullptr; ++uri) {
        FileName path(g_filename_from_uri(*uri, nullptr, nullptr));  // null when it is not on this machine
        if (path != nullptr) {
            add_file(&files, std::move(path));
        }
    }
    return files;
}

static bool can_open(const AppState *state, const DroppedFiles *files) {
    if (!desktop_accepts_files(state)) {
        return false;
    }
    return files->layout_path != nullptr || (files->process_path != nullptr && state->layout != nullptr);
}

// What to tell about a drop that is of no use, though files can be taken.
static const wchar_t *useless_reason(const DroppedFiles *files) {
    return files->process_path != nullptr
               ? L"A process file needs a layout. Load the layout first, or drop both files together."
               : L"Quarn opens layouts (.gds) and process files (.txt). Nothing else can be dropped here.";
}

// The source of the drag waits for the answer, so the files are opened after it.
static void on_drop(GtkWidget *, GdkDragContext *context, gint, gint, GtkSelectionData *data, guint,
                    guint time, gpointer user_data) {
    auto *state = static_cast<AppState *>(user_data);
    const DroppedFiles files = dropped_files(data);
    const bool accepted = can_open(state, &files);
    gtk_drag_finish(context, accepted ? TRUE : FALSE, FALSE, time);
    if (accepted) {
        desktop_open_later(state, files.layout_path.get(), files.process_path.get());
    } else if (desktop_accepts_files(state)) {
        desktop_message_later(useless_reason(&files));
    }
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
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && window != nullptr);
    const auto flags = static_cast<GtkDestDefaults>(GTK_DEST_DEFAULT_MOTION | GTK_DEST_DEFAULT_HIGHLIGHT);
    gtk_drag_dest_set(window, flags, nullptr, 0, GDK_ACTION_COPY);
    gtk_drag_dest_add_uri_targets(window);
    g_signal_connect(window, "drag-drop", G_CALLBACK(on_release), nullptr);
    g_signal_connect(window, "drag-data-received", G_CALLBACK(on_drop), state);
}
