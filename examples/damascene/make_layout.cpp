// Makes the layout of the damascene example: two levels of lines joined by vias, from small cells that
// are arrayed, rotated, mirrored and magnified.
#include "examples/layout_writer.h"

enum Layer { METAL1 = 10, VIA1 = 20, METAL2 = 30 };

int main(int argc, char **argv) {
    if (argc != 2) {
        return 1;
    }
    layout_begin(argv[1], "DAMASCENE");

    layout_cell_begin("VIA");
    layout_box(VIA1, -60, -60, 60, 60);
    layout_cell_end();

    // A line along y from its origin.
    layout_cell_begin("LINE");
    layout_path(METAL1, 200, 2, {{0, 100}, {0, 1800}});
    layout_cell_end();

    // A line of the second level, drawn along x and used turned and mirrored.
    layout_cell_begin("BENT");
    layout_path(METAL2, 220, 2, {{0, 0}, {900, 0}, {900, 500}});
    layout_reference("VIA", {0, 0, 0.0, 1.0, false});
    layout_cell_end();

    layout_cell_begin("INTERCONNECT");
    layout_array("LINE", {300, -300, 0.0, 1.0, false}, 6, 1, {480, 0}, {0, 2500});
    layout_array("VIA", {300, 300, 0.0, 1.0, false}, 6, 1, {480, 0}, {0, 900});
    layout_path(METAL2, 220, 0, {{100, 300}, {1900, 300}});
    layout_reference("BENT", {2220, 300, 0.0, 1.0, false});
    layout_reference("BENT", {300, 1200, 0.0, 1.0, true});
    layout_reference("BENT", {1740, 1200, 180.0, 0.5, true});
    layout_reference("BENT", {2700, 1200, 90.0, 0.8, false});
    layout_cell_end();

    layout_end();
    return 0;
}
