// picture_folder.h: the pictures of a run as files in one folder, where those of an earlier run may lie.
#pragma once
#include "app/older_files.h"
#include "image/image_file.h"
#include "platform/owned.h"

struct PictureFolder {
    wchar_t *path;  // owned
    ImageFormat format;
    i32 failed;        // pictures that could not be written
    OlderFiles older;  // pictures of an earlier run, in any format
};

// Looks for pictures of earlier runs in a folder that is there. Freed with picture_folder_free.
PictureFolder *picture_folder_open(const wchar_t *path, ImageFormat format);

// Frees the record and all in it; null is ignored. Files stay.
void picture_folder_free(PictureFolder *folder);

template <>
struct Freed<PictureFolder> {
    void operator()(PictureFolder *folder) const { picture_folder_free(folder); }
};

// Writes a picture under its number and title, whole or not at all. Once it is there, pictures of an earlier
// run with the same number are removed. A failure is counted, its reason goes to diagnostic_write, and what
// an earlier run has left stays.
//   image   with its pixels; null when there was no memory to unpack it, which is a failure too
//   title   of the picture
void picture_folder_save(PictureFolder *folder, const PixelImage *image, i32 number, const wchar_t *title);

// Tells diagnostic_write how many pictures of an earlier run still lie there; nothing when there are none.
void picture_folder_report(const PictureFolder *folder);
