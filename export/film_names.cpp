#include "export/film_names.h"

#include <cassert>
#include <cstring>
#include <utility>

#include "export/export_text.h"
#include "sim/layer.h"

// What a text holds, with a terminator.
static NarrowText take_text(ExportText *text) {
    export_text_put_bytes(text, "", 1);
    if (!export_text_finish(text)) {
        memory_end_program();
    }
    return NarrowText(std::exchange(text->bytes, nullptr));
}

static NarrowText own_name(const Layer *layer) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    const bool in_legend = layer->legend_name != nullptr && layer->legend_name[0] != 0;
    const bool of_material = layer->material_name != nullptr && layer->material_name[0] != 0;
    export_text_put_clean(&text, in_legend     ? layer->legend_name
                                 : of_material ? layer->material_name
                                               : "film");
    return take_text(&text);
}

static NarrowText numbered_name(const char *name, i32 number) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    export_text_put(&text, name);
    export_text_put(&text, " (");
    export_text_put_integer(&text, number);
    export_text_put(&text, ")");
    return take_text(&text);
}

static bool has_name(const FilmNames *names, const char *name) {
    for (i32 i = 0; i < names->count; ++i) {
        if (names->items[i] != nullptr && std::strcmp(names->items[i], name) == 0) {
            return true;
        }
    }
    return false;
}

// Whether a film below has the name as its own.
static bool is_repeated(const FilmNames *names, i32 slot) {
    for (i32 i = 0; i < slot; ++i) {
        if (names->items[i] != nullptr && std::strcmp(names->items[i], names->items[slot]) == 0) {
            return true;
        }
    }
    return false;
}

FilmNames film_names_create(const Stack *stack) {
    assert(stack != nullptr);
    FilmNames names = {memory_new_zeroed<char *>(stack->layer_count), stack->layer_count};
    for (i32 slot = 0; slot < names.count; ++slot) {
        const Layer *layer = stack->layers[slot];
        names.items[slot] = layer != nullptr ? own_name(layer).release() : nullptr;
    }
    // Every film has its own name by now, so that none gets the one that another was given by its user.
    for (i32 slot = 1; slot < names.count; ++slot) {
        if (names.items[slot] == nullptr || !is_repeated(&names, slot)) {
            continue;
        }
        i32 number = 2;
        NarrowText name = numbered_name(names.items[slot], number);
        while (has_name(&names, name.get())) {
            name = numbered_name(names.items[slot], ++number);
        }
        memory_free(names.items[slot]);
        names.items[slot] = name.release();
    }
    return names;
}

void film_names_free(FilmNames *names) {
    assert(names != nullptr);
    for (i32 i = 0; i < names->count; ++i) {
        memory_free(names->items[i]);
    }
    memory_free(names->items);
    *names = {};
}
