// layout_writer.h: write small GDSII layouts for the examples. Coordinates are database units of one
// nanometre, x to the right, y up. One layout is written at a time; a failed write ends the program
// with a message.
#pragma once
#include <cstdint>
#include <vector>

struct LayoutPoint {
    int32_t x, y;
};

// How a reference is placed: reflection about the x axis first, then the angle counter-clockwise.
struct LayoutPlacement {
    int32_t x, y;
    double angle_degrees;
    double mag;
    bool reflected;
};

void layout_begin(const char *path, const char *library);
void layout_end();

void layout_cell_begin(const char *name);
void layout_cell_end();

// The datatype of all that is drawn from here on; 0 at first.
void layout_datatype(int datatype);

// A closed boundary; the first point is repeated at the end by the writer.
void layout_polygon(int layer, const std::vector<LayoutPoint> &points);

void layout_box(int layer, int32_t x_min, int32_t y_min, int32_t x_max, int32_t y_max);

// A regular polygon of `corners` corners that stands for a disc.
void layout_disc(int layer, LayoutPoint centre, int32_t radius, int corners);

// A centre line of a width; end type 0 flush, 2 extended by half the width.
void layout_path(int layer, int32_t width, int end_type, const std::vector<LayoutPoint> &points);

void layout_reference(const char *cell, LayoutPlacement placement);

// A lattice of references; `column` and `row` are the steps from one element to the next.
void layout_array(const char *cell, LayoutPlacement placement, int columns, int rows, LayoutPoint column,
                  LayoutPoint row);
