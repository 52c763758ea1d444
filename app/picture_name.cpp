#include "app/picture_name.h"

#include <cassert>
#include <cstdlib>
#include <cwchar>

#include "log/log.h"
#include "log/text.h"
#include "platform/platform.h"
#include "platform/utf8.h"
#include "platform/wide_text.h"

static constexpr i32 LONGEST_NAME = 255;  // bytes or units, by the rules; the same on both systems
static constexpr size_t NUMBER_ROOM = 16;
static constexpr i32 LONGEST_NUMBER = 9;        // digits of a number that is read back
static constexpr i32 LONGEST_CONTINUATION = 3;  // of a character in UTF-8
static const wchar_t *const FIRST_TITLE = L"The substrate";
static const wchar_t *const TITLE_START = L"Cross section after ";

PictureNameRules picture_name_rules() {
    return PLATFORM_SEPARATOR[0] == L'\\' ? PICTURE_NAME_WINDOWS : PICTURE_NAME_LINUX;
}

WideText picture_title(const Stack *stack, i32 step_index) {
    assert(stack != nullptr && step_index >= 0 && step_index < stack->steps->count);
    if (step_index == 0) {
        return wide_copy(FIRST_TITLE);
    }
    const Owned<NString> title(
        string_format("Cross section after %s", stack->steps->items[step_index]->title));
    return title != nullptr && title->text != nullptr ? text_widen(title->text) : nullptr;
}

static u32 code_of(wchar_t unit) {
    return static_cast<u32>(static_cast<i32>(unit));
}

static wchar_t fit_unit(wchar_t unit, PictureNameRules rules) {
    const u32 code = code_of(unit);
    const wchar_t *forbidden = rules == PICTURE_NAME_WINDOWS ? L"/\\<>:\"|?*" : L"/";
    const bool bad = code < 0x20 || code == 0x7F || std::wcschr(forbidden, unit) != nullptr;
    return bad ? L'_' : unit;
}

// What a unit adds to the length that the system counts.
static i32 unit_length(wchar_t unit, PictureNameRules rules) {
    const u32 code = code_of(unit);
    if (rules == PICTURE_NAME_WINDOWS) {
        return code > 0xFFFF ? 2 : 1;
    }
    if (code >= 0xDC80 && code <= 0xDCFF) {
        return 1;  // a byte that is not text
    }
    char bytes[4];
    return code <= LARGEST_CODE_POINT ? utf8_encode(code, bytes) : 3;
}

// Whether a character goes on at this place of a title: the second half of a pair, or what text_widen makes
// of the bytes of UTF-8 behind the first.
static bool is_inside_character(const wchar_t *title, size_t at) {
    const u32 code = code_of(title[at]);
    const u32 before = at > 0 ? code_of(title[at - 1]) : 0;
    const bool second_half = is_surrogate(code) && code >= 0xDC00 && before >= 0xD800 && before < 0xDC00;
    const bool later_byte = code >= 0xFF80 && code < 0xFFC0 && before >= 0xFF80 && before <= 0xFFFF;
    return second_half || later_byte;
}

// How many units of the title fit, whole characters only.
static size_t fitting_length(const wchar_t *title, i32 room, PictureNameRules rules) {
    size_t count = 0;
    while (title[count] != 0) {
        room -= unit_length(fit_unit(title[count], rules), rules);
        if (room < 0) {
            break;
        }
        ++count;
    }
    for (i32 i = 0; i < LONGEST_CONTINUATION && title[count] != 0 && is_inside_character(title, count); ++i) {
        --count;
    }
    return count;
}

WideText picture_name(i32 number, const wchar_t *title, const wchar_t *extension, PictureNameRules rules,
                      bool *shortened) {
    assert(number >= 0 && title != nullptr && extension != nullptr);
    wchar_t prefix[NUMBER_ROOM];
    std::swprintf(prefix, NUMBER_ROOM, L"%.03d ", number);
    const size_t prefix_length = std::wcslen(prefix);
    const size_t extension_length = std::wcslen(extension);
    const i32 room = LONGEST_NAME - static_cast<i32>(prefix_length + extension_length);
    const size_t count = fitting_length(title, room, rules);
    WideText name(memory_new_array<wchar_t>(static_cast<i64>(prefix_length + count + extension_length + 1)));
    std::wcscpy(name.get(), prefix);
    for (size_t i = 0; i < count; ++i) {
        name[prefix_length + i] = fit_unit(title[i], rules);
    }
    std::wcscpy(name.get() + prefix_length + count, extension);
    if (shortened != nullptr) {
        *shortened = title[count] != 0;
    }
    return name;
}

static bool starts_with(const wchar_t *text, const wchar_t *start) {
    return std::wcsncmp(text, start, std::wcslen(start)) == 0;
}

// Length of a file name without the extension; 0 when it has another.
static size_t length_without(const wchar_t *name, const wchar_t *extension) {
    const size_t length = std::wcslen(name);
    const size_t end = std::wcslen(extension);
    return length >= end && std::wcscmp(name + length - end, extension) == 0 ? length - end : 0;
}

i32 picture_name_number(const wchar_t *name, const wchar_t *extension) {
    assert(name != nullptr && extension != nullptr);
    i32 digits = 0;
    while (name[digits] >= L'0' && name[digits] <= L'9') {
        ++digits;
    }
    if (digits < 3 || digits > LONGEST_NUMBER || (digits > 3 && name[0] == L'0') || name[digits] != L' ') {
        return -1;
    }
    const i32 number = static_cast<i32>(std::wcstol(name, nullptr, 10));
    const wchar_t *title = name + digits + 1;
    const size_t length = length_without(title, extension);
    const bool is_titled = number == 0 ? starts_with(title, FIRST_TITLE) && length == std::wcslen(FIRST_TITLE)
                                       : starts_with(title, TITLE_START);
    return length > 0 && is_titled ? number : -1;
}

void picture_names_check(const Stack *stack, const wchar_t *extension) {
    assert(stack != nullptr && extension != nullptr);
    i32 number = 0;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        if (stack->steps->items[i]->kind == STEP_DUMP) {
            continue;
        }
        const WideText title = picture_title(stack, i);
        bool shortened = false;
        const WideText name = picture_name(number, title != nullptr ? title.get() : L"", extension,
                                           picture_name_rules(), &shortened);
        if (shortened) {
            diagnostic_write(L"step %d has a title too long for a file name: its picture will be \"%ls\"", i,
                             name.get());
        }
        ++number;
    }
}
