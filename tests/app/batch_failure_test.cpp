// quarn-batch when the system does not go along: data files, graphics, folders, disks, interrupts.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "tests/app/batch_fixture.h"

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
static constexpr bool ADDRESS_SANITIZER = true;
#else
static constexpr bool ADDRESS_SANITIZER = false;
#endif

static bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

// Depositions enough that a run can be interrupted on its way.
static std::string many_depositions() {
    std::string steps;
    for (i32 i = 0; i < 60; ++i) {
        steps += deposition_line("M" + std::to_string(i));
    }
    return steps;
}

TEST(QuarnBatchData, ColorsMissingOrBrokenEndWithOne) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    fs::create_directory(fixture.path("data"));
    const ProgramResult missing = fixture.run({"--no-images", "--data", "data", "a.gds", "p.txt"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "");
    EXPECT_TRUE(contains(missing.error, "quarn-batch: Could not load color file. Redo installation.\n"));
    EXPECT_TRUE(contains(missing.error, "data/colors.txt")) << "where it looked: " << missing.error;

    fixture.write("data/colors.txt", "red hash 255 0\n");
    const ProgramResult broken = fixture.run({"--no-images", "--data", "data", "a.gds", "p.txt"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(contains(broken.error, "quarn-batch: Could not load color file. Redo installation.\n"));
}

TEST(QuarnBatchData, TheDataFolderIsUsed) {
    const BatchFixture fixture;
    fs::create_directory(fixture.path("data"));
    fixture.write("data/colors.txt", "quarnblue #000080 0, 0, 128\n");
    fixture.write("p.txt",
                  process_text("deposition -name A -type t -thickness 10 -sc 0 -scolor quarnblue\n"));
    EXPECT_EQ(fixture.run({"--check", "--data", "data", "a.gds", "p.txt"}).status, 0);
    EXPECT_EQ(fixture.run({"--check", "a.gds", "p.txt"}).status, 3)
        << "the installed file has no such colour";
}

TEST(QuarnBatchData, TheCurrentFolderComesFirst) {
    const BatchFixture fixture;
    fixture.write("colors.txt", "quarnblue #000080 0, 0, 128\n");
    fixture.write("p.txt",
                  process_text("deposition -name A -type t -thickness 10 -sc 0 -scolor quarnblue\n"));
    const ProgramResult result = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST(QuarnBatchData, TheFolderOfTheProgramAndTheInstalledTreeAreSearched) {
    const BatchFixture fixture;
    fixture.write("p.txt",
                  process_text("deposition -name A -type t -thickness 10 -sc 0 -scolor quarnblue\n"));
    for (const std::string data : {"moved/bin", "moved/share/quarn"}) {
        fs::create_directories(fixture.path("moved/bin"));
        fs::create_directories(fixture.path(data));
        fs::copy_file(QUARN_BATCH_PROGRAM, fixture.path("moved/bin/quarn-batch"));
        fixture.write(data + "/colors.txt", "quarnblue #000080 0, 0, 128\n");
        ProgramCall call = fixture.call({"--check", "a.gds", "p.txt"});
        call.program = fixture.path("moved/bin/quarn-batch");
        const ProgramResult result = fixture.run_call(call);
        EXPECT_EQ(result.status, 0) << data << ": " << result.output << result.error;
        fs::remove_all(fixture.path("moved"));
    }
}

TEST(QuarnBatchGraphics, NoneEndsWithFiveBeforeAnythingElse) {
    const BatchFixture fixture;
    ProgramCall call = fixture.call({"-o", "out", "missing.gds", "missing.txt"});
    call.environment = {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"};
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error.find("quarn-batch: no graphics: "), 0U) << result.error;
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatchGraphics, ShaderMissingEndsWithFive) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fs::create_directory(fixture.path("data"));
    const ProgramResult result = fixture.run({"--data", "data", "a.gds", "missing.txt"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(contains(result.error, "surface.shader is missing")) << result.error;
    EXPECT_TRUE(contains(result.error, "point.shader is missing")) << result.error;
}

TEST(QuarnBatchGraphics, ShaderThatDoesNotCompileEndsWithFive) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fs::create_directory(fixture.path("data"));
    fs::copy_file(QUARN_DATA_FOLDER "/point.shader", fixture.path("data/point.shader"));
    fixture.write("data/surface.shader", "#shader vertex\nnonsense\n#shader fragment\nnonsense\n");
    const ProgramResult result = fixture.run({"--data", "data", "a.gds", "missing.txt"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.output, "") << "start-up texts go to standard error";
    EXPECT_TRUE(contains(result.error, "Failed to compile vertex shader with error ")) << result.error;
    EXPECT_TRUE(contains(result.error, "data/surface.shader cannot be used")) << result.error;
}

TEST(QuarnBatchOutput, PolygonsThatCannotBeWrittenEndWithFour) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    fs::create_directories(fixture.path("out/Polygon.gds"));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(contains(result.error, "out/Polygon.gds: ")) << result.error;
}

TEST(QuarnBatchOutput, FullDiskEndsWithFourAndLeavesNoHalfPicture) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    ProgramCall call = fixture.call({"-o", "out", "a.gds", "p.txt"});
    call.file_size_limit = 1000000;  // a picture has several million bytes
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 4) << result.error;
    EXPECT_TRUE(contains(result.error, "Error while saving image(s) to output folder \"out\""))
        << result.error;
    EXPECT_TRUE(contains(result.error, "File too large")) << result.error;
    EXPECT_EQ(fixture.list("out"), std::vector<std::string>{"Polygon.gds"}) << "no part of a picture stays";
}

TEST(QuarnBatchOutput, StandardOutputThatCannotBeWrittenEndsWithFour) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"});
    call.output_path = "/dev/full";
    const ProgramResult full = fixture.run_call(call);
    EXPECT_EQ(full.status, 4);
    EXPECT_EQ(full.error, "quarn-batch: standard output: No space left on device\n");
    EXPECT_TRUE(fixture.exists("out/Polygon.gds")) << "the job is done all the same";
}

