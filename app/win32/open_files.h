// open_files.h: files that are opened without asking for them: those of the command line, and those dropped
// on the window. User-interface thread.
#pragma once
#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <shellapi.h>

#include "app/frontend.h"

struct OpenFiles {
    WString *waiting[FILE_KIND_COUNT];  // until WM_APP_OPEN_FILES arrives; owned
    WString *named[FILE_KIND_COUNT];    // for the command under way; owned
};

// Sent to the main window by itself when files wait, so that whoever named them need not wait for the run.
inline constexpr UINT WM_APP_OPEN_FILES = WM_USER + 4;

// Loads a layout and, when that succeeds, runs a process file, as the menu's commands do but without asking
// for the files. Returns at once; it is done when WM_APP_OPEN_FILES arrives.
//   layout_path, process_path   null for none
void open_files_later(AppState *state, const wchar_t *layout_path, const wchar_t *process_path);

// For WM_APP_OPEN_FILES.
void open_files_now(AppState *state);

// For WM_DROPFILES: takes a layout (.gds), a process file (.txt), or one of each; tells why when it takes
// none.
void open_files_dropped(AppState *state, HDROP drop);

// The file that the command under way is to take; a new string, or null when the user has to be asked.
WString *open_files_take(FileKind kind);

// Frees the names of files that still wait.
void open_files_free();
