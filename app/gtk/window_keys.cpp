#include "app/gtk/window_keys.h"

#include <cassert>

#include "app/gtk/desktop_commands.h"
#include "app/gtk/gtk_desktop.h"
#include "app/gtk/menu_bar.h"
#include "app/gtk/shortcuts.h"
#include "platform/thread_role.h"

static constexpr auto NO_MODIFIER = static_cast<GdkModifierType>(0);

// Returns false when the key does not browse.
static bool browse(AppState *state, guint key) {
    switch (key) {
        case GDK_KEY_Left:
        case GDK_KEY_KP_Left: desktop_browse(state, -1); return true;
        case GDK_KEY_Right:
        case GDK_KEY_KP_Right: desktop_browse(state, 1); return true;
        case GDK_KEY_Home:
        case GDK_KEY_KP_Home: desktop_browse_to_end(state, -1); return true;
        case GDK_KEY_End:
        case GDK_KEY_KP_End: desktop_browse_to_end(state, 1); return true;
        default: return false;
    }
}

// Comes before the part that has the focus, so that the arrows browse wherever that is; with Shift, Ctrl or
// Alt they are left to it. An open menu bar gets its keys even earlier.
static gboolean on_key(GtkWidget *, GdkEventKey *event, gpointer state) {
    if ((event->state & gtk_accelerator_get_default_mod_mask()) != 0) {
        return FALSE;
    }
    if (event->keyval == GDK_KEY_F10) {
        menu_bar_open();
        return TRUE;
    }
    return browse(static_cast<AppState *>(state), event->keyval) ? TRUE : FALSE;
}

static gboolean run_later(gpointer shortcut) {
    desktop_command_by_key(g_desktop->state, static_cast<const Shortcut *>(shortcut)->command);
    return G_SOURCE_REMOVE;
}

// The command comes from the main loop, as from the menu: it may wait for a dialog, which wants keys itself.
static gboolean on_shortcut(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer shortcut) {
    g_idle_add_full(G_PRIORITY_DEFAULT, run_later, shortcut, nullptr);
    return TRUE;
}

static gboolean on_quit(GtkAccelGroup *, GObject *, guint, GdkModifierType, gpointer state) {
    desktop_close(static_cast<AppState *>(state));
    return TRUE;
}

static gboolean on_full_screen(GtkAccelGroup *, GObject *window, guint, GdkModifierType, gpointer) {
    if (g_desktop->keys.full_screen) {
        gtk_window_unfullscreen(GTK_WINDOW(window));
    } else {
        gtk_window_fullscreen(GTK_WINDOW(window));
    }
    return TRUE;
}

// The window manager may change it too.
static gboolean on_window_state(GtkWidget *, GdkEventWindowState *event, gpointer) {
    g_desktop->keys.full_screen = (event->new_window_state & GDK_WINDOW_STATE_FULLSCREEN) != 0;
    return FALSE;
}

static void connect_key(GtkAccelGroup *group, guint key, GdkModifierType modifiers, GCallback function,
                        const void *data) {
    GClosure *closure = g_cclosure_new(function, const_cast<void *>(data), nullptr);
    gtk_accel_group_connect(group, key, modifiers, static_cast<GtkAccelFlags>(0), closure);
}

void window_keys_connect(AppState *state, GtkWidget *window) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && window != nullptr);
    // The library finds the keys of a group on keyboards of other alphabets too.
    g_autoptr(GtkAccelGroup) group = gtk_accel_group_new();
    for (const Shortcut &shortcut : SHORTCUTS) {
        connect_key(group, shortcut.key, shortcut.modifiers, G_CALLBACK(on_shortcut), &shortcut);
    }
    connect_key(group, GDK_KEY_q, GDK_CONTROL_MASK, G_CALLBACK(on_quit), state);
    connect_key(group, GDK_KEY_F11, NO_MODIFIER, G_CALLBACK(on_full_screen), nullptr);
    gtk_window_add_accel_group(GTK_WINDOW(window), group);
    g_signal_connect(window, "key-press-event", G_CALLBACK(on_key), state);
    g_signal_connect(window, "window-state-event", G_CALLBACK(on_window_state), nullptr);
}
