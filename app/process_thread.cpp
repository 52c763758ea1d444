#include "app/process_thread.h"

#include "app/commands.h"
#include "app/frontend.h"
#include "app/run_stack.h"
#include "image/image_pack.h"
#include "log/log.h"
#include "platform/memory.h"
#include "render/mesh.h"
#include "render/scene.h"
#include "sim/stack_layers.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"

// Runs one step and tells how long it took, unless it is the substrate or the run is being stopped.
static void execute_timed(const AppState *state, Stack *stack, i32 index) {
    f64 start_ms = platform_clock_ms();
    step_execute(stack, stack->steps->items[index]);
    f64 elapsed_s = (platform_clock_ms() - start_ms) / 1000.0;
    if (state->stop_requested == 0 && index > 0) {
        console_printf("Completed in %.3f s\r\n\r\n", elapsed_s);
    }
}

// A new text, freed with memory_free; null when it cannot be made.
static wchar_t *picture_title(const Stack *stack, i32 index) {
    if (index == 0) {
        return text_widen("The substrate");
    }
    NString *title = string_format("Cross section after %s", stack->steps->items[index]->title);
    wchar_t *wide = title != nullptr && title->text != nullptr ? text_widen(title->text) : nullptr;
    nstring_free(title);
    return wide;
}

// Draws the stack as it is and keeps the picture under the step's title.
static void render_picture(AppState *state, i32 step_index) {
    Stack *stack = state->stack;
    camera_free(state->camera);
    state->camera =
        camera_create(stack->width, stack->depth, stack->max_height, static_cast<f32>(stack->camera_angle));
    i32 width = state->image_width;
    i32 height = scene_image_height(stack, state->camera, width);
    offscreen_recreate(&state->framebuffer, width, height);
    Scene scene = {stack, state->camera, state->surface_program, state->point_program, width};
    scene_render(&scene, height);

    wchar_t *title = picture_title(stack, step_index);
    frontend_set_title(state, title);
    PixelImage *image = image_create(width, height, title);
    memory_free(title);
    offscreen_read(image);
    image_pack(image);  // one that cannot be packed for lack of memory is kept as it is

    i32 count = state->image_count;
    array_append(&state->images, &count, &state->image_capacity, image);
    state->image_count = count;
}

// Lets the user-interface thread paint the newest picture, for which it needs the OpenGL context.
// While the user moves the window the picture is only kept.
static void show_newest_picture(AppState *state) {
    if (state->sizing != 0) {
        return;
    }
    platform_gl_make_current(nullptr);
    state->current_image = state->image_count - 1;
    frontend_repaint(state);
    platform_gl_make_current(state->gl_context);
}

static void run_steps(AppState *state, bool with_pictures) {
    Stack *stack = state->stack;
    for (i32 i = 0; i < stack->steps->count; i++) {
        execute_timed(state, stack, i);
        if (stack->steps->items[i]->kind == STEP_DUMP) {
            continue;  // changes nothing; a stop is left to the step after it, which is then still run
        }
        stack->max_height = stack_largest_height(stack);
        stack_refresh_layers(stack, with_pictures);
        if (with_pictures) {
            stack_update_lines(stack);
        }
        stack->live_layer_count = stack_count_layers(stack);
        if (with_pictures) {
            render_picture(state, i);
            show_newest_picture(state);
        }
        if (state->stop_requested != 0) {
            break;
        }
    }
}

i32 process_thread(void *argument) {
    auto *state = static_cast<AppState *>(argument);
    log_write(L"Running process thread");
    state->running = 1;
    menu_update(state);
    bool with_pictures = state->gl_context != nullptr;
    if (with_pictures && !platform_gl_make_current(state->gl_context)) {
        diagnostic_write(L"the OpenGL context cannot be taken over: the run makes no pictures");
        with_pictures = false;
    }
    f64 start_ms = platform_clock_ms();
    run_steps(state, with_pictures);
    f32 elapsed_s = static_cast<f32>(platform_clock_ms() - start_ms) / 1000.0F;
    console_printf("All process steps completed in %.3f sec", static_cast<f64>(elapsed_s));
    console_append(L"\r\n");
    console_append(L"\r\n");
    if (with_pictures) {
        platform_gl_make_current(nullptr);
    }
    state->running = 0;
    frontend_run_done(state);
    return 0;
}
