// profile_ruler.h: rulers with round steps.
#pragma once
#include "platform/base.h"

struct ProfileRuler {
    bool in_nanometres;  // of its figures; else micrometres
    f64 step;            // between figures, micrometres: 1, 2 or 5 times a power of ten
    i32 parts;           // of a step, that strokes stand at
    i64 first, last;     // the strokes within the range, in parts of a step from 0
    i32 decimals;        // of its figures
};

// A ruler of a range of lengths (micrometres, the larger one last), with figures at least so far apart.
ProfileRuler profile_ruler_create(f64 lowest, f64 highest, f64 least_step);

// Where a stroke stands, micrometres, and whether it has a figure.
f64 profile_ruler_place(const ProfileRuler *ruler, i64 stroke);
bool profile_ruler_has_figure(const ProfileRuler *ruler, i64 stroke);

// The figure at a stroke.
void profile_ruler_format(const ProfileRuler *ruler, i64 stroke, char text[32]);
