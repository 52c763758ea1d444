// inner_user.h: a user inside the program under test, for runs that nobody watches: saves the pictures of the
// files that the program was started with, takes note of message boxes, cancels dialogs and closes the
// window.
#pragma once
#include <string>

#include "platform/base.h"

// Starts the user on a thread of its own. What it sees goes to a file: "box: TEXT" for each message box, at
// last what the console shows.
void inner_user_start(const std::wstring &report_path);

// Adds to the report how many allocations the program has made, when the one that was to fail has not come.
//   trip   allocations that were to succeed before one fails
void inner_user_tell_allocations(i64 trip);
