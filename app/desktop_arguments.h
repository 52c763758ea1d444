// desktop_arguments.h: the command line of the desktop program, the same on every system.
#pragma once
#include "app/picture_options.h"

struct DesktopArguments {
    const char *layout_path;   // null: start without a layout
    const char *process_path;  // run when the layout is loaded; null: none
    PictureOptions pictures;
    const char *fault;  // null, or what is wrong with `wrong`
    const char *wrong;  // lives as long as the command line
};

enum DesktopQuestion {
    DESKTOP_ASKS_NOTHING,
    DESKTOP_ASKS_HELP,
    DESKTOP_ASKS_VERSION,
};

// What is asked for, wherever it stands before "--".
DesktopQuestion desktop_arguments_question(i32 count, char **arguments);

// Reads the files, the options of pictures ("--width 800" or "--width=800") and "--"; the texts are those of
// `arguments`, and `fault` tells of the first argument that is none of them.
DesktopArguments desktop_arguments_read(i32 count, char **arguments);

extern const char *const DESKTOP_HELP_TEXT;
