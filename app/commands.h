// commands.h: all commands of the menu, for those who hand them out.
#pragma once
#include "app/browse_command.h"
#include "app/load_command.h"
#include "app/menu.h"
#include "app/run_command.h"
#include "app/save_command.h"
