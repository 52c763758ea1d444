// profile_paint.h: draws the page of a cut face with cairo: films, hatches, rulers and legend, but no texts.
#pragma once
#include "export/profile_page.h"

// As cairo.h declares them.
struct _cairo;

// Draws everything but the texts. The context's units are points.
void profile_paint(struct _cairo *cairo, const ProfilePage *page);
