// The whole run without graphics: order of calls, texts and states.
#include <gtest/gtest.h>

#include <cstring>

#include "app/commands.h"
#include "log/log.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// A layout that is loaded and a folder for process files.
struct RunFixture {
    TemporaryFolder folder;
    TestFrontEnd front;

    RunFixture() {
        front.layout_path = folder.file(L"layout.gds");
        test_file_write(front.layout_path, small_layout_bytes());
        load_gds_command(&front.state);
        front.forget_calls();
    }

    void process(const std::wstring &name, const std::string &steps) {
        front.process_path = folder.file(name);
        test_file_write(front.process_path, process_text(steps));
    }
};

// What the console says from "Running process ..." on, without the figures of the clock.
static std::string run_text(const TestFrontEnd &front) {
    const std::string console = front.console();
    const size_t at = console.find("Running process ...");
    return at == std::string::npos ? "" : mask_seconds(console.substr(at));
}

static const char *const BROWSE_HINT =
    "Use left and right arrows to browse through the process steps\r\n\r\n";

TEST(RunCommand, SubstrateAloneReportsNoStepTime) {
    RunFixture fixture;
    fixture.process(L"p.txt", "");
    EXPECT_EQ(fixture.front.run(), 0);
    EXPECT_EQ(
        run_text(fixture.front),
        std::string("Running process ...\r\n\r\nAll process steps completed in # sec\r\n\r\n") + BROWSE_HINT);
    EXPECT_EQ(fixture.front.run_done_result, 0);
    EXPECT_EQ(fixture.front.state.running, 0);
}

TEST(RunCommand, HintsStandInTheConsoleBeforeTheRun) {
    RunFixture fixture;
    diagnostic_set_sink(nullptr);  // as in the desktop programs
    fixture.process(L"p.txt", "deposition -name A -type a -thickness 5 -color 1 1 1 100 now\n");
    EXPECT_EQ(fixture.front.run(), 0);
    const std::string note = "Note: " + test_utf8(fixture.front.process_path) +
                             ":4: \"now\" is ignored: no argument takes it\r\nRunning process ...";
    EXPECT_NE(fixture.front.console().find(note), std::string::npos) << fixture.front.console();
}

// What the start has said is gone from the console by then, and the pictures do not show by themselves that
// they are wrong.
TEST(RunCommand, ShadersWithoutSomeOfTheirLinesAreToldAtEveryRun) {
    RunFixture fixture;
    diagnostic_set_sink(nullptr);  // as in the desktop programs
    fixture.process(L"p.txt", "");
    const std::string note =
        "Note: memory was lacking when the shader files were read: the pictures may be "
        "wrong; start Quarn anew\r\nRunning process ...";
    ShaderProgram whole = {};
    ShaderProgram incomplete = {};
    incomplete.incomplete = true;
    AppState *state = &fixture.front.state;
    state->point_program = &whole;
    for (ShaderProgram *surface : {&whole, &incomplete, &incomplete}) {
        state->surface_program = surface;
        EXPECT_EQ(fixture.front.run(), 0);
        EXPECT_EQ(surface->incomplete, fixture.front.console().find(note) != std::string::npos)
            << fixture.front.console();
    }
    state->surface_program = &whole;
    state->point_program = &incomplete;
    EXPECT_EQ(fixture.front.run(), 0);
    EXPECT_NE(fixture.front.console().find(note), std::string::npos) << fixture.front.console();
    state->surface_program = nullptr;
    state->point_program = nullptr;
}

TEST(RunCommand, EveryStepButTheSubstrateReportsItsTime) {
    RunFixture fixture;
    fixture.process(L"p.txt", deposition_line("A") + deposition_line("B"));
    EXPECT_EQ(fixture.front.run(), 0);
    const std::string text = run_text(fixture.front);
    const size_t a = text.find("Executing A deposition ... \r\n");
    const size_t b = text.find("Executing B deposition ... \r\n");
    const size_t first = text.find("Completed in # s\r\n\r\n");
    ASSERT_NE(a, std::string::npos);
    ASSERT_NE(b, std::string::npos);
    EXPECT_LT(a, first);
    EXPECT_LT(first, b);
    EXPECT_NE(text.find("Completed in # s\r\n\r\n", b), std::string::npos);
}

TEST(RunCommand, CallsComeInOrder) {
    RunFixture fixture;
    fixture.process(L"p.txt", "");
    fixture.front.run();
    const std::vector<std::string> calls = fixture.front.calls();
    // Greyed, cleared, asked; the status bar before the run; the worker's own menu (Stop enabled); its
    // end; then the menu of a finished run.
    const char *const expected[] = {
        "enable 4 0",
        "redraw",
        "clear",
        "console --- Handling \"Run\" command ---",
        "console \r\n\r\n",
        "choose process",
        "status 3 ",
        "console Running process ...",
        "enable 6 1",
        "run done",
        "console Use left and right arrows to browse through the process steps",
        "enable 4 1",
    };
    i32 at = 0;
    for (const char *call : expected) {
        const i32 found = call_index(calls, call, at);
        ASSERT_GE(found, at) << call;
        at = found + 1;
    }
}

