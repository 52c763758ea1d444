// The whole run without graphics: order of calls, texts and states.
#include <gtest/gtest.h>

#include <cstring>

#include "app/commands.h"
#include "log/log.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"
#include "tests/app/app_scene.h"
#include "tests/app/test_frontend.h"

// A layout that is loaded and a folder for process files.
struct RunScene {
    TemporaryFolder folder;
    TestFrontEnd front;

    RunScene() {
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
    RunScene scene;
    scene.process(L"p.txt", "");
    EXPECT_EQ(scene.front.run(), 0);
    EXPECT_EQ(
        run_text(scene.front),
        std::string("Running process ...\r\n\r\nAll process steps completed in # sec\r\n\r\n") + BROWSE_HINT);
    EXPECT_EQ(scene.front.run_done_result, 0);
    EXPECT_EQ(scene.front.state.running, 0);
}

TEST(RunCommand, HintsStandInTheConsoleBeforeTheRun) {
    RunScene scene;
    diagnostic_set_sink(nullptr);  // as in the desktop programs
    scene.process(L"p.txt", "deposition -name A -type a -thickness 5 -color 1 1 1 100 now\n");
    EXPECT_EQ(scene.front.run(), 0);
    const std::string note = "Note: " + test_utf8(scene.front.process_path) +
                             ":4: \"now\" is ignored: no argument takes it\r\nRunning process ...";
    EXPECT_NE(std::string::npos, scene.front.console().find(note)) << scene.front.console();
}

TEST(RunCommand, EveryStepButTheSubstrateReportsItsTime) {
    RunScene scene;
    scene.process(L"p.txt", deposition_line("A") + deposition_line("B"));
    EXPECT_EQ(scene.front.run(), 0);
    const std::string text = run_text(scene.front);
    const size_t a = text.find("Executing A deposition ... \r\n");
    const size_t b = text.find("Executing B deposition ... \r\n");
    const size_t first = text.find("Completed in # s\r\n\r\n");
    ASSERT_NE(std::string::npos, a);
    ASSERT_NE(std::string::npos, b);
    EXPECT_LT(a, first);
    EXPECT_LT(first, b);
    EXPECT_NE(std::string::npos, text.find("Completed in # s\r\n\r\n", b));
}

TEST(RunCommand, CallsComeInOrder) {
    RunScene scene;
    scene.process(L"p.txt", "");
    scene.front.run();
    const std::vector<std::string> calls = scene.front.calls();
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
    RunScene scene;
    scene.process(L"one.txt", "");
    const std::string one = test_utf8(scene.front.process_path);
    scene.front.run();
    EXPECT_EQ(scene.front.status()[3], "") << "nothing ran before the first run";
    EXPECT_EQ(one, test_utf8(wstring_text(scene.front.state.process_path)));

    scene.process(L"two.txt", "");
    scene.front.run();
    EXPECT_EQ(one, scene.front.status()[3]);
    EXPECT_EQ(test_utf8(scene.front.process_path), test_utf8(wstring_text(scene.front.state.process_path)));
}

TEST(RunCommand, CancelStartsNothing) {
    RunScene scene;
    scene.front.state.stop_requested = 1;
    EXPECT_EQ(scene.front.run(), 1);
    EXPECT_EQ(scene.front.console(),
              "--- Handling \"Run\" command ---\r\n\r\nProcess file selection canceled\r\n\r\n");
    EXPECT_EQ(scene.front.state.stack, nullptr);
    EXPECT_EQ(scene.front.state.stop_requested, 0) << "a stop of the run before is forgotten";
    EXPECT_TRUE(scene.front.menu()[MENU_RUN]);
}

TEST(RunCommand, FaultsKeepTheRunBefore) {
    RunScene scene;
    scene.process(L"good.txt", deposition_line("A"));
    scene.front.run();
    // A picture stands for those of the run, which makes none without graphics.
    scene.front.state.images[scene.front.state.image_count] = image_create(1, 1, L"kept");
    scene.front.state.image_count = 1;
    const Stack *stack = scene.front.state.stack;
    const std::string path = test_utf8(scene.front.process_path);

    scene.process(L"bad.txt", "nonsense\n");
    EXPECT_EQ(scene.front.run(), 1);
    EXPECT_EQ(stack, scene.front.state.stack);
    EXPECT_EQ(scene.front.state.image_count, 1);
    EXPECT_EQ(path, test_utf8(wstring_text(scene.front.state.process_path)));
    const std::string console = scene.front.console();
    const std::string tail = "Run process canceled\r\n\r\n";
    ASSERT_GT(console.size(), tail.size());
    EXPECT_EQ(tail, console.substr(console.size() - tail.size()));

    scene.process(L"good.txt", "");
    EXPECT_EQ(scene.front.run(), 0);
    EXPECT_EQ(scene.front.state.image_count, 0) << "a new run frees the pictures of the one before";
}

TEST(RunCommand, StopLetsTheStepUnderWayFinish) {
    RunScene scene;
    scene.process(L"p.txt", deposition_line("A") + deposition_line("B") + deposition_line("C"));
    scene.front.on_console = [&](const std::string &text) {
        if (text.find("Executing B") != std::string::npos) {
            stop_command(&scene.front.state);
            EXPECT_FALSE(scene.front.menu()[MENU_STOP]) << "a stop is asked for once";
            EXPECT_EQ(scene.front.state.stop_requested, 1);
        }
    };
    EXPECT_EQ(scene.front.run(), 0);
    const std::string text = run_text(scene.front);
    const size_t stop =
        text.find("Handling \"Stop\" request: wait for current process step to complete ...\r\n");
    ASSERT_NE(std::string::npos, stop);
    EXPECT_EQ(std::string::npos, text.find("Completed in", stop)) << "the stopped step reports no time";
    EXPECT_EQ(std::string::npos, text.find("Executing C"));
    EXPECT_NE(std::string::npos, text.find("All process steps completed in # sec\r\n\r\n", stop));
    // Substrate, A and B.
    EXPECT_EQ(scene.front.state.stack->layer_count, 3);
}

TEST(RunCommand, StopInADumpTakesEffectAfterTheNextStep) {
    RunScene scene;
    const CurrentFolder here(scene.folder.path);
    scene.process(L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B") + deposition_line("C"));
    i32 completed = 0;
    scene.front.on_console = [&](const std::string &text) {
        completed += text.find("Completed in") != std::string::npos ? 1 : 0;
        if (completed == 2 && text.find("Completed in") != std::string::npos) {
            stop_command(&scene.front.state);  // the time of the dump was just told
        }
    };
    scene.front.run();
    const std::string text = run_text(scene.front);
    EXPECT_NE(std::string::npos, text.find("Executing B"));
    EXPECT_EQ(std::string::npos, text.find("Executing C"));
}

TEST(RunCommand, EmptiedLayersAreFreed) {
    RunScene scene;
    scene.process(L"p.txt", deposition_line("A") + deposition_line("B") + "release -targets t_B\n" +
                                deposition_line("C"));
    scene.front.run();
    const Stack *stack = scene.front.state.stack;
    ASSERT_EQ(stack->layer_count, 4);
    EXPECT_EQ(stack->layers[2], nullptr) << "nothing of B is left";
    EXPECT_EQ(stack->live_layer_count, 3);
    for (const i32 i : {0, 1, 3}) {
        ASSERT_NE(stack->layers[i], nullptr);
        EXPECT_EQ(stack->layers[i]->changed, 0);
    }
}

TEST(RunCommand, LargestHeightIsThatOfTheSurface) {
    RunScene scene;
    scene.process(L"p.txt", deposition_line("A"));
    scene.front.run();
    // The substrate is 5 % of 10 micrometres thick, A is 0.1 on it.
    EXPECT_NEAR(0.6, static_cast<f64>(scene.front.state.stack->max_height), 1e-6);
}

TEST(RunCommand, RunsWithoutALayoutAreRefused) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.process_path = folder.file(L"p.txt");
    test_file_write(front.process_path, process_text(""));
    EXPECT_EQ(front.run(), 1);
    EXPECT_NE(std::string::npos, front.console().find("ERROR: Unknown error extracting polygons"));
    EXPECT_NE(std::string::npos, front.console().find("Run process canceled"));
}

TEST(RunDone, EndsTheProgramWhenAClosePends) {
    RunScene scene;
    scene.process(L"p.txt", deposition_line("A") + deposition_line("B"));
    scene.front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            scene.front.state.stop_requested = 1;
            scene.front.state.quit_pending = 1;
        }
    };
    scene.front.run();
    EXPECT_EQ(scene.front.run_done_result, 1);
    EXPECT_EQ(scene.front.state.layout, nullptr);
    EXPECT_EQ(scene.front.state.stack, nullptr);
    EXPECT_EQ(scene.front.state.image_count, 0);
    const std::string text = run_text(scene.front);
    EXPECT_EQ(std::string::npos, text.find("Use left and right arrows"));
    EXPECT_EQ(std::string::npos, text.find("Executing B"));
    EXPECT_NE(std::string::npos, text.find("Cleaning up ...\r\n"));
}

