// shown_text.h: names from files as one line of a message can show them.
#pragma once
#include "platform/base.h"

inline constexpr i32 SHOWN_TEXT_MOST = 80;  // characters; a longer text is cut and ends in "..."

// Room for an escape in the place of every character.
struct ShownText {
    wchar_t text[SHOWN_TEXT_MOST * 6 + 1];  // zero-terminated
};

// A text of the system's bytes (or the first `size` of them) without anything that would move a terminal's
// cursor, end the line or turn its direction: such characters, and bytes that are no text, are written as
// "\x1b" or "\u202e". Null is the empty text.
ShownText shown_text(const char *bytes);

// Of the first `size` bytes only, which need no terminator.
ShownText shown_text(const char *bytes, i32 size);
