#include "export/profile_svg.h"

#include <cairo-svg.h>

#include <cassert>
#include <cstring>
#include <cwchar>

#include "export/export_text.h"
#include "export/profile_font.h"
#include "export/profile_paint.h"

// Faces of the same widths first.
static constexpr char FONT_FAMILY[] = "Arial, 'Liberation Sans', Helvetica, sans-serif";

static cairo_status_t collect(void *export_text, const unsigned char *bytes, unsigned int size) {
    auto *text = static_cast<ExportText *>(export_text);
    export_text_put_bytes(text, static_cast<const char *>(static_cast<const void *>(bytes)), i64{size});
    return text->lacking ? CAIRO_STATUS_NO_MEMORY : CAIRO_STATUS_SUCCESS;
}

// What the library writes of everything but the texts, which it would make outlines of.
static bool draw_geometry(const ProfilePage *page, ExportText *svg) {
    profile_cairo_prepare();
    cairo_surface_t *surface = cairo_svg_surface_create_for_stream(collect, svg, PAGE_WIDTH, page->height);
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

// The first place of `what` at or behind `from`, or -1.
static i64 find_bytes(const ExportText *text, const char *what, i64 from) {
    const i64 size = static_cast<i64>(std::strlen(what));
    for (i64 at = from < 0 ? text->size : from; at + size <= text->size; ++at) {
        if (std::memcmp(text->bytes + at, what, static_cast<size_t>(size)) == 0) {
            return at;
        }
    }
    return -1;
}

// Places in what the library wrote; -1 where it is not as expected.
struct SvgParts {
    i64 root_end;  // behind the tag of the root
    i64 content;   // behind the tag of the group in it, whose number tells how many drawings were made before
    i64 end;       // the end tag of the root
};

static SvgParts svg_parts_find(const ExportText *svg) {
    const i64 root = find_bytes(svg, ">", find_bytes(svg, "<svg ", 0));
    const i64 group = find_bytes(svg, ">", find_bytes(svg, "<g id=\"surface", root));
    i64 end = -1;
    for (i64 at = find_bytes(svg, "</svg>", group); at >= 0; at = find_bytes(svg, "</svg>", at + 1)) {
        end = at;
    }
    return {root < 0 ? -1 : root + 1, group < 0 ? -1 : group + 1, end};
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
    const SvgParts parts = svg_parts_find(&svg);
    if (parts.root_end < 0 || parts.content < 0 || parts.end < 0) {
        std::wcsncpy(reason, L"the drawing could not be made", EXPORT_REASON_SIZE);
        return false;
    }
    ExportText out = {};
    const Owned<ExportText> out_owner(&out);
    out.file = file;
    export_text_put_bytes(&out, svg.bytes, parts.root_end);
    export_text_put(&out, "\n");
    put_element(&out, "title", export_text_from_wide(step->title != nullptr ? step->title : L"").get());
    if (step->facts != nullptr && step->facts->program != nullptr) {
        put_element(&out, "desc", step->facts->program);
    }
    export_text_put(&out, "<g id=\"section\">");
    export_text_put_bytes(&out, svg.bytes + parts.content, parts.end - parts.content);
    put_texts(&out, &page);
    export_text_put_bytes(&out, svg.bytes + parts.end, svg.size - parts.end);
    if (!export_text_finish(&out)) {
        std::wcsncpy(reason, L"memory is lacking", EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
