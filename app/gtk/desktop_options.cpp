#include "app/gtk/desktop_options.h"

#include <cstdio>

#include "app/app_state.h"
#include "platform/terminal.h"

DesktopParse desktop_options_answer(i32 count, char **arguments) {
    switch (desktop_arguments_question(count, arguments)) {
        case DESKTOP_ASKS_HELP: std::fputs(DESKTOP_HELP_TEXT, stdout); return DESKTOP_PARSE_END;
        case DESKTOP_ASKS_VERSION:
            std::printf("%s %s\n", PROGRAM_NAME, PROGRAM_VERSION);
            return DESKTOP_PARSE_END;
        case DESKTOP_ASKS_NOTHING: break;
    }
    return DESKTOP_PARSE_OK;
}

DesktopParse desktop_options_parse(i32 count, char **arguments, DesktopOptions *options) {
    *options = desktop_arguments_read(count, arguments);
    if (options->fault != nullptr) {
        std::fprintf(stderr, "quarn: %s '%s'\nTry 'quarn --help' for more information.\n", options->fault,
                     options->wrong);
        return DESKTOP_PARSE_WRONG;
    }
    return DESKTOP_PARSE_OK;
}
