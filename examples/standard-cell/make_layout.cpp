// Makes the layout of the standard cell example: two gates of a row, drawn as foundries do it: poly and its
// contacts share a layer, and so do the first metal and its vias; only the datatype tells them apart.
#include "examples/layout_writer.h"

enum Layer { ACTIVE = 20, GATE = 30, METAL1 = 40, METAL2 = 50 };
enum Datatype { DRAWING = 10, CUT = 20 };

static void draw_cuts() {
    layout_cell_begin("CONTACT");
    layout_datatype(CUT);
    layout_box(GATE, -110, -110, 110, 110);
    layout_cell_end();
    layout_cell_begin("VIA");
    layout_box(METAL1, -120, -120, 120, 120);
    layout_cell_end();
    layout_datatype(DRAWING);
}

static void place(const char *cell, const std::vector<LayoutPoint> &points) {
    for (const LayoutPoint &point : points) {
        layout_reference(cell, {point.x, point.y, 0.0, 1.0, false});
    }
}

// Two n-channel transistors in series below, two p-channel ones side by side above; gates along y, between
// them the inputs.
static void draw_nand() {
    layout_cell_begin("NAND2");
    layout_box(ACTIVE, 300, 700, 3100, 1700);
    layout_box(ACTIVE, 300, 3200, 3100, 4400);
    layout_path(GATE, 200, 0, {{1200, 400}, {1200, 4700}});
    layout_path(GATE, 200, 0, {{2200, 400}, {2200, 4700}});
    layout_box(GATE, 950, 2250, 1300, 2650);
    layout_box(GATE, 2100, 2250, 2450, 2650);
    place("CONTACT",
          {{650, 1200}, {2750, 1200}, {650, 3800}, {1700, 3800}, {2750, 3800}, {1150, 2450}, {2250, 2450}});

    layout_box(METAL1, 0, -300, 3400, 300);  // ground, and supply
    layout_box(METAL1, 0, 4700, 3400, 5300);
    layout_box(METAL1, 500, 300, 800, 1400);
    layout_box(METAL1, 500, 3600, 800, 4700);
    layout_box(METAL1, 2600, 3600, 2900, 4700);
    layout_polygon(METAL1, {{1550, 4000},  // the output
                            {1550, 2900},
                            {2600, 2900},
                            {2600, 1000},
                            {2900, 1000},
                            {2900, 3200},
                            {1850, 3200},
                            {1850, 4000}});
    layout_box(METAL1, 1000, 2300, 1300, 2600);
    layout_box(METAL1, 2100, 2300, 2400, 2600);
    place("VIA", {{1150, 2450}, {2250, 2450}, {2750, 1200}});
    layout_cell_end();
}

int main(int argc, char **argv) {
    if (argc != 2) {
        return 1;
    }
    layout_begin(argv[1], "STANDARD");
    draw_cuts();
    draw_nand();

    // The first gate's output is an input of the second one.
    layout_cell_begin("ROW");
    place("NAND2", {{0, 0}, {3400, 0}});
    layout_path(METAL2, 320, 2, {{2750, 1200}, {5650, 1200}, {5650, 2450}});
    layout_path(METAL2, 320, 2, {{6150, 1200}, {6150, 4900}});
    layout_path(METAL2, 320, 2, {{1150, 2450}, {1150, 4900}});
    layout_path(METAL2, 320, 2, {{2250, 2450}, {2250, 4900}});
    layout_path(METAL2, 320, 2, {{4550, 2450}, {4550, 4900}});
    layout_cell_end();

    layout_end();
    return 0;
}
