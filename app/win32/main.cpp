// quarn.exe: the desktop program for Windows.
#include <windows.h>

#include "app/win32/desktop.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    return desktop_run(instance);
}
