// gds_read.h: read a GDSII stream file into a GdsDatabase. Hostile bytes are safe.
#pragma once
#include <cstdio>
#include "gds/gds_database.h"

// Results of gds_read; 0 is success.
enum GdsError {
    GDS_INTERRUPTED = -1,  // gave up after an interrupt
    GDS_OK = 0,
    GDS_ERROR_OPEN = 1,           // the file cannot be opened, or the system fails to read on
    GDS_ERROR_PATH = 2,           // a PATH cannot be made into a polygon
    GDS_ERROR_UNITS = 3,          // no positive unit after reading
    GDS_ERROR_RECORD_LENGTH = 4,  // a record length below 4
    GDS_ERROR_BGNSTR = 5,         // inside a structure
    GDS_ERROR_ENDSTR = 6,         // outside a structure
    GDS_ERROR_BOUNDARY = 7,       // outside a structure or inside an open element; so the next six
    GDS_ERROR_PATH_PLACE = 8,
    GDS_ERROR_SREF = 9,
    GDS_ERROR_AREF = 10,
    GDS_ERROR_TEXT = 11,
    GDS_ERROR_NODE = 12,
    GDS_ERROR_BOX = 13,
    GDS_ERROR_ENDEL = 14,              // no element open, or outside a structure
    GDS_ERROR_SNAME = 15,              // outside SREF and AREF
    GDS_ERROR_COLROW = 16,             // outside AREF
    GDS_ERROR_PATHTYPE = 17,           // outside PATH
    GDS_ERROR_STRANS = 18,             // outside SREF, AREF and TEXT
    GDS_ERROR_ANGLE = 19,              // the same
    GDS_ERROR_MAG = 20,                // the same
    GDS_ERROR_XY = 21,                 // no element open
    GDS_ERROR_SREF_POINTS = 22,        // more than one point
    GDS_ERROR_AREF_POINTS = 23,        // more than three points
    GDS_ERROR_LAYER = 24,              // no element open, or in SREF or AREF
    GDS_ERROR_WIDTH = 25,              // outside PATH and TEXT
    GDS_ERROR_STRNAME = 26,            // outside a structure
    GDS_ERROR_UNKNOWN_STRUCTURE = 27,  // a reference names a structure that is not in the file
    GDS_ERROR_NO_LAYER = 28,           // BOUNDARY or PATH without LAYER
};

// Reads the file record by record, binds the references, computes the extent of every cell and
// lists the cells on the console. What helps to mend a bad file (the error in words, byte offset,
// record number, cell, missing name, the system's reason) goes to diagnostic_write.
//   database   zeroed; owned by the caller, who frees it with gds_free also after a failure
// Returns a GdsError. After a failure the database holds what was read until then.
i32 gds_read(GdsDatabase *database, const wchar_t *path);

// The same for a file that is open for binary reading already; closes it.
//   path   what the diagnostics call the file
i32 gds_read_file(GdsDatabase *database, std::FILE *file, const wchar_t *path);

// One line that says what an error of gds_read means, e.g. "BGNSTR inside a structure"; never null.
const wchar_t *gds_error_text(i32 error);

// A GDSII 8-byte real: sign, base-16 exponent biased by 64, 56-bit fraction.
f64 gds_real8_to_double(const u8 bytes[8]);
