// text.h: heap strings made by formatting, wide and narrow.
#pragma once
#include <cstdarg>
#include "platform/owned.h"

// A wide heap string; the record and its text are separate blocks.
struct WString {
    wchar_t *text;  // zero-terminated
    u64 count;      // characters without the terminator
};

// The same for narrow text.
struct NString {
    char *text;
    u64 count;
};

// printf into a new string, freed with wstring_free / nstring_free. In the wide flavour "%ls" takes
// wide text and "%s" must not be used, since its meaning differs between systems. For those who can go on
// without: when the text cannot be allocated, it is null and the count 0; null when the record cannot be
// allocated.
WString *wstring_format(const wchar_t *format, ...);
// The narrow flavour.
NString *string_format(const char *format, ...);

// The same, but neither the string nor its text is ever null: lack of memory ends the program.
WString *wstring_make(const wchar_t *format, ...);
// The narrow flavour.
NString *string_make(const char *format, ...);

// A copy of a text; the same as making it with a bare text conversion. Null gives "(null)".
WString *wstring_copy(const wchar_t *text);
// The narrow flavour.
NString *string_copy(const char *text);

// Frees the text, sets the count to 0, then frees the record; null is ignored.
void wstring_free(WString *string);
// The same for narrow text.
void nstring_free(NString *string);

template <>
struct Freed<WString> {
    void operator()(WString *string) const { wstring_free(string); }
};

template <>
struct Freed<NString> {
    void operator()(NString *string) const { nstring_free(string); }
};

// The text, or "" for an absent string.
const wchar_t *wstring_text(const WString *string);
// The same for narrow text.
const char *nstring_text(const NString *string);

// Widens byte by byte with sign extension into 16-bit units: bytes 0x80 to 0xFF become 0xFF80 to
// 0xFFFF. Kept so rather than decoded, since the same units show in titles and file names.
WideText text_widen(const char *text);

// printf without the record. Lack of memory ends the program.
//   arguments   a va_list, used up
WideText text_format_wide(const wchar_t *format, va_list arguments);
// The same for narrow text.
NarrowText text_format_narrow(const char *format, va_list arguments);
