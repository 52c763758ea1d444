// second_program.h: another process of the program under test, beside the first.
#pragma once
#include <windows.h>

#include <string>

#include "platform/base.h"

inline constexpr const char *SECOND_PROGRAM_OPTION = "--second-program";

// What a process started with that option does: runs the program with the user data folder that the
// environment names.
i32 second_program_main();

struct SecondProgram {
    PROCESS_INFORMATION process;
    HWND main;
};

// Starts it in a current folder that holds the data files.
//   memory_trip   allocations that succeed before one fails; negative: none fails
//   report        when it is not empty, the program loads "a.gds", runs "p.txt", saves and ends by itself,
//   and
//                 writes this file (inner_user.h)
bool second_program_launch(SecondProgram *program, const std::wstring &current_folder,
                           const std::wstring &user_data, i32 memory_trip, const std::wstring &report = L"");

// The same, and waits for its window.
bool second_program_start(SecondProgram *program, const std::wstring &current_folder,
                          const std::wstring &user_data);

// Waits for its message box and presses OK. The caption and the text, UTF-8, with ": " between them.
std::string second_program_message(const SecondProgram &program);

// Waits for its end; its exit code, or -1000.
i32 second_program_wait_end(SecondProgram *program);
