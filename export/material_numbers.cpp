#include "export/material_numbers.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <cwchar>

#include "export/export_text.h"

static constexpr char DIGITS[] = "0123456789abcdef";

static const char *text_or_empty(const char *text) {
    return text != nullptr ? text : "";
}

// Zero when there is none such.
static i32 find_number(const MaterialNumbers *numbers, const char *name, const f32 color[4]) {
    for (i32 i = 0; i < numbers->count; ++i) {
        const NumberedMaterial *item = &numbers->items[i];
        if (std::strcmp(item->name, name) == 0 && std::equal(item->color, item->color + 4, color)) {
            return i + 1;
        }
    }
    return 0;
}

static void add_material(MaterialNumbers *numbers, const NumberedMaterial &material) {
    if (find_number(numbers, material.name, material.color) == 0) {
        array_append(&numbers->items, &numbers->count, &numbers->capacity, material);
    }
}

static bool makes_a_film(const ProcessStep *step) {
    return step->kind == STEP_DEPOSITION || step->kind == STEP_COATING || step->kind == STEP_PHOTO;
}

MaterialNumbers *material_numbers_create(const Stack *stack) {
    assert(stack != nullptr);
    auto *numbers = memory_new_zeroed<MaterialNumbers>();
    for (i32 i = 0; stack->steps != nullptr && i < stack->steps->count; ++i) {
        const ProcessStep *step = stack->steps->items[i];
        if (makes_a_film(step)) {
            const char *material = step->kind == STEP_PHOTO ? RESIST_MATERIAL : text_or_empty(step->material);
            add_material(numbers, {text_or_empty(step->label),
                                   material,
                                   {step->color_r, step->color_g, step->color_b, step->alpha}});
        }
    }
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            add_material(numbers, {text_or_empty(layer->legend_name),
                                   text_or_empty(layer->material_name),
                                   {layer->color[0], layer->color[1], layer->color[2], layer->color[3]}});
        }
    }
    return numbers;
}

void material_numbers_free(MaterialNumbers *numbers) {
    if (numbers == nullptr) {
        return;
    }
    memory_free(numbers->items);
    memory_free(numbers);
}

i32 material_number_of(const MaterialNumbers *numbers, const Layer *layer) {
    assert(numbers != nullptr && layer != nullptr);
    const i32 number = find_number(numbers, text_or_empty(layer->legend_name), layer->color);
    assert(number > 0);
    return number;
}

static void put_byte(ExportText *text, f32 share) {
    const f32 bounded = share > 0.0F ? (share < 1.0F ? share : 1.0F) : 0.0F;
    const i32 byte = static_cast<i32>(std::lround(f64{bounded} * 255.0));
    const char digits[2] = {DIGITS[byte / 16], DIGITS[byte % 16]};
    export_text_put_bytes(text, digits, 2);
}

static void put_color(ExportText *text, const f32 color[4]) {
    export_text_put(text, "#");
    for (i32 i = 0; i < (color[3] < 1.0F ? 4 : 3); ++i) {
        put_byte(text, color[i]);
    }
}

bool material_numbers_write(const Stack *stack, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(stack != nullptr && file != nullptr && reason != nullptr);
    const Owned<MaterialNumbers> numbers(material_numbers_create(stack));
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    text.file = file;
    export_text_put(&text, "number,name,material,color\n");
    for (i32 i = 0; i < numbers->count; ++i) {
        const NumberedMaterial *item = &numbers->items[i];
        export_text_put_integer(&text, i + 1);
        export_text_put(&text, ",");
        export_text_put_csv(&text, item->name);
        export_text_put(&text, ",");
        export_text_put_csv(&text, item->material);
        export_text_put(&text, ",");
        put_color(&text, item->color);
        export_text_put(&text, "\n");
    }
    if (!export_text_finish(&text)) {
        std::wcsncpy(reason, L"memory is lacking", EXPORT_REASON_SIZE);
        return false;
    }
    return true;
}
