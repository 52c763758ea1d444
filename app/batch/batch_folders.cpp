#include "app/batch/batch_folders.h"

#include <cstdlib>
#include <cwchar>

#include "app/commands.h"
#include "log/log.h"
#include "platform/folder_contents.h"
#include "platform/memory.h"
#include "platform/whole_file.h"

// A folder of which the run may have made the last parts.
struct MadeFolder {
    wchar_t *path;
    size_t there;  // length of the part that was there before
};

static constexpr i32 MOST_FOLDERS = 2;      // --output and --dump
static constexpr i32 MOST_ATTEMPTS = 1000;  // for the name of a time-stamped folder

static MadeFolder made_folders[MOST_FOLDERS];
static i32 made_count = 0;

static bool is_separator(wchar_t unit) {
    return unit == L'/' || unit == PLATFORM_SEPARATOR[0];
}

// Whether the first `length` units of a path name a folder of their own: they end at a separator or at the
// end.
static bool is_part(const wchar_t *path, size_t length) {
    return length > 0 && !is_separator(path[length - 1]) && (path[length] == 0 || is_separator(path[length]));
}

// Calls that take a part of a path end the text there for a moment.
static bool part_exists(wchar_t *path, size_t length) {
    const wchar_t kept = path[length];
    path[length] = 0;
    const bool exists = platform_folder_exists(path);
    path[length] = kept;
    return exists;
}

static void remove_empty_parts(MadeFolder *made) {
    for (size_t length = std::wcslen(made->path); length > made->there; --length) {
        if (is_part(made->path, length)) {
            made->path[length] = 0;
            platform_folder_remove(made->path);  // which refuses one that is not empty
        }
    }
    memory_free(made->path);
}

static void remove_empty_folders() {
    while (made_count > 0) {
        remove_empty_parts(&made_folders[--made_count]);
    }
}

// Takes the path over. What is longer than `there` was not there before.
static void remember_folder(wchar_t *path, size_t there) {
    if (made_count == 0) {
        std::atexit(remove_empty_folders);
        memory_add_last_act(remove_empty_folders);
    }
    made_folders[made_count++] = {path, there};
}

static wchar_t *copy_of(const wchar_t *text) {
    auto *copy = memory_new_array<wchar_t>(static_cast<i64>(std::wcslen(text)) + 1);
    std::wcscpy(copy, text);
    return copy;
}

// The length of the longest part of a path that is a folder.
static size_t length_there(wchar_t *path) {
    size_t there = 0;
    for (size_t i = 1; i <= std::wcslen(path); ++i) {
        if (is_part(path, i) && part_exists(path, i)) {
            there = i;
        }
    }
    return there;
}

static bool tell_failure(const wchar_t *path) {
    diagnostic_write(L"%ls: the folder cannot be made: %ls", path, platform_error_text());
    return false;
}

static bool try_folder(const wchar_t *path) {
    WString *probe = wstring_make(L"%ls%lsquarn.tmp", path, PLATFORM_SEPARATOR);
    wchar_t reason[WHOLE_FILE_REASON_SIZE];
    const bool possible = whole_file_try(wstring_text(probe), reason);
    wstring_free(probe);
    if (!possible) {
        diagnostic_write(L"%ls: no file can be written there: %ls", path, reason);
    }
    return possible;
}

// A folder of the command line.
static WString *make_named(const char *name) {
    const WideText path = platform_wide_from_system(name);
    WString *folder = nullptr;
    remember_folder(copy_of(path.get()), length_there(path.get()));
    if (platform_folder_create_all(path.get()) ? try_folder(path.get()) : tell_failure(path.get())) {
        folder = wstring_copy(path.get());
    }
    return folder;
}

// The first name that nothing has yet.
static WString *make_stamped(const wchar_t *process_path) {
    WString *stamp = stamped_folder_name(process_path);
    WString *folder = wstring_copy(wstring_text(stamp));
    PlatformFolderResult result = platform_folder_create(wstring_text(folder));
    for (i32 i = 2; i < MOST_ATTEMPTS && result == PLATFORM_FOLDER_EXISTS; ++i) {
        wstring_free(folder);
        folder = wstring_make(L"%ls-%d", wstring_text(stamp), i);
        result = platform_folder_create(wstring_text(folder));
    }
    wstring_free(stamp);
    bool made = result == PLATFORM_FOLDER_CREATED;
    if (made) {
        wchar_t *path = copy_of(wstring_text(folder));
        remember_folder(path, std::wcslen(path) - 1);
        made = try_folder(path);
    } else {
        tell_failure(wstring_text(folder));
    }
    if (!made) {
        wstring_free(folder);
        folder = nullptr;
    }
    return folder;
}

// Null after telling why not. A process file that is not there gets no folder: the run will say so and not
// start.
static WString *make_output_folder(const BatchOptions *options, bool *needed) {
    *needed = true;
    if (options->output_folder != nullptr) {
        return make_named(options->output_folder);
    }
    const WideText process_path = platform_wide_from_system(options->process_path);
    *needed = platform_file_exists(process_path.get());
    WString *folder = *needed ? make_stamped(process_path.get()) : nullptr;
    return folder;
}

BatchStatus batch_folders_make(AppState *state, const BatchOptions *options) {
    bool needed = true;
    state->output_folder = make_output_folder(options, &needed);
    if (state->output_folder == nullptr && needed) {
        return BATCH_WRITE_FAILED;
    }
    if (options->dump_folder != nullptr) {
        state->dump_folder = make_named(options->dump_folder);
        if (state->dump_folder == nullptr) {
            return BATCH_WRITE_FAILED;
        }
    }
    state->dump_required = 1;
    if (!options->no_images && state->output_folder != nullptr) {
        state->picture_folder = picture_folder_open(wstring_text(state->output_folder), state->image_format);
    }
    return BATCH_DONE;
}
