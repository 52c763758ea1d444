// dialog_driver.h: the dialogs and message boxes of the program under test, used as a person uses them.
#pragma once
#include <windows.h>

#include <functional>
#include <string>

#include "platform/base.h"

// Waits for the file dialog with that title. Null when it does not come.
HWND file_dialog_wait(const wchar_t *title);

// What stands in the field for a name, UTF-8.
std::string file_dialog_name(HWND dialog);

// Types a path into the dialog and presses OK; does not wait.
void file_dialog_type(HWND dialog, const std::wstring &path);

// The same, which waits until the dialog is gone.
void file_dialog_accept(HWND dialog, const std::wstring &path);
// Presses Cancel and waits until the dialog is gone.
void file_dialog_cancel(HWND dialog);

// What the list of file types shows, UTF-8.
std::string file_dialog_filter(HWND dialog);

// The dialog that asks for another folder; null while there is none.
HWND folder_dialog_find();

// Cancels that dialog should it come up before the condition holds.
void folder_dialog_cancel(const std::function<bool()> &condition);

struct MessageBoxSeen {
    HWND window, owner;
    std::string caption, text;  // UTF-8
    i32 button_count;
};

// Waits for a message box of the program. `window` is null when none comes.
MessageBoxSeen message_box_wait(i32 seconds = 40);
// At once.
bool message_box_is_up();

// Presses OK and waits until the box is gone.
void message_box_press_ok(const MessageBoxSeen &box);
