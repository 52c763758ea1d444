// gds_reader.h: what a record of a GDSII stream does to the database: the open structure, the open
// element and one handler per record.
#pragma once
#include "gds/gds_database.h"
#include "gds/gds_stream.h"

enum GdsElement {
    ELEMENT_NONE,
    ELEMENT_BOUNDARY,
    ELEMENT_PATH,
    ELEMENT_SREF,
    ELEMENT_AREF,
    ELEMENT_TEXT,
    ELEMENT_NODE,
    ELEMENT_BOX,
};

// The record last read, and what is open. All zero but for the database at the start.
struct GdsReader {
    GdsDatabase *database;
    GdsRecord record;
    i64 offset;  // of the record in the file
    bool ended;  // ENDLIB has been read
    bool in_structure;
    GdsCell cell;  // of the open structure; between structures its lists keep their room for the next one
    NString name;  // what cell.name points to
    Owned<char[]> name_text;
    GdsElement element;
    i64 element_offset;
    bool layer_seen;
    GdsPolygon
        polygon;  // of an open BOUNDARY or PATH; points of a BOUNDARY lie behind those taken in the store
    Owned<Point[]> line;  // the centre line of an open PATH, which the points of `polygon` are then
    u32 width;
    u16 path_type;
    GdsARef reference;  // of an open SREF (only p1) or AREF
    bool round_warned, variable_warned;
    bool header_seen, units_seen;
    i64 units_offset;  // of the last UNITS record
    bool units_used;   // whether it holds its data
};

// Handles reader->record, which starts at `offset` of the file. Returns a GdsError.
i32 gds_reader_record(GdsReader *reader, i64 offset);

// Drops the open element and the open structure, if any.
void gds_reader_end(GdsReader *reader);
