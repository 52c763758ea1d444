// line_words.h: the words of a command line and what each of them is for, as the line's writer sees it: any
// white space separates words, and an argument is a word of its own. The readers see it otherwise (only
// blanks separate, arguments are found by text search); where the two differ, line_hints.h tells.
#pragma once
#include "process/command_forms.h"
#include "process/process_arguments.h"

enum WordRole {
    ROLE_COMMAND,
    ROLE_ARGUMENT,          // the name of a listed argument
    ROLE_VALUE,             // of a listed argument
    ROLE_UNKNOWN_ARGUMENT,  // "-" and a letter, but not listed
    ROLE_UNKNOWN_VALUE,     // behind an unknown argument
    ROLE_STRAY,             // nothing takes it
};

struct LineWord {
    const char *start;  // in the line
    i32 size;
    WordRole role;
    const ArgumentForm *argument;  // of ROLE_ARGUMENT and ROLE_VALUE, else null
    bool tab_before, tab_after;    // next to white space that is no blank
};

struct LineWords {
    const char *line;         // not owned
    const CommandForm *form;  // null for an unknown command
    LineWord items[PROCESS_LINE_SIZE / 2];
    i32 count;
};

// Splits a line of at most 1023 characters without line end. An unknown command has no roles but that of its
// first word.
void line_words_split(LineWords *words, const char *line);

// Whether the word is exactly that text.
bool line_word_is(const LineWord *word, const char *text);

// Where the readers find an argument: its first occurrence in the line, also inside a longer word. Null when
// it is not there.
const LineWord *line_words_find(const LineWords *words, const char *argument);
