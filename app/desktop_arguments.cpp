#include "app/desktop_arguments.h"

#include <cassert>
#include <cstring>

const char *const DESKTOP_HELP_TEXT =
    "Usage: quarn [LAYOUT.gds [PROCESS.txt]]\n"
    "\n"
    "Shows the cross sections of a semiconductor process, step by step, in a window.\n"
    "Loads the GDSII layout and runs the process file on it when they are given.\n"
    "\n"
    "      --help            show this text\n"
    "      --version         show the version\n"
    "\n"
    "quarn-batch does the same without a window.\n";

DesktopQuestion desktop_arguments_question(i32 count, char **arguments) {
    assert(count >= 0 && (arguments != nullptr || count == 0));
    for (i32 i = 1; i < count && std::strcmp(arguments[i], "--") != 0; ++i) {
        if (std::strcmp(arguments[i], "--help") == 0) {
            return DESKTOP_ASKS_HELP;
        }
        if (std::strcmp(arguments[i], "--version") == 0) {
            return DESKTOP_ASKS_VERSION;
        }
    }
    return DESKTOP_ASKS_NOTHING;
}

DesktopArguments desktop_arguments_read(i32 count, char **arguments) {
    assert(count >= 0 && (arguments != nullptr || count == 0));
    DesktopArguments read = {};
    bool options_over = false;
    for (i32 i = 1; i < count && read.fault == nullptr; ++i) {
        const char *argument = arguments[i];
        if (!options_over && std::strcmp(argument, "--") == 0) {
            options_over = true;
        } else if (!options_over && argument[0] == '-' && argument[1] != 0) {
            read.fault = "unknown option";
            read.wrong = argument;
        } else if (read.layout_path == nullptr) {
            read.layout_path = argument;
        } else if (read.process_path == nullptr) {
            read.process_path = argument;
        } else {
            read.fault = "too many files:";
            read.wrong = argument;
        }
    }
    return read;
}
