// win32_desktop.h: all that the window's front end keeps while the program runs, in one record. The program's
// entry makes it, and window procedures reach it through g_desktop.
#pragma once
#include "app/win32/console_window.h"
#include "app/win32/file_dialog.h"
#include "app/win32/main_window.h"
#include "app/win32/message_box.h"
#include "app/win32/open_files.h"
#include "app/win32/paint_gate.h"
#include "app/win32/shown_picture.h"
#include "app/win32/status_bar.h"
#include "app/win32/window_commands.h"
#include "app/win32/window_scale.h"

// All zero is the record at start.
struct Win32Desktop {
    WindowScale scale;
    MainWindow main;
    ConsoleWindow console;
    StatusBar status;
    CommandRule commands;
    OpenFiles files;
    FileDialogs dialogs;
    MessageBoxes messages;
    ShownPicture picture;
    PaintGate gate;
};

// The one there is, from before the first call of this folder to after the last.
extern Win32Desktop *g_desktop;
