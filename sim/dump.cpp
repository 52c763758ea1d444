#include "sim/dump.h"

#include <cassert>
#include <cstdio>

#include "log/log.h"
#include "platform/platform.h"
#include "platform/whole_file.h"
#include "platform/wide_text.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"

static constexpr i32 COLUMN_STEP = 20;
static constexpr i64 BUFFER_BYTES = 1 << 20;
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

// "M" names the row and "N" the column, the layer's own slot is "L".
static void write_point(std::FILE *file, const Stack *stack, i32 n, i32 m) {
    const i64 point = static_cast<i64>(m) * stack->grid_n + n;
    const GridCell *cell = &stack->cells[point];
    std::fprintf(file, "\nTOPLAYER: %d\tHEIGHT: %.10f\n", cell->top_layer, static_cast<f64>(cell->height));
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            const f32 bottom = layer->bottom[point];
            const f32 top = layer->top[point];
            const f32 thickness = top - bottom;
            std::fprintf(file, "M: %d\tN: %d\tL: %d\tBOT: %f\tTOP: %f\tTHI: %.10f\n", m, n, slot,
                         static_cast<f64>(bottom), static_cast<f64>(top), static_cast<f64>(thickness));
        }
    }
    std::fputc('\n', file);
}

static void write_points(std::FILE *file, const Stack *stack) {
    for (i32 n = 0; n < stack->grid_n && std::ferror(file) == 0; n += COLUMN_STEP) {
        for (i32 m = 0; m < stack->grid_m; ++m) {
            write_point(file, stack, n, m);
        }
        std::fputs("\n\n", file);
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
    const NarrowText buffer = memory_scratch<char>(BUFFER_BYTES);
    std::setvbuf(whole.file, buffer.get(), _IOFBF, static_cast<size_t>(BUFFER_BYTES));
    write_points(whole.file, stack);
    if (!whole_file_commit(&whole)) {
        diagnostic_write(L"%ls could not be written whole: %ls", path.get(), whole.reason);
        stack->dump_failed = 1;
    }
}
