// export_commands.h: "Export..." and "Open as page" in the menu of the picture. User-interface thread.
#pragma once
#include "app/app_state.h"
#include "app/save_form.h"
#include "export/export_formats.h"

extern const wchar_t *const EXPORT_SAVE_TITLE;

// What the dialog of "Export..." offers; ExportFormat is the index of the kinds, which the form points to.
SaveForm export_save_form(SaveKind kinds[EXPORT_FORMAT_COUNT]);

// Whether there is something to export: a picture on show, of a run that has ended, and no other export.
bool export_possible(const AppState *state);

// Writes the step whose picture is on show, under a name that the user is asked for; its extension tells the
// format. The worker does it; export_done tells how it went.
void export_command(AppState *state, SaveDialog ask);

// Writes the run as a page beside its pictures (a folder as "Save images" makes it, unless that command has
// made one for this run) and opens it with the program that the system has for pages. Where the folder cannot
// be written another one is asked for. The worker writes; export_done opens, or tells what went wrong.
void page_command(AppState *state);

// What becomes of a job that the worker has ended; run_done calls it. Returns as run_done does.
i32 export_done(AppState *state);
