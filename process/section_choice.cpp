#include "process/section_choice.h"

#include <cassert>
#include <cstdio>
#include <cstring>

void section_choice_line(const SectionChoice *choice, char line[PROCESS_LINE_SIZE]) {
    assert(choice != nullptr && line != nullptr);
    const char *const figures[] = {choice->x, choice->y, choice->dx, choice->dy};
    for (const char *figure : figures) {
        assert(figure != nullptr && std::strlen(figure) < SECTION_FIGURE_SIZE);
        static_cast<void>(figure);  // where there are no asserts
    }
    std::snprintf(line, PROCESS_LINE_SIZE, "location -x %s -y %s -dx %s -dy %s", choice->x, choice->y,
                  choice->dx, choice->dy);
}
