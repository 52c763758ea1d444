#include "sim/dump.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "plain_dump.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// A new folder that is the current one while it lives.
struct DumpFolder {
    TemporaryFolder folder;
    CurrentFolder current{folder.path};
};

TEST(DumpRun, WritesEveryTwentiethColumnRowByRow) {
    const DumpFolder folder;
    const Owned<Stack> stack = test_stack(45, 3, 1.0F);
    test_layer(stack.get(), "_SUB_", 0.0F, 0.5F);
    test_layer(stack.get(), "_PR_", 0.5F, 1.0F);
    test_layer(stack.get(), "OX", 0.5F, 2.0F);
    test_layer_remove(stack.get(), 1);
    test_surface(stack.get(), 2.0F, 3);
    const ConsoleCapture capture;
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
    EXPECT_EQ(test_text_read(L"VertexData.txt"), expected);
    EXPECT_EQ(capture.narrow(), "") << "a dump says nothing";
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
        const DumpFolder folder;
        const Owned<Stack> stack = test_stack(test.grid_n, 1, 1.0F);
        dump_run(stack.get());
        EXPECT_EQ(test_text_read(L"VertexData.txt"), test.text) << test.grid_n;
    }
}

TEST(DumpRun, ShowsHeightsWithTenDigitsAndTheThicknessInSinglePrecision) {
    const DumpFolder folder;
    const Owned<Stack> stack = test_stack(1, 1, 1.0F);
    Layer *layer = test_layer(stack.get(), "OX", 0.1F, 0.3F);
    test_surface(stack.get(), 0.1F, -1);
    layer->top[0] = 0.3F;
    dump_run(stack.get());
    // 0.1 is 0.10000000149 in f32; 0.3 - 0.1 in f32 is 0.2000000179 (0.2000000104 in f64).
    EXPECT_EQ(test_text_read(L"VertexData.txt"),
              "\nTOPLAYER: -1\tHEIGHT: 0.1000000015\n"
              "M: 0\tN: 0\tL: 0\tBOT: 0.100000\tTOP: 0.300000\tTHI: 0.2000000179\n\n\n\n");
}

// Random bits as often as an ordinary height: nan, infinities, -0, huge and tiny numbers.
static f32 random_height(TestRandom *random) {
    const u32 bits = test_random_u32(random);
    f32 value = test_random_f32(random, -2.0F, 6.0F);
    if (bits % 2 == 0) {
        std::memcpy(&value, &bits, sizeof(value));
    } else if (bits % 7 == 0) {
        const f32 inf = std::numeric_limits<f32>::infinity();
        const f32 odd[] = {std::nanf(""), inf, -inf, -0.0F, F32_MAX, 1e-45F, 0.0078125F};
        value = odd[bits / 14 % 7];
    }
    return value;
}

TEST(DumpRun, EqualsThePrintedFormOfAnyHeights) {
    const DumpFolder folder;
    TestRandom random = test_random_start(23);
    // Some 1.5 MB, more than is written at once.
    const Owned<Stack> stack = test_stack(61, 700, 0.5F);
    for (i32 slot = 0; slot < 6; ++slot) {
        Layer *layer = test_layer(stack.get(), "OX", 0.0F, 1.0F);
        for (i64 i = 0; i < stack_point_count(stack.get()); ++i) {
            layer->bottom[i] = random_height(&random);
            layer->top[i] = random_height(&random);
            stack->cells[i] = {random_height(&random), test_random_i32(&random, I32_MIN, I32_MAX)};
        }
    }
    test_layer_remove(stack.get(), 2);
    dump_run(stack.get());
    OwnedFile plain(platform_file_open(L"plain.txt", "w"));
    ASSERT_NE(plain, nullptr);
    plain_dump(plain.get(), stack.get());
    plain.reset();
    EXPECT_TRUE(test_file_read(L"VertexData.txt") == test_file_read(L"plain.txt")) << "the files differ";
}

TEST(DumpRun, ReplacesAnEarlierFile) {
    const DumpFolder folder;
    test_file_write(L"VertexData.txt", std::string(10000, 'x'));
    const Owned<Stack> stack = test_stack(1, 1, 1.0F);
    dump_run(stack.get());
    EXPECT_EQ(test_text_read(L"VertexData.txt"), "\nTOPLAYER: 0\tHEIGHT: 0.0000000000\n\n\n\n");
}

TEST(DumpRun, AFileThatCannotBeOpenedIsPassedOverWithItsReason) {
    const DumpFolder folder;
    std::filesystem::create_directory("VertexData.txt");
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    const OwnedStep step = test_step(STEP_DUMP);
    const ConsoleCapture capture;
    step_execute(stack.get(), &step->step);
    EXPECT_EQ(capture.narrow(), "");
    const std::string start = "VertexData.txt could not be opened: ";
    EXPECT_EQ(capture.diagnostics().substr(0, start.size()), start);
    EXPECT_GT(capture.diagnostics().size(), start.size() + 1);
    EXPECT_EQ(stack->dump_failed, 1);
}

TEST(DumpRun, GoesIntoTheFolderOfTheRun) {
    const DumpFolder folder;
    std::filesystem::create_directory("sub");
    const Owned<Stack> stack = test_stack(1, 1, 1.0F);
    stack->dump_folder = L"sub";
    dump_run(stack.get());
    EXPECT_EQ(test_text_read(L"sub/VertexData.txt"), "\nTOPLAYER: 0\tHEIGHT: 0.0000000000\n\n\n\n");
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
    const DumpFolder folder;
    std::filesystem::create_directory("VertexData.txt");
    const Owned<Stack> stack = test_stack(1, 1, 1.0F);
    const OwnedStep substrate = test_step(STEP_DEPOSITION);
    const OwnedStep strip = test_step(STEP_STRIP);
    const OwnedStep dump = test_step(STEP_DUMP);
    StepList *own = stack->steps;
    const ConsoleCapture capture;
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
        test_file_write(L"VertexData.txt", "old");
        EXPECT_TRUE(dump_is_possible(stack.get()));
        EXPECT_EQ(test_text_read(L"VertexData.txt"), "old") << "trying does no harm";
        stack->dump_folder = L"missing";
        EXPECT_FALSE(dump_is_possible(stack.get()));
    }
    stack->steps = own;
}

TEST(DumpRun, AFullDiskIsTold) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "no device that is always full";
    }
    const DumpFolder folder;
    std::filesystem::create_symlink("/dev/full", "VertexData.txt");
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    const ConsoleCapture capture;
    dump_run(stack.get());
    EXPECT_EQ(capture.diagnostics(), "VertexData.txt could not be written whole: No space left on device\n");
    EXPECT_EQ(capture.narrow(), "");
    EXPECT_TRUE(std::filesystem::is_symlink("VertexData.txt")) << "nothing is deleted";
    EXPECT_EQ(stack->dump_failed, 1);
}
