// picture_clipboard.h: pictures for other programs. Main thread.
#pragma once
#include "image/pixel_image.h"

// Puts an opaque picture into the clipboard. Where a program keeps clipboards for others it is there also
// after this one has ended. False when there is no memory for it.
bool picture_clipboard_set(const PixelImage *picture);
