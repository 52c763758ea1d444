// whole_file.h: files that are written whole or not at all. The bytes go to a temporary name in the same
// folder, "quarn-PROCESS-COUNT.tmp", which becomes the final name when everything is written; a program that
// is ended on its way leaves no part of a file under a final name. Any thread.
#pragma once
#include <cstdio>
#include "platform/base.h"

inline constexpr i32 WHOLE_FILE_REASON_SIZE = 160;

struct WholeFile {
    std::FILE *file;                         // to write to; null when it is not open
    wchar_t *target;                         // the final name, symbolic links followed; owned
    wchar_t *temporary;                      // null where the target is written directly; owned
    wchar_t reason[WHOLE_FILE_REASON_SIZE];  // why a call below failed, in words for people
};

// Opens a file for writing. A device or a pipe of that name is written directly; a file that is there stays
// as it is until whole_file_commit, and one that this program may not write is refused.
//   mode   "wb" or "w", as platform_file_open takes it
// False when it cannot be opened: nothing is left then but the reason.
bool whole_file_open(WholeFile *whole, const wchar_t *path, const char *mode);

// Closes the file and gives it its name. False when an earlier write (errno is that of the last call then),
// the closing or the naming failed: nothing but the reason is left then, and an older file of that name
// stays.
bool whole_file_commit(WholeFile *whole);

// Closes and deletes what was written; an older file of that name stays. The reason is untouched.
void whole_file_abandon(WholeFile *whole);

// For a program that is about to end while another thread may be writing, and for one that lack of memory
// ends (as a last act, see memory.h): removes the temporary files under way, where the system lets open files
// be removed, and from here on no file gets its final name. Whoever opens or commits one on another thread
// after that waits for ever. A thread that has been in the middle of opening or naming one for a second
// counts as one that waits for the end itself.
void whole_files_end();

// Whether a file of that name can be written: a temporary one is made, written and removed again; a device or
// a pipe is not touched. What lies at the path stays as it is. False fills `reason`.
bool whole_file_try(const wchar_t *path, wchar_t reason[WHOLE_FILE_REASON_SIZE]);
