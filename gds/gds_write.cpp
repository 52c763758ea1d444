#include "gds/gds_write.h"

#include <cassert>

#include "gds/gds_elements.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/whole_file.h"

void gds_write_boundary(std::FILE *file, const FlatPoint *points, i32 point_count, f32 unit, u16 layer) {
    assert(file != nullptr && point_count >= 0 && (points != nullptr || point_count == 0));
    const auto places = memory_scratch<Point>(point_count);
    for (i32 i = 0; i < point_count; ++i) {
        const f32 x = points[i].x / unit;
        const f32 y = points[i].y / unit;
        places[i] = {truncate_i32(static_cast<f64>(x)), truncate_i32(static_cast<f64>(y))};
    }
    // Beyond 8191 points the length is cut to its 16 bits; kept so, since users compare
    // the files of runs byte for byte.
    gds_write_polygon(file, places.get(), point_count, layer);
}

static void write_library(std::FILE *file, const GdsDatabase *database, const PolygonList *list) {
    gds_elements_begin(file, "", database->units_raw, "TOP");
    const f32 unit = static_cast<f32>(database->unit);
    for (i32 i = 0; i < list->count && std::ferror(file) == 0; ++i) {
        const FlatPolygon *polygon = &list->items[i];
        gds_write_boundary(file, polygon->points, polygon->point_count, unit, polygon->layer);
    }
    gds_elements_end(file);
}

i32 gds_write_unreadable(const PolygonList *list, const wchar_t *file_name) {
    assert(list != nullptr && file_name != nullptr);
    i32 count = 0;
    i32 largest = 0;
    for (i32 i = 0; i < list->count; ++i) {
        if (list->items[i].point_count > GDS_MOST_POINTS) {
            ++count;
            largest = list->items[i].point_count > list->items[largest].point_count ? i : largest;
        }
    }
    if (count > 0) {
        const FlatPolygon *polygon = &list->items[largest];
        diagnostic_write(
            L"%ls: %d of %d polygons have more points than a record of the format holds (%d): readers "
            L"will refuse the file. The largest is polygon %d, on layer %d, with %d points",
            file_name, count, list->count, GDS_MOST_POINTS, largest + 1, polygon->layer,
            polygon->point_count);
    }
    return count;
}

i32 gds_write_polygons(const GdsDatabase *database, const wchar_t *path, const PolygonList *list) {
    assert(database != nullptr && list != nullptr);
    if (path == nullptr) {
        return 1;
    }
    WholeFile whole;
    if (!whole_file_open(&whole, path, "wb")) {
        diagnostic_write(L"%ls: cannot be created: %ls", path, whole.reason);
        return 1;
    }
    write_library(whole.file, database, list);
    if (!whole_file_commit(&whole)) {
        diagnostic_write(L"%ls: cannot be written: %ls", path, whole.reason);
        return 1;
    }
    gds_write_unreadable(list, path);
    return 0;
}
