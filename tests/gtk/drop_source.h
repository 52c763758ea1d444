// drop_source.h: the other end of a drag and drop: offers files to a window of another program, as a file
// manager does (the XDND protocol, version 5).
#pragma once
#include <string>
#include <vector>

#include "platform/base.h"

enum DropResult {
    DROP_REFUSED,  // the window does not take it there
    DROP_DONE,     // taken, and the window says that it was of use
    DROP_IN_VAIN,  // taken, but of no use
    DROP_SILENCE,  // no answer in time
};

// Drops files (absolute paths) on a window at a place of the screen.
DropResult drop_files(u64 window, i32 x, i32 y, const std::vector<std::string> &paths);
