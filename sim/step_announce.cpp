#include "log/log.h"
#include "sim/step_run.h"

void step_announce(const ProcessStep *step) {
    if (step->title != nullptr) {
        console_printf("Executing %s ... \r\n", step->title);
    }
}
