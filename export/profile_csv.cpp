#include "export/profile_csv.h"

#include <cassert>
#include <cwchar>

#include "export/export_text.h"
#include "export/film_names.h"
#include "sim/layer.h"

static void put_header(ExportText *table, const FilmNames *names) {
    export_text_put(table, "x_um");
    for (i32 slot = 0; slot < names->count; ++slot) {
        if (names->items[slot] != nullptr) {
            export_text_put(table, ",");
            export_text_put_csv(table, names->items[slot], " bottom_nm");
            export_text_put(table, ",");
            export_text_put_csv(table, names->items[slot], " top_nm");
        }
    }
    export_text_put(table, "\n");
}

// The heights of a column of the first row.
static void put_column(ExportText *table, const Stack *stack, i32 n) {
    export_text_put_f32(table, static_cast<f32>(n) * stack->spacing);
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            export_text_put(table, ",");
            export_text_put_nm(table, layer->bottom[n]);
            export_text_put(table, ",");
            export_text_put_nm(table, layer->top[n]);
        }
    }
    export_text_put(table, "\n");
}

bool profile_csv_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && file != nullptr && reason != nullptr);
    const Stack *stack = step->stack;
    FilmNames names = film_names_create(stack);
    const Owned<FilmNames> names_owner(&names);
    ExportText table = {};
    const Owned<ExportText> table_owner(&table);
    table.file = file;
    put_header(&table, &names);
    for (i32 n = 0; n < stack->grid_n; ++n) {
        put_column(&table, stack, n);
    }
    if (!export_text_finish(&table)) {
        std::wcsncpy(reason, L"memory is lacking", EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
