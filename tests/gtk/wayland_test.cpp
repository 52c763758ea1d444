// The window on Wayland, under a compositor that has no screen.
#include <filesystem>

#include "tests/gtk/window_driver.h"

static constexpr const char *SOCKET = "quarn-test";

// The compositor while the record is in scope. It needs a folder for its socket, which the session gives.
struct Compositor {
    TemporaryFolder scratch;
    ProgramRun run = {-1, -1, "", ""};

    ~Compositor() {
        if (run.process > 0) {
            program_signal(run, SIGTERM);
            program_finish(&run);
        }
    }
};

static bool compositor_start(Compositor *compositor) {
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || !std::filesystem::exists("/usr/bin/weston")) {
        return false;
    }
    ProgramCall call;
    call.program = "/usr/bin/weston";
    call.arguments = {"--backend=headless-backend.so",
                      std::string("--socket=") + SOCKET,
                      "--width=1600",
                      "--height=1000",
                      "--idle-time=0",
                      "--no-config"};
    call.folder = test_utf8(compositor->scratch.path);
    call.output_path = call.folder + "/output";
    compositor->run = program_start(call, call.folder);
    std::string socket = std::string(runtime) + "/" + SOCKET;
    EXPECT_SOON(true, std::filesystem::exists(socket));
    return std::filesystem::exists(socket);
}

TEST(Wayland, LoadsAndRuns) {
    NEEDS_GRAPHICS();
    Compositor compositor;
    if (!compositor_start(&compositor)) {
        GTEST_SKIP() << "no compositor";
    }
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    program_launch(&window, {{"a.gds", "p.txt"},
                             {"GDK_BACKEND=wayland", "DISPLAY=", std::string("WAYLAND_DISPLAY=") + SOCKET}});
    ASSERT_TRUE(program_connect(&window)) << program_report(window);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_SOON("Cross section after B deposition", window_picture(window));
    EXPECT_SOON("Cross section after B deposition", window_title(window));
    EXPECT_EQ(window_status(window)[1], "a.gds");
    EXPECT_TRUE(accessible_activate(window_part(window, "Save images")));
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to "));
    program_signal(window.run, SIGTERM);
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
}
