// stack.h: the record of one run: its settings, steps, grid, polygons and layers.
// The process file reader fills the settings; the simulation makes and owns everything else, whose
// record types are its own, so that reading a process file needs neither layout nor simulation.
// Lengths are micrometres.
#pragma once
#include "process/process_step.h"

struct GridCell;
struct GridOffset;
struct Layer;
struct LineVertex;
struct PolygonList;

struct Stack {
    GridCell *cells;      // surface of the stack; point (n, m) is m * N + n
    GridOffset *offsets;  // grid neighbours sorted by distance
    i32 offset_count;
    i32 offset_used;            // always 0
    i32 grid_n;                 // setting: N, grid points across the section
    i32 grid_m;                 // M, grid points along it
    i32 margin_cells;           // grid points of margin on each side when polygons are extracted
    f32 spacing;                // between grid points
    f32 origin_x, origin_y;     // setting: lower-left corner of the section in the layout
    f32 width;                  // setting: across (x)
    f32 depth;                  // setting: along (y); set-up rounds it up to M * spacing
    i32 line_points;            // K, points of each surface line
    f32 line_step;              // grid points between two surface lines
    LineVertex *line_vertices;  // K for each surface line
    i64 line_vertex_capacity;   // of line_vertices
    u32 line_vao, line_vbo;     // OpenGL names, 0 without a context
    StepList *steps;            // setting; owned
    PolygonList *polygons;      // owned
    Layer **layers;             // owned; bottom layer first; slots of removed layers are null
    i32 layer_count;            // slots in use
    i32 layer_capacity;
    f32 max_height;              // largest surface height, at least 0; kept by the worker
    f32 max_bias;                // setting: no command sets it, it stays 2^-126
    f32 min_resolution;          // setting: smallest photo resolution
    f32 max_resolution;          // setting: largest photo resolution
    i32 show_heights;            // setting: 0 or 1
    i32 show_legend;             // setting: 0 or 1
    i32 camera_angle;            // setting: degrees
    i32 live_layer_count;        // slots that hold a layer; kept by the worker
    char *cell_name;             // setting: layout cell to cut; owned
    const wchar_t *dump_folder;  // of the dump's file; null: the current one; not owned
    i32 dump_failed;             // 1 when a dump could not be written
    i32 cell_line;               // of the last gds command in the process file, 0 without one
    i32 location_line;           // of the last location command
    f32 asked_depth;             // that of the location command, before it is rounded up
    i32 lengths_in_nm;           // 1: the file's unit is the nanometre, 0: the micrometre
    char *process_text;          // of the whole process file, as far as it was read; owned
};

// Points of the grid.
inline i64 stack_point_count(const Stack *stack) {
    return i64{stack->grid_n} * stack->grid_m;
}
