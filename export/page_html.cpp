#include "export/page_html.h"

#include <cassert>
#include <cstring>

#include "export/page_base64.h"

static const char MARK_START[] = "<!--quarn:";
static const char MARK_END[] = "-->";

static void put(std::FILE *file, const char *text) {
    std::fputs(text, file);
}

static void put_bytes(std::FILE *file, const PageFile *part) {
    std::fwrite(part->bytes, 1, static_cast<size_t>(*part->size), file);
}

void page_html_write_policy(std::FILE *file) {
    assert(file != nullptr);
    put(file,
        "default-src 'none'; img-src data: blob:; worker-src blob:; style-src 'unsafe-inline'; script-src");
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        put(file, " 'sha256-");
        page_base64_write(PAGE_SCRIPTS[i].sha256, 32, file);
        put(file, "'");
    }
    put(file, "; base-uri 'none'; form-action 'none'");
}

static void write_policy(const PageParts *, std::FILE *file) {
    put(file, "<meta http-equiv=\"Content-Security-Policy\" content=\"");
    page_html_write_policy(file);
    put(file, "\">");
}

static void write_title(const PageParts *parts, std::FILE *file) {
    put(file, parts->title);
}

static void write_style(const PageParts *, std::FILE *file) {
    put_bytes(file, &PAGE_STYLE);
}

static void write_data(const PageParts *parts, std::FILE *file) {
    put(file, "<script type=\"text/plain\" id=\"quarn-license\">");
    put_bytes(file, &PAGE_LICENSE);
    put(file, "</script>\n");
    parts->write_data(parts->source, file);
}

// A script's hash is that of all between its tags.
static void write_scripts(const PageParts *, std::FILE *file) {
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        put(file, "<script>");
        put_bytes(file, &PAGE_SCRIPTS[i]);
        put(file, "</script>\n");
    }
}

struct PageMark {
    const char *name;
    void (*write)(const PageParts *, std::FILE *);
};

// clang-format off
static const PageMark MARKS[] = {
    {"policy", write_policy},
    {"title", write_title},
    {"style", write_style},
    {"data", write_data},
    {"scripts", write_scripts},
};
// clang-format on

// What stands for the mark whose name has `size` characters.
static void fill_mark(const char *name, size_t size, const PageParts *parts, std::FILE *file) {
    for (const PageMark &mark : MARKS) {
        if (std::strlen(mark.name) == size && std::memcmp(mark.name, name, size) == 0) {
            mark.write(parts, file);
            return;
        }
    }
    assert(!"every mark of the skeleton has its function");
}

void page_html_write(const PageParts *parts, std::FILE *file) {
    assert(parts != nullptr && parts->title != nullptr && parts->write_data != nullptr && file != nullptr);
    const auto *rest = reinterpret_cast<const char *>(PAGE_SKELETON.bytes);
    for (;;) {
        const char *mark = std::strstr(rest, MARK_START);
        if (mark == nullptr) {
            put(file, rest);
            return;
        }
        std::fwrite(rest, 1, static_cast<size_t>(mark - rest), file);
        const char *name = mark + std::strlen(MARK_START);
        const char *end = std::strstr(name, MARK_END);
        assert(end != nullptr);
        fill_mark(name, static_cast<size_t>(end - name), parts, file);
        rest = end + std::strlen(MARK_END);
    }
}
