#include "app/batch/batch_data.h"

#include "app/data_files.h"
#include "log/log.h"
#include "platform/memory.h"
#include "process/color_table.h"
#include "render/scene.h"

static DataPlaces places_of(const char *data_folder) {
    if (data_folder == nullptr) {
        return data_places(nullptr);
    }
    const WideText folder = platform_wide_from_system(data_folder);
    DataPlaces places = data_places(folder.get());
    return places;
}

BatchStatus batch_load_colors(const char *data_folder) {
    DataPlaces places = places_of(data_folder);
    WString *path = data_file_find(&places, L"colors.txt");
    const bool loaded = path != nullptr && color_table_load_file(wstring_text(path)) == 0;
    if (!loaded) {
        message_show(L"Could not load color file. Redo installation.");
    }
    wstring_free(path);
    data_places_free(&places);
    return loaded ? BATCH_DONE : BATCH_USAGE;
}

// Null after telling why not.
static ShaderProgram *load_program(const DataPlaces *places, const wchar_t *name) {
    WString *path = data_file_find(places, name);
    if (path == nullptr) {
        diagnostic_write(L"no graphics: the shader file %ls is missing", name);
        return nullptr;
    }
    ShaderProgram *program = shader_program_load(wstring_text(path));
    if (!shader_program_is_usable(program)) {
        diagnostic_write(L"no graphics: the shader file %ls cannot be used", wstring_text(path));
        shader_program_free(program);
        program = nullptr;
    }
    wstring_free(path);
    return program;
}

BatchStatus batch_graphics_start(AppState *state, const char *data_folder) {
    const wchar_t *reason = nullptr;
    state->gl_context = platform_gl_create_offscreen(&reason);
    if (state->gl_context == nullptr) {
        diagnostic_write(L"no graphics: %ls", reason != nullptr ? reason : L"the system does not say why");
        return BATCH_NO_GRAPHICS;
    }
    render_state_init();
    DataPlaces places = places_of(data_folder);
    state->surface_program = load_program(&places, L"surface.shader");
    state->point_program = load_program(&places, L"point.shader");
    data_places_free(&places);
    const bool usable = state->surface_program != nullptr && state->point_program != nullptr;
    return usable ? BATCH_DONE : BATCH_NO_GRAPHICS;
}

void batch_graphics_end(AppState *state) {
    shader_program_free(state->point_program);
    shader_program_free(state->surface_program);
    state->point_program = nullptr;
    state->surface_program = nullptr;
    platform_gl_free(state->gl_context);
    state->gl_context = nullptr;
}
