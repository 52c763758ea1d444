// profile_text.h: texts of a drawing, before they are written as SVG or PDF: places and sizes in points, y
// down. Texts are clean UTF-8. The face is Arial, or what stands for it; its widths are those of all that do.
#pragma once
#include "platform/owned.h"

enum TextAnchor { TEXT_FROM_LEFT, TEXT_CENTERED, TEXT_TO_RIGHT };

struct DrawnText {
    f64 x, y;  // of the anchor, on the base line
    f64 size;
    TextAnchor anchor;
    bool upright;  // reads from below to above
    bool bold;
    f64 gray;  // 0 black to 1 white
    i32 text;  // where it begins in the bytes of all
};

struct DrawnTexts {
    Owned<DrawnText[]> items;
    i32 count, capacity;
    Owned<char[]> bytes;  // of all texts, zero-terminated
    i32 size, bytes_capacity;
};

// Appends a text.
//   style   of which `text` is not looked at
void drawn_texts_add(DrawnTexts *texts, const DrawnText &style, const char *text);

const char *drawn_text(const DrawnTexts *texts, i32 item);

// The width of a text in a size.
f64 text_width(const char *text, f64 size, bool bold);

// A text of unknown encoding as clean UTF-8, and where it would be wider than `most`, its beginning with
// three dots.
NarrowText text_shortened(const char *text, f64 size, f64 most);
