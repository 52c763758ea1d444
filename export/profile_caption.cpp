#include "export/profile_caption.h"

#include <cassert>
#include <cmath>
#include <cwchar>

static constexpr f64 SIZE = 11.0;
static constexpr f64 ROW = 16.0;
static constexpr f64 GRAY = 0.3;
static constexpr f64 FLAT_POINTS = 30.0;    // a face that is lower than that would be seen better stretched
static constexpr f64 MOST_SCALE = 1000.0;   // that can be asked for
static constexpr f64 LEVEL_POINTS = 300.0;  // as high as it is worth stretching it

const wchar_t *profile_file_name(const wchar_t *path) {
    const wchar_t *name = path;
    for (const wchar_t *at = path; *at != 0; ++at) {
        name = *at == L'/' || *at == L'\\' ? at + 1 : name;
    }
    return name;
}

void profile_add_line(DrawnTexts *texts, const DrawnText &style, const char *text) {
    const NarrowText line = text_shortened(text, style.size, PAGE_WIDTH - 2.0 * style.x);
    drawn_texts_add(texts, style, line.get());
}

// The parts of a line are told apart by commas.
static void put_part(ExportText *line, const char *before, const char *value) {
    if (value == nullptr || value[0] == 0) {
        return;
    }
    export_text_put(line, line->size > 0 ? ", " : "");
    export_text_put(line, before);
    export_text_put_clean(line, value);
}

static void put_file(ExportText *line, const wchar_t *path) {
    if (path != nullptr && path[0] != 0) {
        put_part(line, "", export_text_from_wide(profile_file_name(path)).get());
    }
}

static f64 add_line(ProfilePage *page, ExportText *line, f64 x, f64 y) {
    if (line->size == 0) {
        return y;
    }
    export_text_put_bytes(line, "", 1);  // a terminator
    profile_add_line(&page->texts, {x, y + SIZE, SIZE, TEXT_FROM_LEFT, false, false, GRAY, 0}, line->bytes);
    line->size = 0;
    return y + ROW;
}

static void put_section(ExportText *line, const Stack *stack) {
    export_text_put(line, line->size > 0 ? ", " : "");
    export_text_put(line, "section of ");
    export_text_put_f32(line, stack->width);
    export_text_put(line, " um from (");
    export_text_put_f32(line, stack->origin_x);
    export_text_put(line, ", ");
    export_text_put_f32(line, stack->origin_y);
    export_text_put(line, ") um, ");
    export_text_put_integer(line, stack->grid_n);
    export_text_put(line, " columns");
}

// A round factor by which the face fills more of the page.
static f64 round_factor(f64 factor) {
    f64 power = 1.0;
    while (power * 10.0 <= factor) {
        power *= 10.0;
    }
    return factor >= 5.0 * power ? 5.0 * power : factor >= 2.0 * power ? 2.0 * power : power;
}

static void put_scale(ExportText *line, const ProfilePage *page) {
    const f64 scale = page->z_scale / page->x_scale;
    const f64 height = page->structure * page->z_scale;
    if (std::fabs(scale - 1.0) > 1e-6) {
        export_text_put(line, "Heights are stretched: z x ");
        export_text_put_f32(line, static_cast<f32>(scale));
        export_text_put(line, page->is_cut ? ", the foot of the substrate is left out" : "");
    }
    if (height > 0.0 && height < FLAT_POINTS && scale < MOST_SCALE) {
        export_text_put(line, line->size > 0 ? ". " : "Heights and widths have the same scale. ");
        export_text_put(line, "With --z-scale ");
        export_text_put_f32(
            line, static_cast<f32>(std::fmin(round_factor(scale * LEVEL_POINTS / height), MOST_SCALE)));
        export_text_put(line, " the films would be told apart better");
    }
}

f64 profile_caption_add(ProfilePage *page, const ExportStep *step, f64 x, f64 y) {
    assert(page != nullptr && step != nullptr);
    ExportText line = {};
    const Owned<ExportText> owner(&line);
    put_scale(&line, page);
    y = add_line(page, &line, x, y);
    const ExportFacts *facts = step->facts;
    if (facts != nullptr) {
        put_file(&line, facts->layout_path);
    }
    put_part(&line, "cell ", step->stack->cell_name);
    if (facts != nullptr) {
        put_part(&line, "cut ", facts->cut_name);
    }
    put_section(&line, step->stack);
    y = add_line(page, &line, x, y);
    if (facts != nullptr) {
        put_file(&line, facts->process_path);
        const StepList *steps = step->stack->steps;
        if (steps != nullptr && step->index > 0 && step->index < steps->count && line.size > 0) {
            export_text_put(&line, ", line ");
            export_text_put_integer(&line, steps->items[step->index]->line_number);
        }
        put_part(&line, "", facts->program);
        put_part(&line, "", facts->date);
        y = add_line(page, &line, x, y);
    }
    return y;
}
