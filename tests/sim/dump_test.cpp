#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "scene.h"
#include "sim/dump.h"
#include "sim/step_execute.h"
#include "sim/step_run.h"

// Makes a new folder the current one while it lives.
struct CurrentFolder {
    TemporaryFolder folder;
    std::filesystem::path before = std::filesystem::current_path();
    CurrentFolder() { std::filesystem::current_path(folder.path); }
    ~CurrentFolder() { std::filesystem::current_path(before); }
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;
};

TEST(DumpRun, WritesEveryTwentiethColumnRowByRow) {
    const CurrentFolder current;
    StackPointer stack = scene_stack(45, 3, 1.0F);
    scene_layer(stack.get(), "_SUB_", 0.0F, 0.5F);
    scene_layer(stack.get(), "_PR_", 0.5F, 1.0F);
    scene_layer(stack.get(), "OX", 0.5F, 2.0F);
    layer_free(stack->layers[1]);
    stack->layers[1] = nullptr;
    scene_surface(stack.get(), 2.0F, 3);
    const TextCapture capture;
    dump_run(stack.get());
    std::string expected;
    for (const char *column : {"0", "20", "40"}) {
        for (const char *row : {"0", "1", "2"}) {
            const std::string place = std::string("M: ") + row + "\tN: " + column;
            expected += "\nTOPLAYER: 3\tHEIGHT: 2.0000000000\n";
            expected += place + "\tL: 0\tBOT: 0.000000\tTOP: 0.500000\tTHI: 0.5000000000\n";
            expected += place + "\tL: 2\tBOT: 0.500000\tTOP: 2.000000\tTHI: 1.5000000000\n\n";
        }
        expected += "\n\n";
    }
    EXPECT_EQ(file_read("VertexData.txt"), expected);
    EXPECT_EQ(capture.console(), "") << "a dump says nothing";
    EXPECT_EQ(capture.diagnostics(), "");
}

TEST(DumpRun, ColumnsEndBeforeTheEdge) {
    struct Case {
        i32 grid_n;
        const char *text;
    };
    const char *one = "\nTOPLAYER: 0\tHEIGHT: 0.0000000000\n\n\n\n";
    const std::string two = std::string(one) + one;
    const Case cases[] = {{1, one}, {20, one}, {21, two.c_str()}, {40, two.c_str()}};
    for (const Case &test : cases) {
        const CurrentFolder current;
        const StackPointer stack = scene_stack(test.grid_n, 1, 1.0F);
        dump_run(stack.get());
        EXPECT_EQ(file_read("VertexData.txt"), test.text) << test.grid_n;
    }
}

TEST(DumpRun, ShowsHeightsWithTenDigitsAndTheThicknessInSinglePrecision) {
    const CurrentFolder current;
    const StackPointer stack = scene_stack(1, 1, 1.0F);
    Layer *layer = scene_layer(stack.get(), "OX", 0.1F, 0.3F);
    scene_surface(stack.get(), 0.1F, -1);
    layer->top[0] = 0.3F;
    dump_run(stack.get());
    // 0.1 is 0.10000000149 in f32; 0.3 - 0.1 in f32 is 0.2000000179 (0.2000000104 in f64).
    EXPECT_EQ(file_read("VertexData.txt"),
              "\nTOPLAYER: -1\tHEIGHT: 0.1000000015\n"
              "M: 0\tN: 0\tL: 0\tBOT: 0.100000\tTOP: 0.300000\tTHI: 0.2000000179\n\n\n\n");
}

TEST(DumpRun, ReplacesAnEarlierFile) {
    const CurrentFolder current;
    file_write("VertexData.txt", std::string(10000, 'x'));
    const StackPointer stack = scene_stack(1, 1, 1.0F);
    dump_run(stack.get());
    EXPECT_EQ(file_read("VertexData.txt"), "\nTOPLAYER: 0\tHEIGHT: 0.0000000000\n\n\n\n");
}

TEST(DumpRun, AFileThatCannotBeOpenedIsPassedOverWithItsReason) {
    const CurrentFolder current;
    std::filesystem::create_directory("VertexData.txt");
    StackPointer stack = scene_stack(3, 3, 1.0F);
    auto step = scene_step(STEP_DUMP);
    const TextCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.console(), "");
    const std::string start = "VertexData.txt could not be opened: ";
    EXPECT_EQ(capture.diagnostics().substr(0, start.size()), start);
    EXPECT_GT(capture.diagnostics().size(), start.size() + 1);
    EXPECT_EQ(stack->dump_failed, 1);
}

TEST(DumpRun, GoesIntoTheFolderOfTheRun) {
    const CurrentFolder current;
    std::filesystem::create_directory("sub");
    StackPointer stack = scene_stack(1, 1, 1.0F);
    stack->dump_folder = L"sub";
    dump_run(stack.get());
    EXPECT_EQ(file_read("sub/VertexData.txt"), "\nTOPLAYER: 0\tHEIGHT: 0.0000000000\n\n\n\n");
    EXPECT_FALSE(std::filesystem::exists("VertexData.txt"));
    EXPECT_EQ(stack->dump_failed, 0);
}

// Steps of a stack, the substrate first; borrowed from the test.
struct StepsOf {
    StepList list;
    ProcessStep *items[2];

    StepsOf(Stack *stack, ProcessStep *first, ProcessStep *second) : list(), items{first, second} {
        list.items = items;
        list.count = 2;
        stack->steps = &list;
    }
};

TEST(DumpIsPossible, LooksOnlyWhereAStepIsADump) {
    const CurrentFolder current;
    std::filesystem::create_directory("VertexData.txt");
    StackPointer stack = scene_stack(1, 1, 1.0F);
    auto substrate = scene_step(STEP_DEPOSITION);
    auto strip = scene_step(STEP_STRIP);
    auto dump = scene_step(STEP_DUMP);
    StepList *own = stack->steps;
    const TextCapture capture;
    {
        const StepsOf without(stack.get(), &substrate->step, &strip->step);
        EXPECT_TRUE(dump_is_possible(stack.get()));
        EXPECT_EQ(capture.diagnostics(), "");
        const StepsOf with(stack.get(), &substrate->step, &dump->step);
        EXPECT_FALSE(dump_is_possible(stack.get()));
        const std::string start = "VertexData.txt cannot be written: ";
        EXPECT_EQ(capture.diagnostics().substr(0, start.size()), start);
        EXPECT_GT(capture.diagnostics().size(), start.size() + 1);

        std::filesystem::remove("VertexData.txt");
        file_write("VertexData.txt", "old");
        EXPECT_TRUE(dump_is_possible(stack.get()));
        EXPECT_EQ(file_read("VertexData.txt"), "old") << "trying does no harm";
        stack->dump_folder = L"missing";
        EXPECT_FALSE(dump_is_possible(stack.get()));
    }
    stack->steps = own;
}

TEST(DumpRun, AFullDiskIsTold) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "no device that is always full";
    }
    const CurrentFolder current;
    std::filesystem::create_symlink("/dev/full", "VertexData.txt");
    StackPointer stack = scene_stack(3, 3, 1.0F);
    const TextCapture capture;
    dump_run(stack.get());
    EXPECT_EQ(capture.diagnostics(), "VertexData.txt could not be written whole: No space left on device\n");
    EXPECT_EQ(capture.console(), "");
    EXPECT_TRUE(std::filesystem::is_symlink("VertexData.txt")) << "nothing is deleted";
    EXPECT_EQ(stack->dump_failed, 1);
}
