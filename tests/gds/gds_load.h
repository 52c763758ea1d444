// gds_load.h: databases read from bytes or from files, freed by themselves.
#pragma once
#include <string>
#include "gds/gds_database.h"

// A database and the result of reading it.
struct GdsLoaded {
    i32 result;
    Owned<GdsDatabase> database;
};

// Reads the bytes from a file in a temporary folder.
GdsLoaded gds_load_bytes(const std::string &bytes);
GdsLoaded gds_load_path(const std::wstring &path);

GdsCell *find_cell(const GdsLoaded &loaded, const std::string &name);  // null when there is none
