// desktop_options.h: the command line of the desktop program.
#pragma once
#include "app/desktop_arguments.h"

using DesktopOptions = DesktopArguments;

enum DesktopParse {
    DESKTOP_PARSE_OK,
    DESKTOP_PARSE_END,    // nothing more to do: --help or --version is answered on standard output
    DESKTOP_PARSE_WRONG,  // told on standard error
};

// Answers --help and --version, wherever they stand before "--"; they need no display and so come before
// anything else. DESKTOP_PARSE_OK or DESKTOP_PARSE_END.
DesktopParse desktop_options_answer(i32 count, char **arguments);

// Reads what is left when the window library has taken its own options out. The texts of the options are
// those of `arguments`. DESKTOP_PARSE_OK or DESKTOP_PARSE_WRONG.
DesktopParse desktop_options_parse(i32 count, char **arguments, DesktopOptions *options);
