// page_html.h: puts a page together: the skeleton with its marks filled in.
#pragma once
#include <cstdio>
#include "export/page_files.h"

// What differs from page to page.
struct PageParts {
    const char *title;                              // HTML already, UTF-8
    void (*write_data)(const void *, std::FILE *);  // writes elements with the data of the page
    const void *source;                             // what it gets
};

// Writes the page to a file that is open for binary writing; what goes wrong with it is left to the caller,
// who asks std::ferror.
void page_html_write(const PageParts *parts, std::FILE *file);

// The content policy of every page: nothing from outside, and no script but those of the page, by their
// hashes. An attribute's value in HTML.
void page_html_write_policy(std::FILE *file);
