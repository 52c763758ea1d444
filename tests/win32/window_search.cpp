#include "tests/win32/window_search.h"

#include "tests/support/test_support.h"

bool wait_until(const std::function<bool()> &condition, i32 seconds) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
    while (!condition()) {
        if (GetTickCount64() > end) {
            return false;
        }
        Sleep(3);
    }
    return true;
}

std::string window_class(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return test_utf8(name);
}

std::string window_text(HWND window) {
    const auto length = static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
    std::wstring text(length + 1, L'\0');
    const auto got = static_cast<size_t>(
        SendMessageW(window, WM_GETTEXT, length + 1, reinterpret_cast<LPARAM>(text.data())));
    text.resize(got);
    return test_utf8(text);
}

static BOOL CALLBACK add_window(HWND window, LPARAM list) {
    reinterpret_cast<std::vector<HWND> *>(list)->push_back(window);
    return TRUE;
}

std::vector<HWND> windows_on_top() {
    std::vector<HWND> list;
    EnumWindows(add_window, reinterpret_cast<LPARAM>(&list));
    return list;
}

std::vector<HWND> windows_below(HWND window) {
    std::vector<HWND> list;
    EnumChildWindows(window, add_window, reinterpret_cast<LPARAM>(&list));
    return list;
}

std::vector<HWND> windows_of_process(DWORD process, const std::string &name) {
    std::vector<HWND> found;
    for (HWND window : windows_on_top()) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if ((process == 0 || owner == process) && IsWindowVisible(window) != FALSE &&
            (name.empty() || window_class(window) == name)) {
            found.push_back(window);
        }
    }
    return found;
}

HWND window_of_process(DWORD process, const std::string &name) {
    const std::vector<HWND> found = windows_of_process(process, name);
    return found.empty() ? nullptr : found[0];
}
