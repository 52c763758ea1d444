// export_text.h: text of files that other programs read: names of unknown encoding as clean UTF-8, escaped
// for the place where they stand, and numbers that no locale changes. Line ends are "\n" on every system.
#pragma once
#include <cstdio>
#include "platform/owned.h"

// A text that grows. All zero is a valid empty one that is kept in memory.
struct ExportText {
    std::FILE *file;  // not owned: receives what has been gathered, piece by piece; null: all is kept
    char *bytes;      // what is not in the file yet; owned; without a terminator
    i64 size;         // of that, bytes
    i64 capacity;
    bool lacking;  // memory has been lacking: what was written since is missing
};

// Frees what the text holds, but not the record, which is then empty.
void export_text_free(ExportText *text);

// The owner of what a text in a local record holds.
template <>
struct Freed<ExportText> {
    void operator()(ExportText *text) const { export_text_free(text); }
};

// Hands what is left to the file, if there is one. False when memory has been lacking; what goes wrong with
// the file is left to its owner, who asks std::ferror.
bool export_text_finish(ExportText *text);

// Appends bytes as they are.
void export_text_put_bytes(ExportText *text, const char *bytes, i64 size);

// Appends a zero-terminated text as it is: for what the program itself says.
void export_text_put(ExportText *text, const char *plain);

// The four below take a zero-terminated text of unknown encoding: UTF-8 by custom; a byte that is none is
// taken as the Latin-1 character of its number. What they append is valid UTF-8 in every case.

// As one line: control characters become blanks.
void export_text_put_clean(ExportText *text, const char *value);

// Between tags or within quoted attributes of XML and HTML: & < > " ' and tabs, line feeds and carriage
// returns are references, so that readers give back just these characters; what XML cannot hold becomes a
// blank (control characters) or U+FFFD.
void export_text_put_xml(ExportText *text, const char *value);

// A JSON string with its quotes, control characters and line ends included as escapes. "<", ">", "&" and the
// separators U+2028 and U+2029 are escapes too, so that it can stand in a script element of a page.
void export_text_put_json(ExportText *text, const char *value);

// A field of a table of comma separated values, always on one line: control characters become blanks; it is
// quoted where it holds commas, semicolons, quotes, or blanks at an end. A text that a spreadsheet would take
// for a formula (it begins with = + - or @, blanks before that aside) gets an apostrophe in front.
void export_text_put_csv(ExportText *text, const char *value);

// The same for two texts that make one field.
void export_text_put_csv(ExportText *text, const char *value, const char *more);

void export_text_put_integer(ExportText *text, i64 value);

// The shortest decimal number that reads back as the same f32 or f64; very large and small ones with an
// exponent ("1e+20"). Both zeros are "0"; what is no number is "nan", "inf" or "-inf", which JSON knows not.
void export_text_put_f32(ExportText *text, f32 value);
void export_text_put_f64(ExportText *text, f64 value);

// Rounded to that many decimals, 0 to 20, half-way cases of the exact value to even; never with an exponent
// below 1e15, and never "-0.00".
void export_text_put_fixed(ExportText *text, f64 value, i32 decimals);

// A height in micrometres as nanometres: the shortest decimal that, divided by 1000 and narrowed to f32, is
// the same height to the last bit.
void export_text_put_nm(ExportText *text, f32 height_um);

// Wide text as clean UTF-8 on one line, as export_text_put_clean makes it. Lack of memory ends the program.
NarrowText export_text_from_wide(const wchar_t *value);
