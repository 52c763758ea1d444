#include "process/line_hints.h"

#include <cassert>
#include <cstring>

#include "log/near_name.h"
#include "process/hints.h"
#include "process/line_words.h"
#include "process/value_hints.h"

static ShownText shown_word(const LineWord *word) {
    return shown_text(word->start, word->size);
}

// UTF-8, or the single byte of older character sets where it stands alone.
static bool is_no_break_space(const char *line, size_t at) {
    auto byte = [line](size_t index) { return static_cast<u8>(line[index]); };
    if (byte(at) == 0xC2 && byte(at + 1) == 0xA0) {
        return true;
    }
    return byte(at) == 0xA0 && (at == 0 || byte(at - 1) < 0x80) && byte(at + 1) < 0x80;
}

// Whether there was one.
static bool hint_no_break_space(const char *line, i32 line_number) {
    for (size_t at = 0; line[at] != 0; ++at) {
        if (is_no_break_space(line, at)) {
            hint_write(line_number,
                       L"the no-break space in column %d is part of a word: separate words by plain blanks",
                       static_cast<i32>(at) + 1);
            return true;
        }
    }
    return false;
}

static void hint_unknown_command(const LineWords *words, i32 line_number) {
    const LineWord *word = &words->items[0];
    if (word->start[0] == '#') {
        hint_write(line_number,
                   L"a comment has its \"#\" in the first column: take out what stands before it");
        return;
    }
    if (line_word_is(word, "gen") || line_word_is(word, "cut")) {
        hint_write(line_number, L"the command is written \"%ls\"",
                   line_word_is(word, "gen") ? L"settings" : L"location");
        return;
    }
    char name[PROCESS_LINE_SIZE];
    std::memcpy(name, word->start, static_cast<size_t>(word->size));
    name[word->size] = 0;
    NearName near = {name, nullptr, 0};
    for (const CommandForm *form = COMMAND_FORMS; form->word != nullptr; ++form) {
        near_name_try(&near, form->word);
    }
    if (near.best != nullptr) {
        hint_write(line_number, L"there is no command \"%ls\": did you mean \"%ls\"?", shown_word(word).text,
                   shown_text(near.best).text);
    }
}

// Only the readers of these split at blanks alone.
static bool needs_blanks(const ArgumentForm *argument) {
    return argument != nullptr && (argument->kind == VALUE_INTEGERS || argument->kind == VALUE_NAMES);
}

// Whether a tab beside the word changes what is read.
static bool tab_matters(const LineWords *words, const LineWord *word) {
    switch (word->role) {
        case ROLE_ARGUMENT:
        case ROLE_UNKNOWN_ARGUMENT:
            return word->tab_after &&
                   ((words->form->checked && !word->tab_before) || needs_blanks(word->argument));
        case ROLE_VALUE: return (word->tab_before || word->tab_after) && needs_blanks(word->argument);
        default: return false;
    }
}

static void hint_tab(const LineWords *words, i32 line_number) {
    for (i32 i = 0; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        if (tab_matters(words, word)) {
            hint_write(line_number, L"the tab beside \"%ls\" is part of a word: separate words by blanks",
                       shown_word(word).text);
            return;
        }
    }
}

static i32 count_words(const LineWords *words, const ArgumentForm *argument) {
    i32 count = 0;
    for (i32 i = 0; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        count += word->role == ROLE_ARGUMENT && word->argument == argument ? 1 : 0;
    }
    return count;
}

static void hint_arguments(const LineWords *words, i32 line_number) {
    for (const ArgumentForm *argument = words->form->arguments; argument->name != nullptr; ++argument) {
        const LineWord *found = line_words_find(words, argument->name);
        ShownText name = shown_text(argument->name);
        if (found != nullptr && !argument->own_word && !line_word_is(found, argument->name)) {
            const wchar_t *rest = argument->kind == VALUE_NONE ? L"" : L" with its value";
            hint_write(
                line_number,
                L"%ls is found inside \"%ls\" and read from there: write %ls%ls to the left of that word, "
                L"or change the word",
                name.text, shown_word(found).text, name.text, rest);
        }
        const i32 count = count_words(words, argument);
        if (count > 1) {
            hint_write(line_number, L"%ls is given %d times: only the first counts", name.text, count);
        }
    }
}

// An argument that the reader refuses; what it cannot see is stray.
static bool is_refused(const LineWords *words, const LineWord *word) {
    return word->role == ROLE_UNKNOWN_ARGUMENT && words->form->checked && !word->tab_before;
}

static void hint_unknown_arguments(const LineWords *words, i32 line_number) {
    for (i32 i = 1; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        if (!is_refused(words, word) || word->tab_after) {
            continue;
        }
        char name[PROCESS_LINE_SIZE];
        std::memcpy(name, word->start, static_cast<size_t>(word->size));
        name[word->size] = 0;
        NearName near = {name, nullptr, 0};
        for (const ArgumentForm *form = words->form->arguments; form->name != nullptr; ++form) {
            near_name_try(&near, form->name);
        }
        // An equal name is one that is looked for and yet refused.
        if (near.best != nullptr && std::strcmp(near.best, name) != 0) {
            hint_write(line_number, L"%ls has no argument %ls: did you mean %ls?",
                       shown_text(words->form->word).text, shown_word(word).text, shown_text(near.best).text);
            return;
        }
    }
}

static void hint_stray_words(const LineWords *words, i32 line_number) {
    const LineWord *first = nullptr;
    i32 count = 0;
    bool refused = false;  // the words belong to an argument that the reader reports
    for (i32 i = 1; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        if (word->role == ROLE_UNKNOWN_ARGUMENT) {
            refused = is_refused(words, word);
        }
        const bool stray = word->role == ROLE_STRAY || (word->role == ROLE_UNKNOWN_ARGUMENT && !refused) ||
                           (word->role == ROLE_UNKNOWN_VALUE && !refused);
        if (stray) {
            first = count == 0 ? word : first;
            ++count;
        }
    }
    if (count == 0) {
        return;
    }
    const wchar_t *what =
        first->start[0] == '#' ? L"a comment needs a line of its own" : L"no argument takes it";
    if (count == 1) {
        hint_write(line_number, L"\"%ls\" is ignored: %ls", shown_word(first).text, what);
    } else {
        hint_write(line_number, L"\"%ls\" and %d more word%ls ignored: %ls", shown_word(first).text,
                   count - 1, count == 2 ? L" are" : L"s are",
                   first->start[0] == '#' ? what : L"no argument takes them");
    }
}

void line_hints(const char *line, i32 line_number, UnitMode units) {
    assert(line != nullptr && std::strlen(line) < PROCESS_LINE_SIZE);
    LineWords words;
    line_words_split(&words, line);
    if (words.count == 0) {
        return;
    }
    if (hint_no_break_space(line, line_number)) {
        return;  // what else looks wrong follows from it
    }
    if (words.form == nullptr) {
        hint_unknown_command(&words, line_number);
        return;
    }
    hint_tab(&words, line_number);
    hint_arguments(&words, line_number);
    hint_unknown_arguments(&words, line_number);
    hint_stray_words(&words, line_number);
    value_hints(&words, line_number, units);
}
