// page_html.h: puts a page together: the skeleton with its marks filled in.
#pragma once
#include "export/export_text.h"

// What differs from page to page.
struct PageParts {
    const char *title;                                       // text of unknown encoding
    void (*put_data)(const void *source, ExportText *text);  // appends the elements with the page's data
    const void *source;
};

// Appends the page.
void page_html_put(ExportText *text, const PageParts *parts);
