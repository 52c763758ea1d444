#include "app/app_state.h"

#include <cassert>

#include "app/export_run.h"
#include "log/log.h"
#include "platform/memory.h"
#include "render/font.h"
#include "sim/stack_setup.h"

AppState *g_app = nullptr;

static constexpr i32 IMAGE_LIST_FIRST_CAPACITY = 512;

void images_create(AppState *state, i32 step_count) {
    assert(state->images == nullptr && step_count >= 0);
    i32 capacity = IMAGE_LIST_FIRST_CAPACITY;
    while (capacity < step_count) {
        capacity *= 2;
    }
    state->images = memory_new_array<PixelImage *>(capacity);
    state->image_count = 0;
    state->image_capacity = capacity;
    state->current_image = 0;
    ++state->run_number;
}

void images_free(AppState *state) {
    for (i32 i = 0; i < state->image_count; ++i) {
        image_free(state->images[i]);
    }
    memory_free(state->images);
    state->images = nullptr;
    state->image_count = 0;
    state->image_capacity = 0;
    export_run_free(state->export_run);
    state->export_run = nullptr;
    memory_free(state->step_wanted);
    state->step_wanted = nullptr;
}

void app_forget_run(AppState *state) {
    stack_free(state->stack);
    state->stack = nullptr;
    offscreen_free(state->framebuffer);
    state->framebuffer = nullptr;
    camera_free(state->camera);
    state->camera = nullptr;
    images_free(state);
    wstring_free(state->process_path);
    state->process_path = nullptr;
    wstring_free(state->output_folder);
    state->output_folder = nullptr;
    wstring_free(state->dump_folder);
    state->dump_folder = nullptr;
    picture_folder_free(state->picture_folder);
    state->picture_folder = nullptr;
    wstring_free(state->export_wish.page_path);
    state->export_wish.page_path = nullptr;
}

void app_cleanup(AppState *state) {
    console_append(L"Cleaning up ...");
    console_append(L"\r\n");
    gds_free(state->layout);
    state->layout = nullptr;
    app_forget_run(state);
    font_cache_free();
    wstring_free(state->gds_path);
    state->gds_path = nullptr;
}
