// profile_legend.h: the legend of a drawing.
#pragma once
#include "export/profile_page.h"

// Adds swatches and names of the materials that are seen, the one that came last first, in columns as wide as
// the names need. Returns where the legend ends.
//   x, y   of its upper left corner
f64 profile_legend_add(ProfilePage *page, f64 x, f64 y);
