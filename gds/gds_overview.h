// gds_overview.h: what somebody who writes a process file for a layout wants to know of it.
#pragma once
#include "gds/gds_database.h"

// Tells by diagnostic_write the database unit and, of each cell that no other one refers to (the first 20),
// where it lies, in micrometres, and the layers of all polygons in it and below it (the first 40).
//   database   as gds_read leaves it
void gds_overview(const GdsDatabase *database);
