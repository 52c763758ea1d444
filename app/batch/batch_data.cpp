#include "app/batch/batch_data.h"

#include "app/batch/batch_output.h"
#include "log/log.h"
#include "platform/memory.h"
#include "process/color_table.h"
#include "render/scene.h"

static constexpr i32 PLACE_COUNT = 4;

// Folders in the order of search, each with its separator at the end.
struct DataPlaces {
    WString *folders[PLACE_COUNT];
    i32 count;
};

static void add_place(DataPlaces *places, WString *folder) {
    places->folders[places->count++] = folder;
}

static DataPlaces data_places(const char *data_folder) {
    DataPlaces places = {};
    if (data_folder != nullptr) {
        wchar_t *folder = platform_wide_from_system(data_folder);
        add_place(&places, wstring_format(L"%ls%ls", folder, PLATFORM_SEPARATOR));
        memory_free(folder);
        return places;
    }
    add_place(&places, wstring_copy(L""));  // the current folder
    wchar_t *program = platform_program_folder();
    if (program != nullptr) {
        const wchar_t *s = PLATFORM_SEPARATOR;
        add_place(&places, wstring_format(L"%ls%ls", program, s));
        // The installed tree may have been moved as a whole.
        add_place(&places, wstring_format(L"%ls%ls..%lsshare%lsquarn%ls", program, s, s, s, s));
        memory_free(program);
    }
    wchar_t *installed = platform_wide_from_system(QUARN_INSTALLED_DATA);
    add_place(&places, wstring_format(L"%ls%ls", installed, PLATFORM_SEPARATOR));
    memory_free(installed);
    return places;
}

static void data_places_free(DataPlaces *places) {
    for (i32 i = 0; i < places->count; i++) {
        wstring_free(places->folders[i]);
    }
}

// The path of a file in the first place that has it, a new string; null when none has.
static WString *find_file(const DataPlaces *places, const wchar_t *name) {
    for (i32 i = 0; i < places->count; i++) {
        WString *path = wstring_format(L"%ls%ls", wstring_text(places->folders[i]), name);
        if (platform_file_exists(wstring_text(path))) {
            return path;
        }
        wstring_free(path);
    }
    return nullptr;
}

static void tell_places(const DataPlaces *places, const wchar_t *name) {
    for (i32 i = 0; i < places->count; i++) {
        diagnostic_write(L"%ls%ls: there is no such file", wstring_text(places->folders[i]), name);
    }
}

BatchStatus batch_load_colors(const char *data_folder) {
    DataPlaces places = data_places(data_folder);
    WString *path = find_file(&places, L"colors.txt");
    bool loaded = path != nullptr && color_table_load_file(wstring_text(path)) == 0;
    if (!loaded) {
        message_show(L"Could not load color file. Redo installation.");
    }
    if (path == nullptr) {
        tell_places(&places, L"colors.txt");
    }
    wstring_free(path);
    data_places_free(&places);
    return loaded ? BATCH_DONE : BATCH_USAGE;
}

// Null after telling why not.
static ShaderProgram *load_program(const DataPlaces *places, const wchar_t *name) {
    WString *path = find_file(places, name);
    if (path == nullptr) {
        diagnostic_write(L"no graphics: the shader file %ls is missing", name);
        tell_places(places, name);
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
    DataPlaces places = data_places(data_folder);
    state->surface_program = load_program(&places, L"surface.shader");
    state->point_program = load_program(&places, L"point.shader");
    data_places_free(&places);
    bool usable = state->surface_program != nullptr && state->point_program != nullptr;
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
