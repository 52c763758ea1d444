// frontend.h: what the application asks of a front end, as a record of functions that is set once, at the
// start. Calls upward are functions in a record rather than functions that a program links, so that several
// front ends and those of the tests live in one build, and so that the texts (log/log.h), which have sinks of
// the same kind, and the commands find their way upward in one manner.
#pragma once
#include "app/app_state.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/memory.h"

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

// No function is null but where it says so.
struct Frontend {
    // Asks for an existing file. A new string, freed with wstring_free; null when cancelled.
    // User-interface thread.
    WString *(*choose_file)(AppState *state, FileKind kind);

    // Asks for a folder to save into, after the one that was to be taken could not be. A new string, freed
    // with wstring_free; null when cancelled, or where nobody can be asked. User-interface thread.
    //   failed   the folder that could not be written
    WString *(*choose_folder)(AppState *state, const wchar_t *failed);

    // Brings what the user-interface thread has changed (console, menu) to the screen before it returns,
    // since a long piece of work follows on that thread. No command starts meanwhile. User-interface thread.
    void (*paint_now)(AppState *state);

    // The title of the window. Any thread; null gives an empty title.
    void (*set_title)(AppState *state, const wchar_t *title);

    // The text of a field of the status bar. User-interface thread.
    void (*set_status)(AppState *state, StatusPart part, const wchar_t *text);

    // Enables or greys a command of the menu; menu_redraw follows. Any thread.
    void (*menu_enable)(AppState *state, MenuCommand command, bool enabled);

    // Shows the menu as menu_enable has left it. Any thread.
    void (*menu_redraw)(AppState *state);

    // Repaints the render area before it returns. Called by the worker while it holds no OpenGL context.
    void (*repaint)(AppState *state);

    // Tells the user-interface thread that the run is over; that thread calls run_done. Called by the
    // worker as its last act, while it holds no OpenGL context; returns when run_done has returned.
    void (*run_done)(AppState *state);

    // Sinks of the texts (log/log.h). Any thread.
    ConsoleSink console_append;
    ConsoleClearSink console_clear;
    MessageSink message_show;
    DiagnosticSink diagnostic;        // null: to the log file, and to the console after each command
    DiagnosticSink diagnostic_early;  // the same until the log file is there; null: as `diagnostic`

    ProgressSink progress;  // what long work is at (log/progress.h); null: not shown

    // Tells of lack of memory, after which the program ends (platform/memory.h). Any thread; null: through
    // message_show.
    MemoryFailureHook memory_failed;
};
