#include "app/step_choice.h"

#include <cassert>
#include <cstdlib>
#include <cstring>

#include "log/log.h"
#include "log/shown_text.h"
#include "platform/memory.h"

i32 step_picture_number(const Stack *stack, i32 step_index) {
    assert(stack != nullptr && step_index >= 0 && step_index < stack->steps->count);
    i32 number = 0;
    for (i32 i = 0; i < step_index; ++i) {
        number += stack->steps->items[i]->kind != STEP_DUMP ? 1 : 0;
    }
    return number;
}

// The number of the last picture. The substrate always has one.
static i32 last_number(const Stack *stack) {
    i32 count = 0;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        count += stack->steps->items[i]->kind != STEP_DUMP ? 1 : 0;
    }
    return count - 1;
}

static void mark_numbers(const Stack *stack, i64 first, i64 last, u8 *wanted) {
    i64 number = 0;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        if (stack->steps->items[i]->kind != STEP_DUMP) {
            wanted[i] |= number >= first && number <= last ? 1 : 0;
            ++number;
        }
    }
}

// Reads digits; false when there are none, or more than any number of a picture has.
static bool read_number(const char **text, i64 *number) {
    const char *at = *text;
    *number = 0;
    while (*at >= '0' && *at <= '9' && *number < I32_MAX) {
        *number = *number * 10 + (*at++ - '0');
    }
    const bool read = at != *text && (*at < '0' || *at > '9');
    *text = at;
    return read;
}

// Reads "3" or "3-5". False when the item has another form.
static bool read_range(const char *item, i64 *first, i64 *last) {
    if (!read_number(&item, first)) {
        return false;
    }
    *last = *first;
    if (*item == '-') {
        ++item;
        if (!read_number(&item, last)) {
            return false;
        }
    }
    return *item == 0;
}

static bool is_text(const char *text, const char *item) {
    return text != nullptr && std::strcmp(text, item) == 0;
}

// What a step's -name is kept as depends on its command: films and the substrate show it in the legend.
static bool is_named(const ProcessStep *step, const char *item) {
    const bool film = step->kind == STEP_DEPOSITION || step->kind == STEP_COATING;
    const bool photo = step->kind == STEP_PHOTO;
    return is_text(step->title, item) || is_text(step->name, item) || (film && is_text(step->label, item)) ||
           (photo && is_text(step->resist_ref, item));
}

static bool mark_named(const Stack *stack, const char *item, u8 *wanted) {
    bool found = false;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const ProcessStep *step = stack->steps->items[i];
        if (step->kind != STEP_DUMP && is_named(step, item)) {
            wanted[i] = 1;
            found = true;
        }
    }
    return found;
}

static bool mark_item(const char *item, const Stack *stack, u8 *wanted) {
    const i64 end = last_number(stack);
    i64 first = 0;
    i64 last = 0;
    if (mark_named(stack, item, wanted)) {
        return true;  // before numbers, since a name may consist of digits
    }
    if (std::strcmp(item, "last") == 0) {
        mark_numbers(stack, end, end, wanted);
        return true;
    }
    if (!read_range(item, &first, &last)) {
        diagnostic_write(L"--steps: no step is named \"%ls\"", shown_text(item).text);
        return false;
    }
    if (first > last) {
        diagnostic_write(L"--steps: \"%ls\" ends before it begins", shown_text(item).text);
        return false;
    }
    if (last > end) {
        diagnostic_write(L"--steps: there is no picture %lld; they are 0 to %lld",
                         static_cast<long long>(first > end ? first : last), static_cast<long long>(end));
        return false;
    }
    mark_numbers(stack, first, last, wanted);
    return true;
}

// Ends the text before trailing blanks and gives its first other character.
static char *trimmed(char *text) {
    text += std::strspn(text, " \t");
    size_t length = std::strlen(text);
    while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == '\t')) {
        text[--length] = 0;
    }
    return text;
}

bool step_choice_mark(const char *list, const Stack *stack, u8 *wanted) {
    assert(list != nullptr && stack != nullptr && wanted != nullptr);
    const size_t size = std::strlen(list) + 1;
    const NarrowText copy(memory_new_array<char>(static_cast<i64>(size)));
    std::memcpy(copy.get(), list, size);
    char *rest = copy.get();
    while (rest != nullptr) {
        char *comma = std::strchr(rest, ',');
        if (comma != nullptr) {
            *comma = 0;
        }
        const char *item = trimmed(rest);
        if (item[0] == 0) {
            diagnostic_write(L"--steps: an item of the list is empty");
            return false;
        }
        if (!mark_item(item, stack, wanted)) {
            return false;
        }
        rest = comma != nullptr ? comma + 1 : nullptr;
    }
    return true;
}
