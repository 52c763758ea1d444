#include "tests/win32/inner_user.h"

#include <windows.h>

#include <cstdio>
#include <vector>

#include "app/app_state.h"
#include "tests/desktop/memory_trips.h"
#include "tests/win32/window_search.h"

static constexpr DWORD GLANCE_MS = 3;

static std::wstring report_path;

static void report(const std::string &text) {
    std::FILE *file = _wfopen(report_path.c_str(), L"ab");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

// The text of a message box; empty for another dialog.
static std::string box_text(HWND dialog) {
    std::string text;
    const std::vector<HWND> children = windows_below(dialog);
    for (HWND child : children) {
        const std::string own = window_text(child);
        text = window_class(child) == "Static" && !own.empty() ? own : text;
    }
    return children.size() > 4 ? "" : text;
}

static void answer(HWND dialog) {
    const std::string text = box_text(dialog);
    report((text.empty() ? "dialog: " + window_text(dialog) : "box: " + text) + "\n");
    PostMessageW(dialog, WM_COMMAND, text.empty() ? IDCANCEL : IDOK, 0);
    for (i32 i = 0; i < 1000 && IsWindow(dialog); ++i) {
        Sleep(GLANCE_MS);
    }
}

static bool can_save(HWND main) {
    return GetMenuState(GetMenu(main), MENU_SAVE_IMAGES, MF_BYCOMMAND) == MF_ENABLED;
}

// Whether there is nothing to come from what was asked for.
static bool is_through(HWND main, const std::string &text, bool saving) {
    if (saving) {
        return text.find("\"Save images\" command") != std::string::npos && can_save(main);
    }
    return text.find("Use left and right arrows") != std::string::npos ||
           text.find("Run process canceled") != std::string::npos ||
           text.find("failed with error") != std::string::npos;
}

static DWORD WINAPI user_thread(void *) {
    bool saving = false;
    for (bool closed = false;; Sleep(GLANCE_MS)) {
        HWND dialog = window_of_process(GetCurrentProcessId(), DIALOG_CLASS);
        if (dialog != nullptr) {
            answer(dialog);
            continue;
        }
        if (closed) {
            continue;  // what goes wrong at the end is told in boxes too
        }
        HWND main = window_of_process(GetCurrentProcessId(), "MainClass");
        const std::string text = main != nullptr ? window_text(GetDlgItem(main, 2)) : "";
        if (!is_through(main, text, saving)) {
            continue;
        }
        if (!saving && can_save(main)) {
            saving = true;
            PostMessageW(main, WM_COMMAND, MENU_SAVE_IMAGES, 0);
            continue;
        }
        report(text);
        PostMessageW(main, WM_CLOSE, 0, 0);
        closed = true;
    }
}

void inner_user_start(const std::wstring &path) {
    report_path = path;
    CloseHandle(CreateThread(nullptr, 0, user_thread, nullptr, 0, nullptr));
}

void inner_user_tell_allocations(i64 trip) {
    report(trip_allocations_line(trip));
}
