#include "gds/polygon_list.h"

static constexpr i32 FIRST_CAPACITY = 512;

PolygonList *polygon_list_create() {
    auto *list = memory_new_zeroed<PolygonList>();
    list->items = memory_new_array<FlatPolygon>(FIRST_CAPACITY);
    list->capacity = FIRST_CAPACITY;
    return list;
}

void polygon_list_free(PolygonList *list) {
    if (list == nullptr) {
        return;
    }
    for (i32 i = 0; i < list->count; ++i) {
        memory_free(list->items[i].points);
    }
    memory_free(list->items);
    memory_free(list);
}
