#include "export/page_html.h"

#include <cassert>
#include <cstring>

#include "export/page_base64.h"
#include "export/page_files.h"

static const char MARK_START[] = "<!--quarn:";
static const char MARK_END[] = "-->";

static void put_file(ExportText *text, const PageFile *file) {
    export_text_put_bytes(text, reinterpret_cast<const char *>(file->bytes), *file->size);
}

// Nothing comes from outside, and no script runs but those of the page, by their hashes; so a name that got
// past its escapes could still do nothing.
static void put_policy(ExportText *text, const PageParts *) {
    export_text_put(text,
                    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                    "img-src data: blob:; worker-src blob:; style-src 'unsafe-inline'; script-src");
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        export_text_put(text, " 'sha256-");
        page_base64_put(text, PAGE_SCRIPTS[i].sha256, 32);
        export_text_put(text, "'");
    }
    export_text_put(text, "; base-uri 'none'; form-action 'none'\">");
}

static void put_title(ExportText *text, const PageParts *parts) {
    export_text_put_xml(text, parts->title);
}

static void put_style(ExportText *text, const PageParts *) {
    put_file(text, &PAGE_STYLE);
}

static void put_data(ExportText *text, const PageParts *parts) {
    export_text_put(text, "<script type=\"text/plain\" id=\"quarn-license\">");
    put_file(text, &PAGE_LICENSE);
    export_text_put(text, "</script>\n");
    parts->put_data(parts->source, text);
}

// A script's hash is that of all that stands between its tags.
static void put_scripts(ExportText *text, const PageParts *) {
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        export_text_put(text, "<script>");
        put_file(text, &PAGE_SCRIPTS[i]);
        export_text_put(text, "</script>\n");
    }
}

struct PageMark {
    const char *name;
    void (*put)(ExportText *, const PageParts *);
};

// clang-format off
static const PageMark MARKS[] = {
    {"policy", put_policy},
    {"title", put_title},
    {"style", put_style},
    {"data", put_data},
    {"scripts", put_scripts},
};
// clang-format on

// Appends what stands for a mark; its name has `size` characters.
static void put_mark(ExportText *text, const char *name, size_t size, const PageParts *parts) {
    for (const PageMark &mark : MARKS) {
        if (std::strlen(mark.name) == size && std::memcmp(mark.name, name, size) == 0) {
            mark.put(text, parts);
            return;
        }
    }
    assert(false && "every mark of the skeleton has its function");
}

void page_html_put(ExportText *text, const PageParts *parts) {
    assert(text != nullptr && parts != nullptr && parts->title != nullptr && parts->put_data != nullptr);
    const auto *rest = reinterpret_cast<const char *>(PAGE_SKELETON.bytes);
    const char *mark = std::strstr(rest, MARK_START);
    while (mark != nullptr) {
        export_text_put_bytes(text, rest, mark - rest);
        const char *name = mark + std::strlen(MARK_START);
        const char *end = std::strstr(name, MARK_END);
        assert(end != nullptr);
        put_mark(text, name, static_cast<size_t>(end - name), parts);
        rest = end + std::strlen(MARK_END);
        mark = std::strstr(rest, MARK_START);
    }
    export_text_put(text, rest);
}
