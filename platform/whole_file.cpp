#include "platform/whole_file.h"

#include <atomic>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <cwchar>
#include <mutex>

#include "platform/file_replace.h"
#include "platform/memory.h"
#include "platform/platform.h"

static std::atomic<i32> file_count{0};  // of this process, so that two files never share a temporary name

static constexpr i32 MOST_UNDER_WAY =
    64;  // more are written all the same, and not removed by whole_files_end

// The names of the temporary files that lie somewhere, null in free slots.
static const wchar_t *under_way[MOST_UNDER_WAY];
// Recursive, since what is done under it may lack memory, and whole_files_end is then called by the same
// thread.
static std::recursive_timed_mutex under_way_lock;

static void replace_under_way(const wchar_t *old_name, const wchar_t *new_name) {
    for (const wchar_t *&name : under_way) {
        if (name == old_name) {
            name = new_name;
            return;
        }
    }
}

static void set_reason(wchar_t reason[WHOLE_FILE_REASON_SIZE], const wchar_t *text) {
    std::wcsncpy(reason, text, WHOLE_FILE_REASON_SIZE - 1);
    reason[WHOLE_FILE_REASON_SIZE - 1] = 0;
}

static void set_reason_of_errno(wchar_t reason[WHOLE_FILE_REASON_SIZE], i32 error) {
    const WideText text = platform_wide_from_system(std::strerror(error != 0 ? error : EIO));
    set_reason(reason, text.get());
}

// Length of the part of a path that names its folder, the separator included.
static size_t folder_length(const wchar_t *path) {
    size_t length = 0;
    for (size_t i = 0; path[i] != 0; ++i) {
        if (path[i] == L'/' || path[i] == PLATFORM_SEPARATOR[0]) {
            length = i + 1;
        }
    }
    return length;
}

// A name in the folder of the target that nothing has. One that an ended program of the same number has left
// is passed over.
static WideText temporary_name(const wchar_t *target) {
    const size_t folder = folder_length(target);
    const size_t room = folder + 64;
    auto name = memory_scratch<wchar_t>(static_cast<i64>(room));
    std::wmemcpy(name.get(), target, folder);
    do {
        std::swprintf(name.get() + folder, room - folder, L"quarn-%u-%d.tmp", platform_process_id(),
                      ++file_count);
    } while (platform_file_exists(name.get()));
    return name;
}

static void close_file(WholeFile *whole) {
    if (whole->file != nullptr) {
        std::fclose(whole->file);
    }
    whole->file = nullptr;
}

// Removes the temporary file, if there is one, and frees the names.
static void discard(WholeFile *whole) {
    close_file(whole);  // before deleting: some systems keep the name of an open file
    if (whole->temporary != nullptr) {
        const std::lock_guard<std::recursive_timed_mutex> hold(under_way_lock);
        platform_file_delete(whole->temporary);
        replace_under_way(whole->temporary, nullptr);
    }
    memory_free(whole->target);
    memory_free(whole->temporary);
    whole->target = nullptr;
    whole->temporary = nullptr;
}

static std::FILE *open_temporary(WholeFile *whole, const char *mode) {
    WideText name = temporary_name(whole->target);
    const std::lock_guard<std::recursive_timed_mutex> hold(under_way_lock);
    std::FILE *file = platform_file_open(name.get(), mode);
    if (file != nullptr) {
        whole->temporary = name.release();
        replace_under_way(nullptr, whole->temporary);
    }
    return file;
}

bool whole_file_open(WholeFile *whole, const wchar_t *path, const char *mode) {
    assert(whole != nullptr && path != nullptr && mode != nullptr);
    *whole = {};
    whole->target = platform_file_target(path).release();
    const PlatformFileKind kind = platform_file_kind(whole->target);
    const bool refused = kind == PLATFORM_FILE_REGULAR && !platform_file_is_writable(whole->target);
    if (kind != PLATFORM_FILE_OTHER && !refused) {
        whole->file = open_temporary(whole, mode);
    }
    // A folder that takes no new files can hold one that may be written all the same.
    if (whole->file == nullptr && kind != PLATFORM_FILE_NONE && !refused) {
        whole->file = platform_file_open(whole->target, mode);
    }
    if (whole->file == nullptr) {
        set_reason(whole->reason, platform_error_text());
        discard(whole);
        return false;
    }
    errno = 0;
    return true;
}

bool whole_file_commit(WholeFile *whole) {
    assert(whole != nullptr && whole->file != nullptr);
    bool complete = std::ferror(whole->file) == 0;
    i32 error = errno;
    if (std::fclose(whole->file) != 0 && complete) {
        complete = false;
        error = errno;
    }
    whole->file = nullptr;
    if (!complete) {
        set_reason_of_errno(whole->reason, error);
        whole_file_abandon(whole);
        return false;
    }
    if (whole->temporary != nullptr) {
        const std::lock_guard<std::recursive_timed_mutex> hold(under_way_lock);
        complete = platform_file_replace(whole->temporary, whole->target);
        if (!complete) {
            set_reason(whole->reason, platform_error_text());
        } else {
            replace_under_way(whole->temporary, nullptr);
            memory_free(whole->temporary);
            whole->temporary = nullptr;
        }
    }
    discard(whole);
    return complete;
}

void whole_file_abandon(WholeFile *whole) {
    assert(whole != nullptr && whole->target != nullptr);
    if (whole->temporary == nullptr && platform_file_kind(whole->target) == PLATFORM_FILE_REGULAR) {
        close_file(whole);
        platform_file_delete(whole->target);
    }
    discard(whole);
}

// A thread that lacks memory while it holds the lock waits for the end of the program, and changes nothing
// any more: who has waited this long for it goes on without the lock.
static constexpr std::chrono::seconds LONGEST_WAIT(1);

void whole_files_end() {
    static_cast<void>(under_way_lock.try_lock_for(LONGEST_WAIT));  // for good
    for (const wchar_t *name : under_way) {
        if (name != nullptr) {
            platform_file_delete(name);
        }
    }
}

// Writes a byte under a temporary name and removes it again.
static bool try_temporary(WholeFile *whole, PlatformFileKind kind) {
    whole->file = open_temporary(whole, "wb");
    if (whole->file == nullptr) {
        set_reason(whole->reason, platform_error_text());
        return kind == PLATFORM_FILE_REGULAR;  // it would be written directly
    }
    errno = 0;
    const bool written = std::fputc('q', whole->file) != EOF && std::fflush(whole->file) == 0;
    if (!written) {
        set_reason_of_errno(whole->reason, errno);
    }
    return written;
}

bool whole_file_try(const wchar_t *path, wchar_t reason[WHOLE_FILE_REASON_SIZE]) {
    assert(path != nullptr && reason != nullptr);
    WholeFile whole = {};
    whole.target = platform_file_target(path).release();
    const PlatformFileKind kind = platform_file_kind(whole.target);
    bool possible = true;
    if (platform_folder_exists(whole.target)) {
        platform_file_open(whole.target, "rb");  // sets the reason
        possible = false;
    } else if (kind != PLATFORM_FILE_NONE) {
        possible = platform_file_is_writable(whole.target);
    }
    if (!possible) {
        set_reason(whole.reason, platform_error_text());
    } else if (kind != PLATFORM_FILE_OTHER) {
        possible = try_temporary(&whole, kind);
    }
    set_reason(reason, possible ? L"" : whole.reason);
    discard(&whole);
    return possible;
}
