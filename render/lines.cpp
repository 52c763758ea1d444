#include "render/lines.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/platform.h"
#include "sim/stack_setup.h"

// The grid row or column nearest below a position in grid points, kept inside the grid.
static i32 grid_index(f32 position, i32 count) {
    const i32 index = truncate_i32(position);
    return index < count ? index : count - 1;
}

// The same step runs across and along the grid. Point j of all ten lines lie together, so that the
// first ten vertices are the points on the front edge.
void stack_update_lines(Stack *stack) {
    assert(stack != nullptr && stack->cells != nullptr && stack->grid_n > 0 && stack->grid_m > 0);
    assert(stack->line_points <= 0 || stack->line_vertices != nullptr);
    const f32 step = stack->line_step;
    for (i32 j = 0; j < stack->line_points; ++j) {
        const f32 row = static_cast<f32>(j) * step;
        const i32 m = grid_index(row, stack->grid_m);
        for (i32 c = 0; c < SURFACE_LINES; ++c) {
            const f32 column = static_cast<f32>(c) * step;
            const i32 n = grid_index(column, stack->grid_n);
            const GridCell *cell = &stack->cells[static_cast<i64>(m) * stack->grid_n + n];
            LineVertex *vertex = &stack->line_vertices[static_cast<i64>(j) * SURFACE_LINES + c];
            vertex->position[0] = static_cast<f32>(n) * stack->spacing;
            vertex->position[1] = static_cast<f32>(m) * stack->spacing;
            vertex->position[2] = cell->height;
            vertex->unused[0] = vertex->unused[1] = vertex->unused[2] = 0.0F;
            vertex->shade = 0.95F;
        }
    }
    if (stack->line_vbo != 0 && platform_gl_is_current()) {
        const i64 count = static_cast<i64>(stack->line_points) * SURFACE_LINES;
        glBindBuffer(GL_ARRAY_BUFFER, stack->line_vbo);
        glBufferData(GL_ARRAY_BUFFER,
                     static_cast<GLsizeiptr>(count) * static_cast<GLsizeiptr>(sizeof(LineVertex)),
                     stack->line_vertices, GL_DYNAMIC_DRAW);
    }
}
