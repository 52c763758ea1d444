// system_path.h: paths in the form that the system takes at any length.
#pragma once
#include "platform/owned.h"

// A path for the system's calls: as it is where it is short, else absolute behind the prefix that lifts
// the limit of 260 units.
WideText system_path(const wchar_t *path);
