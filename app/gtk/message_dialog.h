// message_dialog.h: message boxes.
#pragma once
#include <gtk/gtk.h>

struct MessageDialogs {
    GtkWidget *on_show;  // the innermost message box; null: none
};

// Sink of message boxes (log/log.h): shows the text and lets the main loop run until the user has taken note.
// Any thread.
void message_dialog_show(const wchar_t *text);

// Asks a question that OK answers with yes. Main thread.
bool message_dialog_ask(const wchar_t *text);

// Closes the box on show, if any. Main thread.
void message_dialog_cancel();

// Shows what the program is. Returns at once; the box goes when the user has read it. Main thread.
void about_dialog_show();
