#include "export/profile_pdf.h"

#include <cairo-pdf.h>

#include <cassert>
#include <cstring>
#include <cwchar>

#include "export/export_text.h"
#include "export/profile_font.h"
#include "export/profile_paint.h"

// Each part of a text in a family of faces that has its letters.
static void show_runs(cairo_t *cairo, const char *text, bool bold) {
    while (*text != 0) {
        const FontRun run = font_run_first(text, bold);
        cairo_select_font_face(cairo, run.family, CAIRO_FONT_SLANT_NORMAL,
                               bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
        const NarrowText part = memory_scratch<char>(run.size + 1);
        std::memcpy(part.get(), text, static_cast<size_t>(run.size));
        part[run.size] = 0;
        cairo_show_text(cairo, part.get());  // goes on where the last one ended
        text += run.size;
    }
}

static void show_text(cairo_t *cairo, const DrawnText *text, const char *value) {
    const f64 width = text_width(value, text->size, text->bold);
    const f64 back = text->anchor == TEXT_CENTERED   ? 0.5 * width
                     : text->anchor == TEXT_TO_RIGHT ? width
                                                     : 0.0;
    cairo_set_font_size(cairo, text->size);
    cairo_set_source_rgb(cairo, text->gray, text->gray, text->gray);
    cairo_save(cairo);
    cairo_translate(cairo, text->x, text->y);
    if (text->upright) {
        cairo_rotate(cairo, -1.5707963267948966);
    }
    cairo_move_to(cairo, -back, 0.0);
    show_runs(cairo, value, text->bold);
    cairo_restore(cairo);
}

static void put_metadata(cairo_surface_t *surface, const ExportStep *step) {
    const NarrowText title = export_text_from_wide(step->title != nullptr ? step->title : L"");
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, title.get());
    const ExportFacts *facts = step->facts;
    if (facts == nullptr) {
        return;
    }
    if (facts->program != nullptr) {
        cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATOR, facts->program);
    }
    // "2024-05-31 17:05", which the library wants with seconds.
    if (std::strlen(facts->date) == 16) {
        char date[EXPORT_DATE_SIZE] = {};
        std::memcpy(date, facts->date, 16);
        date[10] = 'T';
        std::memcpy(date + 16, ":00", 4);
        cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE, date);
    }
}

static cairo_status_t write_to_file(void *file, const unsigned char *bytes, unsigned int size) {
    return std::fwrite(bytes, 1, size, static_cast<std::FILE *>(file)) == size ? CAIRO_STATUS_SUCCESS
                                                                               : CAIRO_STATUS_WRITE_ERROR;
}

bool profile_pdf_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && file != nullptr && reason != nullptr);
    const ProfilePage page = profile_page_create(step);
    profile_cairo_prepare();
    cairo_surface_t *surface =
        cairo_pdf_surface_create_for_stream(write_to_file, file, PAGE_WIDTH, page.height);
    put_metadata(surface, step);
    cairo_t *cairo = cairo_create(surface);
    profile_paint(cairo, &page);
    for (i32 i = 0; i < page.texts.count; ++i) {
        show_text(cairo, &page.texts.items[i], drawn_text(&page.texts, i));
    }
    const cairo_status_t painted = cairo_status(cairo);
    cairo_destroy(cairo);
    cairo_surface_finish(surface);
    const cairo_status_t written = cairo_surface_status(surface);
    cairo_surface_destroy(surface);
    // What goes wrong with the file is the caller's.
    if (painted != CAIRO_STATUS_SUCCESS && painted != CAIRO_STATUS_WRITE_ERROR) {
        std::swprintf(reason, EXPORT_REASON_SIZE, L"%hs", cairo_status_to_string(painted));
        return false;
    }
    if (written != CAIRO_STATUS_SUCCESS && written != CAIRO_STATUS_WRITE_ERROR) {
        std::swprintf(reason, EXPORT_REASON_SIZE, L"%hs", cairo_status_to_string(written));
        return false;
    }
    return true;
}
