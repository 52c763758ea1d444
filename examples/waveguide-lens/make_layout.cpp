// Makes the layout of the waveguide and lens example: a bent waveguide, a splitter arm and two lenses.
#include "examples/layout_writer.h"

enum Layer { GUIDE = 1, LENS = 2, HEATER = 3 };

int main(int argc, char **argv) {
    if (argc != 2) {
        return 1;
    }
    layout_begin(argv[1], "PHOTONICS");

    layout_cell_begin("LENS");
    layout_disc(LENS, {0, 0}, 1000, 64);
    layout_cell_end();

    layout_cell_begin("CHIP");
    layout_path(GUIDE, 900, 0, {{2500, -1000}, {2500, 3000}, {4500, 6000}, {4500, 9000}});
    layout_path(GUIDE, 850, 0, {{6000, -1000}, {6000, 9000}});
    layout_reference("LENS", {9300, 1600, 0.0, 1.4, false});
    layout_reference("LENS", {9300, 4600, 0.0, 1.0, false});
    layout_path(HEATER, 500, 2, {{2500, -2000}, {2500, 2000}});
    layout_cell_end();

    layout_end();
    return 0;
}
