// gds_write.h: write extracted polygons as a GDSII stream file.
#pragma once
#include <cstdio>
#include "gds/gds_database.h"
#include "gds/polygon_list.h"

// Writes one structure "TOP" with a BOUNDARY per polygon, in database units from the corner of the
// window that the polygons were cut from. The layout's own UNITS record is written back.
// Returns 0; 1 when the path is absent (null), the file cannot be created, or it could not be
// written whole (an older file of that name then stays). The system's reason goes to diagnostic_write, and so
// does a warning of polygons that make the file unreadable.
i32 gds_write_polygons(const GdsDatabase *database, const wchar_t *path, const PolygonList *list);

// The number of polygons with more points than the format has room for, 0 for a file that can be read again.
// Otherwise diagnostic_write is told.
//   file_name   how the file is called in that line
i32 gds_write_unreadable(const PolygonList *list, const wchar_t *file_name);

// Writes one BOUNDARY element.
//   points   micrometres; point_count of them, closing point included
//   unit     micrometres per database unit
// The record length of more than 8191 points does not fit its 16 bits and is written as it is.
void gds_write_boundary(std::FILE *file, const FlatPoint *points, i32 point_count, f32 unit, u16 layer);
