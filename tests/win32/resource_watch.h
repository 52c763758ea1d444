// resource_watch.h: counts what the program under test takes from OpenGL and the system and has not given
// back.
#pragma once
#include <map>
#include <string>

#include "platform/base.h"

// Starts counting, for the whole program. OpenGL objects are counted from when the window is shown, before
// the first is made.
void resource_watch();

// Live objects by kind ("buffer", "program", "window", "font", ...), kinds without any left out.
std::map<std::string, i64> resources_live();

// The same as text, "buffer 2, program 1"; empty when nothing is left.
std::string resources_text();

// Objects that were ever made, all kinds.
i64 resources_made();
