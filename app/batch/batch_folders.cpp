#include "app/batch/batch_folders.h"

#include <cassert>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include "app/commands.h"
#include "log/log.h"
#include "platform/folder_contents.h"
#include "platform/memory.h"
#include "platform/whole_file.h"
#include "platform/wide_text.h"

// A folder of which the run may have made the last parts.
struct MadeFolder {
    WideText path;
    size_t there;  // length of the part that was there before
};

static constexpr i32 MOST_FOLDERS = 2;      // --output and --dump
static constexpr i32 MOST_ATTEMPTS = 1000;  // for the name of a time-stamped folder

// One for the program: the handlers of its end come without a record to look into.
struct MadeFolders {
    MadeFolder folders[MOST_FOLDERS];
    i32 count;
};

static MadeFolders made_folders = {};

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

static void remove_empty_parts(wchar_t *path, size_t there) {
    for (size_t length = std::wcslen(path); length > there; --length) {
        if (is_part(path, length)) {
            path[length] = 0;
            platform_folder_remove(path);  // which refuses one that is not empty
        }
    }
}

static void remove_empty_folders() {
    while (made_folders.count > 0) {
        MadeFolder *made = &made_folders.folders[--made_folders.count];
        remove_empty_parts(made->path.get(), made->there);
        made->path = nullptr;
    }
}

// What is longer than `there` was not there before.
static void remember_folder(const wchar_t *path, size_t there) {
    assert(made_folders.count < MOST_FOLDERS);
    if (made_folders.count == 0) {
        std::atexit(remove_empty_folders);
        memory_add_last_act(remove_empty_folders);
    }
    made_folders.folders[made_folders.count] = {wide_copy(path), there};
    ++made_folders.count;
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
    const Owned<WString> probe(wstring_make(L"%ls%lsquarn.tmp", path, PLATFORM_SEPARATOR));
    wchar_t reason[WHOLE_FILE_REASON_SIZE];
    const bool possible = whole_file_try(wstring_text(probe.get()), reason);
    if (!possible) {
        diagnostic_write(L"%ls: no file can be written there: %ls", path, reason);
    }
    return possible;
}

// A folder of the command line.
static WString *make_named(const char *name) {
    const WideText path = platform_wide_from_system(name);
    remember_folder(path.get(), length_there(path.get()));
    const bool made =
        platform_folder_create_all(path.get()) ? try_folder(path.get()) : tell_failure(path.get());
    return made ? wstring_copy(path.get()) : nullptr;
}

// The first name that nothing has yet.
static WString *make_stamped(const wchar_t *process_path) {
    const Owned<WString> stamp(stamped_folder_name(process_path));
    Owned<WString> folder(wstring_copy(wstring_text(stamp.get())));
    PlatformFolderResult result = platform_folder_create(wstring_text(folder.get()));
    for (i32 i = 2; i < MOST_ATTEMPTS && result == PLATFORM_FOLDER_EXISTS; ++i) {
        folder.reset(wstring_make(L"%ls-%d", wstring_text(stamp.get()), i));
        result = platform_folder_create(wstring_text(folder.get()));
    }
    const wchar_t *path = wstring_text(folder.get());
    if (result != PLATFORM_FOLDER_CREATED) {
        tell_failure(path);
        return nullptr;
    }
    remember_folder(path, std::wcslen(path) - 1);
    return try_folder(path) ? folder.release() : nullptr;
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
    return *needed ? make_stamped(process_path.get()) : nullptr;
}

// Takes a path for the page over when a file can be written there. False after telling why not.
static bool take_page_path(AppState *state, Owned<WString> path) {
    wchar_t reason[WHOLE_FILE_REASON_SIZE];
    if (!whole_file_try(wstring_text(path.get()), reason)) {
        diagnostic_write(L"%ls: the page cannot be written: %ls", wstring_text(path.get()), reason);
        return false;
    }
    wstring_free(state->export_wish.page_path);
    state->export_wish.page_path = path.release();
    return true;
}

BatchStatus batch_folders_make(AppState *state, const BatchOptions *options) {
    assert(state->output_folder == nullptr && options->process_path != nullptr);
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
    const bool has_cuts = options->cut_count > 0 || options->cuts_file != nullptr;
    if (options->page_path != nullptr && !has_cuts && state->output_folder != nullptr) {
        const WideText path = platform_wide_from_system(options->page_path);
        if (!take_page_path(state, Owned<WString>(wstring_copy(path.get())))) {
            return BATCH_WRITE_FAILED;
        }
    }
    state->dump_required = 1;
    if (!options->no_images && state->output_folder != nullptr) {
        state->picture_folder = picture_folder_open(wstring_text(state->output_folder), state->image_format);
    }
    return BATCH_DONE;
}

// Makes the folder of this name below another. Null after telling why not.
static WString *make_below(const WString *parent, const wchar_t *name) {
    Owned<WString> folder(wstring_make(L"%ls%ls%ls", wstring_text(parent), PLATFORM_SEPARATOR, name));
    const wchar_t *path = wstring_text(folder.get());
    const bool made = platform_folder_create_all(path) ? try_folder(path) : tell_failure(path);
    return made ? folder.release() : nullptr;
}

bool batch_folder_below(AppState *state, const AppState *main, const BatchOptions *options,
                        const char *name) {
    assert(state != nullptr && main->output_folder != nullptr && name != nullptr);
    const WideText wide_name = platform_wide_from_system(name);
    Owned<WString> output(make_below(main->output_folder, wide_name.get()));
    if (output == nullptr) {
        return false;
    }
    Owned<WString> dump(options->dump_folder != nullptr ? make_below(main->dump_folder, wide_name.get())
                                                        : wstring_copy(wstring_text(output.get())));
    if (dump == nullptr) {
        return false;
    }
    wstring_free(state->output_folder);
    state->output_folder = output.release();
    wstring_free(state->dump_folder);
    state->dump_folder = dump.release();
    picture_folder_free(state->picture_folder);
    state->picture_folder = nullptr;
    if (options->page_path != nullptr) {
        const WideText page = platform_wide_from_system(options->page_path);
        Owned<WString> path(
            wstring_make(L"%ls%ls%ls", wstring_text(state->output_folder), PLATFORM_SEPARATOR, page.get()));
        if (!take_page_path(state, std::move(path))) {
            return false;
        }
    }
    if (!options->no_images) {
        state->picture_folder = picture_folder_open(wstring_text(state->output_folder), state->image_format);
    }
    return true;
}
