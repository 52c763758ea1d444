// Lack of memory anywhere in a small job, from the layout to the saved pictures, is told and ends the
// program, or costs nothing; and never looks like something else.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <cstring>

#include "app/commands.h"
#include "image/image_pack.h"
#include "platform/memory.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// How the job of a child process ended when it was not ended for lack of memory.
enum JobEnd {
    JOB_NOT_TRIPPED = 3,  // no allocation failed
    JOB_WHOLE = 4,        // one failed, and all was saved
    JOB_SAVE_FAILED = 5,  // one failed, and the save was told to have failed
    JOB_BROKEN = 6,
};

static const std::string STEPS =
    "deposition -name OX -type ox -thickness 100 -sc 0.5 -color 1 2 3 100\n"
    "photo -name P -mask_id 1 -type 1 -res 0.1 -thickness 200\n"
    "etch -targets ox -depth 50 -iso 0.2\n"
    "strip\n"
    "coating -name C -type c -thickness 100 -dop 0.5 -rr 0.5 -color 1 2 3 100\n"
    "release -targets c\n";

static void add_picture(AppState *state, const wchar_t *title) {
    PixelImage *image = image_create(20, 10, title);
    std::memset(image->pixels, 0x7F, 20 * 10 * 4);
    image_pack(image);
    i32 count = state->image_count;
    array_append(&state->images, &count, &state->image_capacity, image);
    state->image_count = count;
}

// Whether the trip is still to come: then one of the next allocations fails.
static bool trip_pending() {
    for (i32 i = 0; i < 100000; ++i) {
        void *block = memory_try_allocate(1, 1);
        if (block == nullptr) {
            return true;
        }
        memory_free(block);
    }
    return false;
}

// Load, run, save in both formats, and clean up, with so many allocations allowed.
[[noreturn]] static void job_and_exit(const TemporaryFolder &folder, i64 allowed) {
    static TestFrontEnd front;
    AppState *state = &front.state;
    front.layout_path = folder.file(L"layout.gds");
    front.process_path = folder.file(L"process.txt");
    const std::wstring output = folder.file((L"out" + std::to_wstring(allowed)).c_str());
    memory_set_failure_hook(nullptr);  // to standard error
    memory_trip_after(allowed);
    load_gds_command(state);
    const i32 run_result = front.run();
    state->output_folder = wstring_copy(output.c_str());
    bool saved = true;
    for (const ImageFormat format : {IMAGE_BMP, IMAGE_PNG}) {
        state->image_format = format;
        add_picture(state, format == IMAGE_PNG ? L"png" : L"bmp");
        save_images_command(state);
        saved = saved && state->save_failed == 0;
    }
    const bool tripped = !trip_pending();
    memory_trip_after(-1);
    const bool whole = state->load_result == 0 && run_result == 0 &&
                       platform_file_exists((output + L"/000 bmp.bmp").c_str()) &&
                       platform_file_exists((output + L"/001 png.png").c_str()) &&
                       platform_file_exists((output + L"/Polygon.gds").c_str());
    const bool told = !saved && !front.messages().empty();
    app_cleanup(state);
    std::_Exit(whole && saved ? (tripped ? JOB_WHOLE : JOB_NOT_TRIPPED)
               : told         ? JOB_SAVE_FAILED
                              : JOB_BROKEN);
}

TEST(MemoryFailureDeathTest, EveryAllocationOfAJobIsToldOrCostsNothing) {
    TEST_NEEDS_FORK();
    const TemporaryFolder folder;
    test_file_write(folder.file(L"layout.gds"), small_layout_bytes());
    test_file_write(folder.file(L"process.txt"), process_text(STEPS));
    bool done = false;
    i64 ended = 0;
    i64 allowed = 0;
    for (; !done && allowed < 20000 && !HasFailure(); ++allowed) {
        i32 status = -1;
        auto note = [&status](int code) {
            status = WIFEXITED(code) ? WEXITSTATUS(code) : -1;
            return true;
        };
        EXPECT_EXIT(job_and_exit(folder, allowed), note, "^(Memory (re)?allocation error\n)?$") << allowed;
        ended += status == 255 ? 1 : 0;
        done = status == JOB_NOT_TRIPPED;
        EXPECT_TRUE(done || status == 255 || status == JOB_WHOLE || status == JOB_SAVE_FAILED)
            << "status " << status << " with " << allowed << " allocations allowed";
    }
    EXPECT_TRUE(done);
    EXPECT_GT(ended, 100) << "of " << allowed;
}
