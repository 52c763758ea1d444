// What a run tells of itself: its times, by a clock that the test sets, its lines in the log, its flag; and
// what becomes of a run that gets no thread or no graphics.
#include <gtest/gtest.h>

#include <thread>
#ifdef __GLIBC__
#include <pthread.h>
#endif

#include "app/commands.h"
#include "app/startup.h"
#include "log/log.h"
#include "render/scene.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// A layout that is loaded, and a process file to run on it.
struct ReportFixture {
    TemporaryFolder folder;
    TestFrontEnd front;

    explicit ReportFixture(const std::string &steps) {
        front.layout_path = folder.file(L"layout.gds");
        test_file_write(front.layout_path, small_layout_bytes());
        load_gds_command(&front.state);
        front.process_path = folder.file(L"p.txt");
        test_file_write(front.process_path, process_text(steps));
    }
};

static f64 now_ms;

// While it is in scope the clock stands still but for what a test adds to now_ms.
struct StandingClock {
    StandingClock() {
        now_ms = 70.0;
        platform_clock_replace([] { return now_ms; });
    }
    ~StandingClock() { platform_clock_replace(nullptr); }
    StandingClock(const StandingClock &) = delete;
    StandingClock &operator=(const StandingClock &) = delete;
};

// The console's texts that tell a time, in order.
static std::vector<std::string> times_told(const TestFrontEnd &front) {
    std::vector<std::string> times;
    for (const std::string &call : front.calls()) {
        if (call.find("ompleted in ") != std::string::npos) {
            times.push_back(call);
        }
    }
    return times;
}

TEST(RunTimes, EachStepTellsItsOwnAndTheRunTellsAll) {
    const StandingClock clock;
    ReportFixture fixture(deposition_line("A") + deposition_line("B"));
    fixture.front.on_console = [](const std::string &text) {
        now_ms += text.find("Executing A") != std::string::npos ? 2500.0 : 0.0;
        now_ms += text.find("Executing B") != std::string::npos ? 750.0 : 0.0;
    };
    ASSERT_EQ(fixture.front.run(), 0);
    const std::vector<std::string> expected = {"console Completed in 2.500 s\r\n\r\n",
                                               "console Completed in 0.750 s\r\n\r\n",
                                               "console All process steps completed in 3.250 sec"};
    EXPECT_EQ(times_told(fixture.front), expected);
}

// Kept on purpose: a step's time is worked out in double precision, that of the run in single. Beyond 4 hours
// single precision is a raster of 1/512 s, and 16777.101 lies nearest to 8589876/512 = 16777.1015625.
TEST(RunTimes, LongOnesHaveTheirOwnPrecision) {
    const StandingClock clock;
    ReportFixture fixture(deposition_line("A"));
    fixture.front.on_console = [](const std::string &text) {
        now_ms += text.find("Executing A") != std::string::npos ? 16777101.0 : 0.0;
    };
    ASSERT_EQ(fixture.front.run(), 0);
    const std::vector<std::string> expected = {"console Completed in 16777.101 s\r\n\r\n",
                                               "console All process steps completed in 16777.102 sec"};
    EXPECT_EQ(times_told(fixture.front), expected);
}

TEST(RunReport, RunningIsSetWhileTheStepsGoOn) {
    ReportFixture fixture(deposition_line("A"));
    i32 running = -1;
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            running = fixture.front.state.running;
        }
    };
    ASSERT_EQ(fixture.front.run(), 0);
    EXPECT_EQ(running, 1);
    EXPECT_EQ(fixture.front.state.running, 0);
}

// Whether the log has these lines, each after the one before it.
static void expect_log_lines(const std::wstring &path, const std::vector<std::string> &lines) {
    const std::string log = test_text_read(path);
    size_t at = 0;
    for (const std::string &line : lines) {
        const size_t found = log.find("\n" + line + "\n", at);
        ASSERT_NE(found, std::string::npos) << "\"" << line << "\" is not there, or comes too early, in\n"
                                            << log;
        at = found + 1;
    }
}

TEST(RunReport, TheLogTellsWhatIsDone) {
    const TemporaryFolder logs;
    const std::wstring path = logs.file(L"log.txt");
    log_start(path.c_str());
    {
        ReportFixture fixture(deposition_line("A"));
        ASSERT_EQ(fixture.front.run(), 0);
        fixture.front.state.output_folder = wstring_copy(fixture.folder.file(L"out").c_str());
        save_images_command(&fixture.front.state);
    }
    log_end();
    // "proces" is spelled so on purpose: scripts look for the line as it always was.
    expect_log_lines(
        path, {"Loading GDS file", "Selecting GDS file", "Prepare run", "Selecting the proces file",
               "Allocate and initialize stack", "Running process thread", "Saving images", "Delete stack"});
}

struct GraphicsFixture : ReportFixture {
    const wchar_t *no_graphics = nullptr;

    explicit GraphicsFixture(const std::string &steps) : ReportFixture(steps) {
        front.state.gl_context = platform_gl_create_offscreen(&no_graphics);
    }
};

