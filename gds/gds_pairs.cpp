#include "gds/gds_pairs.h"

#include <algorithm>
#include <cassert>

#include "gds/gds_placement.h"

static constexpr i32 UNSORTED_LEAST = 64;  // so that short lists are not sorted again and again

static u32 key_of(i32 layer, i32 datatype) {
    return static_cast<u32>(layer) << 16 | static_cast<u32>(datatype);
}

static u32 key_of(const GdsPair *pair) {
    return key_of(pair->layer, pair->datatype);
}

i64 gds_count_add(i64 a, i64 b) {
    assert(a >= 0 && b >= 0);
    return a > I64_MAX - b ? I64_MAX : a + b;
}

i64 gds_count_times(i64 a, i64 b) {
    assert(a >= 0 && b >= 0);
    return a > 0 && b > I64_MAX / a ? I64_MAX : a * b;
}

static void merge(GdsPair *into, const GdsPair *pair) {
    into->count = gds_count_add(into->count, pair->count);
    box_grow(&into->box, pair->box);
}

// The place of a pair among those in order, or null.
static GdsPair *find_sorted(const GdsPairList *list, u32 key) {
    GdsPair *end = list->items + list->sorted_count;
    GdsPair *found = std::lower_bound(list->items, end, key,
                                      [](const GdsPair &item, u32 wanted) { return key_of(&item) < wanted; });
    return found != end && key_of(found) == key ? found : nullptr;
}

void gds_pairs_add(GdsPairList *list, const GdsPair *pair) {
    assert(list != nullptr && pair != nullptr && pair->count >= 0);
    const u32 key = key_of(pair);
    // Layouts mostly have many polygons of a pair one behind the other.
    GdsPair *last = list->count > 0 ? &list->items[list->count - 1] : nullptr;
    GdsPair *found = last != nullptr && key_of(last) == key ? last : find_sorted(list, key);
    if (found != nullptr) {
        merge(found, pair);
        return;
    }
    array_append(&list->items, &list->count, &list->capacity, *pair, 16);
    if (list->count >= 2 * i64{list->sorted_count} + UNSORTED_LEAST) {
        gds_pairs_sort(list);
    }
}

void gds_pairs_add_cell(GdsPairList *list, const GdsCell *cell) {
    assert(list != nullptr && cell != nullptr);
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        const GdsPolygon *polygon = &cell->polygons[i];
        if (polygon->point_count > 0) {
            const GdsPair pair = {polygon->layer, polygon->datatype, 1, polygon->bbox};
            gds_pairs_add(list, &pair);
        }
    }
}

void gds_pairs_sort(GdsPairList *list) {
    assert(list != nullptr);
    if (list->count == list->sorted_count) {
        return;
    }
    std::sort(list->items, list->items + list->count,
              [](const GdsPair &a, const GdsPair &b) { return key_of(&a) < key_of(&b); });
    i32 kept = 0;
    for (i32 i = 1; i < list->count; ++i) {
        if (key_of(&list->items[i]) == key_of(&list->items[kept])) {
            merge(&list->items[kept], &list->items[i]);
        } else {
            list->items[++kept] = list->items[i];
        }
    }
    list->count = kept + 1;
    list->sorted_count = list->count;
}

const GdsPair *gds_pairs_find(const GdsPairList *list, i32 layer, i32 datatype) {
    assert(list != nullptr && list->sorted_count == list->count);
    const bool possible = layer >= 0 && layer <= 0xFFFF && datatype >= 0 && datatype <= 0xFFFF;
    return possible ? find_sorted(list, key_of(layer, datatype)) : nullptr;
}

void gds_pairs_free(GdsPairList *list) {
    assert(list != nullptr);
    memory_free(list->items);
    *list = GdsPairList{};
}
