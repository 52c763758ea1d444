// gtk_frontend.h: the front end of the window. Its functions hand what the commands and the worker ask for
// over to the main thread.
#pragma once
#include "app/frontend.h"

extern const Frontend GTK_FRONTEND;
