// desktop.h: the desktop program for Windows from its start to its end.
#pragma once
#include "app/picture_options.h"

// Runs the program: start-up, window, message loop, clean-up. Reads "colors.txt", "surface.shader",
// "point.shader" and "quarn.ico" from the current folder, or else from beside the program. Everything it made
// is freed when it returns, so that it can be called again.
//   instance                    the module's HINSTANCE
//   layout_path, process_path   loaded and run when the window is on show; null for none
//   pictures                    how they are to look; null for the plain style
// Returns the exit code of the program: 0, or 1 when it could not start and has told why in a message box.
i32 desktop_run(void *instance, const wchar_t *layout_path, const wchar_t *process_path,
                const PictureOptions *pictures = nullptr);
