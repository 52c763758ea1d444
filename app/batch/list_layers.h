// list_layers.h: --layers: the pairs of layer and datatype of cells, for writing a process file.
#pragma once
#include "app/batch/batch_options.h"
#include "gds/gds_database.h"

// Prints for every cell, in the order of the layout, or for the one of that name each pair of layer and
// datatype of its polygons with their number and extent: the polygons that a section over the cell meets, so
// those of the cells below it too, as often as they are placed. Lengths are micrometres.
//   layout      as gds_read leaves it
//   cell_name   null for every cell
// Returns BATCH_DONE; BATCH_PROCESS_FAILED without a cell of that name, BATCH_LAYOUT_FAILED when there are
// too many pairs, both told; or BATCH_INTERRUPTED.
BatchStatus list_layers(const GdsDatabase *layout, const char *cell_name);
