#include "app/win32/win32_desktop.h"

Win32Desktop *g_desktop = nullptr;
