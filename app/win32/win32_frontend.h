// win32_frontend.h: the front end of the window: what the commands and the worker ask of it.
#pragma once
#include "app/frontend.h"

extern const Frontend WIN32_FRONTEND;
