#include "app/picture_writer.h"

#include <cassert>

#include "platform/memory.h"
#include "platform/platform.h"

// `image` and `number` change hands with the semaphores: the thread's from `given` to `written`.
struct PictureWriter {
    PictureFolder *folder;
    PlatformThread *thread;      // null where the system gives none
    PlatformSemaphore *given;    // posted when `image` is there, null at the end
    PlatformSemaphore *written;  // posted when it is written and freed
    PixelImage *image;           // owned
    i32 number;
    bool under_way;  // of whoever hands over: a picture was given and not yet waited for
};

static void write_and_free(PictureWriter *writer) {
    const Owned<PixelImage> image(writer->image);
    writer->image = nullptr;
    picture_folder_save(writer->folder, image.get(), writer->number, wstring_text(image->title));
}

static i32 write_pictures(void *argument) {
    auto *writer = static_cast<PictureWriter *>(argument);
    platform_semaphore_wait(writer->given);
    while (writer->image != nullptr) {
        write_and_free(writer);
        platform_semaphore_post(writer->written);
        platform_semaphore_wait(writer->given);
    }
    return 0;
}

PictureWriter *picture_writer_start(PictureFolder *folder) {
    assert(folder != nullptr);
    auto *writer = memory_new_zeroed<PictureWriter>();
    writer->folder = folder;
    writer->given = platform_semaphore_create();
    writer->written = platform_semaphore_create();
    writer->thread = platform_thread_start(write_pictures, writer);
    return writer;
}

void picture_writer_give(PictureWriter *writer, Owned<PixelImage> image, i32 number) {
    assert(writer != nullptr && image != nullptr && image->pixels != nullptr);
    picture_writer_wait(writer);
    writer->image = image.release();
    writer->number = number;
    if (writer->thread == nullptr) {
        write_and_free(writer);
        return;
    }
    writer->under_way = true;
    platform_semaphore_post(writer->given);
}

void picture_writer_wait(PictureWriter *writer) {
    assert(writer != nullptr);
    if (writer->under_way) {
        platform_semaphore_wait(writer->written);
        writer->under_way = false;
    }
}

void picture_writer_free(PictureWriter *writer) {
    if (writer == nullptr) {
        return;
    }
    picture_writer_wait(writer);
    if (writer->thread != nullptr) {
        platform_semaphore_post(writer->given);
        platform_thread_join(writer->thread);
    }
    platform_semaphore_free(writer->given);
    platform_semaphore_free(writer->written);
    memory_free(writer);
}
