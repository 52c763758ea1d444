#include "tests/win32/second_program.h"

#include "app/win32/desktop.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static constexpr const wchar_t *USER_DATA_VARIABLE = L"QUARN_TEST_USER_DATA";

i32 second_program_main() {
    wchar_t user_data[1024] = {};
    GetEnvironmentVariableW(USER_DATA_VARIABLE, user_data, 1024);
    desktop_redirect_user_data(user_data);
    return desktop_run(GetModuleHandleW(nullptr));
}

static BOOL CALLBACK keep_main_window(HWND window, LPARAM argument) {
    auto *program = reinterpret_cast<SecondProgram *>(argument);
    wchar_t name[64] = {};
    DWORD process = 0;
    GetClassNameW(window, name, 64);
    GetWindowThreadProcessId(window, &process);
    if (process == program->process.dwProcessId && std::wcscmp(name, L"MainClass") == 0) {
        program->main = window;
    }
    return TRUE;
}

bool second_program_start(SecondProgram *program, const std::wstring &current_folder,
                          const std::wstring &user_data) {
    *program = {};
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(path) + L"\" " + test_wide(SECOND_PROGRAM_OPTION);
    SetEnvironmentVariableW(USER_DATA_VARIABLE, user_data.c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    if (!CreateProcessW(path, command.data(), nullptr, nullptr, FALSE, 0, nullptr, current_folder.c_str(),
                        &startup, &program->process)) {
        return false;
    }
    return wait_until([&] {
        EnumWindows(keep_main_window, reinterpret_cast<LPARAM>(program));
        HWND console = program->main != nullptr ? GetDlgItem(program->main, 2) : nullptr;
        return console != nullptr && window_text(console).find("Select menu") != std::string::npos;
    });
}

i32 second_program_wait_end(SecondProgram *program) {
    DWORD code = 0;
    bool ended = WaitForSingleObject(program->process.hProcess, PATIENCE_S * 1000) == WAIT_OBJECT_0;
    if (ended) {
        GetExitCodeProcess(program->process.hProcess, &code);
    } else {
        TerminateProcess(program->process.hProcess, 1);
    }
    CloseHandle(program->process.hThread);
    CloseHandle(program->process.hProcess);
    return ended ? static_cast<i32>(code) : -1000;
}
