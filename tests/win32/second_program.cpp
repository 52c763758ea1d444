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
        program->main = window_of_process(program->process.dwProcessId, "MainClass");
        HWND console = program->main != nullptr ? GetDlgItem(program->main, 2) : nullptr;
        return console != nullptr && window_text(console).find("Select menu") != std::string::npos;
    });
}

std::string second_program_message(const SecondProgram &program) {
    HWND box = nullptr;
    std::string text;
    wait_until([&] {
        box = window_of_process(program.process.dwProcessId, DIALOG_CLASS);
        for (HWND child : box != nullptr ? windows_below(box) : std::vector<HWND>()) {
            const std::string own = window_text(child);
            text = GetWindowLongPtrW(child, GWLP_ID) != IDOK && !own.empty() ? own : text;
        }
        return !text.empty();
    });
    if (box == nullptr) {
        return "";
    }
    std::string message = window_text(box) + ": " + text;
    PostMessageW(box, WM_COMMAND, IDOK, 0);
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
