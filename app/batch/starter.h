// starter.h: --starter: a process file to begin with, for a layout that nobody has explained.
#pragma once
#include "app/batch/batch_options.h"
#include "gds/gds_database.h"

// Prints a process file that runs as it is: a section over the middle of the cell, and for each pair of layer
// and datatype that it meets a film of its own colour, a photo and an etch that leave the film where the
// pair's polygons are. Pairs of the cell that the section does not meet stand there as comments.
//   layout      as gds_read leaves it
//   cell_name   null for the top cell with the most polygons
// Returns BATCH_DONE; BATCH_PROCESS_FAILED when there is no such cell, or none that a process file can name;
// BATCH_LAYOUT_FAILED when there are too many pairs; all told; or BATCH_INTERRUPTED.
BatchStatus starter_print(const GdsDatabase *layout, const char *cell_name);
