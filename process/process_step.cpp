#include "process/process_step.h"

#include <cassert>

#include "platform/memory.h"
#include "process/process_text.h"

// Room that a list of steps or of target materials starts with.
static constexpr i32 FIRST_CAPACITY = 512;

StepList *step_list_create() {
    auto *steps = memory_new_zeroed<StepList>();
    steps->items = memory_new_array<ProcessStep *>(FIRST_CAPACITY);
    steps->capacity = FIRST_CAPACITY;
    return steps;
}

void step_list_append(StepList *steps, ProcessStep *step) {
    assert(steps != nullptr && step != nullptr);
    array_append(&steps->items, &steps->count, &steps->capacity, step, FIRST_CAPACITY);
}

static void step_free(ProcessStep *step) {
    memory_free(step->title);
    memory_free(step->label);
    memory_free(step->material);
    memory_free(step->material_type);
    memory_free(step->resist_ref);
    memory_free(step->name);
    name_list_free(&step->target_materials);
    memory_free(step);
}

void step_list_free(StepList *steps) {
    if (steps == nullptr) {
        return;
    }
    for (i32 i = 0; i < steps->count; ++i) {
        step_free(steps->items[i]);
    }
    memory_free(steps->items);
    memory_free(steps);
}

void name_list_create(NameList *list) {
    assert(list != nullptr);
    list->items = memory_new_array<char *>(FIRST_CAPACITY);
    list->count = 0;
    list->capacity = FIRST_CAPACITY;
}

void name_list_append(NameList *list, const char *name) {
    assert(list != nullptr && name != nullptr);
    array_append(&list->items, &list->count, &list->capacity, process_text_copy(name).release(),
                 FIRST_CAPACITY);
}

void name_list_free(NameList *list) {
    assert(list != nullptr);
    for (i32 i = 0; i < list->count; ++i) {
        memory_free(list->items[i]);
    }
    memory_free(list->items);
    *list = NameList{};
}
