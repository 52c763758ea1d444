// The desktop program, one of whose allocations fails: QUARN_TEST_TRIP names how many come before it. With
// QUARN_TEST_USER set it has a user inside: whatever comes of the files of the command line, the pictures are
// saved, message boxes are taken note of, dialogs are cancelled, and the window is closed. What this user has
// seen goes to standard output.
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/gtk/desktop.h"
#include "platform/memory.h"
#include "tests/desktop/memory_trips.h"

static constexpr guint GLANCE_MS = 5;

struct User {
    GtkWidget *console, *save;  // of the main window; null before it is there
    bool saving, closed;
};

static void look_at(GtkWidget *widget, gpointer user) {
    auto *parts = static_cast<User *>(user);
    if (GTK_IS_TEXT_VIEW(widget)) {
        parts->console = widget;
    } else if (GTK_IS_MENU_ITEM(widget) &&
               std::strcmp(gtk_menu_item_get_label(GTK_MENU_ITEM(widget)), "_Save images") == 0) {
        parts->save = widget;
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), look_at, user);
    }
}

static char *console_text(const User *user) {
    GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(user->console));
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    return gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
}

static void answer_box(GtkWidget *box) {
    g_autofree char *text = nullptr;
    g_object_get(box, "text", &text, nullptr);
    std::printf("box: %s\n", text);
    std::fflush(stdout);
    gtk_dialog_response(GTK_DIALOG(box), GTK_RESPONSE_OK);
}

// Whether a dialog was there.
static bool answer_dialogs(GList *windows) {
    for (GList *at = windows; at != nullptr; at = at->next) {
        auto *window = static_cast<GtkWidget *>(at->data);
        if (!GTK_IS_DIALOG(window) || !gtk_widget_get_visible(window)) {
            continue;
        }
        if (GTK_IS_MESSAGE_DIALOG(window)) {
            answer_box(window);
        } else {
            std::printf("dialog: %s\n", gtk_window_get_title(GTK_WINDOW(window)));
            gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_CANCEL);
        }
        return true;
    }
    return false;
}

// What the console shows when there is nothing to come from what was asked for.
static bool is_through(const User *user, const char *text) {
    if (user->saving) {
        return std::strstr(text, "\"Save images\" command") != nullptr && gtk_widget_is_sensitive(user->save);
    }
    return std::strstr(text, "Use left and right arrows") != nullptr ||
           std::strstr(text, "Run process canceled") != nullptr ||
           std::strstr(text, "failed with error") != nullptr;
}

static void go_on(User *user, GtkWidget *window) {
    g_autofree char *text = console_text(user);
    if (!is_through(user, text)) {
        return;
    }
    if (!user->saving && gtk_widget_is_sensitive(user->save)) {
        user->saving = true;
        gtk_menu_item_activate(GTK_MENU_ITEM(user->save));
        return;
    }
    user->closed = true;
    std::fputs(text, stdout);
    gtk_window_close(GTK_WINDOW(window));
}

static gboolean glance(gpointer data) {
    auto *user = static_cast<User *>(data);
    g_autoptr(GList) windows = gtk_window_list_toplevels();
    if (answer_dialogs(windows) || user->closed) {
        return G_SOURCE_CONTINUE;
    }
    for (GList *at = windows; at != nullptr; at = at->next) {
        auto *window = static_cast<GtkWidget *>(at->data);
        user->console = nullptr;
        look_at(window, user);
        if (user->console != nullptr && gtk_widget_get_mapped(window)) {
            go_on(user, window);
            break;
        }
    }
    return G_SOURCE_CONTINUE;
}

int main(int argc, char **argv) {
    const i64 trip = trip_environment("QUARN_TEST_TRIP", TRIP_FAR_AWAY);
    User user = {};
    if (std::getenv("QUARN_TEST_USER") != nullptr) {
        g_timeout_add(GLANCE_MS, glance, &user);
    }
    memory_trip_after(trip);
    const i32 result = desktop_main(argc, argv);
    if (trip == TRIP_FAR_AWAY) {
        std::fputs(trip_allocations_line(trip).c_str(), stdout);
    }
    return result;
}
