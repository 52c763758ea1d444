// file_replace.h: what whole_file.h asks of the system besides platform.h. Any thread. After a failure
// platform_error_text tells why.
#pragma once
#include "platform/owned.h"

enum PlatformFileKind {
    PLATFORM_FILE_NONE,     // nothing of that name
    PLATFORM_FILE_REGULAR,  // a file that another one can take the place of
    PLATFORM_FILE_OTHER,    // a folder, a device, a pipe
};

// The file that the path leads to when symbolic links are followed, whether it is there or not: the path
// itself where there are none.
WideText platform_file_target(const wchar_t *path);

// What lies at a path, symbolic links followed.
PlatformFileKind platform_file_kind(const wchar_t *path);

// Whether this program may write a file that is there.
bool platform_file_is_writable(const wchar_t *path);

// Gives a file the name of another one in the same folder, which is replaced when it is there; the new file
// then has the permissions of the old one. Nobody ever finds a part of a file under the name. True on
// success.
bool platform_file_replace(const wchar_t *from, const wchar_t *to);

// The number of this process, of which no other one has the same meanwhile.
u32 platform_process_id();