TEST(RunCommand, StatusBarShowsTheRunBefore) {
    RunFixture fixture;
    fixture.process(L"one.txt", "");
    const std::string one = test_utf8(fixture.front.process_path);
    fixture.front.run();
    EXPECT_EQ(fixture.front.status()[3], "") << "nothing ran before the first run";
    EXPECT_EQ(test_utf8(wstring_text(fixture.front.state.process_path)), one);

    fixture.process(L"two.txt", "");
    fixture.front.run();
    EXPECT_EQ(one, fixture.front.status()[3]);
    EXPECT_EQ(test_utf8(wstring_text(fixture.front.state.process_path)),
              test_utf8(fixture.front.process_path));
}

TEST(RunCommand, CancelStartsNothing) {
    RunFixture fixture;
    fixture.front.state.stop_requested = 1;
    EXPECT_EQ(fixture.front.run(), 1);
    EXPECT_EQ(fixture.front.console(),
              "--- Handling \"Run\" command ---\r\n\r\nProcess file selection canceled\r\n\r\n");
    EXPECT_EQ(fixture.front.state.stack, nullptr);
    EXPECT_EQ(fixture.front.state.stop_requested, 0) << "a stop of the run before is forgotten";
    EXPECT_TRUE(fixture.front.menu()[MENU_RUN]);
}

TEST(RunCommand, FaultsKeepTheRunBefore) {
    RunFixture fixture;
    fixture.process(L"good.txt", deposition_line("A"));
    fixture.front.run();
    // A picture stands for those of the run, which makes none without graphics.
    fixture.front.state.images[fixture.front.state.image_count] = image_create(1, 1, L"kept");
    fixture.front.state.image_count = 1;
    const Stack *stack = fixture.front.state.stack;
    const std::string path = test_utf8(fixture.front.process_path);

    fixture.process(L"bad.txt", "nonsense\n");
    EXPECT_EQ(fixture.front.run(), 1);
    EXPECT_EQ(stack, fixture.front.state.stack);
    EXPECT_EQ(fixture.front.state.image_count, 1);
    EXPECT_EQ(test_utf8(wstring_text(fixture.front.state.process_path)), path);
    const std::string console = fixture.front.console();
    const std::string tail = "Run process canceled\r\n\r\n";
    ASSERT_GT(console.size(), tail.size());
    EXPECT_EQ(console.substr(console.size() - tail.size()), tail);

    fixture.process(L"good.txt", "");
    EXPECT_EQ(fixture.front.run(), 0);
    EXPECT_EQ(fixture.front.state.image_count, 0) << "a new run frees the pictures of the one before";
}

TEST(RunCommand, StopLetsTheStepUnderWayFinish) {
    RunFixture fixture;
    fixture.process(L"p.txt", deposition_line("A") + deposition_line("B") + deposition_line("C"));
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing B") != std::string::npos) {
            stop_command(&fixture.front.state);
            EXPECT_FALSE(fixture.front.menu()[MENU_STOP]) << "a stop is asked for once";
            EXPECT_EQ(fixture.front.state.stop_requested, 1);
        }
    };
    EXPECT_EQ(fixture.front.run(), 0);
    const std::string text = run_text(fixture.front);
    const size_t stop =
        text.find("Handling \"Stop\" request: wait for current process step to complete ...\r\n");
    ASSERT_NE(stop, std::string::npos);
    EXPECT_EQ(text.find("Completed in", stop), std::string::npos) << "the stopped step reports no time";
    EXPECT_EQ(text.find("Executing C"), std::string::npos);
    EXPECT_NE(text.find("All process steps completed in # sec\r\n\r\n", stop), std::string::npos);
    // Substrate, A and B.
    EXPECT_EQ(fixture.front.state.stack->layer_count, 3);
}

