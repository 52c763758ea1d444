#include "process/color_table.h"

#include <cassert>
#include <cstdio>
#include <cstring>

#include "log/log.h"
#include "log/near_name.h"
#include "platform/memory.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "process/process_text.h"

static constexpr i32 FIRST_CAPACITY = 512;
static constexpr i32 LINE_SIZE = 1024;

struct ColorEntry {
    char *name;   // owned, as written in the file
    i32 r, g, b;  // 0..255 in a sound file; not checked
};

struct ColorTable {
    ColorEntry *entries;
    i32 count, capacity;
};

static ColorTable g_colors = {};

// Appends the colour of one line. False when the line gives no name or not all three numbers.
static bool add_color(const char *line) {
    char name[LINE_SIZE];
    ColorEntry entry = {};
    if (std::sscanf(line, "%1023s %*s %d, %d, %d", name, &entry.r, &entry.g, &entry.b) != 4) {
        return false;
    }
    entry.name = process_text_copy(name).release();
    array_append(&g_colors.entries, &g_colors.count, &g_colors.capacity, entry, FIRST_CAPACITY);
    return true;
}

static i32 read_colors(std::FILE *file, const wchar_t *path) {
    char line[LINE_SIZE];
    for (i32 line_number = 1; std::fgets(line, LINE_SIZE, file) != nullptr; ++line_number) {
        if (line[0] == '#' || line[std::strspn(line, " \r\n\t")] == 0) {
            continue;
        }
        line[std::strcspn(line, "\r\n")] = 0;
        if (!add_color(line)) {
            diagnostic_write(L"%ls, line %d: expected a name, a word and three numbers separated by commas",
                             path, line_number);
            return 1;
        }
    }
    if (std::ferror(file) != 0) {
        diagnostic_write(L"%ls: the file cannot be read to its end", path);
        return 1;
    }
    return 0;
}

i32 color_table_load_file(const wchar_t *path) {
    assert(path != nullptr);
    const OwnedFile file(platform_input_open(path, "r"));
    if (file == nullptr) {
        diagnostic_write(L"%ls: %ls", path, platform_error_text());
        return 1;
    }
    if (g_colors.entries == nullptr) {
        g_colors.entries = memory_new_array<ColorEntry>(FIRST_CAPACITY);
        g_colors.capacity = FIRST_CAPACITY;
    }
    return read_colors(file.get(), path);
}

i32 color_table_load() {
    return color_table_load_file(L"colors.txt");
}

i32 color_lookup(const char *name, f32 rgb_out[3]) {
    assert(name != nullptr && rgb_out != nullptr);
    for (i32 i = 0; i < g_colors.count; ++i) {
        const ColorEntry *entry = &g_colors.entries[i];
        if (std::strcmp(entry->name, name) == 0) {
            rgb_out[0] = static_cast<f32>(entry->r) / 255.0F;
            rgb_out[1] = static_cast<f32>(entry->g) / 255.0F;
            rgb_out[2] = static_cast<f32>(entry->b) / 255.0F;
            return 0;
        }
    }
    return 1;
}

const char *color_nearest(const char *name) {
    assert(name != nullptr);
    NearName near = {name, nullptr, 0};
    for (i32 i = 0; i < g_colors.count; ++i) {
        near_name_try(&near, g_colors.entries[i].name);
    }
    return near.best;
}

void color_table_free() {
    for (i32 i = 0; i < g_colors.count; ++i) {
        memory_free(g_colors.entries[i].name);
    }
    memory_free(g_colors.entries);
    g_colors = ColorTable{};
}
