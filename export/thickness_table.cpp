#include "export/thickness_table.h"

#include <cassert>

#include "export/film_figures.h"
#include "export/film_names.h"
#include "sim/stack_setup.h"

void thickness_table_start(ExportText *table) {
    assert(table != nullptr);
    export_text_put(table,
                    "step,title,layer,film,middle_nm,smallest_nm,mean_nm,largest_nm,coverage,face_area_um2,"
                    "volume_um3,highest_nm,step_height_nm,surface_step_height_nm\n");
}

// From the lowest point of the surface to the highest.
static f32 surface_step_height(const Stack *stack) {
    f32 low = stack->cells[0].height;
    f32 high = low;
    const i64 points = stack_point_count(stack);
    for (i64 i = 1; i < points; ++i) {
        const f32 height = stack->cells[i].height;
        low = height < low ? height : low;
        high = height > high ? height : high;
    }
    return high - low;
}

static void put_nm(ExportText *table, f32 height) {
    export_text_put(table, ",");
    export_text_put_nm(table, height);
}

// What is made of many heights has no more digits than they.
static void put_rounded(ExportText *table, f64 value) {
    export_text_put(table, ",");
    export_text_put_f32(table, static_cast<f32>(value));
}

static void put_figures(ExportText *table, const FilmFigures *figures) {
    put_nm(table, figures->middle);
    put_nm(table, figures->smallest);
    put_nm(table, static_cast<f32>(figures->mean));
    put_nm(table, figures->largest);
    put_rounded(table, figures->coverage);
    put_rounded(table, figures->face_area);
    put_rounded(table, figures->volume);
    put_nm(table, figures->highest);
    put_nm(table, figures->step_height);
}

void thickness_table_add(ExportText *table, const ExportStep *step) {
    assert(table != nullptr && step != nullptr && step->stack->cells != nullptr);
    const Stack *stack = step->stack;
    const char *title = stack->steps->items[step->index]->title;
    FilmNames names = film_names_create(stack);
    const Owned<FilmNames> owner(&names);
    const f32 surface_height = surface_step_height(stack);
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        if (stack->layers[slot] == nullptr) {
            continue;
        }
        const FilmFigures figures = film_figures(stack->layers[slot]);
        export_text_put_integer(table, step->number);
        export_text_put(table, ",");
        export_text_put_csv(table, step->index == 0 || title == nullptr ? "substrate" : title);
        export_text_put(table, ",");
        export_text_put_integer(table, slot);
        export_text_put(table, ",");
        export_text_put_csv(table, names.items[slot]);
        put_figures(table, &figures);
        put_nm(table, surface_height);
        export_text_put(table, "\n");
    }
}
