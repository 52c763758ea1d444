// frontend.h: what the commands and the worker ask of a window. Each front end defines these
// functions, and a program links exactly one front end. Console, message boxes and diagnostics are
// sinks of log/log.h.
#pragma once
#include "app/app_state.h"

// The kinds of files that a user is asked for.
enum FileKind {
    FILE_LAYOUT,   // "GDS Files (*.gds)", title "Open GDS file", default extension "gds"
    FILE_PROCESS,  // "Text Files (*.txt)", title "Open process file", default extension "txt"
    FILE_KIND_COUNT,
};

// Fields of the status bar. The fields 0 and 2 are captions that the front end sets once.
enum StatusPart {
    STATUS_LAYOUT = 1,   // path of the loaded layout
    STATUS_PROCESS = 3,  // path of a process file
};

// Asks for an existing file. A new string, freed with wstring_free; null when cancelled.
// User-interface thread.
WString *frontend_choose_file(AppState *state, FileKind kind);

// Asks for a folder to save into, after the one that was to be taken could not be. A new string; null when
// cancelled, or where nobody can be asked. User-interface thread.
//   failed   the folder that could not be written
WString *frontend_choose_folder(AppState *state, const wchar_t *failed);

// Brings what the user-interface thread has changed (console, menu) to the screen before it returns, since
// a long piece of work follows on that thread. No command starts meanwhile. User-interface thread.
void frontend_paint_now(AppState *state);

void frontend_set_title(AppState *state, const wchar_t *title);  // any thread; null gives an empty title
void frontend_set_status(AppState *state, StatusPart part, const wchar_t *text);  // user-interface thread
void frontend_menu_enable(AppState *state, MenuCommand command, bool enabled);    // any thread
void frontend_menu_redraw(AppState *state);                                       // any thread

// Repaints the render area before it returns. Called by the worker while it holds no OpenGL context.
void frontend_repaint(AppState *state);

// Tells the user-interface thread that the run is over; that thread calls run_done. Called by the
// worker as its last act, while it holds no OpenGL context; returns when run_done has returned.
void frontend_run_done(AppState *state);
