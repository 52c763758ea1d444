#include "tests/win32/inner_user.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <vector>

#include "app/app_state.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"
#include "tests/win32/window_driver.h"

static constexpr DWORD GLANCE_MS = 3;

static std::wstring report_path;

static void report(const std::string &text) {
    std::FILE *file = _wfopen(report_path.c_str(), L"ab");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

static BOOL CALLBACK add_window(HWND window, LPARAM list) {
    reinterpret_cast<std::vector<HWND> *>(list)->push_back(window);
    return TRUE;
}

// A visible window of this process and of that class; null when there is none.
static HWND own_window(const wchar_t *class_name) {
    std::vector<HWND> all;
    EnumWindows(add_window, reinterpret_cast<LPARAM>(&all));
    for (HWND window : all) {
        wchar_t name[64] = {};
        DWORD process = 0;
        GetClassNameW(window, name, 64);
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window) &&
            std::wcscmp(name, class_name) == 0) {
            return window;
        }
    }
    return nullptr;
}

// The text of a message box; empty for another dialog.
static std::string box_text(HWND dialog) {
    std::vector<HWND> children;
    EnumChildWindows(dialog, add_window, reinterpret_cast<LPARAM>(&children));
    std::string text;
    for (HWND child : children) {
        wchar_t name[64] = {};
        GetClassNameW(child, name, 64);
        const std::string own = window_text(child);
        text = std::wcscmp(name, L"Static") == 0 && !own.empty() ? own : text;
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
    for (bool saving = false;; Sleep(GLANCE_MS)) {
        HWND dialog = own_window(L"#32770");
        if (dialog != nullptr) {
            answer(dialog);
            continue;
        }
        HWND main = own_window(L"MainClass");
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
        return 0;
    }
}

void inner_user_start(const std::wstring &path) {
    report_path = path;
    CloseHandle(CreateThread(nullptr, 0, user_thread, nullptr, 0, nullptr));
}

void inner_user_tell_allocations(int trip) {
    int left = 0;
    for (void *block = memory_try_allocate(1, 1); block != nullptr && left < trip;
         block = memory_try_allocate(1, 1)) {
        memory_free(block);
        ++left;
    }
    report("allocations: " + std::to_string(trip - left) + "\n");
}
