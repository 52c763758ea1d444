// Reading files that may be anything. A pipe is read through a stream of its own, since a read that waits
// for bytes would not hear an interrupt.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>

#include "platform/linux/system_error.h"
#include "platform/memory.h"
#include "platform/platform.h"

static constexpr int LONGEST_WAIT_MS = 100;  // until the next look for an interrupt that another thread took

struct PipeSource {
    int descriptor;  // does not block
};

template <>
struct Freed<PipeSource> {
    void operator()(PipeSource *source) const { memory_free(source); }
};

static ssize_t pipe_read(void *cookie, char *buffer, size_t size) {
    const int descriptor = static_cast<PipeSource *>(cookie)->descriptor;
    while (!platform_interrupted()) {
        pollfd waiting = {descriptor, POLLIN, 0};
        if (poll(&waiting, 1, LONGEST_WAIT_MS) <= 0) {
            continue;
        }
        const ssize_t count = read(descriptor, buffer, size);
        if (count >= 0 || (errno != EAGAIN && errno != EINTR)) {
            return count;
        }
    }
    errno = EINTR;
    return -1;
}

static int pipe_close(void *cookie) {
    const Owned<PipeSource> source(static_cast<PipeSource *>(cookie));
    return close(source->descriptor);
}

// Takes the descriptor over unless it returns null.
static std::FILE *pipe_stream(int descriptor, const char *mode) {
    Owned<PipeSource> source(memory_new_zeroed<PipeSource>());
    source->descriptor = descriptor;
    cookie_io_functions_t functions = {};
    functions.read = pipe_read;
    functions.close = pipe_close;
    std::FILE *file = fopencookie(source.get(), mode, functions);
    if (file != nullptr) {
        static_cast<void>(source.release());  // pipe_close frees it
    }
    return file;
}

// The null device is an empty file; every other one may wait for ever, or never end.
static bool is_refused_device(const struct stat &status) {
    const bool null_device = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
    return (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) && !null_device;
}

// 0, or why the path is not opened at all.
static i32 refusal(const char *name) {
    struct stat status = {};
    if (stat(name, &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return is_refused_device(status) ? SYSTEM_ERROR_DEVICE : 0;
}

static std::FILE *open_descriptor(int descriptor, const char *mode) {
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)) {
        return pipe_stream(descriptor, mode);
    }
    return fdopen(descriptor, mode);
}

std::FILE *platform_input_open(const wchar_t *path, const char *mode) {
    assert(path != nullptr && mode != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    i32 code = refusal(name.get());
    std::FILE *file = nullptr;
    // A pipe that nobody writes to yet must not make the opening wait; files do not heed the flag.
    const int descriptor = code == 0 ? open(name.get(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY) : -1;
    if (descriptor >= 0) {
        file = open_descriptor(descriptor, mode);
    }
    if (code == 0 && file == nullptr) {
        code = errno;
    }
    if (descriptor >= 0 && file == nullptr) {
        close(descriptor);
    }
    if (file == nullptr) {
        system_error_set(code);
    }
    return file;
}
