// gds_read.h: read a GDSII stream file into a GdsDatabase. Hostile bytes are safe.
#pragma once
#include <cstdio>
#include "gds/gds_database.h"
#include "gds/gds_error.h"

// Reads the file record by record, binds the references, computes the extent of every cell and
// lists the cells on the console. What helps to mend a bad file (the error in words, byte offset,
// record number, cell, missing name, the system's reason) goes to diagnostic_write.
//   database   zeroed; owned by the caller, who frees it with gds_free also after a failure
// Returns a GdsError. After a failure the database holds what was read until then.
i32 gds_read(GdsDatabase *database, const wchar_t *path);

// The same for a file that is open for binary reading already; closes it.
//   path   what the diagnostics call the file
i32 gds_read_file(GdsDatabase *database, std::FILE *file, const wchar_t *path);
