// Makes the layout of the MEMS cantilever example: a beam with release holes over an electrode.
#include "examples/layout_writer.h"

enum Layer { ELECTRODE = 1, ANCHOR = 2, BEAM = 3, HOLE = 4, PAD = 5 };

int main(int argc, char **argv) {
    if (argc != 2) {
        return 1;
    }
    layout_begin(argv[1], "MEMS");

    layout_cell_begin("HOLE");
    layout_disc(HOLE, {0, 0}, 900, 24);
    layout_cell_end();

    // The cut goes through the middle of the beam, along its length.
    layout_cell_begin("CANTILEVER");
    layout_box(ELECTRODE, 17000, -7000, 31000, 7000);
    layout_box(ANCHOR, 3000, -5000, 13000, 5000);
    layout_polygon(BEAM, {{1500, -7000},
                          {14500, -7000},
                          {16500, -5000},
                          {34000, -5000},
                          {34000, 5000},
                          {16500, 5000},
                          {14500, 7000},
                          {1500, 7000}});
    layout_array("HOLE", {18500, -2500, 0.0, 1.0, false}, 5, 2, {3000, 0}, {0, 5000});
    layout_box(PAD, 4500, -4000, 11500, 4000);
    layout_cell_end();

    layout_end();
    return 0;
}
