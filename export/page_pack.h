// page_pack.h: what a step changed, packed for the page.
#pragma once
#include "export/page_record.h"

// Compares the stack with the films of the page, fills in what a step changed, and lets the films be as the
// stack is.
//   step   zeroed but for what tells of the step itself; freed with page_step_free in any case
// False when memory is lacking: page and films are then as they were.
bool page_pack_step(PageWriter *page, const Stack *stack, PageStep *step);
