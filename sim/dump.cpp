#include <cerrno>
#include <cstdio>
#include <cstring>

#include "log/log.h"
#include "log/text.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"
#include "sim/step_run.h"

static constexpr i32 COLUMN_STEP = 20;
static constexpr i64 BUFFER_BYTES = 1 << 20;
static const wchar_t *const FILE_NAME = L"VertexData.txt";

// "M" names the row and "N" the column, the layer's own slot is "L".
static void write_point(std::FILE *file, const Stack *stack, i32 n, i32 m) {
    i64 point = static_cast<i64>(m) * stack->grid_n + n;
    const GridCell *cell = &stack->cells[point];
    std::fprintf(file, "\nTOPLAYER: %d\tHEIGHT: %.10f\n", cell->top_layer, static_cast<f64>(cell->height));
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            f32 bottom = layer->bottom[point];
            f32 top = layer->top[point];
            f32 thickness = top - bottom;
            std::fprintf(file, "M: %d\tN: %d\tL: %d\tBOT: %f\tTOP: %f\tTHI: %.10f\n", m, n, slot,
                         static_cast<f64>(bottom), static_cast<f64>(top), static_cast<f64>(thickness));
        }
    }
    std::fputc('\n', file);
}

static void report_short_write(i32 error) {
    wchar_t *reason = text_widen(error != 0 ? std::strerror(error) : "unknown reason");
    diagnostic_write(L"%ls could not be written whole: %ls", FILE_NAME, reason);
    memory_free(reason);
}

void dump_run(const Stack *stack) {
    std::FILE *file = platform_file_open(FILE_NAME, "w");
    if (file == nullptr) {
        diagnostic_write(L"%ls could not be opened: %ls", FILE_NAME, platform_error_text());
        return;
    }
    char *buffer = memory_new_array<char>(BUFFER_BYTES);
    std::setvbuf(file, buffer, _IOFBF, static_cast<size_t>(BUFFER_BYTES));
    errno = 0;
    for (i32 n = 0; n < stack->grid_n && std::ferror(file) == 0; n += COLUMN_STEP) {
        for (i32 m = 0; m < stack->grid_m; ++m) {
            write_point(file, stack, n, m);
        }
        std::fputs("\n\n", file);
    }
    bool whole = std::ferror(file) == 0;
    i32 error = errno;
    if (std::fclose(file) != 0 && whole) {
        whole = false;
        error = errno;
    }
    memory_free(buffer);
    if (!whole) {
        report_short_write(error);
    }
}
