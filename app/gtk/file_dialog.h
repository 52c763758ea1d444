// file_dialog.h: asks for a file or a folder. Main thread.
#pragma once
#include "app/frontend.h"
#include "app/save_form.h"

struct OpenDialog;

struct FileDialogs {
    OpenDialog *open;   // on show; null: none
    char *save_folder;  // where a file was saved last, the same way; null before
    char *last_folder;  // as the system names it, freed with g_free; null until the first dialog
};

// Lets the main loop run until the user has chosen an existing file, starting in the folder of the file that
// was used last, or else in the current one. A new string; null when cancelled.
WString *file_dialog_choose(AppState *state, FileKind kind);

// The same for a folder, existing or made in the dialog, starting at what there is of the way to `failed`.
WString *folder_dialog_choose(AppState *state, const wchar_t *failed);

// Asks where a file is to be saved, a SaveDialog (app/save_form.h), starting in the folder of the one that
// was saved last, or else as file_dialog_choose. A name without an extension of the form gets that of the
// kind chosen.
WString *file_dialog_save(AppState *state, const SaveForm *form, const wchar_t *name, i32 *kind);

// Cancels the dialog on show, if any.
void file_dialog_cancel();

// Where the next dialog starts: the folder of this file.
void file_dialog_remember_folder(const wchar_t *path);
