// picture_clipboard.h: pictures for other programs. User-interface thread.
#pragma once
#include <windows.h>

#include "image/pixel_image.h"

// Puts a picture into the clipboard: as "PNG", which keeps what is transparent, and as CF_DIB on white; the
// system offers the latter as CF_BITMAP and CF_DIBV5 as well. The picture, which is not packed, is laid on
// white. Without memory for the first the second is there alone. False when there is no memory for that
// either, or another program holds the clipboard for longer than a moment.
bool picture_clipboard_set(HWND owner, PixelImage *picture);
