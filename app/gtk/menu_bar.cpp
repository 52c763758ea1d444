#include "app/gtk/menu_bar.h"

#include "app/gtk/desktop_commands.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/shortcuts.h"
#include "app/window_texts.h"

static GtkWidget *bar = nullptr;
static GtkWidget *items[MENU_ITEM_COUNT] = {};  // in the order of MENU_ITEMS

static AppState *app_state = nullptr;

static gboolean do_command(gpointer item) {
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        if (items[i] == item && gtk_widget_is_sensitive(items[i])) {
            desktop_command(app_state, MENU_ITEMS[i].command);
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
        gtk_menu_shell_activate_item(GTK_MENU_SHELL(bar), item, TRUE);
    }
    return TRUE;
}

// A label with "_" before the mnemonic, freed with g_free.
static char *mnemonic_label(const wchar_t *label) {
    char *text = gtk_text_from_wide(label);
    g_strdelimit(text, "&", '_');
    return text;
}

GtkWidget *menu_bar_create(AppState *state) {
    app_state = state;
    bar = gtk_menu_bar_new();
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        char *label = mnemonic_label(MENU_ITEMS[i].label);
        items[i] = gtk_menu_item_new_with_mnemonic(label);
        g_free(label);
        char *key = shortcut_label(MENU_ITEMS[i].command);
        gtk_widget_set_tooltip_text(items[i], key);  // null: none
        g_free(key);
        g_signal_connect(items[i], "activate", G_CALLBACK(on_activate), nullptr);
        g_signal_connect(items[i], "button-press-event", G_CALLBACK(on_click), nullptr);
        g_signal_connect(items[i], "button-release-event", G_CALLBACK(on_click), nullptr);
        gtk_menu_shell_append(GTK_MENU_SHELL(bar), items[i]);
    }
    return bar;
}

void menu_bar_enable(MenuCommand command, bool enabled) {
    for (i32 i = 0; i < MENU_ITEM_COUNT; ++i) {
        if (MENU_ITEMS[i].command == command) {
            gtk_widget_set_sensitive(items[i], enabled ? TRUE : FALSE);
        }
    }
}

// The library's own key for this tries the first command only, which is greyed at start.
void menu_bar_open() {
    gtk_menu_shell_select_first(GTK_MENU_SHELL(bar), TRUE);
}