// The user browses in the list while the worker adds to it, so it must not move during a run: 512 places,
// twice as many as often as the steps need them.
TEST(RunCommand, PictureListHasRoomForEveryStep) {
    const struct { i32 depositions, capacity; } cases[] = {{511, 512}, {512, 1024}};  // and the substrate
    for (const auto &c : cases) {
        RunScene scene;
        std::string steps;
        for (i32 i = 0; i < c.depositions; ++i) {
            steps += deposition_line("L" + std::to_string(i));
        }
        scene.process(L"p.txt", steps);
        scene.front.on_console = [&](const std::string &text) {
            if (text.find("Executing L0 ") != std::string::npos) {
                EXPECT_EQ(c.capacity, scene.front.state.image_capacity) << c.depositions << " steps";
                stop_command(&scene.front.state);
            }
        };
        EXPECT_EQ(scene.front.run(), 0);
        EXPECT_NE(std::string::npos, scene.front.console().find("Executing L0 "));
    }
}

TEST(RunCommand, ADumpThatCannotBeWritten) {
    for (const i32 required : {0, 1}) {
        RunScene scene;
        const CurrentFolder here(scene.folder.path);
        ASSERT_EQ(platform_folder_create(L"VertexData.txt"), PLATFORM_FOLDER_CREATED);
        scene.process(L"p.txt", deposition_line("A") + "dump\n" + deposition_line("B"));
        scene.front.state.dump_required = required;
        EXPECT_EQ(required, scene.front.run());
        EXPECT_NE(std::string::npos, scene.front.diagnostics().find("VertexData.txt cannot be written: "));
        const std::string console = scene.front.console();
        EXPECT_EQ(required == 0, console.find("Executing B") != std::string::npos);
        EXPECT_EQ(required == 1, console.find("Run process canceled\r\n\r\n") != std::string::npos);
        EXPECT_EQ(required == 1 ? RUN_NO_DUMP : RUN_NO_FAILURE, scene.front.state.run_failure);
        if (required == 0) {
            EXPECT_EQ(scene.front.state.stack->dump_failed, 1);
        }
    }
}

TEST(RunCommand, DumpsGoIntoTheirFolder) {
    RunScene scene;
    scene.front.state.dump_folder = wstring_copy(scene.folder.path.c_str());
    scene.process(L"p.txt", "dump\n");
    EXPECT_EQ(scene.front.run(), 0);
    EXPECT_TRUE(test_file_exists(scene.folder.file(L"VertexData.txt")));
    EXPECT_EQ(scene.front.state.stack->dump_failed, 0);
}
