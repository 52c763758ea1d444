// picture_writer.h: writes the pictures of a run beside the worker, which goes on to the next step while the
// one before is encoded. One picture is under way at most, and the worker waits for it before it makes the
// next one: so no more memory is taken than without, and the files, and what is told of those that fail, keep
// their order.
#pragma once
#include "app/picture_folder.h"

struct PictureWriter;

// Starts the thread that writes. Where the system gives none, whoever hands a picture over writes it.
//   folder   the caller's; the thread's from picture_writer_give to the end of picture_writer_wait
// Freed with picture_writer_free.
PictureWriter *picture_writer_start(PictureFolder *folder);

// Hands a picture with its pixels over, to be written under its number and title and freed. Waits for the one
// before.
void picture_writer_give(PictureWriter *writer, Owned<PixelImage> image, i32 number);

// Waits until the picture that was handed over last is written or has failed.
void picture_writer_wait(PictureWriter *writer);

// Waits for the last picture, and ends the thread; takes null.
void picture_writer_free(PictureWriter *writer);

template <>
struct Freed<PictureWriter> {
    void operator()(PictureWriter *writer) const { picture_writer_free(writer); }
};
