// What another process's window of the program shows, and how the pictures of two runs differ; for
// program_session.sh. Texts go to standard output as UTF-8.
//   program_reader title | console            of the main window
//   program_reader status PART                of the status bar
//   program_reader wait TITLE                 until a window of that title is visible; 40 seconds at most
//   program_reader wait-console TEXT SECONDS  until the console contains the text
//   program_reader wait-gone TITLE            until no such window is left
//   program_reader field                      what stands in the name field of the open file dialog
//   program_reader box                        the text of the message box that is open
//   program_reader compare FOLDER FOLDER      BMP files of the same name, pixel by pixel
#include <windows.h>
// After windows.h, which names the types that these are written in.
#include <commctrl.h>
#include <shellapi.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
#include "tests/win32/window_search.h"

static void print(const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// Windows.

static bool is_open(const std::wstring &title) {
    for (HWND window : windows_of_process(0, "")) {
        if (window_text(window) == test_utf8(title)) {
            return true;
        }
    }
    return false;
}

static HWND main_window() {
    return window_of_process(0, "MainClass");
}

static std::string console_text() {
    HWND main = main_window();
    return main == nullptr ? "" : window_text(GetDlgItem(main, 2));
}

// The text of the first child of the open dialog that has that class and a text.
static std::string dialog_text(const std::string &child_class) {
    for (HWND dialog : windows_of_process(0, DIALOG_CLASS)) {
        for (HWND child : windows_below(dialog)) {
            std::string text = window_class(child) == child_class ? window_text(child) : "";
            if (!text.empty()) {
                return text;
            }
        }
    }
    return "";
}

// The bar writes the text into memory of its own process.
static std::string status_text(i32 part) {
    HWND bar = GetDlgItem(main_window(), 1);
    DWORD id = 0;
    GetWindowThreadProcessId(bar, &id);
    HANDLE process = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ, FALSE, id);
    wchar_t text[1024] = {};
    void *room = VirtualAllocEx(process, nullptr, sizeof(text), MEM_COMMIT, PAGE_READWRITE);
    SendMessageW(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(room));
    ReadProcessMemory(process, room, text, sizeof(text) - sizeof(wchar_t), nullptr);
    VirtualFreeEx(process, room, 0, MEM_RELEASE);
    CloseHandle(process);
    return test_utf8(text);
}

// Pictures.

static constexpr size_t HEADER_SIZE = 54;

struct Difference {
    i64 pixels;    // that differ
    i64 not_text;  // of them, those that are not black in either picture, as all text is
};

static bool is_black(const std::string &bytes, size_t at) {
    return bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 0;
}

// Both have the same size.
static Difference compare_pictures(const std::string &one, const std::string &other) {
    Difference difference = {};
    for (size_t at = HEADER_SIZE; at + 3 < one.size(); at += 4) {
        if (one.compare(at, 3, other, at, 3) != 0) {
            ++difference.pixels;
            difference.not_text += is_black(one, at) || is_black(other, at) ? 0 : 1;
        }
    }
    return difference;
}

// Returns 0 when the same pictures are in both folders and differ in text only.
static int compare_folders(const std::wstring &one, const std::wstring &other) {
    i32 count = 0;
    i64 pixels = 0;
    Difference sum = {};
    for (const std::wstring &name : test_folder_list(one)) {
        if (name.size() < 4 || name.compare(name.size() - 4, 4, L".bmp") != 0) {
            continue;
        }
        const std::string here = test_file_read(std::wstring(one).append(L"\\").append(name));
        const std::wstring match = std::wstring(other).append(L"\\").append(name);
        const std::string there = test_file_exists(match) ? test_file_read(match) : "";
        if (here.size() != there.size() || here.compare(0, HEADER_SIZE, there, 0, HEADER_SIZE) != 0) {
            print(test_utf8(name) + " is missing or of another size\n");
            return 1;
        }
        const Difference difference = compare_pictures(here, there);
        ++count;
        pixels += static_cast<i64>(here.size() - HEADER_SIZE) / 4;
        sum.pixels += difference.pixels;
        sum.not_text += difference.not_text;
    }
    std::printf("%d pictures, %lld pixels, %lld differ, %lld of them not by text\n", count,
                static_cast<long long>(pixels), static_cast<long long>(sum.pixels),
                static_cast<long long>(sum.not_text));
    return count > 0 && sum.not_text == 0 ? 0 : 1;
}

static int run(const std::vector<std::wstring> &arguments) {
    const std::wstring &command = arguments[1];
    std::wstring first = arguments.size() > 2 ? arguments[2] : L"";
    const std::wstring second = arguments.size() > 3 ? arguments[3] : L"";
    if (command == L"title") {
        print(window_text(main_window()));
    } else if (command == L"console") {
        print(console_text());
    } else if (command == L"status") {
        print(status_text(std::stoi(first)));
    } else if (command == L"field") {
        print(dialog_text("Edit"));
    } else if (command == L"box") {
        print(dialog_text("Static"));
    } else if (command == L"wait") {
        return wait_until([&] { return is_open(first); }) ? 0 : 1;
    } else if (command == L"wait-gone") {
        return wait_until([&] { return !is_open(first); }) ? 0 : 1;
    } else if (command == L"wait-console") {
        const std::string awaited = test_utf8(first);
        const i32 seconds = std::stoi(second);
        return wait_until([&] { return console_text().find(awaited) != std::string::npos; }, seconds) ? 0 : 1;
    } else if (command == L"compare") {
        return compare_folders(first, second);
    } else {
        return 2;
    }
    return 0;
}

int main() {
    int count = 0;
    wchar_t **texts = CommandLineToArgvW(GetCommandLineW(), &count);
    const std::vector<std::wstring> arguments(texts, texts + count);
    LocalFree(texts);
    return count > 1 ? run(arguments) : 2;
}
