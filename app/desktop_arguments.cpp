#include "app/desktop_arguments.h"

#include <cassert>
#include <cstring>

const char *const DESKTOP_HELP_TEXT =
    "Usage: quarn [options] [LAYOUT.gds [PROCESS.txt]]\n"
    "\n"
    "Shows the cross sections of a semiconductor process, step by step, in a window.\n"
    "Loads the GDSII layout and runs the process file on it when they are given.\n"
    "\n" PICTURE_OPTIONS_HELP
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

// The option that a word names, with its value, when it stands in the same word, behind it; else null.
static const PictureOptionForm *find_option(const char *word, const char **value) {
    for (const PictureOptionForm &form : PICTURE_OPTION_FORMS) {
        const size_t length = std::strlen(form.name);
        if (std::strncmp(word, "--", 2) == 0 && std::strncmp(word + 2, form.name, length) == 0) {
            const char *rest = word + 2 + length;
            if (rest[0] == 0 || rest[0] == '=') {
                *value = rest[0] == '=' ? rest + 1 : nullptr;
                return &form;
            }
        }
    }
    return nullptr;
}

// Takes the option at *next with its value, and moves on to the last word of it.
static void take_option(i32 count, char **arguments, i32 *next, DesktopArguments *read) {
    const char *word = arguments[*next];
    const char *value = nullptr;
    const PictureOptionForm *form = find_option(word, &value);
    if (form == nullptr) {
        read->fault = "unknown option";
        read->wrong = word;
        return;
    }
    if (value == nullptr && *next + 1 < count) {
        value = arguments[++*next];
    }
    if (value == nullptr) {
        read->fault = "a value is missing behind";
        read->wrong = word;
        return;
    }
    read->fault = picture_option_read(&read->pictures, form->option, value);
    read->wrong = read->fault != nullptr ? value : nullptr;
}

DesktopArguments desktop_arguments_read(i32 count, char **arguments) {
    assert(count >= 0 && (arguments != nullptr || count == 0));
    DesktopArguments read = {};
    read.pictures = NO_PICTURE_OPTIONS;
    bool options_over = false;
    for (i32 i = 1; i < count && read.fault == nullptr; ++i) {
        const char *argument = arguments[i];
        if (!options_over && std::strcmp(argument, "--") == 0) {
            options_over = true;
        } else if (!options_over && argument[0] == '-' && argument[1] != 0) {
            take_option(count, arguments, &i, &read);
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
