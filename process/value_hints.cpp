#include "process/value_hints.h"

#include <cassert>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "process/color_table.h"
#include "process/hints.h"

static constexpr f32 THICKNESS_LEAST = 1.0F;      // nanometres
static constexpr f32 THICKNESS_MOST = 100000.0F;  // nanometres

// A number behind an argument, as its reader reads it.
struct NumberText {
    f32 value;
    char word[PROCESS_LINE_SIZE];  // the whole word that it stands in
    const char *rest;              // of the word, behind the number
};

// False when the argument is not there as a word of its own, or without a number.
static bool read_number(const LineWords *words, const char *argument, NumberText *number) {
    const LineWord *name = line_words_find(words, argument);
    if (name == nullptr || !line_word_is(name, argument)) {
        return false;
    }
    i32 begin = 0;
    i32 end = 0;
    if (std::sscanf(name->start, "%*s %n%f%n", &begin, &number->value, &end) != 1) {
        return false;
    }
    if (std::sscanf(name->start + begin, "%1023s", number->word) != 1) {
        return false;
    }
    number->rest = number->word + (end - begin);
    return true;
}

static const wchar_t *unit_of(const ArgumentForm *argument, UnitMode units) {
    if (argument->kind == VALUE_DECIMAL) {
        return L"it is a plain number";
    }
    const bool nanometres = argument->kind == VALUE_NANOMETRES || units == UNIT_NANOMETRES;
    return nanometres ? L"its unit is the nanometre" : L"its unit is the micrometre";
}

static bool is_hexadecimal(const char *word) {
    const char *digits = word + (word[0] == '-' || word[0] == '+' ? 1 : 0);
    return digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
}

static void hint_thickness(const char *argument, f32 nanometres, i32 line_number) {
    ShownText name = shown_text(argument);
    auto value = static_cast<f64>(nanometres);
    const bool is_depth = std::strcmp(argument, "-depth") == 0;
    if (nanometres < 0.0F) {
        hint_write(line_number, L"%ls is negative (%g): write it without the sign", name.text, value);
    } else if (nanometres < THICKNESS_LEAST) {
        hint_write(line_number, L"%ls of %g is less than 1 nm: its unit is the nanometre", name.text, value);
    } else if (nanometres > THICKNESS_MOST && !is_depth) {
        hint_write(line_number, L"%ls of %g is more than 100 um: its unit is the nanometre", name.text,
                   value);
    }
}

// At most one hint about a number.
static void hint_number(const LineWords *words, const ArgumentForm *argument, i32 line_number,
                        UnitMode units) {
    NumberText number;
    if (!read_number(words, argument->name, &number)) {
        return;
    }
    ShownText name = shown_text(argument->name);
    ShownText word = shown_text(number.word);
    auto value = static_cast<f64>(number.value);
    if (is_hexadecimal(number.word)) {
        hint_write(line_number, L"%ls: \"%ls\" is read as %g: write a decimal number", name.text, word.text,
                   value);
    } else if (number.rest[0] == ',') {
        hint_write(line_number, L"%ls: \"%ls\" is read as %g: write decimals with a point", name.text,
                   word.text, value);
    } else if (number.rest[0] != 0) {
        hint_write(line_number, L"%ls: \"%ls\" is read as %g: write the figure alone (%ls)", name.text,
                   word.text, value, unit_of(argument, units));
    } else if (!std::isfinite(number.value)) {
        hint_write(line_number, L"%ls: \"%ls\" is no number to calculate with", name.text, word.text);
    } else if (argument->kind == VALUE_NANOMETRES) {
        hint_thickness(argument->name, number.value, line_number);
    }
}

static bool is_plain(const LineWord *word) {
    for (i32 i = 0; i < word->size; ++i) {
        if (static_cast<u8>(word->start[i]) >= 0x80) {
            return false;
        }
    }
    return true;
}

static void hint_names(const LineWords *words, i32 line_number) {
    for (i32 i = 0; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        const bool name = word->role == ROLE_VALUE &&
                          (word->argument->kind == VALUE_NAME || word->argument->kind == VALUE_NAMES);
        if (name && !is_plain(word)) {
            hint_write(line_number,
                       L"\"%ls\" has characters beyond ASCII: titles, file names and messages show others in "
                       L"their place",
                       shown_text(word->start, word->size).text);
            return;
        }
    }
}

static void hint_comma_between_integers(const LineWords *words, i32 line_number) {
    for (i32 i = 0; i < words->count; ++i) {
        const LineWord *word = &words->items[i];
        const bool integers = word->role == ROLE_VALUE && word->argument->kind == VALUE_INTEGERS;
        if (integers && std::memchr(word->start, ',', static_cast<size_t>(word->size)) != nullptr) {
            hint_write(line_number, L"%ls: separate whole numbers by blanks, without commas",
                       shown_text(word->argument->name).text);
            return;
        }
    }
}

static void hint_color(const LineWords *words, i32 line_number) {
    const LineWord *name = line_words_find(words, "-scolor");
    if (name == nullptr || !line_word_is(name, "-scolor") || name->argument == nullptr) {
        return;
    }
    if (line_words_find(words, "-color") != nullptr) {
        hint_write(line_number, L"-scolor is ignored beside -color");
        return;
    }
    char color[PROCESS_LINE_SIZE];
    f32 rgb[3];
    if (hints_full() || std::sscanf(name->start, "%*s %1023s", color) != 1 || color_lookup(color, rgb) == 0) {
        return;
    }
    const char *nearest = color_nearest(color);
    if (nearest != nullptr) {
        hint_write(line_number, L"there is no colour \"%ls\": did you mean %ls?", shown_text(color).text,
                   shown_text(nearest).text);
    }
}

void value_hints(const LineWords *words, i32 line_number, UnitMode units) {
    assert(words != nullptr && words->form != nullptr);
    for (const ArgumentForm *argument = words->form->arguments; argument->name != nullptr; ++argument) {
        switch (argument->kind) {
            case VALUE_DECIMAL:
            case VALUE_LENGTH:
            case VALUE_NANOMETRES: hint_number(words, argument, line_number, units); break;
            default: break;
        }
    }
    hint_comma_between_integers(words, line_number);
    hint_names(words, line_number);
    hint_color(words, line_number);
}
