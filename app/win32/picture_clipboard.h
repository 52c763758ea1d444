// picture_clipboard.h: pictures for other programs. User-interface thread.
#pragma once
#include <windows.h>

#include "image/pixel_image.h"

// Puts an opaque picture into the clipboard, as CF_DIB; the system offers it as CF_BITMAP and CF_DIBV5 as
// well. False when there is no memory for it, or another program holds the clipboard for longer than a
// moment.
bool picture_clipboard_set(HWND owner, const PixelImage *picture);
