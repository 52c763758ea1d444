#include "export/profile_svg.h"

#include <cairo-svg.h>

#include <cassert>
#include <cstring>
#include <cwchar>

#include "export/profile_paint.h"

// Faces of the same widths first.
static constexpr char FONT_FAMILY[] = "Arial, 'Liberation Sans', Helvetica, sans-serif";

// What the library writes of everything but the texts, which it would make outlines of.
static bool draw_geometry(const ProfilePage *page, ExportText *svg) {
    cairo_surface_t *surface =
        cairo_svg_surface_create_for_stream(profile_paint_collect, svg, PAGE_WIDTH, page->height);
    cairo_t *cairo = cairo_create(surface);
    profile_paint(cairo, page);
    const cairo_status_t painted = cairo_status(cairo);
    cairo_destroy(cairo);
    cairo_surface_finish(surface);
    const cairo_status_t written = cairo_surface_status(surface);
    cairo_surface_destroy(surface);
    return painted == CAIRO_STATUS_SUCCESS && written == CAIRO_STATUS_SUCCESS && !svg->lacking;
}

static void put_attribute(ExportText *out, const char *name, f64 value, i32 decimals) {
    export_text_put(out, " ");
    export_text_put(out, name);
    export_text_put(out, "=\"");
    export_text_put_fixed(out, value, decimals);
    export_text_put(out, "\"");
}

static void put_text(ExportText *out, const DrawnText *text, const char *value) {
    export_text_put(out, "<text");
    put_attribute(out, "x", text->x, 2);
    put_attribute(out, "y", text->y, 2);
    put_attribute(out, "font-size", text->size, 0);
    const char *anchor = text->anchor == TEXT_CENTERED   ? " text-anchor=\"middle\""
                         : text->anchor == TEXT_TO_RIGHT ? " text-anchor=\"end\""
                                                         : "";
    export_text_put(out, anchor);
    export_text_put(out, text->bold ? " font-weight=\"bold\"" : "");
    if (text->gray > 0.0) {
        const char *fill = text->gray >= 1.0 ? " fill=\"#ffffff\"" : " fill=\"#4d4d4d\"";
        export_text_put(out, fill);
    }
    if (text->upright) {
        export_text_put(out, " transform=\"rotate(-90 ");
        export_text_put_fixed(out, text->x, 2);
        export_text_put(out, " ");
        export_text_put_fixed(out, text->y, 2);
        export_text_put(out, ")\"");
    }
    export_text_put(out, ">");
    export_text_put_xml(out, value);
    export_text_put(out, "</text>\n");
}

static void put_element(ExportText *out, const char *name, const char *value) {
    export_text_put(out, "<");
    export_text_put(out, name);
    export_text_put(out, ">");
    export_text_put_xml(out, value);
    export_text_put(out, "</");
    export_text_put(out, name);
    export_text_put(out, ">\n");
}

static void put_texts(ExportText *out, const ProfilePage *page) {
    export_text_put(out, "<g font-family=\"");
    export_text_put(out, FONT_FAMILY);
    export_text_put(out, "\">\n");
    for (i32 i = 0; i < page->texts.count; ++i) {
        put_text(out, &page->texts.items[i], drawn_text(&page->texts, i));
    }
    export_text_put(out, "</g>\n");
}

// The first place of `what` in the text, or -1; with `last`, the last one.
static i64 find_bytes(const ExportText *text, const char *what, bool last) {
    const i64 size = static_cast<i64>(std::strlen(what));
    i64 found = -1;
    for (i64 at = 0; at + size <= text->size && (last || found < 0); ++at) {
        if (std::memcmp(text->bytes + at, what, static_cast<size_t>(size)) == 0) {
            found = at;
        }
    }
    return found;
}

bool profile_svg_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && file != nullptr && reason != nullptr);
    const ProfilePage page = profile_page_create(step);
    ExportText svg = {};
    const Owned<ExportText> svg_owner(&svg);
    if (!draw_geometry(&page, &svg)) {
        std::wcsncpy(reason, L"the drawing could not be made", EXPORT_REASON_SIZE);
        return false;
    }
    const i64 root = find_bytes(&svg, "<svg ", false);
    const i64 end = find_bytes(&svg, "</svg>", true);
    i64 content = root;
    while (content >= 0 && content < end && svg.bytes[content] != '>') {
        ++content;
    }
    if (root < 0 || content >= end) {
        std::wcsncpy(reason, L"the drawing could not be made", EXPORT_REASON_SIZE);
        return false;
    }
    ++content;
    ExportText out = {};
    const Owned<ExportText> out_owner(&out);
    out.file = file;
    export_text_put_bytes(&out, svg.bytes, content);
    export_text_put(&out, "\n");
    put_element(&out, "title", export_text_from_wide(step->title != nullptr ? step->title : L"").get());
    if (step->facts != nullptr && step->facts->program != nullptr) {
        put_element(&out, "desc", step->facts->program);
    }
    export_text_put_bytes(&out, svg.bytes + content, end - content);
    put_texts(&out, &page);
    export_text_put_bytes(&out, svg.bytes + end, svg.size - end);
    if (!export_text_finish(&out)) {
        std::wcsncpy(reason, L"memory is lacking", EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
