// platform.h: the operating system behind one header. Paths are wide strings everywhere; their
// conversion to the system's own form happens in here only. Everything is callable from any thread
// unless told otherwise.
#pragma once
#include <atomic>
#include <cstdio>
#include "platform/base.h"
#include "platform/owned.h"

// Separator between a folder and a file name, as text.
extern const wchar_t *const PLATFORM_SEPARATOR;

// Text conversion at the border; narrow texts are UTF-8. Every file name survives the round trip: on Linux
// bytes that are not UTF-8 become lone units 0xDC80 to 0xDCFF and turn back into the same bytes; on Windows
// lone halves of pairs become three bytes each, and turn back.
WideText platform_wide_from_system(const char *text);

// The way back.
NarrowText platform_system_from_wide(const wchar_t *text);

// The program's command line as texts that platform_wide_from_system takes; Windows gives `main` only the
// letters of one code page. Made once, kept to the end of the program; the last one is followed by null.
//   count   in/out: their number, as `main` got it
//   given   those that `main` got
char **platform_arguments(i32 *count, char **given);

// Files and folders.

// Opens a file as the C library does ("rb", "wb", "r", "w", "a"). Null on failure, and then
// platform_error_text tells why. A folder is refused also for reading. The caller closes it.
std::FILE *platform_file_open(const wchar_t *path, const char *mode);

// The same for reading ("rb", "r") what the user names: a device is refused, except the null device; waiting
// for the other end of a pipe ends with an interrupt, which then fails the reading.
std::FILE *platform_input_open(const wchar_t *path, const char *mode);

// Deletes a file; true on success.
bool platform_file_delete(const wchar_t *path);

bool platform_file_exists(const wchar_t *path);  // a file that is not a folder

// A folder, not a file.
bool platform_folder_exists(const wchar_t *path);

// Size in bytes, or -1 when there is no such file.
i64 platform_file_size(const wchar_t *path);

enum PlatformFolderResult {
    PLATFORM_FOLDER_CREATED = 0,
    PLATFORM_FOLDER_PATH_NOT_FOUND = 3,  // a parent is missing
    PLATFORM_FOLDER_EXISTS = 183,        // something of that name is there
    PLATFORM_FOLDER_FAILED = 1,          // any other reason, see platform_error_text
};

// Creates one folder; its parent must be there.
PlatformFolderResult platform_folder_create(const wchar_t *path);

// Creates a folder and its missing parents; an existing folder is fine. True when it is there.
bool platform_folder_create_all(const wchar_t *path);

// The reason of this thread's last failed call of the functions above, in words, for people
// (a text of this thread, valid until its next call).
const wchar_t *platform_error_text();

// The folder where a user's programs keep their data (Windows: local application data; Linux:
// $XDG_DATA_HOME, else ~/.local/share), and the folder that the running program's file lies in.
// Null when the system does not tell.
WideText platform_user_data_folder();

// The folder of the running program, null likewise.
WideText platform_program_folder();

// Memory.

// Gives freed memory back to the system that the C library keeps for blocks to come; for the end of work that
// took much more than what follows. Does nothing where the library has no such call.
void platform_memory_give_back();

// Time.

f64 platform_clock_ms();  // milliseconds that have passed since some moment of the past

using PlatformClock = f64 (*)();

// For tests: what platform_clock_ms gives from here on; null restores the system's clock.
void platform_clock_replace(PlatformClock clock);

struct PlatformTime {
    i32 year, month, day;  // 2024, 1..12, 1..31
    i32 hour, minute, second;
};

// The time of the day where the user is.
PlatformTime platform_local_time();

// A line for an attached debugger; nothing where there is none.
void platform_debug_output(const wchar_t *text);

// Threads and interruption.

struct PlatformThread;
using PlatformThreadFunction = i32 (*)(void *argument);

// Starts a thread at once; it inherits the caller's context (platform/thread_context.h). Null when the system
// refuses. The handle is freed by platform_thread_join, or kept to the end of the program.
PlatformThread *platform_thread_start(PlatformThreadFunction function, void *argument);
i32 platform_thread_join(PlatformThread *thread);  // waits, frees the handle, gives the function's result

// A counter that threads wait on. Posting is safe inside a signal handler.
struct PlatformSemaphore;

// A counter at 0, freed with platform_semaphore_free.
PlatformSemaphore *platform_semaphore_create();

// Adds 1, and wakes a thread that waits.
void platform_semaphore_post(PlatformSemaphore *semaphore);

// Waits until the counter is above 0, and takes 1 off.
void platform_semaphore_wait(PlatformSemaphore *semaphore);

// The same, but for so many milliseconds at most. False when they have passed and nothing was posted.
bool platform_semaphore_wait_for(PlatformSemaphore *semaphore, i32 milliseconds);

// Takes null; nobody may be waiting.
void platform_semaphore_free(PlatformSemaphore *semaphore);

// From this call on the first interrupt (Ctrl-C, SIGTERM) sets *flag to 1 and posts the semaphore
// instead of ending the program; the second one ends it. Both must outlive the program's run. The semaphore
// may be null; a null flag only forgets the one before.
void platform_interrupt_watch(std::atomic<i32> *flag, PlatformSemaphore *semaphore);

// Whether the flag that is watched, if any, is set: then long work that is not yet a run gives up. Cheap
// enough to be asked for every item of a list.
bool platform_interrupted();

template <>
struct Freed<PlatformSemaphore> {
    void operator()(PlatformSemaphore *semaphore) const { platform_semaphore_free(semaphore); }
};

// The OpenGL context. Exactly one thread holds it at a time.

struct PlatformGl;

// Creates a context that needs no visible window, makes it current here and loads the OpenGL entry
// points. Null on failure; then *reason (may be null) tells why in words, a static text.
PlatformGl *platform_gl_create_offscreen(const wchar_t **reason);
bool platform_gl_make_current(PlatformGl *gl);  // on this thread; null releases this thread's context
void platform_gl_swap(PlatformGl *gl);          // shows the back buffer of the context's window, if any
void platform_gl_free(PlatformGl *gl);          // takes null
// Tells the context that this thread holds from others; null when it holds none.
const void *platform_gl_identity();
bool platform_gl_is_current();  // whether this thread holds a context

template <>
struct Freed<PlatformGl> {
    void operator()(PlatformGl *gl) const { platform_gl_free(gl); }
};

// Text in pictures.

struct PlatformFontMetrics {
    i32 height;          // cell height, pixels
    i32 avg_char_width;  // average character width, pixels
};

// Fills the display lists list_base .. list_base + 254 of the current context with the bitmaps of
// the characters 0 to 254 of "Arial" (or what stands for it), each advancing the raster position
// by the character's width.
//   height   cell height in pixels; weight 400 is regular, 700 bold, 900 black
// False when no font can be had; the lists are then empty and the metrics estimated.
bool platform_font_lists(u32 list_base, i32 height, i32 weight, PlatformFontMetrics *metrics);
