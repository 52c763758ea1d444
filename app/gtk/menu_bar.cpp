#include "app/gtk/menu_bar.h"

#include <cassert>

#include "app/gtk/desktop_commands.h"
#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/shortcuts.h"
#include "platform/thread_role.h"

static gboolean do_command(gpointer item) {
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        if (g_desktop->menu.items[i] == item && gtk_widget_is_sensitive(g_desktop->menu.items[i])) {
            desktop_command(g_desktop->state, MENU_ITEMS[i].command);
        }
    }
    return G_SOURCE_REMOVE;
}

// The command comes from the main loop, since it may wait for a dialog: a screen reader that has activated
// the item gets its answer first, and so can read that dialog.
static void on_activate(GtkMenuItem *item, gpointer) {
    g_idle_add_full(G_PRIORITY_DEFAULT, do_command, item, nullptr);
}

static bool is_inside(GtkWidget *item, const GdkEventButton *event) {
    return event->x >= 0.0 && event->x < gtk_widget_get_allocated_width(item) && event->y >= 0.0 &&
           event->y < gtk_widget_get_allocated_height(item);
}

// A short click on an item without a menu below it would only select it, so clicks are taken here, as those
// on a button are: at the release, if that is still on the item.
static gboolean on_click(GtkWidget *item, GdkEventButton *event, gpointer) {
    if (event->button != GDK_BUTTON_PRIMARY) {
        return FALSE;
    }
    if (event->type == GDK_BUTTON_RELEASE && is_inside(item, event)) {
        gtk_menu_shell_activate_item(GTK_MENU_SHELL(g_desktop->menu.bar), item, TRUE);
    }
    return TRUE;
}

static GtkWidget *create_item(const MenuItem *command) {
    const NarrowText label = gtk_text_from_wide(command->label);
    g_strdelimit(label.get(), "&", '_');  // what stands before the mnemonic
    GtkWidget *item = gtk_menu_item_new_with_mnemonic(label.get());
    g_autofree char *key = shortcut_label(command->command);
    gtk_widget_set_tooltip_text(item, key);  // null: none
    g_signal_connect(item, "activate", G_CALLBACK(on_activate), nullptr);
    g_signal_connect(item, "button-press-event", G_CALLBACK(on_click), nullptr);
    g_signal_connect(item, "button-release-event", G_CALLBACK(on_click), nullptr);
    return item;
}

GtkWidget *menu_bar_create() {
    assert(thread_role_fits(THREAD_WINDOW));
    MenuBar *menu = &g_desktop->menu;
    menu->bar = gtk_menu_bar_new();
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        menu->items[i] = create_item(&MENU_ITEMS[i]);
        gtk_menu_shell_append(GTK_MENU_SHELL(menu->bar), menu->items[i]);
    }
    return menu->bar;
}

void menu_bar_enable(MenuCommand command, bool enabled) {
    assert(thread_role_fits(THREAD_WINDOW) && g_desktop->menu.bar != nullptr);
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        if (MENU_ITEMS[i].command == command) {
            gtk_widget_set_sensitive(g_desktop->menu.items[i], enabled ? TRUE : FALSE);
        }
    }
}

// The library's own key for this tries the first command only, which is greyed at start.
void menu_bar_open() {
    assert(thread_role_fits(THREAD_WINDOW));
    gtk_menu_shell_select_first(GTK_MENU_SHELL(g_desktop->menu.bar), TRUE);
}
