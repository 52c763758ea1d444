// process_read.h: a process file read from its text, with what the console showed.
#pragma once
#include <string>
#include <vector>
#include "process/process_file.h"

// Three lines that head a process file without a fault: the section is 10 wide and 5 deep.
// Defined here, so that it is there before the texts that other files put together from it.
inline const std::string HEAD =
    "settings -version 3\n"
    "gds -cell TOP\n"
    "location -x 0 -y 0 -dx 10 -dy 5\n";
inline constexpr i32 HEAD_LINES = 3;

// A zeroed stack to read into; frees at the end of its scope what the reader has filled in.
struct ReadStack {
    Stack stack = {};

    ReadStack() = default;
    ~ReadStack();
    ReadStack(const ReadStack &) = delete;
    ReadStack &operator=(const ReadStack &) = delete;
};

// Reads the text through a file called "p.txt" and holds the outcome.
struct ProcessRead : ReadStack {
    i32 result = -1;
    std::wstring console_wide;
    std::string console;
    std::vector<std::string> diagnostics;  // a line each, without the folder of the file

    explicit ProcessRead(const std::string &text);

    // Step 0 is the substrate. A step that is not there fails the test and is empty.
    const ProcessStep &step(i32 index) const;
};

// The console text of these faults of one line; line 0 is a fault of the whole file.
std::string faults(i32 line, const std::vector<std::string> &messages);

// A narrow text or "(none)" for null.
std::string text_of(const char *text);

std::vector<std::string> names_of(const NameList &list);

// Puts a small colour table in place: beige, red, and "dark" (51, 102, 153, that is 0.2, 0.4, 0.6).
void load_test_colors();
