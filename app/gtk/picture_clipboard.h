// picture_clipboard.h: pictures for other programs. Main thread.
#pragma once
#include "image/pixel_image.h"

// Puts a picture into the clipboard and takes it over: as "image/png", which keeps what is transparent, and
// on white in the other formats of pictures. Where a program keeps clipboards for others it is there also
// after this one has ended. The picture must not be packed. False when the clipboard does not take it.
bool picture_clipboard_set(Owned<PixelImage> picture);
