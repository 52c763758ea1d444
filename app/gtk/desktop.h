// desktop.h: the life of the desktop program: what comes before its window, the main loop, the end.
#pragma once
#include "platform/base.h"

// Runs the program. Returns its exit code: 0 after a normal end, 1 when the command line is wrong or a part
// that it needs (a display, the user's data folder, colour names, graphics) is missing, which the user has
// then been told.
i32 desktop_main(i32 argument_count, char **arguments);
