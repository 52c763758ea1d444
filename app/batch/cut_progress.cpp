#include "app/batch/cut_progress.h"

#include <cassert>
#include <cstdio>

void cut_progress_show(CutProgress *progress, i32 done, i32 count) {
    assert(progress != nullptr && done >= 0 && done <= count);
    if (progress->on_terminal) {
        // Not by terminal_printf, which shows what moves the cursor instead of sending it.
        std::fprintf(stderr, "\r%d of %d cuts done", done, count);
        std::fflush(stderr);
        progress->shown = true;
    }
}

void cut_progress_clear(CutProgress *progress) {
    assert(progress != nullptr);
    if (progress->shown) {
        std::fputs("\r                                        \r", stderr);
        std::fflush(stderr);
        progress->shown = false;
    }
}
