// command_forms.h: the commands of a process file and the values of their arguments, for looking at a line as
// a whole. What is accepted is the readers' matter.
#pragma once
#include "platform/base.h"

enum ValueKind {
    VALUE_NONE,        // a flag
    VALUE_NAME,        // one word
    VALUE_DECIMAL,     // one number
    VALUE_LENGTH,      // one number in the file's unit
    VALUE_NANOMETRES,  // one number, a length in nanometres
    VALUE_INTEGERS,    // `count` whole numbers
    VALUE_NAMES,       // words up to the next argument
};

struct ArgumentForm {
    const char *name;  // null ends a list
    ValueKind kind;
    i32 count;              // of values; 0 for VALUE_NONE and VALUE_NAMES
    bool own_word = false;  // the reader does not find it inside longer words
};

struct CommandForm {
    const char *word;               // null ends the list of commands
    bool checked;                   // whether the reader refuses arguments that are not listed
    const ArgumentForm *arguments;  // as the reader looks for them
};

// Every command.
extern const CommandForm COMMAND_FORMS[];
