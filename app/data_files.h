// data_files.h: where the installed files lie (colour names and shader sources), for the programs that
// are started from anywhere.
#pragma once
#include "log/text.h"

inline constexpr i32 DATA_PLACE_COUNT = 4;

// Folders in the order of search, each with its separator at the end (the current folder is empty).
struct DataPlaces {
    WString *folders[DATA_PLACE_COUNT];
    i32 count;
};

// The places to search: `data_folder` alone when it is given, else the current folder, the folder of
// the program, "../share/quarn" beside that, and the folder that was configured for an installed
// program. Freed with data_places_free.
DataPlaces data_places(const wchar_t *data_folder);
void data_places_free(DataPlaces *places);  // leaves none; the record is the caller's

// The path of a file in the first place that has it, a new string; null when none has, and then one
// diagnostic line for each place tells so.
WString *data_file_find(const DataPlaces *places, const wchar_t *name);

// The same, but the bare name, a new string too, where there is no such file: for those who open it and tell
// of the failure.
WString *data_file_or_name(const DataPlaces *places, const wchar_t *name);
