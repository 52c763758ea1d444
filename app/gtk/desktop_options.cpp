#include "app/gtk/desktop_options.h"

#include <cstdio>
#include <cstring>

#include "app/app_state.h"
#include "platform/terminal.h"

static const char *const HELP_TEXT =
    "Usage: quarn [LAYOUT.gds [PROCESS.txt]]\n"
    "\n"
    "Shows the cross sections of a semiconductor process, step by step, in a window.\n"
    "Loads the GDSII layout and runs the process file on it when they are given.\n"
    "\n"
    "      --help            show this text\n"
    "      --version         show the version\n"
    "\n"
    "quarn-batch does the same without a window.\n";

DesktopParse desktop_options_answer(i32 count, char **arguments) {
    for (i32 i = 1; i < count && std::strcmp(arguments[i], "--") != 0; i++) {
        if (std::strcmp(arguments[i], "--help") == 0) {
            std::fputs(HELP_TEXT, stdout);
            return DESKTOP_PARSE_END;
        }
        if (std::strcmp(arguments[i], "--version") == 0) {
            std::printf("%s %s\n", PROGRAM_NAME, PROGRAM_VERSION);
            return DESKTOP_PARSE_END;
        }
    }
    return DESKTOP_PARSE_OK;
}

static DesktopParse wrong_usage(const char *fault, const char *argument) {
    terminal_printf(stderr, "quarn: %s '%s'\nTry 'quarn --help' for more information.\n", fault, argument);
    return DESKTOP_PARSE_WRONG;
}

DesktopParse desktop_options_parse(i32 count, char **arguments, DesktopOptions *options) {
    *options = {};
    bool options_over = false;
    for (i32 i = 1; i < count; i++) {
        const char *argument = arguments[i];
        if (!options_over && std::strcmp(argument, "--") == 0) {
            options_over = true;
        } else if (!options_over && argument[0] == '-' && argument[1] != 0) {
            return wrong_usage("unknown option", argument);
        } else if (options->layout_path == nullptr) {
            options->layout_path = argument;
        } else if (options->process_path == nullptr) {
            options->process_path = argument;
        } else {
            return wrong_usage("too many files:", argument);
        }
    }
    return DESKTOP_PARSE_OK;
}
