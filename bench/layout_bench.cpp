// layout_bench.cpp: large layouts made and read, each reading in a program of its own, so that its time and
// the most memory that it took are those of the reading alone.
//   layout_bench make flat|levels|paths MEGABYTES FILE
//   layout_bench read FILE
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#ifndef _WIN32
#include <sys/resource.h>
#endif
#include "gds/gds_read.h"
#include "log/log.h"
#include "platform/platform.h"
#include "tests/gds/gds_bytes.h"

static constexpr i64 MEGABYTE = 1000000;
static constexpr i64 PIECE = MEGABYTE;  // of the elements of a large cell, written again and again
static constexpr i32 LEVELS = 6;
static constexpr i64 LEVEL_CELL_BYTES = 3100;  // of one cell of the levels, about

// One cell of rectangles only.
static void make_flat(std::ofstream *out, i64 size) {
    GdsBytes elements;
    for (i32 i = 0; static_cast<i64>(elements.bytes.size()) < PIECE; ++i) {
        const i32 x = i % 100 * 1000;
        const i32 y = i / 100 * 1000;
        elements.box(static_cast<u16>(i % 30), x, y, x + 400, y + 700);
    }
    *out << GdsBytes().head().begin("FLAT").bytes;
    for (i64 written = 0; written < size; written += static_cast<i64>(elements.bytes.size())) {
        *out << elements.bytes;
    }
    *out << GdsBytes().end().close().bytes;
}

// One cell of paths of all end types, of two to five points.
static void make_paths(std::ofstream *out, i64 size) {
    const u16 types[] = {0, 1, 2, 4};
    GdsBytes elements;
    for (i32 i = 0; static_cast<i64>(elements.bytes.size()) < PIECE; ++i) {
        const i32 x = i % 100 * 1000;
        const i32 y = i / 100 * 1000;
        std::vector<Point> points = {
            {x, y}, {x + 900, y}, {x + 900, y + 500}, {x + 300, y + 800}, {x, y + 500}};
        points.resize(static_cast<size_t>(2 + i % 4));
        elements.path(static_cast<u16>(i % 30), types[i / 4 % 4], 100, points);
    }
    *out << GdsBytes().head().begin("PATHS").bytes;
    for (i64 written = 0; written < size; written += static_cast<i64>(elements.bytes.size())) {
        *out << elements.bytes;
    }
    *out << GdsBytes().end().close().bytes;
}

static std::string level_name(i32 level, i32 index) {
    return "LEVEL" + std::to_string(level) + "_CELL" + std::to_string(index);
}

// Six levels of many small cells, each with three arrays in two cells, and single references, turned and
// reflected, to cells of the level below.
static void make_levels(std::ofstream *out, i64 size) {
    const auto width = static_cast<i32>(size / LEVEL_CELL_BYTES / LEVELS) + 1;
    *out << GdsBytes().head().bytes;
    for (i32 level = 0; level < LEVELS; ++level) {
        for (i32 i = 0; i < width; ++i) {
            GdsBytes cell;
            cell.begin(level_name(level, i));
            for (i32 k = 0; k < 42; ++k) {
                cell.box(static_cast<u16>(k % 30), k * 20, k * 10, k * 20 + 12, k * 10 + 8);
            }
            for (i32 k = 0; level > 0 && k < 1 + i % 2; ++k) {
                const std::string below = level_name(level - 1, (i * 7 + k) % width);
                cell.aref(below, 3, 2, {0, 0}, {3000, 0}, {0, 2000}, k == 0 ? u16{0} : GDS_REFLECTION);
            }
            for (i32 k = 0; level > 0 && k < 2; ++k) {
                const std::string below = level_name(level - 1, (i * 3 + k) % width);
                cell.sref(below, {k * 5000, 900}, 0, 1.0, 90.0 * ((i + k) % 4));
            }
            *out << cell.end().bytes;
        }
    }
    *out << GdsBytes().close().bytes;
}

static int make(const char *kind, i64 megabytes, const char *path) {
    std::ofstream out(path, std::ios::binary);
    if (std::strcmp(kind, "flat") == 0) {
        make_flat(&out, megabytes * MEGABYTE);
    } else if (std::strcmp(kind, "levels") == 0) {
        make_levels(&out, megabytes * MEGABYTE);
    } else if (std::strcmp(kind, "paths") == 0) {
        make_paths(&out, megabytes * MEGABYTE);
    } else {
        std::fprintf(stderr, "there is no layout of the kind %s\n", kind);
        return 1;
    }
    out.close();
    return out.good() ? 0 : 1;
}

// What has been written to the console, so that two builds can be compared.
static u64 console_hash = 14695981039346656037U;

static void hash_text(const wchar_t *text) {
    for (; *text != 0; ++text) {
        console_hash = (console_hash ^ static_cast<u64>(*text)) * 1099511628211U;
    }
}

static i64 polygon_points(const GdsDatabase *database) {
    i64 sum = 0;
    for (i32 i = 0; i < database->cell_count; ++i) {
        for (i32 k = 0; k < database->cells[i].polygon_count; ++k) {
            sum += database->cells[i].polygons[k].point_count;
        }
    }
    return sum;
}

static int read(const char *path) {
    std::error_code error;
    const f64 megabytes = static_cast<f64>(std::filesystem::file_size(path, error)) / MEGABYTE;
    const WideText wide_path = platform_wide_from_system(path);
    console_set_sink(hash_text, nullptr);
    Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
    const f64 start = platform_clock_ms();
    const i32 result = gds_read(database.get(), wide_path.get());
    const f64 read_ms = platform_clock_ms() - start;
    console_set_sink(nullptr, nullptr);
    const i64 points = polygon_points(database.get());
    std::printf("result %d, %d cells, %lld points, console %016llx: %.0f MB in %.3f s, %.0f MB/s", result,
                database->cell_count, static_cast<long long>(points),
                static_cast<unsigned long long>(console_hash), megabytes, read_ms / 1000.0,
                megabytes / read_ms * 1000.0);
#ifndef _WIN32
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf(", at most %.2f of the file in memory",
                static_cast<f64>(usage.ru_maxrss) * 1.024e-3 / megabytes);
#endif
    const f64 free_start = platform_clock_ms();
    database.reset();
    std::printf(", freed in %.3f s\n", (platform_clock_ms() - free_start) / 1000.0);
    return result;
}

int main(int count, char **arguments) {
    if (count == 5 && std::strcmp(arguments[1], "make") == 0 && std::atoll(arguments[3]) > 0) {
        return make(arguments[2], std::atoll(arguments[3]), arguments[4]);
    }
    if (count == 3 && std::strcmp(arguments[1], "read") == 0) {
        return read(arguments[2]);
    }
    std::fprintf(stderr,
                 "Usage: layout_bench make flat|levels|paths MEGABYTES FILE\n"
                 "       layout_bench read FILE\n");
    return 2;
}
