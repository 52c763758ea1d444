#include "app/process_thread.h"

#include <cassert>
#include <utility>

#include "app/export_run.h"
#include "app/frontend.h"
#include "app/menu.h"
#include "app/picture_name.h"
#include "app/picture_notes.h"
#include "app/run_progress.h"
#include "app/run_stack.h"
#include "app/step_choice.h"
#include "image/image_alpha.h"
#include "image/image_pack.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/memory.h"
#include "platform/thread_role.h"
#include "render/lines.h"
#include "render/scene.h"
#include "sim/stack_layers.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"

// Runs one step and tells how long it took, unless it is the substrate or the run is being stopped.
static void execute_timed(const AppState *state, Stack *stack, i32 index) {
    run_progress_step(stack, index, nullptr);
    const f64 start_ms = platform_clock_ms();
    step_execute(stack, stack->steps->items[index]);
    const f64 elapsed_s = (platform_clock_ms() - start_ms) / 1000.0;
    if (state->stop_requested == 0 && index > 0) {
        console_printf("Completed in %.3f s\r\n\r\n", elapsed_s);
    }
}

// What a picture takes while it is drawn and read: its pixels, and those of the colour, the depth and a copy
// on the side of a driver that draws with the processor. Packing takes less, when the driver's part is free
// again.
static constexpr size_t BYTES_PER_PIXEL = 16;

// Whether a picture of this size can be made, so that the run can end with the pictures before it instead.
static bool has_memory_for_picture(i32 width, i32 height) {
    const Owned<u8[]> block(static_cast<u8 *>(memory_try_allocate(i64{width} * height, BYTES_PER_PIXEL)));
    return block != nullptr;
}

static bool fail_run(AppState *state, RunFailure failure) {
    state->run_failure = failure;
    return false;
}

static bool fail_for_memory(AppState *state, i32 width, i32 height) {
    diagnostic_write(L"no memory for a picture of %d x %d pixels: the run ends with the pictures before it",
                     width, height);
    return fail_run(state, RUN_NO_MEMORY);
}

// Packs the picture, or hands its pixels to the thread that writes them under its number, and appends it to
// the list, which takes it over.
static void keep_picture(AppState *state, Owned<PixelImage> picture, i32 number) {
    PixelImage *image = picture.release();
    const i32 count = state->image_count;
    assert(count < state->image_capacity);  // a list that grew would move under the thread that browses in it
    if (state->picture_writer != nullptr) {
        picture_writer_give(state->picture_writer, Owned<PixelImage>(image_take_pixels(image)), number);
    } else {
        image_pack(image);  // one that cannot be packed for lack of memory is kept as it is
    }
    state->images[count] = image;
    state->image_count = count + 1;
}

// Reads what was drawn under the step's title. Null when it cannot be read.
static Owned<PixelImage> read_picture(AppState *state, i32 step_index, i32 width, i32 height) {
    const WideText title = picture_title(state->stack, step_index);
    if (title == nullptr) {
        diagnostic_write(L"memory is lacking: the picture after step %d has no title", step_index);
    }
    state->frontend->set_title(state, title.get());
    Owned<PixelImage> image(image_try_create(width, height, title.get()));
    if (image != nullptr) {
        image->notes = picture_notes_create(state, step_index, height);
    }
    if (image == nullptr || image->notes == nullptr) {
        image = nullptr;
        fail_for_memory(state, width, height);
    } else if (!offscreen_read(image.get())) {
        image = nullptr;
        fail_run(state, RUN_NO_GRAPHICS);
    } else if (picture_is_transparent(&state->picture_style)) {
        image_make_transparent(image.get());
    }
    if (image == nullptr && state->image_count > 0) {
        state->frontend->set_title(state, wstring_text(state->images[state->current_image]->title));
    }
    return image;
}

// Waits for the picture before, if it is still being written.
static void await_written(const AppState *state) {
    if (state->picture_writer != nullptr) {
        picture_writer_wait(state->picture_writer);
    }
}