TEST(RunCommand, StopInADumpTakesEffectAfterTheNextStep) {
    RunFixture fixture;
    const CurrentFolder here(fixture.folder.path);
    fixture.process(L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B") + deposition_line("C"));
    i32 completed = 0;
    fixture.front.on_console = [&](const std::string &text) {
        completed += text.find("Completed in") != std::string::npos ? 1 : 0;
        if (completed == 2 && text.find("Completed in") != std::string::npos) {
            stop_command(&fixture.front.state);  // the time of the dump was just told
        }
    };
    fixture.front.run();
    const std::string text = run_text(fixture.front);
    EXPECT_NE(text.find("Executing B"), std::string::npos);
    EXPECT_EQ(text.find("Executing C"), std::string::npos);
}

TEST(RunCommand, EmptiedLayersAreFreed) {
    RunFixture fixture;
    fixture.process(L"p.txt", deposition_line("A") + deposition_line("B") + "release -targets t_B\n" +
                                  deposition_line("C"));
    fixture.front.run();
    const Stack *stack = fixture.front.state.stack;
    ASSERT_EQ(stack->layer_count, 4);
    EXPECT_EQ(stack->layers[2], nullptr) << "nothing of B is left";
    EXPECT_EQ(stack->live_layer_count, 3);
    for (const i32 i : {0, 1, 3}) {
        ASSERT_NE(stack->layers[i], nullptr);
        EXPECT_EQ(stack->layers[i]->changed, 0);
    }
}

TEST(RunCommand, LargestHeightIsThatOfTheSurface) {
    RunFixture fixture;
    fixture.process(L"p.txt", deposition_line("A"));
    fixture.front.run();
    // The substrate is 5 % of 10 micrometres thick, A is 0.1 on it.
    EXPECT_NEAR(0.6, static_cast<f64>(fixture.front.state.stack->max_height), 1e-6);
}

TEST(RunCommand, RunsWithoutALayoutAreRefused) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.process_path = folder.file(L"p.txt");
    test_file_write(front.process_path, process_text(""));
    EXPECT_EQ(front.run(), 1);
    EXPECT_NE(front.console().find("ERROR: Unknown error extracting polygons"), std::string::npos);
    EXPECT_NE(front.console().find("Run process canceled"), std::string::npos);
}

TEST(RunDone, EndsTheProgramWhenAClosePends) {
    RunFixture fixture;
    fixture.process(L"p.txt", deposition_line("A") + deposition_line("B"));
    fixture.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            fixture.front.state.stop_requested = 1;
            fixture.front.state.quit_pending = 1;
        }
    };
    fixture.front.run();
    EXPECT_EQ(fixture.front.run_done_result, 1);
    EXPECT_EQ(fixture.front.state.layout, nullptr);
    EXPECT_EQ(fixture.front.state.stack, nullptr);
    EXPECT_EQ(fixture.front.state.image_count, 0);
    const std::string text = run_text(fixture.front);
    EXPECT_EQ(text.find("Use left and right arrows"), std::string::npos);
    EXPECT_EQ(text.find("Executing B"), std::string::npos);
    EXPECT_NE(text.find("Cleaning up ...\r\n"), std::string::npos);
}

// The user browses in the list while the worker adds to it, so it must not move during a run: 512 places,
// twice as many as often as the steps need them.
TEST(RunCommand, PictureListHasRoomForEveryStep) {
    const struct { i32 depositions, capacity; } cases[] = {{511, 512}, {512, 1024}};  // and the substrate
    for (const auto &c : cases) {
        RunFixture fixture;
        std::string steps;
        for (i32 i = 0; i < c.depositions; ++i) {
            steps += deposition_line("L" + std::to_string(i));
        }
        fixture.process(L"p.txt", steps);
        fixture.front.on_console = [&](const std::string &text) {
            if (text.find("Executing L0 ") != std::string::npos) {
                EXPECT_EQ(fixture.front.state.image_capacity, c.capacity) << c.depositions << " steps";
                stop_command(&fixture.front.state);
            }
        };
        EXPECT_EQ(fixture.front.run(), 0);
        EXPECT_NE(fixture.front.console().find("Executing L0 "), std::string::npos);
    }
}

TEST(RunCommand, ADumpThatCannotBeWritten) {
    for (const i32 required : {0, 1}) {
        RunFixture fixture;
        const CurrentFolder here(fixture.folder.path);
        ASSERT_EQ(platform_folder_create(L"VertexData.txt"), PLATFORM_FOLDER_CREATED);
        fixture.process(L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B"));
        fixture.front.state.dump_required = required;
        EXPECT_EQ(required, fixture.front.run());
        EXPECT_NE(fixture.front.diagnostics().find("VertexData.txt cannot be written: "), std::string::npos);
        const std::string console = fixture.front.console();
        EXPECT_EQ(required == 0, console.find("Executing B") != std::string::npos);
        EXPECT_EQ(required == 1, console.find("Run process canceled\r\n\r\n") != std::string::npos);
        EXPECT_EQ(required == 1 ? RUN_NO_DUMP : RUN_NO_FAILURE, fixture.front.state.run_failure);
        if (required == 0) {
            EXPECT_EQ(fixture.front.state.stack->dump_failed, 1);
        }
    }
}

TEST(RunCommand, DumpsGoIntoTheirFolder) {
    RunFixture fixture;
    fixture.front.state.dump_folder = wstring_copy(fixture.folder.path.c_str());
    fixture.process(L"p.txt", "dump\n");
    EXPECT_EQ(fixture.front.run(), 0);
    EXPECT_TRUE(test_file_exists(fixture.folder.file(L"VertexData.txt")));
    EXPECT_EQ(fixture.front.state.stack->dump_failed, 0);
}
