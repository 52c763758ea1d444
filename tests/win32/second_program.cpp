#include "tests/win32/second_program.h"

#include <cwchar>

#include "app/win32/desktop.h"
#include "platform/memory.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/inner_user.h"
#include "tests/win32/window_driver.h"

static constexpr const wchar_t *USER_DATA_VARIABLE = L"QUARN_TEST_USER_DATA";
static constexpr const wchar_t *MEMORY_VARIABLE = L"QUARN_TEST_MEMORY";
static constexpr const wchar_t *REPORT_VARIABLE = L"QUARN_TEST_REPORT";

i32 second_program_main() {
    wchar_t user_data[1024] = {};
    GetEnvironmentVariableW(USER_DATA_VARIABLE, user_data, 1024);
    desktop_redirect_user_data(user_data);
    wchar_t memory_trip[16] = {};
    GetEnvironmentVariableW(MEMORY_VARIABLE, memory_trip, 16);
    const i32 trip = std::wcstol(memory_trip, nullptr, 10);
    wchar_t report[1024] = {};
    if (GetEnvironmentVariableW(REPORT_VARIABLE, report, 1024) == 0) {
        memory_trip_after(trip);
        return desktop_run(GetModuleHandleW(nullptr), nullptr, nullptr);
    }
    inner_user_start(report);
    memory_trip_after(trip);
    const i32 status = desktop_run(GetModuleHandleW(nullptr), L"a.gds", L"p.txt");
    inner_user_tell_allocations(trip);
    return status;
}

// Whether the window is of that process and of that class.
static bool is_window_of(HWND window, DWORD process, const wchar_t *class_name) {
    wchar_t name[64] = {};
    DWORD owner = 0;
    GetClassNameW(window, name, 64);
    GetWindowThreadProcessId(window, &owner);
    return owner == process && std::wcscmp(name, class_name) == 0;
}

static BOOL CALLBACK keep_main_window(HWND window, LPARAM argument) {
    auto *program = reinterpret_cast<SecondProgram *>(argument);
    if (is_window_of(window, program->process.dwProcessId, L"MainClass")) {
        program->main = window;
    }
    return TRUE;
}

bool second_program_launch(SecondProgram *program, const std::wstring &current_folder,
                           const std::wstring &user_data, i32 memory_trip, const std::wstring &report) {
    *program = {};
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(nullptr), path, MAX_PATH);  // where this file is, not where it says
    std::wstring command = L"\"" + std::wstring(path) + L"\" " + test_wide(SECOND_PROGRAM_OPTION);
    SetEnvironmentVariableW(USER_DATA_VARIABLE, user_data.c_str());
    SetEnvironmentVariableW(MEMORY_VARIABLE, std::to_wstring(memory_trip).c_str());
    SetEnvironmentVariableW(REPORT_VARIABLE, report.empty() ? nullptr : report.c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    return CreateProcessW(path, command.data(), nullptr, nullptr, FALSE, 0, nullptr, current_folder.c_str(),
                          &startup, &program->process) != FALSE;
}

bool second_program_start(SecondProgram *program, const std::wstring &current_folder,
                          const std::wstring &user_data) {
    if (!second_program_launch(program, current_folder, user_data, -1)) {
        return false;
    }
    return wait_until([&] {
        EnumWindows(keep_main_window, reinterpret_cast<LPARAM>(program));
        HWND console = program->main != nullptr ? GetDlgItem(program->main, 2) : nullptr;
        return console != nullptr && window_text(console).find("Select menu") != std::string::npos;
    });
}

struct BoxSearch {
    DWORD process;
    HWND box;
    std::string text;
};

static BOOL CALLBACK keep_box_text(HWND child, LPARAM argument) {
    const std::string text = window_text(child);
    if (GetWindowLongPtrW(child, GWLP_ID) != IDOK && !text.empty()) {
        reinterpret_cast<BoxSearch *>(argument)->text = text;
    }
    return TRUE;
}

static BOOL CALLBACK keep_box(HWND window, LPARAM argument) {
    auto *search = reinterpret_cast<BoxSearch *>(argument);
    if (is_window_of(window, search->process, L"#32770")) {
        search->box = window;
        EnumChildWindows(window, keep_box_text, argument);
    }
    return TRUE;
}

std::string second_program_message(const SecondProgram &program) {
    BoxSearch search = {program.process.dwProcessId, nullptr, ""};
    wait_until([&] {
        EnumWindows(keep_box, reinterpret_cast<LPARAM>(&search));
        return search.box != nullptr && !search.text.empty();
    });
    if (search.box == nullptr) {
        return "";
    }
    std::string message = window_text(search.box) + ": " + search.text;
    PostMessageW(search.box, WM_COMMAND, IDOK, 0);
    return message;
}

i32 second_program_wait_end(SecondProgram *program) {
    DWORD code = 0;
    const bool ended = WaitForSingleObject(program->process.hProcess, PATIENCE_S * 1000) == WAIT_OBJECT_0;
    if (ended) {
        GetExitCodeProcess(program->process.hProcess, &code);
    } else {
        TerminateProcess(program->process.hProcess, 1);
    }
    CloseHandle(program->process.hThread);
    CloseHandle(program->process.hProcess);
    return ended ? static_cast<i32>(code) : -1000;
}
