// step_choice.h: which pictures of a run are made, as a user names them.
#pragma once
#include "process/stack.h"

// The number of the picture after a step, as its file has it: steps that change nothing (dumps) have none and
// are not counted.
i32 step_picture_number(const Stack *stack, i32 step_index);

// Marks the steps whose pictures a list names: "0,3-5,GATE,last". An item is the number of a picture, a range
// of them, the -name of steps or their caption ("GATE etching"), or "last". False when an item names none,
// which diagnostic_write is told.
//   wanted   a flag a step of the stack, all 0 before
bool step_choice_mark(const char *list, const Stack *stack, u8 *wanted);
