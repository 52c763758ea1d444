#include "log/text.h"

#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cwchar>

#include "platform/memory.h"

static constexpr i64 FIRST_ROOM = 512;  // characters; most texts fit
static constexpr i64 LARGEST_ROOM = i64{1}
                                    << 28;  // characters; a text that is longer counts as unformattable

enum FormatResult { FORMAT_TOO_LONG = -1, FORMAT_IMPOSSIBLE = -2 };

// One attempt with the room given, in characters. Returns the length, or a FormatResult.
static i64 format_into(wchar_t *buffer, i64 room, const wchar_t *format, va_list arguments) {
    va_list pass;
    va_copy(pass, arguments);
    errno = 0;
    const int length = std::vswprintf(buffer, static_cast<size_t>(room), format, pass);
    va_end(pass);
    if (length >= 0) {
        return length < room ? length : FORMAT_TOO_LONG;  // some C libraries tell the length needed
    }
    return errno == EILSEQ ? FORMAT_IMPOSSIBLE : FORMAT_TOO_LONG;
}

// Formats into *text, a new block (null when memory is lacking), and returns the length. The C library's
// wide formatter cannot count without a buffer, so the room grows until the text fits. A text that
// cannot be formatted at all becomes empty.
static i64 format_wide(wchar_t **text, const wchar_t *format, va_list arguments) {
    wchar_t first[FIRST_ROOM];
    Owned<wchar_t[]> grown;
    const wchar_t *result = first;
    i64 length = format_into(first, FIRST_ROOM, format, arguments);
    for (i64 room = 2 * FIRST_ROOM; length == FORMAT_TOO_LONG && room <= LARGEST_ROOM; room *= 2) {
        if (!memory_try_resize(&grown, room)) {
            *text = nullptr;
            return 0;
        }
        result = grown.get();
        length = format_into(grown.get(), room, format, arguments);
    }
    length = length < 0 ? 0 : length;
    *text = static_cast<wchar_t *>(memory_try_allocate(length + 1, sizeof(wchar_t)));
    if (*text == nullptr) {
        length = 0;
    } else {
        std::wmemcpy(*text, result, static_cast<size_t>(length));
        (*text)[length] = 0;
    }
    return length;
}

static i64 format_narrow(char **text, const char *format, va_list arguments) {
    va_list counting;
    va_copy(counting, arguments);
    int length = std::vsnprintf(nullptr, 0, format, counting);
    va_end(counting);
    if (length < 0) {
        length = 0;
        format = "";
    }
    *text = static_cast<char *>(memory_try_allocate(i64{length} + 1, 1));
    if (*text == nullptr) {
        return 0;
    }
    std::vsnprintf(*text, static_cast<size_t>(length) + 1, format, arguments);
    (*text)[length] = 0;
    return length;
}

WideText text_format_wide(const wchar_t *format, va_list arguments) {
    assert(format != nullptr);
    wchar_t *text = nullptr;
    format_wide(&text, format, arguments);
    if (text == nullptr) {
        memory_end_program();
    }
    return WideText(text);
}

NarrowText text_format_narrow(const char *format, va_list arguments) {
    assert(format != nullptr);
    char *text = nullptr;
    format_narrow(&text, format, arguments);
    if (text == nullptr) {
        memory_end_program();
    }
    return NarrowText(text);
}

static WString *wide_string(const wchar_t *format, va_list arguments) {
    auto *string = static_cast<WString *>(memory_try_allocate(1, sizeof(WString)));
    if (string != nullptr) {
        string->count = static_cast<u64>(format_wide(&string->text, format, arguments));
    }
    return string;
}

static NString *narrow_string(const char *format, va_list arguments) {
    auto *string = static_cast<NString *>(memory_try_allocate(1, sizeof(NString)));
    if (string != nullptr) {
        string->count = static_cast<u64>(format_narrow(&string->text, format, arguments));
    }
    return string;
}

WString *wstring_format(const wchar_t *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    WString *string = wide_string(format, arguments);
    va_end(arguments);
    return string;
}

NString *string_format(const char *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    NString *string = narrow_string(format, arguments);
    va_end(arguments);
    return string;
}

WString *wstring_make(const wchar_t *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    WString *string = wide_string(format, arguments);
    va_end(arguments);
    if (string == nullptr || string->text == nullptr) {
        memory_end_program();
    }
    return string;
}

NString *string_make(const char *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    NString *string = narrow_string(format, arguments);
    va_end(arguments);
    if (string == nullptr || string->text == nullptr) {
        memory_end_program();
    }
    return string;
}

WString *wstring_copy(const wchar_t *text) {
    return wstring_make(L"%ls", text != nullptr ? text : L"(null)");
}

NString *string_copy(const char *text) {
    return string_make("%s", text != nullptr ? text : "(null)");
}

void wstring_free(WString *string) {
    if (string != nullptr) {
        memory_free(string->text);
        string->count = 0;
        memory_free(string);
    }
}

void nstring_free(NString *string) {
    if (string != nullptr) {
        memory_free(string->text);
        string->count = 0;
        memory_free(string);
    }
}

const wchar_t *wstring_text(const WString *string) {
    return string != nullptr && string->text != nullptr ? string->text : L"";
}

const char *nstring_text(const NString *string) {
    return string != nullptr && string->text != nullptr ? string->text : "";
}

WideText text_widen(const char *text) {
    assert(text != nullptr);
    const i64 length = static_cast<i64>(std::strlen(text));
    auto wide = memory_scratch<wchar_t>(length + 1);
    for (i64 i = 0; i <= length; ++i) {
        wide[i] = static_cast<wchar_t>(static_cast<u16>(static_cast<i8>(text[i])));
    }
    return wide;
}
