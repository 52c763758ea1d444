// near_name.h: which of several names was probably meant by one that is none of them.
#pragma once
#include "platform/base.h"

// All zero but `wanted` at the start.
struct NearName {
    const char *wanted;
    const char *best;  // the nearest so far, not owned; null when none is near
    i32 best_cost;
};

// Looks at one more name. A name is near when it differs in letter case only, or by at most one letter in
// three, and by three at most, that is missing, too much, another one or changed places with its neighbour.
// Of equally near names the first stays. An equal name counts too; bytes are compared, letters are a to z.
void near_name_try(NearName *near, const char *candidate);
