#include "app/win32/open_files.h"

#include "app/win32/window_commands.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/memory.h"

static WString *waiting[FILE_KIND_COUNT] = {};  // by FileKind, until WM_APP_OPEN_FILES arrives
static WString *named[FILE_KIND_COUNT] = {};    // for the command under way

static void replace(WString **slot, const wchar_t *path) {
    wstring_free(*slot);
    *slot = path != nullptr ? wstring_copy(path) : nullptr;
}

void open_files_free() {
    for (i32 kind = 0; kind < FILE_KIND_COUNT; ++kind) {
        replace(&waiting[kind], nullptr);
        replace(&named[kind], nullptr);
    }
}

void open_files_later(AppState *state, const wchar_t *layout_path, const wchar_t *process_path) {
    replace(&waiting[FILE_LAYOUT], layout_path);
    replace(&waiting[FILE_PROCESS], process_path);
    if (layout_path != nullptr || process_path != nullptr) {
        PostMessageW(static_cast<HWND>(state->main_window), WM_APP_OPEN_FILES, 0, 0);
    }
}

WString *open_files_take(FileKind kind) {
    WString *path = named[kind];
    named[kind] = nullptr;
    return path;
}

// Runs a command with the file that waits for it.
static void command_with_file(AppState *state, MenuCommand command, FileKind kind) {
    named[kind] = waiting[kind];
    waiting[kind] = nullptr;
    window_command(state, static_cast<WORD>(command));
    replace(&named[kind], nullptr);
}

void open_files_now(AppState *state) {
    bool loaded = true;
    if (waiting[FILE_LAYOUT] != nullptr && window_accepts_files(state)) {
        command_with_file(state, MENU_LOAD_GDS, FILE_LAYOUT);
        loaded = state->load_result == 0;
    }
    if (waiting[FILE_PROCESS] != nullptr && loaded && state->layout != nullptr &&
        window_accepts_files(state)) {
        command_with_file(state, MENU_RUN, FILE_PROCESS);
    }
    open_files_later(state, nullptr, nullptr);
}

// Keeps the path as the first one of its kind, or frees it.
static void add_file(WString *files[FILE_KIND_COUNT], WString *path) {
    for (i32 kind = 0; kind < FILE_KIND_COUNT; ++kind) {
        if (files[kind] == nullptr && file_is_of_kind(wstring_text(path), static_cast<FileKind>(kind))) {
            files[kind] = path;
            return;
        }
    }
    wstring_free(path);
}

static WString *dropped_path(HDROP drop, UINT index) {
    const UINT length = DragQueryFileW(drop, index, nullptr, 0);
    auto *text = memory_new_array<wchar_t>(i64{length} + 1);
    DragQueryFileW(drop, index, text, length + 1);
    WString *path = wstring_copy(text);
    memory_free(text);
    return path;
}

// Null, or why these files are not opened, in words for a message box.
static const wchar_t *refusal(const AppState *state, WString *const files[FILE_KIND_COUNT]) {
    if (files[FILE_LAYOUT] == nullptr && files[FILE_PROCESS] == nullptr) {
        return DROP_WRONG_KIND;
    }
    if (state->run_active != 0) {
        return DROP_DURING_RUN;
    }
    return files[FILE_LAYOUT] == nullptr && state->layout == nullptr ? DROP_NO_LAYOUT : nullptr;
}

void open_files_dropped(AppState *state, HDROP drop) {
    WString *files[FILE_KIND_COUNT] = {};
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        add_file(files, dropped_path(drop, i));
    }
    DragFinish(drop);
    if (!window_is_busy()) {  // else the user is at another dialog
        const wchar_t *reason = refusal(state, files);
        if (reason == nullptr) {
            open_files_later(state,
                             files[FILE_LAYOUT] != nullptr ? wstring_text(files[FILE_LAYOUT]) : nullptr,
                             files[FILE_PROCESS] != nullptr ? wstring_text(files[FILE_PROCESS]) : nullptr);
        } else {
            message_show(reason);
        }
    }
    wstring_free(files[FILE_LAYOUT]);
    wstring_free(files[FILE_PROCESS]);
}
