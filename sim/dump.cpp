#include "sim/dump.h"

#include <cassert>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "log/log.h"
#include "platform/platform.h"
#include "platform/whole_file.h"
#include "platform/wide_text.h"
#include "sim/fixed_text.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

static constexpr i32 COLUMN_STEP = 20;
static constexpr i64 BUFFER_BYTES = 1 << 18;
static constexpr size_t PLACE_BYTES = 64;
static constexpr i64 LINE_BYTES = 512;  // no line is longer: three integers, three heights and their labels
static const wchar_t *const FILE_NAME = L"VertexData.txt";

static WideText dump_path(const Stack *stack) {
    if (stack->dump_folder == nullptr) {
        return wide_copy(FILE_NAME);
    }
    const WideText folder = wide_join(stack->dump_folder, PLATFORM_SEPARATOR);
    return wide_join(folder.get(), FILE_NAME);
}

bool dump_is_possible(const Stack *stack) {
    assert(stack != nullptr && stack->steps != nullptr);
    bool has_dump = false;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        has_dump |= stack->steps->items[i]->kind == STEP_DUMP;
    }
    if (!has_dump) {
        return true;
    }
    const WideText path = dump_path(stack);
    wchar_t reason[WHOLE_FILE_REASON_SIZE];
    const bool possible = whole_file_try(path.get(), reason);
    if (!possible) {
        diagnostic_write(L"%ls cannot be written: %ls", path.get(), reason);
    }
    return possible;
}

// A layer at one point.
struct DumpHeights {
    i32 slot;
    f32 bottom, top;
};

// Text on its way to a file.
struct DumpText {
    std::FILE *file;
    NarrowText buffer;             // BUFFER_BYTES
    char *end;                     // of the text in the buffer
    Owned<DumpHeights[]> heights;  // of the point in question, room for every layer
};

static void text_flush(DumpText *text) {
    const auto size = static_cast<size_t>(text->end - text->buffer.get());
    std::fwrite(text->buffer.get(), 1, size, text->file);
    text->end = text->buffer.get();
}

// Makes room for one more line.
static void text_line(DumpText *text) {
    if (text->end - text->buffer.get() > BUFFER_BYTES - LINE_BYTES) {
        text_flush(text);
    }
}

static void text_put_bytes(DumpText *text, const char *bytes, size_t size) {
    std::memcpy(text->end, bytes, size);
    text->end += size;
}

static void text_put(DumpText *text, const char *part) {
    text_put_bytes(text, part, std::strlen(part));
}

static void text_put_integer(DumpText *text, const char *label, i32 value) {
    text_put(text, label);
    text->end = std::to_chars(text->end, text->end + FIXED_TEXT_SIZE, value).ptr;
}

static void text_put_height(DumpText *text, const char *label, f32 value, i32 decimals) {
    text_put(text, label);
    text->end = fixed_text_write(text->end, value, decimals);
}

// What the lines of one point begin with: "M" names the row and "N" the column; the layer's slot follows "L".
static size_t format_place(char place[PLACE_BYTES], i32 n, i32 m) {
    return static_cast<size_t>(std::snprintf(place, PLACE_BYTES, "M: %d\tN: %d\tL: ", m, n));
}

// Reads the heights of all layers at one point ahead of writing: column by column they lie far apart, so that
// reading them takes longer than writing them, unless the processor can do it for many at a time. Returns how
// many layers there are.
static i32 read_heights(const Stack *stack, i64 point, DumpHeights *heights) {
    i32 count = 0;
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            heights[count++] = {slot, layer->bottom[point], layer->top[point]};
        }
    }
    return count;
}

static void write_point(DumpText *text, const Stack *stack, i32 n, i32 m) {
    const i64 point = static_cast<i64>(m) * stack->grid_n + n;
    const GridCell *cell = &stack->cells[point];
    const i32 count = read_heights(stack, point, text->heights.get());
    text_line(text);
    text_put_integer(text, "\nTOPLAYER: ", cell->top_layer);
    text_put_height(text, "\tHEIGHT: ", cell->height, 10);
    text_put(text, "\n");
    char place[PLACE_BYTES];
    const size_t place_size = format_place(place, n, m);
    for (i32 i = 0; i < count; ++i) {
        const DumpHeights heights = text->heights[i];
        const f32 thickness = heights.top - heights.bottom;
        text_line(text);
        text_put_bytes(text, place, place_size);
        text_put_integer(text, "", heights.slot);
        text_put_height(text, "\tBOT: ", heights.bottom, 6);
        text_put_height(text, "\tTOP: ", heights.top, 6);
        text_put_height(text, "\tTHI: ", thickness, 10);
        text_put(text, "\n");
    }
    text_line(text);
    text_put(text, "\n");
}

static void write_points(std::FILE *file, const Stack *stack) {
    DumpText text = {file, memory_scratch<char>(BUFFER_BYTES), nullptr,
                     memory_scratch<DumpHeights>(stack->layer_count)};
    text.end = text.buffer.get();
    for (i32 n = 0; n < stack->grid_n && std::ferror(file) == 0; n += COLUMN_STEP) {
        for (i32 m = 0; m < stack->grid_m; ++m) {
            write_point(&text, stack, n, m);
        }
        text_line(&text);
        text_put(&text, "\n\n");
    }
    if (std::ferror(file) == 0) {
        text_flush(&text);
    }
}

void dump_run(Stack *stack) {
    assert(stack != nullptr && stack->cells != nullptr);
    const WideText path = dump_path(stack);
    WholeFile whole;
    if (!whole_file_open(&whole, path.get(), "w")) {
        diagnostic_write(L"%ls could not be opened: %ls", path.get(), whole.reason);
        stack->dump_failed = 1;
        return;
    }
    write_points(whole.file, stack);
    if (!whole_file_commit(&whole)) {
        diagnostic_write(L"%ls could not be written whole: %ls", path.get(), whole.reason);
        stack->dump_failed = 1;
    }
}