TEST(QuarnBatchOutput, ClosedStandardOutputIsNoFileOfTheRun) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("dump\n"));
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"});
    call.close_output = true;
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.error, "quarn-batch: standard output: Bad file descriptor\n");
    EXPECT_FALSE(contains(fixture.read("VertexData.txt"), "Completed in"));
}

TEST(QuarnBatchOutput, LackOfMemoryIsToldAndEndsWith255) {
    if (ADDRESS_SANITIZER) {
        GTEST_SKIP() << "the address sanitizer needs more address space than any limit";
    }
    const BatchFixture fixture;
    // The neighbour table of a 2000 x 2000 grid has 16 million entries.
    fixture.write("p.txt", "settings -version 3 -N 2000\ngds -cell TOP\nlocation -x 0 -y 0 -dx 10 -dy 10\n");
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"});
    call.memory_limit = 160000000;
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(contains(result.error, "quarn-batch: Memory allocation error\n")) << result.error;
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatchInterrupt, SavesWhatIsMade) {
    NEEDS_GRAPHICS();
    for (const i32 signal : {SIGINT, SIGTERM}) {
        const BatchFixture fixture;
        fixture.write("p.txt", process_text(many_depositions()));
        ProgramRun run =
            program_start(fixture.call({"-o", "out", "a.gds", "p.txt"}), test_utf8(fixture.scratch.path));
        ASSERT_TRUE(program_wait_for(&run, "Executing M1 deposition")) << run.output;
        program_signal(run, signal);
        const ProgramResult result = program_finish(&run);
        EXPECT_EQ(result.status, 130) << result.error;
        EXPECT_TRUE(contains(result.output,
                             "Handling \"Stop\" request: wait for current process step to complete ...\n"));
        EXPECT_TRUE(contains(result.output, "Saving images completed\n"));
        EXPECT_FALSE(contains(result.output, "Executing M59 deposition"));
        EXPECT_TRUE(fixture.exists("out/002 Cross section after M1 deposition.bmp"));
        EXPECT_FALSE(fixture.exists("out/060 Cross section after M59 deposition.bmp"));
        EXPECT_TRUE(fixture.exists("out/Polygon.gds"));
    }
}

// A run without pictures whose set-up and steps are slow enough to be met on the way.
static ProgramRun start_slow_run(const BatchFixture &fixture) {
    std::string steps = process_text(many_depositions());
    steps.replace(steps.find("-N 200"), 6, "-N 2000");
    fixture.write("p.txt", steps);
    return program_start(fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"}),
                         test_utf8(fixture.scratch.path));
}

TEST(QuarnBatchInterrupt, WithoutPicturesThePolygonsAreSaved) {
    const BatchFixture fixture;
    ProgramRun run = start_slow_run(fixture);
    ASSERT_TRUE(program_wait_for(&run, "Executing M1 deposition")) << run.output;
    program_signal(run, SIGINT);
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.status, 130) << result.error;
    EXPECT_FALSE(contains(result.output, "Executing M59 deposition"));
    EXPECT_TRUE(fixture.exists("out/Polygon.gds"));
}

// Ends a program that waits for a pipe which nobody writes to.
static ProgramResult interrupt_waiting(const BatchFixture &fixture, const ProgramCall &call,
                                       const char *last_text, i32 signal) {
    ProgramRun run = program_start(call, test_utf8(fixture.scratch.path));
    EXPECT_TRUE(program_wait_for(&run, last_text)) << run.output;
    program_signal(run, signal);
    return program_finish(&run);
}

TEST(QuarnBatchInterrupt, DuringTheLoadNothingIsSaved) {
    for (const i32 signal : {SIGINT, SIGTERM}) {
        const BatchFixture fixture;
        fixture.write("p.txt", process_text(""));
        ASSERT_EQ(mkfifo(fixture.path("slow.gds").c_str(), 0600), 0);
        const ProgramResult result =
            interrupt_waiting(fixture, fixture.call({"--no-images", "-o", "out", "slow.gds", "p.txt"}),
                              "Please wait ...", signal);
        EXPECT_EQ(result.status, 130) << result.error;
        EXPECT_EQ(result.error, "quarn-batch: interrupted\n");
        EXPECT_TRUE(contains(result.output, "Handling \"Load GDS\" command canceled\n\n"));
        EXPECT_FALSE(contains(result.output, "Handling \"Run\" command"));
        EXPECT_FALSE(fixture.exists("out"));
    }
}

