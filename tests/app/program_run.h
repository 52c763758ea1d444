// program_run.h: run a program as a user of a shell would, and see what it says and how it ends.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "platform/base.h"

// How to run. Texts are bytes.
struct ProgramCall {
    std::string program;
    std::vector<std::string> arguments;
    std::string folder;                    // current folder of the program
    std::vector<std::string> environment;  // NAME=VALUE, beside those of the test
    i64 file_size_limit = 0;               // bytes that any file may have; 0 for no limit
    i64 memory_limit = 0;                  // bytes of address space; 0 for no limit
    std::string output_path;               // where standard output goes; empty: into `output`
    bool close_output = false;             // without any standard output
};

struct ProgramResult {
    i32 status;  // exit status; -1 when a signal ended it
    i32 signal;  // that signal, else 0
    std::string output;
    std::string error;
};

// A program under way; `output` grows with what it prints.
struct ProgramRun {
    i32 process;
    i32 output_pipe;  // -1 without one
    std::string error_path;
    std::string output;
};

// Starts the program. What takes longer than two minutes is ended.
//   scratch   a folder for what it says on standard error
ProgramRun program_start(const ProgramCall &call, const std::string &scratch);

// Reads on until `text` was printed. False when the program ended before.
bool program_wait_for(ProgramRun *run, const std::string &text);

void program_signal(const ProgramRun &run, i32 signal);

// Reads on to the end.
ProgramResult program_finish(ProgramRun *run);

// All in one.
ProgramResult program_run(const ProgramCall &call, const std::string &scratch);
