#include "sim/step_execute.h"

#include "sim/step_run.h"

void step_execute(Stack *stack, const ProcessStep *step) {
    switch (step->kind) {
        case STEP_COATING: coating_run(stack, step); break;
        case STEP_DEPOSITION: deposition_run(stack, step); break;
        case STEP_DUMP: dump_run(stack); break;
        case STEP_PHOTO: photo_run(stack, step); break;
        case STEP_ETCH: etch_run(stack, step); break;
        case STEP_STRIP: strip_run(stack, step); break;
        case STEP_RELEASE: material_remove_run(stack, step); break;
        default: break;
    }
}
