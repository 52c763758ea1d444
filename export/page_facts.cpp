#include "export/page_facts.h"

#include <cassert>
#include <cmath>

// What stands before a value: a comma where another one was, and its key.
static void put_key(ExportText *text, bool first, const char *key) {
    export_text_put(text, first ? "\"" : ",\"");
    export_text_put(text, key);
    export_text_put(text, "\":");
}

static void put_text(ExportText *text, bool first, const char *key, const char *value) {
    put_key(text, first, key);
    export_text_put_json(text, value);
}

static void put_integer(ExportText *text, bool first, const char *key, i64 value) {
    put_key(text, first, key);
    export_text_put_integer(text, value);
}

static void put_f32_value(ExportText *text, f32 value) {
    export_text_put_f32(text, std::isfinite(value) ? value : 0.0F);
}

static void put_f32(ExportText *text, bool first, const char *key, f32 value) {
    put_key(text, first, key);
    put_f32_value(text, value);
}

// Puts the items of a list between brackets, with commas.
template <typename T>
static void put_list(ExportText *text, const T *items, i32 count, void (*put)(ExportText *, const T *)) {
    export_text_put(text, "[");
    for (i32 i = 0; i < count; ++i) {
        export_text_put(text, i > 0 ? "," : "");
        put(text, &items[i]);
    }
    export_text_put(text, "]");
}

static void put_facts(ExportText *text, const PageWriter *page) {
    export_text_put(text, "{");
    put_text(text, true, "program", page->program);
    put_text(text, false, "version", page->version);
    put_text(text, false, "layout", page->layout);
    put_text(text, false, "cell", page->cell);
    put_key(text, false, "section");
    export_text_put(text, "{");
    put_f32(text, true, "x", page->x);
    put_f32(text, false, "y", page->y);
    put_f32(text, false, "width", page->width);
    put_f32(text, false, "depth", page->depth);
    put_text(text, false, "unit", page->lengths_in_nm ? "nm" : "um");
    export_text_put(text, "}");
    put_text(text, false, "cut", page->cut);
    put_text(text, false, "heading", page->heading);
    put_key(text, false, "processFile");
    export_text_put(text, "{");
    put_text(text, true, "name", page->process_name);
    put_text(text, false, "text", page->process_text);
    export_text_put(text, "}");
    put_text(text, false, "date", page->date);
    export_text_put(text, "}");
}

static void put_film(ExportText *text, const PageFilm *film) {
    export_text_put(text, "{");
    put_text(text, true, "name", film->name);
    put_text(text, false, "material", film->material);
    put_key(text, false, "color");
    put_list<f32>(text, film->color, 3,
                  [](ExportText *out, const f32 *value) { put_f32_value(out, *value); });
    put_f32(text, false, "opacity", film->color[3]);
    export_text_put(text, "}");
}

static const char *kind_name(i32 kind) {
    switch (kind) {
        case STEP_COATING: return "coating";
        case STEP_DEPOSITION: return "deposition";
        case STEP_DUMP: return "dump";
        case STEP_PHOTO: return "photo";
        case STEP_ETCH: return "etch";
        case STEP_STRIP: return "strip";
        case STEP_RELEASE: return "release";
        default: return "substrate";
    }
}

static void put_change(ExportText *text, const PageChange *change) {
    export_text_put(text, "[");
    export_text_put_integer(text, change->film);
    export_text_put(text, ",");
    export_text_put_integer(text, change->bottom);
    export_text_put(text, ",");
    export_text_put_integer(text, change->top);
    export_text_put(text, "]");
}

static void put_plane(ExportText *text, const PagePlaneForm *form) {
    export_text_put(text, "[");
    export_text_put_integer(text, form->reference);
    export_text_put(text, ",");
    export_text_put_integer(text, form->bytes);
    export_text_put(text, "]");
}

static void put_step(ExportText *text, const PageStep *step) {
    export_text_put(text, "{");
    put_integer(text, true, "number", step->number);
    put_text(text, false, "title", step->title);
    put_text(text, false, "kind", kind_name(step->kind));
    put_integer(text, false, "line", step->line);
    put_key(text, false, "changes");
    put_list(text, step->changes, step->change_count, put_change);
    put_key(text, false, "removed");
    put_list<i32>(text, step->removed, step->removed_count,
                  [](ExportText *out, const i32 *film) { export_text_put_integer(out, *film); });
    put_key(text, false, "planes");
    put_list(text, step->planes, step->plane_count, put_plane);
    export_text_put(text, "}");
}

void page_facts_put(ExportText *text, const PageWriter *page) {
    assert(text != nullptr && page != nullptr);
    export_text_put(text, "{");
    put_key(text, true, "facts");
    put_facts(text, page);
    put_integer(text, false, "columns", page->grid_n);
    put_integer(text, false, "rows", page->grid_m);
    put_f32(text, false, "spacing", page->spacing);
    put_key(text, false, "quantum");
    export_text_put_f64(text, 1.0 / page->quanta);
    put_key(text, false, "films");
    put_list(text, page->films, page->film_count, put_film);
    put_key(text, false, "steps");
    put_list(text, page->steps, page->step_count, put_step);
    export_text_put(text, "}");
}
