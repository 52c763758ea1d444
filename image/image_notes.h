// image_notes.h: what a picture's file tells besides its pixels: what made it, and how large a pixel is.
#pragma once
#include "platform/owned.h"

// One line of text about a picture.
struct ImageNote {
    const char *keyword;  // Latin letters, digits and single blanks, 1 to 79 of them
    const char *text;     // UTF-8
};

inline constexpr i32 MOST_IMAGE_NOTES = 16;

// Lengths are those of what the picture shows, metres; 0 where they are not known.
struct ImageNotes {
    f64 pixel_width, pixel_height;
    ImageNote items[MOST_IMAGE_NOTES];  // their texts lie in `texts`
    i32 count;
    char *texts;  // owned
    i64 texts_size;
};

// Notes without lengths and texts, freed with image_notes_free. Null when memory is lacking.
ImageNotes *image_notes_try_create();

void image_notes_free(ImageNotes *notes);  // takes null

// A copy, freed with image_notes_free. Null when memory is lacking.
ImageNotes *image_notes_try_copy(const ImageNotes *notes);

// Appends a text; one that is empty is left out.
//   text   UTF-8 by custom; a byte that is none is taken as the Latin-1 character of its number, and of
//          control characters blanks are made
// False when memory is lacking; the notes are then as they were.
bool image_notes_try_add(ImageNotes *notes, const char *keyword, const char *text);

template <>
struct Freed<ImageNotes> {
    void operator()(ImageNotes *notes) const { image_notes_free(notes); }
};
