// gds_report.h: what a person needs to mend a layout file that does not load, line by line to
// diagnostic_write.
#pragma once
#include "gds/gds_database.h"

// Where reading stopped.
struct GdsPlace {
    const wchar_t *path;
    bool in_record;            // whether the four below are known
    i64 offset;                // of the record in the file, bytes
    i64 record_number;         // from 1
    u16 code;                  // record type x 256 + data type
    i32 length;                // record length as in the file
    bool in_structure;         // whether `structure` is meant
    const NString *structure;  // name of the structure being read; may be null
    i64 element_offset;        // of the record that opened the element, or -1
};

// A name fit for one line: no control characters, and a very long one cut; "" for none. A new text, freed
// with memory_free.
wchar_t *gds_shown_name(const NString *name);

// The error in words and its place.
void gds_report_error(const GdsPlace *place, i32 error);

// Every name that a reference has and no cell, with the cell of the reference; after 20 lines only how
// many more there are.
void gds_report_unbound(const wchar_t *path, const GdsDatabase *database);

// A file that ends without ENDLIB, perhaps inside a record (`cut`), has been read up to there.
void gds_report_early_end(const GdsPlace *place, bool cut);

// The system refused: to open the file, or to read on.
void gds_report_system(const wchar_t *path, const wchar_t *what, const wchar_t *reason);
