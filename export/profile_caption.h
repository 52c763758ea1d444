// profile_caption.h: what made a drawing, in small letters at its foot.
#pragma once
#include "export/export_text.h"
#include "export/profile_page.h"

// Adds a text on one line within the page; what does not fit is left out, with three dots at the end.
void profile_add_line(DrawnTexts *texts, const DrawnText &style, const char *text);

// Adds the lines of the caption: layout, cell, section and process file; program and date; the vertical scale
// where it is not that of the width. Returns where they end.
f64 profile_caption_add(ProfilePage *page, const ExportStep *step, f64 x, f64 y);

// The name of the file at a path, without its folders.
const wchar_t *profile_file_name(const wchar_t *path);
