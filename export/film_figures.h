// film_figures.h: what can be measured of a film after a step. Lengths are micrometres.
#pragma once
#include "sim/layer.h"

// A height that is no number makes those figures "nan" that it has a part in.
struct FilmFigures {
    f32 middle;    // thickness at the middle of the cut; 0 where the film is absent there
    f32 smallest;  // thickness, over the grid points where the film is
    f32 largest;
    f64 mean;
    f64 coverage;     // share of all grid points where the film is, 0 to 1
    f64 face_area;    // on the cut face, square micrometres
    f64 volume;       // cubic micrometres
    f32 highest;      // the highest point of its upper side
    f32 step_height;  // from the lowest point of its upper side to the highest
};

// A film is present where its bottom and its top differ. Areas and volumes are those of what the section
// shows: heights that run straight from each grid point to the next, from the first column to the last and
// from the first row to the last. The volume is that of the film's solid (solid_film.h).
FilmFigures film_figures(const Layer *layer);
