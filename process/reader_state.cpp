#include "process/reader_state.h"

ReaderState g_reader = {};

void reader_state_start() {
    reader_state_end();
    g_reader = ReaderState{};
    g_reader.units = UNIT_MICROMETRES;
    g_reader.strip_done = true;
    g_reader.max_bias = F32_MIN_NORMAL;
    g_reader.min_resolution = F32_MAX;
    g_reader.max_resolution = F32_MIN_NORMAL;
    g_reader.materials = material_table_create();
}

void reader_state_end() {
    material_table_free(g_reader.materials);
    g_reader.materials = nullptr;
}