TEST(QuarnBatchInterrupt, WhileTheProcessFileIsReadNothingIsSaved) {
    for (const char *mode : {"--no-images", "--check"}) {
        const BatchFixture fixture;
        ASSERT_EQ(mkfifo(fixture.path("slow.txt").c_str(), 0600), 0);
        const ProgramResult result = interrupt_waiting(
            fixture, fixture.call({mode, "-o", "out", "a.gds", "slow.txt"}), "finished loading", SIGINT);
        EXPECT_EQ(result.status, 130) << result.error;
        EXPECT_EQ(result.error, "quarn-batch: interrupted\n");
        EXPECT_FALSE(contains(result.output, "Error")) << result.output;
        EXPECT_FALSE(fixture.exists("out"));
    }
}

TEST(QuarnBatchInterrupt, DuringTheSetUpNothingIsSaved) {
    const BatchFixture fixture;
    ProgramRun run = start_slow_run(fixture);
    ASSERT_TRUE(program_wait_for(&run, "Grid size: 2000")) << run.output;
    program_signal(run, SIGINT);
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.status, 130) << result.error;
    EXPECT_EQ(result.error, "quarn-batch: interrupted\n");
    EXPECT_TRUE(contains(result.output, "Run process canceled\n\n")) << result.output;
    EXPECT_FALSE(contains(result.output, "Running process ..."));
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatchInterrupt, ASecondOneEndsTheProgram) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer hands signals on when it sees fit";
#endif
    const BatchFixture fixture;
    ProgramRun run = start_slow_run(fixture);
    ASSERT_TRUE(program_wait_for(&run, "Executing M1 deposition")) << run.output;
    program_signal(run, SIGINT);
    // Both could arrive as one; the first has been handled when another signal of the pair works.
    for (i32 attempt = 0; attempt < 100; ++attempt) {
        program_signal(run, SIGTERM);
    }
    const ProgramResult result = program_finish(&run);
    EXPECT_TRUE(result.signal == SIGTERM || result.signal == SIGINT) << result.status;
}

// A pipe in the place of the dump, whose end the test holds and does not read: the dump is then a step that
// never ends.
struct StuckDump {
    int reader;

    explicit StuckDump(const BatchFixture &fixture) {
        EXPECT_EQ(mkdir(fixture.path("dump").c_str(), 0700), 0);
        const std::string path = fixture.path("dump/VertexData.txt");
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        EXPECT_GE(fcntl(reader, F_SETPIPE_SZ, 4096), 0) << "the dump must not fit into the pipe";
    }
    ~StuckDump() { close(reader); }
    StuckDump(const StuckDump &) = delete;
    StuckDump &operator=(const StuckDump &) = delete;

    // Whether the dump is under way, after a minute at most.
    bool wait() const {
        pollfd data = {reader, POLLIN, 0};
        return poll(&data, 1, 60000) == 1;
    }
};

TEST(QuarnBatchInterrupt, AStepThatDoesNotEndIsLeft) {
    struct Case {
        std::vector<std::string> options;
        std::vector<std::string> written;
    };
    std::vector<Case> cases = {
        {{"--no-images"}, {"Polygon.gds"}},
        {{"--no-images", "--profile", "csv", "--report", "out/p.html"},
         {"000 The substrate.csv", "001 Cross section after A deposition.csv", "Polygon.gds", "p.html",
          "thickness.csv"}},
    };
    if (graphics_available()) {
        cases.push_back(
            {{"--format", "png"},
             {"000 The substrate.png", "001 Cross section after A deposition.png", "Polygon.gds"}});
    }
    for (const Case &c : cases) {
        const BatchFixture fixture;
        const StuckDump dump(fixture);
        fixture.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
        std::vector<std::string> arguments = c.options;
        arguments.insert(arguments.end(), {"-o", "out", "--dump", "dump", "a.gds", "p.txt"});
        ProgramRun run = program_start(fixture.call(arguments), test_utf8(fixture.scratch.path));
        EXPECT_TRUE(dump.wait());
        program_signal(run, SIGTERM);
        const ProgramResult result = program_finish(&run);
        EXPECT_EQ(result.status, 130) << "signal " << result.signal;
        EXPECT_EQ(result.error,
                  "quarn-batch: the step under way takes too long to wait for; the run ends without it\n"
                  "quarn-batch: interrupted\n");
        EXPECT_TRUE(contains(result.output, "Handling \"Stop\" request: wait for current process step"));
        EXPECT_FALSE(contains(result.output, "Executing B deposition"));
        EXPECT_EQ(fixture.list("out"), c.written) << "what was made before it, and no part of a file";
    }
}
