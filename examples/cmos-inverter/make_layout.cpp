// Makes the layout of the CMOS inverter example: two transistors side by side, cut across their gates.
#include "examples/layout_writer.h"

enum Layer { ACTIVE = 1, POLY = 2, CONTACT = 3, METAL = 4 };

int main(int argc, char **argv) {
    if (argc != 2) {
        return 1;
    }
    layout_begin(argv[1], "CMOS");

    layout_cell_begin("CONTACT");
    layout_box(CONTACT, -200, -200, 200, 200);
    layout_cell_end();

    // One transistor, its gate along y; contacts in two rows on source and drain.
    layout_cell_begin("TRANSISTOR");
    layout_box(ACTIVE, -1200, 500, 1200, 3200);
    layout_path(POLY, 400, 0, {{0, 200}, {0, 3800}});
    layout_array("CONTACT", {-750, 1200, 0.0, 1.0, false}, 2, 2, {1500, 0}, {0, 1400});
    layout_cell_end();

    layout_cell_begin("INVERTER");
    layout_reference("TRANSISTOR", {2200, 0, 0.0, 1.0, false});
    layout_reference("TRANSISTOR", {5800, 0, 0.0, 1.0, false});
    layout_box(POLY, 2000, 3500, 6000, 4000);  // the input joins both gates
    layout_reference("CONTACT", {4000, 3750, 0.0, 1.0, false});
    layout_box(METAL, 1100, 0, 1800, 5000);  // ground
    layout_box(METAL, 6200, 0, 6900, 5000);  // supply
    layout_polygon(METAL, {{2600, 900},      // output joins the drains
                           {3300, 900},
                           {3300, 1700},
                           {4700, 1700},
                           {4700, 900},
                           {5400, 900},
                           {5400, 3000},
                           {4700, 3000},
                           {4700, 2300},
                           {3300, 2300},
                           {3300, 3000},
                           {2600, 3000}});
    layout_box(METAL, 3650, 3400, 4350, 5000);  // input
    layout_cell_end();

    layout_end();
    return 0;
}
