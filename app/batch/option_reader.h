// option_reader.h: the options of a command line, by the GNU conventions, on systems with and without a C
// library that knows them.
#pragma once

struct OptionForm {
    const char *name;  // without its dashes
    bool takes_value;
    int code;  // what option_next returns; below 256 it is also the option's letter
};

// State between the calls; the first fields are the caller's.
struct OptionReader {
    const OptionForm *forms;
    int form_count;
    int argc;
    char **argv;
    const char *value;    // of the option returned last; null when it takes none
    int name_count;       // words that are no options, moved to the front: argv[1] to argv[name_count]
    int next;             // word to look at; start at 1
    const char *letters;  // rest of a word of letters
};

enum { OPTION_END = -1, OPTION_WRONG = -2 };

// The code of the next option, OPTION_END, or OPTION_WRONG after telling why on standard error behind
// argv[0].
// "--" ends the options; long names may be shortened. At OPTION_END all names are counted.
int option_next(OptionReader *reader);
