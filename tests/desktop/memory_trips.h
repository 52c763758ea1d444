// memory_trips.h: runs of the desktop program in which one allocation fails, whatever the system.
#pragma once
#include <string>

#include "platform/base.h"

// Allocations, more than any run here takes.
inline constexpr i32 TRIP_FAR_AWAY = 1'000'000;

// A number that the environment gives, or another one.
i64 trip_environment(const char *name, i64 otherwise);

// In the program, at its end: how many allocations it has made, as a line for trip_take_allocations. Only
// right while the one that was to fail has not come.
//   trip   allocations that were to succeed before one fails
std::string trip_allocations_line(i64 trip);

// Takes that line from the end of what a run has shown. The number; -1 without such a line.
i64 trip_take_allocations(std::string *shown);

struct TrippedRun {
    i32 status;         // exit status
    std::string shown;  // to the user: "box: TEXT" lines for message boxes, then the console
    std::string other;  // the terminal and the log
    std::string files;  // what it has left on disk, from trip_take_files
};

// What a run shows, without what differs from run to run: timings, and the time in a folder's name.
std::string trip_comparable(const std::string &shown);

// What a run in this folder has written: the heights, and what lies in the folder of the pictures. A line for
// each file, with its name, its size and a figure that its bytes have in common with equal ones only; then
// they are deleted.
std::string trip_take_files(const std::wstring &folder);

struct TripCounts {
    i32 boxes,
        terminal;    // ended for lack of memory, told in a box, or on the terminal since there was none yet
    i32 same, told;  // came to the end, as always, or with a word about memory
};

// Expects that the program has ended for lack of memory, saying so and nothing else, or has come to its end
// without what failed and shows and leaves what it always does, or says that memory was lacking where the
// user sees it. However it ends, every file under its final name is whole, and none is left under another.
//   plain   a run in which nothing fails, with what it shows as trip_comparable gives it
void trip_check(i64 trip, const TrippedRun &run, const TrippedRun &plain, TripCounts *counts);

// Tries the allocations of a run that makes `count` of them: some twelve, or those that QUARN_TRIP_START and
// QUARN_TRIP_STRIDE name (1 and 1: all). `run` does one.
template <typename Run>
void trip_each(i64 count, i64 first, const TrippedRun &plain, TripCounts *counts, Run run) {
    const i64 stride = trip_environment("QUARN_TRIP_STRIDE", count / 12 + 1);
    for (i64 trip = trip_environment("QUARN_TRIP_START", first); trip < count; trip += stride) {
        trip_check(trip, run(trip), plain, counts);
    }
}

// Prints the counts.
void trip_report(const TripCounts &counts);
