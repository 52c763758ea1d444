#include "app/win32/open_files.h"

#include <cassert>
#include <utility>

#include "app/win32/win32_desktop.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/thread_role.h"

static void replace(WString **slot, const wchar_t *path) {
    wstring_free(*slot);
    *slot = path != nullptr ? wstring_copy(path) : nullptr;
}

void open_files_free() {
    for (i32 kind = 0; kind < FILE_KIND_COUNT; ++kind) {
        replace(&g_desktop->files.waiting[kind], nullptr);
        replace(&g_desktop->files.named[kind], nullptr);
    }
}

void open_files_later(AppState *state, const wchar_t *layout_path, const wchar_t *process_path) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    replace(&g_desktop->files.waiting[FILE_LAYOUT], layout_path);
    replace(&g_desktop->files.waiting[FILE_PROCESS], process_path);
    if (layout_path != nullptr || process_path != nullptr) {
        PostMessageW(static_cast<HWND>(state->main_window), WM_APP_OPEN_FILES, 0, 0);
    }
}

WString *open_files_take(FileKind kind) {
    assert(thread_role_fits(THREAD_WINDOW) && kind >= 0 && kind < FILE_KIND_COUNT);
    WString *path = g_desktop->files.named[kind];
    g_desktop->files.named[kind] = nullptr;
    return path;
}

// Runs a command with the file that waits for it.
static void command_with_file(AppState *state, MenuCommand command, FileKind kind) {
    OpenFiles *files = &g_desktop->files;
    files->named[kind] = files->waiting[kind];
    files->waiting[kind] = nullptr;
    window_command(state, static_cast<WORD>(command));
    replace(&files->named[kind], nullptr);
}

void open_files_now(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    bool loaded = true;
    WString *const *waiting = g_desktop->files.waiting;
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

// Keeps the path when it is the first one of its kind.
static void add_file(WideText files[FILE_KIND_COUNT], WideText path) {
    for (i32 kind = 0; kind < FILE_KIND_COUNT; ++kind) {
        if (files[kind] == nullptr && file_is_of_kind(path.get(), static_cast<FileKind>(kind))) {
            files[kind] = std::move(path);
            return;
        }
    }
}

static WideText dropped_path(HDROP drop, UINT index) {
    const UINT length = DragQueryFileW(drop, index, nullptr, 0);
    WideText path = memory_scratch_zeroed<wchar_t>(i64{length} + 1);
    DragQueryFileW(drop, index, path.get(), length + 1);
    return path;
}

// Null, or why these files are not opened, in words for a message box.
static const wchar_t *refusal(const AppState *state, const WideText files[FILE_KIND_COUNT]) {
    if (files[FILE_LAYOUT] == nullptr && files[FILE_PROCESS] == nullptr) {
        return DROP_WRONG_KIND;
    }
    if (state->run_active != 0) {
        return DROP_DURING_RUN;
    }
    return files[FILE_LAYOUT] == nullptr && state->layout == nullptr ? DROP_NO_LAYOUT : nullptr;
}

void open_files_dropped(AppState *state, HDROP drop) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    WideText files[FILE_KIND_COUNT];
    const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        add_file(files, dropped_path(drop, i));
    }
    DragFinish(drop);
    if (!window_is_busy()) {  // else the user is at another dialog
        const wchar_t *reason = refusal(state, files);
        if (reason == nullptr) {
            open_files_later(state, files[FILE_LAYOUT].get(), files[FILE_PROCESS].get());
        } else {
            message_show(reason);
        }
    }
}
