// quarn: the desktop program. One window that loads a layout, runs a process file on it and shows the cross
// section after every step.
#include "app/gtk/desktop.h"

int main(int argc, char **argv) {
    return desktop_main(argc, argv);
}
