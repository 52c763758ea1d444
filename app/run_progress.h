// run_progress.h: tells those who wait what a run is at (log/progress.h).
#pragma once
#include "process/stack.h"

// Shows "step 5 of 26: OXIDE deposition, picture".
//   step_index   in stack->steps; 0 is the substrate
//   what         that is made of the step; null while the step itself is under way
void run_progress_step(const Stack *stack, i32 step_index, const char *what);
