#include "sim/stack_setup.h"

#include <cassert>

#include "gds/polygon_list.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "process/process_file.h"
#include "sim/layer.h"
#include "sim/layer_gl.h"
#include "sim/section_hints.h"
#include "sim/stack_extract.h"
#include "sim/stack_grid.h"

static bool read_process_file(Stack *stack, const wchar_t *path, const SectionChoice *section) {
    const i32 result = process_read_file(stack, path, section);
    if (platform_interrupted()) {
        return false;
    }
    if (result != 0) {
        console_printf_w(L"Opening process file %ls failed with error(s) given above\r\n\r\n", path);
        return false;
    }
    console_printf_w(L"Successfully read process file \"%ls\"\r\n\r\n", path);
    return true;
}

// The hints that need the layout, once the extraction has been tried.
static void give_section_hints(const Stack *stack, const GdsDatabase *layout, const wchar_t *path) {
    if (stack->polygons != nullptr && layout != nullptr && stack->cell_name != nullptr) {
        section_hints(stack, layout, extract_cell_find(layout, stack->cell_name), path);
    }
}

Stack *stack_create(const wchar_t *process_path, const GdsDatabase *layout, const SectionChoice *section) {
    assert(process_path != nullptr);
    log_write(L"Allocate and initialize stack");
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    const bool ready = read_process_file(stack.get(), process_path, section) && stack_grid_lay(stack.get()) &&
                       stack_extract_polygons(stack.get(), layout);
    give_section_hints(stack.get(), layout, process_path);
    if (!ready) {
        return nullptr;
    }
    stack_grid_tables(stack.get());
    if (platform_interrupted()) {
        return nullptr;
    }
    return stack.release();
}

void stack_free(Stack *stack) {
    if (stack == nullptr) {
        return;
    }
    log_write(L"Delete stack");
    for (i32 i = 0; i < stack->layer_count; ++i) {
        layer_free(stack->layers[i]);
        stack->layers[i] = nullptr;
    }
    memory_free(stack->layers);
    polygon_list_free(stack->polygons);
    memory_free(stack->line_vertices);
    lines_gl_delete(stack);
    step_list_free(stack->steps);
    memory_free(stack->offsets);
    memory_free(stack->cells);
    memory_free(stack->cell_name);
    memory_free(stack->process_text);
    memory_free(stack);
}
