// gds_error.h: what reading a layout can come to.
#pragma once
#include "platform/base.h"

// Results of gds_read; 0 is success.
enum GdsError {
    GDS_INTERRUPTED = -1,  // gave up after an interrupt
    GDS_OK = 0,
    GDS_ERROR_OPEN = 1,           // the file cannot be opened, or the system fails to read on
    GDS_ERROR_PATH = 2,           // a PATH cannot be made into a polygon
    GDS_ERROR_PACKED = 2,         // or a file compressed with gzip is damaged or cut off
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

// One line that says what an error of gds_read means, e.g. "BGNSTR inside a structure"; never null.
const wchar_t *gds_error_text(i32 error);
