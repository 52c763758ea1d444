#include "sim/step_execute.h"

#include <cassert>

#include "log/log.h"
#include "platform/thread_role.h"
#include "sim/coating.h"
#include "sim/deposition.h"
#include "sim/dump.h"
#include "sim/etch.h"
#include "sim/photo.h"
#include "sim/strip.h"

// Nothing for a step without a title, except that a release shows an absent one as the C library does; kept
// so, since users compare the console texts of runs.
static void step_announce(const ProcessStep *step) {
    if (step->title != nullptr || step->kind == STEP_RELEASE) {
        console_printf("Executing %s ... \r\n", step->title != nullptr ? step->title : "(null)");
    }
}

static bool is_announced(i32 kind) {
    switch (kind) {
        case STEP_COATING:
        case STEP_DEPOSITION:
        case STEP_PHOTO:
        case STEP_ETCH:
        case STEP_STRIP:
        case STEP_RELEASE: return true;
        default: return false;
    }
}

void step_execute(Stack *stack, const ProcessStep *step) {
    assert(stack != nullptr && step != nullptr && thread_role_fits(THREAD_WORKER));
    if (is_announced(step->kind)) {
        step_announce(step);
    }
    switch (step->kind) {
        case STEP_COATING: coating_run(stack, step); break;
        case STEP_DEPOSITION: deposition_run(stack, step); break;
        case STEP_DUMP: dump_run(stack); break;
        case STEP_PHOTO: photo_run(stack, step); break;
        case STEP_ETCH: etch_run(stack, step); break;
        case STEP_STRIP: strip_run(stack); break;
        case STEP_RELEASE: material_remove_run(stack, step); break;
        default: break;
    }
}
