#include "process/line_words.h"

#include <cassert>
#include <cstring>

// What the C library's text input takes for white space, without the line end.
static const char *const WHITE_SPACE = " \t\v\f";

static bool is_tab(char c) {
    return c == '\t' || c == '\v' || c == '\f';
}

static bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

static void split(LineWords *words, const char *line) {
    const char *at = line + std::strspn(line, WHITE_SPACE);
    while (*at != 0) {
        LineWord word = {};
        word.start = at;
        word.size = static_cast<i32>(std::strcspn(at, WHITE_SPACE));
        word.tab_before = at > line && is_tab(at[-1]);
        word.tab_after = is_tab(at[word.size]);
        words->items[words->count++] = word;
        at += word.size;
        at += std::strspn(at, WHITE_SPACE);
    }
}

bool line_word_is(const LineWord *word, const char *text) {
    auto size = static_cast<size_t>(word->size);
    return std::strlen(text) == size && std::memcmp(word->start, text, size) == 0;
}

static const ArgumentForm *find_form(const CommandForm *form, const LineWord *word) {
    for (const ArgumentForm *argument = form->arguments; argument->name != nullptr; ++argument) {
        if (line_word_is(word, argument->name)) {
            return argument;
        }
    }
    return nullptr;
}

// "-inf" and "-nan" are values where a number is awaited.
static bool is_negative_word_number(const LineWord *word) {
    return word->size >= 4 &&
           (std::strncmp(word->start, "-inf", 4) == 0 || std::strncmp(word->start, "-nan", 4) == 0);
}

static bool takes_number(const ArgumentForm *argument) {
    return argument != nullptr && (argument->kind == VALUE_DECIMAL || argument->kind == VALUE_LENGTH ||
                                   argument->kind == VALUE_NANOMETRES);
}

static void assign_roles(LineWords *words) {
    const ArgumentForm *current = nullptr;  // whose values are awaited
    i32 awaited = 0;
    bool unknown = false;  // the last argument is not listed
    for (i32 i = 1; i < words->count; ++i) {
        LineWord *word = &words->items[i];
        const bool dashed = word->start[0] == '-' && word->size > 1 && is_letter(word->start[1]);
        const ArgumentForm *named = dashed ? find_form(words->form, word) : nullptr;
        const bool number = awaited > 0 && takes_number(current) && is_negative_word_number(word);
        if (named != nullptr) {
            word->role = ROLE_ARGUMENT;
            word->argument = named;
            current = named;
            awaited = named->count;
            unknown = false;
        } else if (dashed && !number) {
            word->role = ROLE_UNKNOWN_ARGUMENT;
            current = nullptr;
            awaited = 0;
            unknown = true;
        } else if (awaited > 0 || (current != nullptr && current->kind == VALUE_NAMES)) {
            word->role = ROLE_VALUE;
            word->argument = current;
            --awaited;
        } else {
            word->role = unknown ? ROLE_UNKNOWN_VALUE : ROLE_STRAY;
        }
    }
}

void line_words_split(LineWords *words, const char *line) {
    assert(words != nullptr && line != nullptr && std::strlen(line) < PROCESS_LINE_SIZE);
    words->line = line;
    words->form = nullptr;
    words->count = 0;
    split(words, line);
    for (const CommandForm *form = COMMAND_FORMS; form->word != nullptr && words->count > 0; ++form) {
        if (line_word_is(&words->items[0], form->word)) {
            words->form = form;
            assign_roles(words);
            return;
        }
    }
}

const LineWord *line_words_find(const LineWords *words, const char *argument) {
    assert(words != nullptr && argument != nullptr);
    const char *found = std::strstr(words->line, argument);
    for (i32 i = 0; found != nullptr && i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        if (found >= word->start && found < word->start + word->size) {
            return word;
        }
    }
    return nullptr;
}
