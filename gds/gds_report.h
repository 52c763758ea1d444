// gds_report.h: what a person needs to mend a layout file that does not load, line by line to
// diagnostic_write.
#pragma once
#include "gds/gds_database.h"
#include "gds/gds_gzip.h"

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

// What is known of the units at the end of a file.
struct GdsUnitsPlace {
    i64 offset;  // of the last UNITS record, or -1
    bool used;   // false when it holds less data than two numbers
};

// A file that fails before a HEADER record, with which every layout begins.
void gds_report_no_header(const wchar_t *path);

// The error in words and its place.
void gds_report_error(const GdsPlace *place, i32 error);

// Every name that a reference has and no cell, with the cell of the reference, and every cell with references
// without a name; after 20 lines only how many more there are.
void gds_report_unbound(const wchar_t *path, const GdsDatabase *database);

// A layout without a positive database unit: what is there in the place of one.
//   unit   micrometres per database unit, as far as known
void gds_report_units(const wchar_t *path, const GdsUnitsPlace *place, f64 unit);

// A file that ends without ENDLIB, perhaps inside a record (`cut`), has been read up to there.
void gds_report_early_end(const GdsPlace *place, bool cut);

// A file that is compressed with gzip and damaged or cut off.
void gds_report_packed(const wchar_t *path, const GdsGzipCheck *check);

// What the byte offsets told before mean of a file that is compressed with gzip.
void gds_report_unpacked(const wchar_t *path);

// A file that is compressed with gzip has not been looked at to its end.
void gds_report_unchecked(const wchar_t *path);

// The system refused: to open the file, or to read on.
void gds_report_system(const wchar_t *path, const wchar_t *what, const wchar_t *reason);
