// app_inputs.h: small layouts and process files as bytes, for the tests of the application.
#pragma once
#include <string>
#include <vector>

#include "platform/base.h"

// A rectangle on a layout layer, database units of one nanometre.
struct LayoutBox {
    i32 layer;
    i32 x_min, y_min, x_max, y_max;
};

// A GDSII file with one cell "TOP" of these rectangles.
std::string layout_bytes(const std::vector<LayoutBox> &boxes);

// The same with a layer-1 rectangle over the left half of the cut of process_text, and one of layer 9 beyond
// it so that the cut lies in the cell.
std::string small_layout_bytes();

// A process file of a cut 10 x 2.5 micrometres at the origin of "TOP" with N = 200 (so a grid of
// 200 x 50), followed by `steps`, a command a line.
std::string process_text(const std::string &steps);

// A deposition of that name, 100 nm thick, etch type "t_" + name.
std::string deposition_line(const std::string &name);

// Whether a text is as the pattern says, in which "#" stands for a digit and "*" for anything.
bool text_matches(const std::string &text, const std::string &pattern);

// The text with each number of seconds ("0.123 s", "1.000 sec") as "#".
std::string mask_seconds(const std::string &text);