// Draws the stack as it is and keeps the picture under the step's title. False, with run_failure set, when
// there is no picture.
static bool render_picture(AppState *state, i32 step_index) {
    Stack *stack = state->stack;
    run_progress_step(stack, step_index, "picture");
    camera_free(state->camera);
    state->camera = scene_camera_create(stack, &state->picture_style);
    const i32 width = state->picture_style.width;
    const i32 height = scene_image_height(stack, state->camera, &state->picture_style);
    await_written(state);  // its memory is needed here, and faults are told in the order of the pictures
    if (!has_memory_for_picture(width, height)) {
        return fail_for_memory(state, width, height);
    }
    if (!offscreen_recreate(&state->framebuffer, width, height)) {
        return fail_run(state, RUN_NO_GRAPHICS);
    }
    const Scene scene = {stack, state->camera, state->surface_program, state->point_program,
                         &state->picture_style};
    scene_render(&scene, height);
    Owned<PixelImage> image = read_picture(state, step_index, width, height);
    if (image == nullptr) {
        return false;
    }
    keep_picture(state, std::move(image), step_picture_number(stack, step_index));
    return true;
}

// Lets the user-interface thread paint the newest picture, for which it needs the OpenGL context. While the
// user moves the window the picture is only kept. False, with run_failure set, when the context does not come
// back.
static bool show_newest_picture(AppState *state) {
    if (state->sizing != 0) {
        return true;
    }
    platform_gl_make_current(nullptr);
    state->current_image = state->image_count - 1;
    state->frontend->repaint(state);
    if (platform_gl_make_current(state->gl_context)) {
        return true;
    }
    diagnostic_write(L"the OpenGL context cannot be taken back: the run ends here");
    return fail_run(state, RUN_NO_GRAPHICS);
}

// Brings the stack up to date after a step and makes its picture, if that is one of those asked for. False
// when the run has to end.
static bool finish_step(AppState *state, i32 index, bool with_pictures) {
    Stack *stack = state->stack;
    const bool wanted = state->step_wanted == nullptr || state->step_wanted[index] != 0;
    stack->max_height = stack_largest_height(stack);
    if (with_pictures && wanted) {
        stack_refresh_layers(stack, !state->picture_style.fine);  // fine pictures have meshes of their own
        stack_update_lines(stack);
    } else if (with_pictures) {
        stack_drop_empty_layers(stack);
    } else {
        stack_refresh_layers(stack, false);
    }
    stack->live_layer_count = stack_count_layers(stack);
    if (wanted && state->export_run != nullptr) {
        export_run_step(state->export_run, state, index);  // before the picture, whose failure ends the run
    }
    return !with_pictures || !wanted || (render_picture(state, index) && show_newest_picture(state));
}

static void run_steps(AppState *state, bool with_pictures) {
    Stack *stack = state->stack;
    for (i32 i = 0; i < stack->steps->count; ++i) {
        const bool is_dump = stack->steps->items[i]->kind == STEP_DUMP;
        if (is_dump) {
            await_written(state);  // a dump that fails is told after the pictures before it
        }
        execute_timed(state, stack, i);
        if (is_dump) {
            continue;  // changes nothing; a stop is left to the step after it, which is then still run
        }
        if (!finish_step(state, i, with_pictures) || state->stop_requested != 0) {
            break;
        }
    }
}

i32 process_thread(void *argument) {
    thread_role_set(THREAD_WORKER);
    auto *state = static_cast<AppState *>(argument);
    assert(state != nullptr && state->stack != nullptr && state->images != nullptr);
    log_write(L"Running process thread");
    state->running = 1;
    menu_update(state);
    bool with_pictures = state->gl_context != nullptr;
    if (with_pictures && !platform_gl_make_current(state->gl_context)) {
        diagnostic_write(L"the OpenGL context cannot be taken over: the run makes no pictures");
        state->run_failure = RUN_NO_GRAPHICS;
        with_pictures = false;
    }
    const f64 start_ms = platform_clock_ms();
    if (with_pictures && state->picture_folder != nullptr) {
        state->picture_writer = picture_writer_start(state->picture_folder);
    }
    run_steps(state, with_pictures);
    picture_writer_free(state->picture_writer);
    state->picture_writer = nullptr;
    if (state->export_run != nullptr) {
        export_run_end(state->export_run);
    }
    progress_clear();
    const f32 elapsed_s = static_cast<f32>(platform_clock_ms() - start_ms) / 1000.0F;
    console_printf("All process steps completed in %.3f sec", static_cast<f64>(elapsed_s));
    console_append(L"\r\n");
    console_append(L"\r\n");
    if (with_pictures) {
        platform_gl_make_current(nullptr);
    }
    state->running = 0;
    state->frontend->run_done(state);
    return 0;
}
