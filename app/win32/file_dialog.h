// file_dialog.h: the dialogs that ask for an existing file and for a folder. User-interface thread.
#pragma once
#include <windows.h>

#include "app/frontend.h"
#include "app/save_form.h"

struct FileDialogs {
    WString *last_folder;  // owned; null until the first file
    WString *save_folder;  // where a file was saved last; owned; null before
};

// Shows the dialog on top of its owner, in the folder that file_dialog_remember_folder was told of last.
// A new string, freed with wstring_free; null when cancelled.
WString *file_dialog_open(HWND owner, FileKind kind);

// Asks where a file is to be saved, as a SaveDialog (app/save_form.h) does, in the folder of the one that was
// saved last, or else as file_dialog_open; the current folder stays as it is.
WString *file_dialog_save(HWND owner, const SaveForm *form, const wchar_t *name, i32 *kind);

// Where the next dialog starts: the folder of this file.
void file_dialog_remember_folder(const wchar_t *path);

// Asks for a folder to save into; COM must have been started on this thread. A new string; null when
// cancelled.
//   failed   the folder that could not be written; the dialog starts in the one that it was to lie in
WString *file_dialog_choose_folder(HWND owner, const wchar_t *failed);

// Forgets the folders of the last files.
void file_dialog_free();