static void load_test_shaders(AppState *state) {
    const std::string data = QUARN_DATA_FOLDER;
    state->picture_style.width = 240;  // small ones are quick
    render_state_init();
    state->surface_program = shader_program_load(test_wide(data + "/surface.shader").c_str());
    state->point_program = shader_program_load(test_wide(data + "/point.shader").c_str());
}

#define NEEDS_GRAPHICS(fixture)                                                    \
    if ((fixture).front.state.gl_context == nullptr) {                             \
        GTEST_SKIP() << "no OpenGL context: " << test_utf8((fixture).no_graphics); \
    }

// Between two steps the window's thread has the context for a moment, to paint.
TEST(RunReport, TheWorkerHasTheContextAgainInTheNextStep) {
    GraphicsFixture fixture(deposition_line("A"));
    NEEDS_GRAPHICS(fixture);
    load_test_shaders(&fixture.front.state);
    i32 asked = 0;
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            EXPECT_TRUE(platform_gl_is_current()) << "the picture of this step could not be drawn";
            ++asked;
        }
    };
    ASSERT_EQ(fixture.front.run(), 0);
    EXPECT_EQ(asked, 1);
}

// Another clean-up may follow, so what is freed is forgotten.
TEST(RunReport, CleaningUpLeavesNothing) {
    GraphicsFixture fixture(deposition_line("A"));
    NEEDS_GRAPHICS(fixture);
    AppState *state = &fixture.front.state;
    load_test_shaders(state);
    ASSERT_EQ(fixture.front.run(), 0);
    state->output_folder = wstring_copy(L"out");
    ASSERT_NE(state->framebuffer, nullptr);
    app_cleanup(state);
    EXPECT_EQ(state->layout, nullptr);
    EXPECT_EQ(state->stack, nullptr);
    EXPECT_EQ(state->framebuffer, nullptr);
    EXPECT_EQ(state->camera, nullptr);
    EXPECT_EQ(state->images, nullptr);
    EXPECT_EQ(state->image_count, 0);
    EXPECT_EQ(state->process_path, nullptr);
    EXPECT_EQ(state->gds_path, nullptr);
    EXPECT_EQ(state->output_folder, nullptr);
    app_end(state);
    EXPECT_EQ(state->surface_program, nullptr);
    EXPECT_EQ(state->point_program, nullptr);
}

// Another thread keeps the context, so that the worker cannot have it.
TEST(RunReport, WithoutTheContextNoPictureIsMade) {
    GraphicsFixture fixture(deposition_line("A"));
    NEEDS_GRAPHICS(fixture);
    PlatformGl *context = fixture.front.state.gl_context;
    platform_gl_make_current(nullptr);
    const Owned<PlatformSemaphore> taken(platform_semaphore_create());
    const Owned<PlatformSemaphore> over(platform_semaphore_create());
    std::thread holder([&] {
        EXPECT_TRUE(platform_gl_make_current(context));
        platform_semaphore_post(taken.get());
        platform_semaphore_wait(over.get());
        platform_gl_make_current(nullptr);
    });
    platform_semaphore_wait(taken.get());
    fixture.front.run();
    EXPECT_EQ(fixture.front.state.image_count, 0);
    EXPECT_FALSE(fixture.front.menu()[MENU_SAVE_IMAGES]);
    EXPECT_NE(fixture.front.diagnostics(), "") << "the reason";
    platform_semaphore_post(over.get());
    holder.join();
    EXPECT_TRUE(platform_gl_make_current(context));
}

#ifdef __GLIBC__

// While it is in scope no thread can be started: none finds room for a stack larger than any address space.
struct NoThreads {
    pthread_attr_t before;

    NoThreads() : before() {
        pthread_getattr_default_np(&before);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, size_t{1} << 60);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before);
        pthread_attr_destroy(&before);
    }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;
};

TEST(RunReport, WithoutAThreadTheContextStaysAndARunCanBeTriedAgain) {
    GraphicsFixture fixture("");
    NEEDS_GRAPHICS(fixture);
    AppState *state = &fixture.front.state;
    {
        const NoThreads refused;
        EXPECT_EQ(run_command(state), 1);
    }
    EXPECT_TRUE(platform_gl_is_current()) << "the window could not be painted";
    EXPECT_EQ(state->worker_thread, nullptr);
    EXPECT_EQ(state->run_active, 0);
    EXPECT_TRUE(fixture.front.menu()[MENU_RUN]);
    EXPECT_TRUE(fixture.front.menu()[MENU_LOAD_GDS]);
    EXPECT_FALSE(fixture.front.menu()[MENU_STOP]);
    EXPECT_EQ(fixture.front.diagnostics(), "the system refuses to start a thread for the run\n");
    const std::string tail = "Running process ...\r\n\r\nRun process canceled\r\n\r\n";
    const std::string console = fixture.front.console();
    ASSERT_GT(console.size(), tail.size());
    EXPECT_EQ(console.substr(console.size() - tail.size()), tail);
    platform_gl_make_current(nullptr);
    platform_gl_free(state->gl_context);
    state->gl_context = nullptr;
    EXPECT_EQ(fixture.front.run(), 0) << "without pictures, for which there are no shaders here";
}

#endif
