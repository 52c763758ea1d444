// reader_state.h: what the reader of a process file knows while it reads. One read at a time; the
// record is reset at the start of each.
#pragma once
#include "process/kept_text.h"
#include "process/material_table.h"
#include "process/section_choice.h"

enum UnitMode {
    UNIT_UNSET = 0,
    UNIT_MICROMETRES,
    UNIT_NANOMETRES,
};

struct ReaderState {
    i32 line_number;  // of the line last read; 0 leaves the line out of messages
    bool fault_seen;
    i32 fault_count;  // faults that the console names
    UnitMode units;   // of the lengths that follow the file's unit
    i32 version;      // of the file; 0 until a settings line gives it
    bool strip_done;  // no photo waits for its strip
    bool gds_seen, location_seen, settings_seen, stop_seen;
    f32 max_bias, min_resolution, max_resolution;  // micrometres
    f32 deposited_thickness;                       // of all depositions and coatings, micrometres
    KeptText kept;                                 // the text so far
    const SectionChoice *section;                  // in the place of the file's; null: the file's
    MaterialTable *materials;                      // lives as long as the read
};

// The state of the one read at a time.
extern ReaderState g_reader;

// Resets everything and makes an empty material table.
void reader_state_start();

// Frees the material table; the other fields stay to be asked for.
void reader_state_end();
