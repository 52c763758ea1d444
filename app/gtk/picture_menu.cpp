#include "app/gtk/picture_menu.h"

#include <cassert>
#include <utility>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/picture_clipboard.h"
#include "app/gtk/window_settings.h"
#include "app/picture_commands.h"
#include "platform/thread_role.h"

void picture_menu_load(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    const WideText fine = window_setting_read(state, PICTURE_SETTINGS_SECTION, PICTURE_FINE_KEY);
    const WideText scale = window_setting_read(state, PICTURE_SETTINGS_SECTION, PICTURE_SCALE_KEY);
    picture_wish_remember(state, fine.get(), scale.get());
}

static void copy_picture(const AppState *state) {
    Owned<PixelImage> picture(picture_to_copy(state));
    if (picture == nullptr || !picture_clipboard_set(std::move(picture))) {
        picture_copy_failed();
    }
}

void picture_menu_command(AppState *state, i32 command) {
    assert(thread_role_fits(THREAD_WINDOW) && picture_command_exists(command));
    if (!picture_command_enabled(state, command)) {
        return;  // the picture has gone since the menu was opened
    }
    if (command == PICTURE_COPY) {
        copy_picture(state);
    } else if (command == PICTURE_SAVE) {
        picture_save_command(state, file_dialog_save);
    } else {
        const wchar_t *value = nullptr;
        const wchar_t *key = picture_command_choose(state, command, &value);
        window_setting_write(state, PICTURE_SETTINGS_SECTION, key, value);
    }
}

static gboolean do_command(gpointer command) {
    desktop_picture_command(g_desktop->state, GPOINTER_TO_INT(command));
    return G_SOURCE_REMOVE;
}

// The command comes from the main loop, as from the menu bar.
static void on_activate(GtkMenuItem *, gpointer command) {
    g_idle_add_full(G_PRIORITY_DEFAULT, do_command, command, nullptr);
}

// An item for each command: one that chooses has a mark, which is round for one of several.
static GtkWidget *create_item(const AppState *state, const PictureMenuItem *item) {
    const NarrowText label = gtk_text_from_wide(item->label);
    g_strdelimit(label.get(), "&", '_');  // what stands before the mnemonic
    const bool chooses = item->command != PICTURE_COPY && item->command != PICTURE_SAVE;
    GtkWidget *widget = chooses ? gtk_check_menu_item_new_with_mnemonic(label.get())
                                : gtk_menu_item_new_with_mnemonic(label.get());
    if (chooses) {
        auto *check = GTK_CHECK_MENU_ITEM(widget);
        gtk_check_menu_item_set_draw_as_radio(check, item->command != PICTURE_FINE ? TRUE : FALSE);
        gtk_check_menu_item_set_active(check, picture_command_checked(state, item->command) ? TRUE : FALSE);
    }
    gtk_widget_set_sensitive(widget, picture_command_enabled(state, item->command) ? TRUE : FALSE);
    // Last, since setting the mark counts as an activation.
    g_signal_connect(widget, "activate", G_CALLBACK(on_activate), GINT_TO_POINTER(item->command));
    return widget;
}

static GtkWidget *create_scales(const AppState *state) {
    GtkWidget *menu = gtk_menu_new();
    for (const PictureMenuItem &item : PICTURE_SCALE_ITEMS) {
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), create_item(state, &item));
    }
    const NarrowText label = gtk_text_from_wide(PICTURE_SCALE_LABEL);
    g_strdelimit(label.get(), "&", '_');
    GtkWidget *opener = gtk_menu_item_new_with_mnemonic(label.get());
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(opener), menu);
    return opener;
}

static void forget_menu(GtkWidget *, gpointer) {
    g_desktop->picture_menu.menu = nullptr;
}

// A new one each time, which shows what holds. It stays until the next one, since its items are told after it
// has closed.
static GtkMenu *create_menu(const AppState *state) {
    PictureMenu *kept = &g_desktop->picture_menu;
    if (kept->menu != nullptr) {
        gtk_widget_destroy(kept->menu);
    }
    kept->menu = gtk_menu_new();
    g_signal_connect(kept->menu, "destroy", G_CALLBACK(forget_menu), nullptr);
    for (const PictureMenuItem &item : PICTURE_MENU_ITEMS) {
        gtk_menu_shell_append(GTK_MENU_SHELL(kept->menu), create_item(state, &item));
    }
    gtk_menu_shell_append(GTK_MENU_SHELL(kept->menu), create_scales(state));
    gtk_menu_attach_to_widget(GTK_MENU(kept->menu), g_desktop->area.widget, nullptr);
    gtk_widget_show_all(kept->menu);
    return GTK_MENU(kept->menu);
}

// A click takes the focus from the console, so that the keys for the menu reach the picture.
static gboolean on_button(GtkWidget *area, GdkEvent *event, gpointer state) {
    gtk_widget_grab_focus(area);
    if (!gdk_event_triggers_context_menu(event) || !desktop_is_free()) {
        return FALSE;
    }
    gtk_menu_popup_at_pointer(create_menu(static_cast<const AppState *>(state)), event);
    return TRUE;
}

// It comes here from every part that has no menu of its own.
static gboolean on_menu_key(GtkWidget *, gpointer state) {
    if (desktop_is_free()) {
        gtk_menu_popup_at_widget(create_menu(static_cast<const AppState *>(state)), g_desktop->area.widget,
                                 GDK_GRAVITY_CENTER, GDK_GRAVITY_CENTER, nullptr);
    }
    return TRUE;
}

void picture_menu_connect(AppState *state, GtkWidget *window, GtkWidget *area) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && window != nullptr && area != nullptr);
    gtk_widget_set_can_focus(area, TRUE);
    gtk_widget_grab_focus(area);  // the console would have it at first, whose menu is another one
    gtk_widget_add_events(area, GDK_BUTTON_PRESS_MASK);
    g_signal_connect(area, "button-press-event", G_CALLBACK(on_button), state);
    g_signal_connect(window, "popup-menu", G_CALLBACK(on_menu_key), state);
}
