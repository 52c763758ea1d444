// menu_bar.h: the five commands of the menu bar. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/window_texts.h"

struct MenuBar {
    GtkWidget *bar;
    GtkWidget *items[MENU_ITEM_COUNT];  // in the order of MENU_ITEMS
};

// The menu bar with every command of the menu. The widget belongs to the container that it is put into.
GtkWidget *menu_bar_create();

// Enables a command or greys it.
void menu_bar_enable(MenuCommand command, bool enabled);

// Gives the keys to the menu bar, until the user has chosen a command or left it: for the key that is
// customary for it.
void menu_bar_open();
