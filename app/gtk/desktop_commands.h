// desktop_commands.h: what the user asks for, and the one rule about it: a command is through before the next
// one starts, and before the window goes, though its dialogs keep the main loop running. Main thread.
#pragma once
#include "app/frontend.h"

struct CommandRule {
    bool under_way;                         // a command is
    bool close_wanted;                      // while a command is under way
    bool ended;                             // the main loop is about to end
    WString *named_files[FILE_KIND_COUNT];  // for the command under way; null: the user is asked
};

// A command of the menu.
void desktop_command(AppState *state, MenuCommand command);

// The same by its key, which is never greyed: when the command cannot be done now, a note on the console says
// why.
void desktop_command_by_key(AppState *state, MenuCommand command);

// A PictureCommand of the picture's menu.
void desktop_picture_command(AppState *state, i32 command);

// Whether a command may start.
bool desktop_is_free();

// Shows the next (direction > 0) or previous picture.
void desktop_browse(AppState *state, i32 direction);

// Shows the last (direction > 0) or first picture.
void desktop_browse_to_end(AppState *state, i32 direction);

// Whether files can be taken now: no command is under way, and no run.
bool desktop_accepts_files(const AppState *state);

// Loads a layout and, when that succeeds, runs a process file, as the menu's commands do but without asking
// for the files. Returns at once; it is done when the main loop is idle.
//   layout_path, process_path   names as the system has them; null for none
void desktop_open_later(AppState *state, const char *layout_path, const char *process_path);

// Shows a message box when the main loop is idle, unless a command is under way then.
//   text   lives as long as the program
void desktop_message_later(const wchar_t *text);

// For choose_file of the front end: the file that desktop_open_later has named; a new string, or null when
// the user has to be asked.
WString *desktop_take_named_file(FileKind kind);

// The worker has told the end of its run.
void desktop_run_done(AppState *state);

// Ends the main loop and the run data: at once, after the command under way (whose dialog is cancelled), or
// after the run, whose step under way is finished.
void desktop_close(AppState *state);
