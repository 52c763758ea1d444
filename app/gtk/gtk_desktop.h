// gtk_desktop.h: all that the window's front end keeps while the program runs, in one record. The program's
// entry makes it, and the window library's callbacks reach it through g_desktop.
#pragma once
#include "app/gtk/console_view.h"
#include "app/gtk/desktop_commands.h"
#include "app/gtk/divider.h"
#include "app/gtk/file_dialog.h"
#include "app/gtk/main_thread.h"
#include "app/gtk/main_window.h"
#include "app/gtk/memory_box.h"
#include "app/gtk/menu_bar.h"
#include "app/gtk/message_dialog.h"
#include "app/gtk/picture_menu.h"
#include "app/gtk/render_area.h"
#include "app/gtk/status_bar.h"
#include "app/gtk/window_keys.h"

// All zero is the record at start, but for what the parts' own records say.
struct GtkDesktop {
    AppState *state;  // null until there is one
    MainThread main_thread;
    MemoryBox memory_box;
    CommandRule commands;
    FileDialogs files;
    MessageDialogs messages;
    MainWindowParts parts;
    MenuBar menu;
    RenderArea area;
    PictureMenu picture_menu;
    Divider divider;
    ConsoleView console;
    StatusBar status;
    WindowKeys keys;
};

// The one there is; set before anything of this folder is called, and kept to the end of the program, since a
// worker that lacks memory may look for it at any time.
extern GtkDesktop *g_desktop;
