#include "app/batch/option_reader.h"

#include <cstdio>
#include <cstring>

#include "platform/terminal.h"

static void keep_name(OptionReader *reader, char *word) {
    reader->argv[++reader->name_count] = word;
}

// The next word as a value, or null at the end.
static const char *take_word(OptionReader *reader) {
    return reader->next < reader->argc ? reader->argv[reader->next++] : nullptr;
}

static bool begins_with(const char *name, const char *start, size_t length) {
    return std::strncmp(name, start, length) == 0;
}

static int tell_ambiguous(const OptionReader *reader, const char *name, size_t length) {
    terminal_printf(stderr, "%s: option '--%.*s' is ambiguous; possibilities:", reader->argv[0],
                    static_cast<int>(length), name);
    for (int i = 0; i < reader->form_count; ++i) {
        if (begins_with(reader->forms[i].name, name, length)) {
            std::fprintf(stderr, " '--%s'", reader->forms[i].name);
        }
    }
    std::fputs("\n", stderr);
    return OPTION_WRONG;
}

// The form of a long name, whole or shortened; null when there is none or (*matches > 1) more than one.
static const OptionForm *find_long(const OptionReader *reader, const char *name, size_t length,
                                   int *matches) {
    const OptionForm *found = nullptr;
    *matches = 0;
    for (int i = 0; i < reader->form_count; ++i) {
        const OptionForm *form = &reader->forms[i];
        if (begins_with(form->name, name, length)) {
            if (std::strlen(form->name) == length) {
                *matches = 1;
                return form;
            }
            found = form;
            ++*matches;
        }
    }
    return *matches == 1 ? found : nullptr;
}

// `name` is the word without its dashes.
static int read_long(OptionReader *reader, const char *name) {
    const size_t length = std::strcspn(name, "=");
    const char *joined = name[length] == '=' ? name + length + 1 : nullptr;
    int matches = 0;
    const OptionForm *form = find_long(reader, name, length, &matches);
    if (matches > 1) {
        return tell_ambiguous(reader, name, length);
    }
    if (form == nullptr) {
        terminal_printf(stderr, "%s: unrecognized option '--%s'\n", reader->argv[0], name);
        return OPTION_WRONG;
    }
    if (joined != nullptr && !form->takes_value) {
        std::fprintf(stderr, "%s: option '--%s' doesn't allow an argument\n", reader->argv[0], form->name);
        return OPTION_WRONG;
    }
    if (form->takes_value) {
        reader->value = joined != nullptr ? joined : take_word(reader);
        if (reader->value == nullptr) {
            std::fprintf(stderr, "%s: option '--%s' requires an argument\n", reader->argv[0], form->name);
            return OPTION_WRONG;
        }
    }
    return form->code;
}

static const OptionForm *find_letter(const OptionReader *reader, char letter) {
    for (int i = 0; i < reader->form_count; ++i) {
        if (reader->forms[i].code == static_cast<unsigned char>(letter)) {
            return &reader->forms[i];
        }
    }
    return nullptr;
}

// One letter of a word; the rest of the word is its value, or more letters.
static int read_letter(OptionReader *reader) {
    const char letter = *reader->letters++;
    const char *rest = *reader->letters != 0 ? reader->letters : nullptr;
    const OptionForm *form = find_letter(reader, letter);
    if (form == nullptr) {
        terminal_printf(stderr, "%s: invalid option -- '%c'\n", reader->argv[0], letter);
        return OPTION_WRONG;
    }
    if (!form->takes_value) {
        reader->letters = rest;
        return form->code;
    }
    reader->letters = nullptr;
    reader->value = rest != nullptr ? rest : take_word(reader);
    if (reader->value == nullptr) {
        std::fprintf(stderr, "%s: option requires an argument -- '%c'\n", reader->argv[0], letter);
        return OPTION_WRONG;
    }
    return form->code;
}

int option_next(OptionReader *reader) {
    reader->value = nullptr;
    if (reader->letters != nullptr) {
        return read_letter(reader);
    }
    while (reader->next < reader->argc) {
        char *word = reader->argv[reader->next++];
        if (word[0] != '-' || word[1] == 0) {
            keep_name(reader, word);
        } else if (word[1] != '-') {
            reader->letters = word + 1;
            return read_letter(reader);
        } else if (word[2] != 0) {
            return read_long(reader, word + 2);
        } else {
            while (reader->next < reader->argc) {
                keep_name(reader, reader->argv[reader->next++]);
            }
        }
    }
    return OPTION_END;
}
