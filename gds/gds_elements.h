// gds_elements.h: the records of a GDSII stream file with one structure, written one after another: what
// stands before the elements, the elements in database units, and the end. What goes wrong with the file is
// left to its owner, who asks std::ferror.
#pragma once
#include <cstdio>
#include "gds/gds_database.h"

// With its last point, which is the first again, a polygon of more does not fit the length of a record.
inline constexpr i32 GDS_MOST_POINTS = 8191;

// The longest text of an element.
inline constexpr i32 GDS_MOST_TEXT = 512;

// The bytes of a UNITS record: user units per database unit, and metres per database unit.
void gds_units_raw(f64 user_units, f64 metres, u8 raw[16]);

// Everything up to the elements. Without dates, so that the same content is the same bytes.
//   library     its name; "" for none
//   units_raw   as the UNITS record has them
void gds_elements_begin(std::FILE *file, const char *library, const u8 units_raw[16], const char *structure);

void gds_elements_end(std::FILE *file);

// A BOUNDARY.
//   places   point_count of them, closing one included; of more than GDS_MOST_POINTS the record's length is
//   cut
//            to its 16 bits
void gds_write_polygon(std::FILE *file, const Point *places, i32 point_count, u16 layer);

// A TEXT.
//   text   as it is, of at most GDS_MOST_TEXT bytes
void gds_write_text(std::FILE *file, Point place, u16 layer, const char *text);
