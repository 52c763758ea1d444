// quarn-batch and the folders it writes into: made and tried first, removed when nothing came of it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "tests/app/batch_fixture.h"

namespace fs = std::filesystem;

static bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

TEST(QuarnBatchFolders, OneThatCannotBeMadeEndsWithFourBeforeAnythingIsRead) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("dump\n"));
    const std::string too_long(300, 'n');
    const struct {
        const char *option;
        std::string folder, reason;
    } cases[] = {
        {"-o", "p.txt/out", "File exists"},
        {"-o", "p.txt", "File exists"},
        {"-o", "/proc/quarn", "No such file or directory"},
        {"-o", "made/" + too_long, "File name too long"},
        {"--dump", "p.txt/out", "File exists"},
        {"--dump", "/proc/quarn", "No such file or directory"},
    };
    for (const auto &c : cases) {
        const ProgramResult result = fixture.run({"--no-images", c.option, c.folder, "a.gds", "p.txt"});
        EXPECT_EQ(result.status, 4) << c.folder;
        EXPECT_EQ(result.output, "") << c.folder;
        EXPECT_EQ(result.error,
                  "quarn-batch: " + c.folder + ": the folder cannot be made: " + c.reason + "\n");
        EXPECT_EQ(fixture.list(), std::vector<std::string>({"a.gds", "p.txt"}))
            << "what was made for it is gone again";
    }
}

TEST(QuarnBatchFolders, OneThatTakesNoFilesEndsWithFour) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult result = fixture.run({"--no-images", "-o", "/proc/self", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error.find("quarn-batch: /proc/self: no file can be written there: "), 0U)
        << result.error;
}

TEST(QuarnBatchFolders, ARunThatDoesNotStartLeavesNone) {
    const BatchFixture fixture;
    fixture.write("good.txt", process_text(""));
    fixture.write("bad.txt", process_text("nonsense\n"));
    fs::create_directory(fixture.path("there"));
    const struct {
        std::vector<std::string> arguments;
        i32 status;
    } cases[] = {
        {{"-o", "deep/er/out", "a.gds", "bad.txt"}, 3},
        {{"-o", "deep//er/../out/", "a.gds", "bad.txt"}, 3},
        {{"-o", "there/out", "--dump", "there/dump", "missing.gds", "good.txt"}, 2},
        {{"a.gds", "bad.txt"}, 3},
        {{"a.gds", "missing.txt"}, 3},
        {{"a.gds", "missing/p.txt"}, 3},
        {{"--check", "-o", "out", "a.gds", "good.txt"}, 0},
        {{"--cells", "-o", "out", "a.gds"}, 0},
    };
    for (const auto &c : cases) {
        std::vector<std::string> arguments = c.arguments;
        arguments.insert(arguments.begin(), "--no-images");
        const ProgramResult result = fixture.run(arguments);
        EXPECT_EQ(result.status, c.status) << result.error;
        EXPECT_EQ(fixture.list(), std::vector<std::string>({"a.gds", "bad.txt", "good.txt", "there"}))
            << testing::PrintToString(arguments);
        EXPECT_TRUE(fixture.list("there").empty()) << "one that was there stays";
    }
}

TEST(QuarnBatchFolders, TwoRunsInTheSameSecondDoNotMeet) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    std::vector<ProgramRun> runs;
    for (i32 i = 0; i < 4; ++i) {
        fs::create_directory(fixture.path("scratch" + std::to_string(i)));
        runs.push_back(program_start(fixture.call({"--no-images", "a.gds", "p.txt"}),
                                     fixture.path("scratch" + std::to_string(i))));
    }
    for (ProgramRun &run : runs) {
        const ProgramResult result = program_finish(&run);
        EXPECT_EQ(result.status, 0) << result.error;
    }
    i32 folders = 0;
    for (const std::string &name : fixture.list()) {
        const bool stamped = name.compare(0, 2, "p ") == 0;
        folders += stamped ? 1 : 0;
        EXPECT_TRUE(!stamped || text_matches(name, "p ####-##-## ##-##-##*")) << name;
        EXPECT_EQ(stamped, fixture.exists(name + "/Polygon.gds"));
    }
    EXPECT_EQ(folders, 4);
}

TEST(QuarnBatchDump, GoesIntoItsFolder) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("dump\n"));
    const ProgramResult result =
        fixture.run({"--no-images", "-o", "out", "--dump", "dumps/here", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(contains(fixture.read("dumps/here/VertexData.txt"), "TOPLAYER: "));
    EXPECT_FALSE(fixture.exists("VertexData.txt"));
}

TEST(QuarnBatchDump, OneThatCannotBeWrittenEndsWithFourBeforeTheFirstStep) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A") + "dump\n"));
    fs::create_directory(fixture.path("VertexData.txt"));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.error, "quarn-batch: VertexData.txt cannot be written: Is a directory\n");
    EXPECT_TRUE(contains(result.output, "GDS cell: TOP\n\nRun process canceled\n\n"));
    EXPECT_FALSE(contains(result.output, "Executing A"));
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatchDump, OneThatFailsOnTheWayEndsWithFourAtTheEnd) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("dump\n" + deposition_line("A")));
    fs::create_symlink("/dev/full", fixture.path("VertexData.txt"));
    const ProgramResult full = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(full.status, 4);
    EXPECT_EQ(full.error,
              "quarn-batch: VertexData.txt could not be written whole: No space left on device\n");
    EXPECT_TRUE(contains(full.output, "Executing A"));
    EXPECT_TRUE(fixture.exists("out/Polygon.gds"));

    fs::remove(fixture.path("VertexData.txt"));
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"});
    call.file_size_limit = 5000;
    const ProgramResult limited = fixture.run_call(call);
    EXPECT_EQ(limited.status, 4);
    EXPECT_EQ(limited.error, "quarn-batch: VertexData.txt could not be written whole: File too large\n");
    EXPECT_EQ(fixture.list(), std::vector<std::string>({"a.gds", "out", "p.txt"}))
        << "no part of the file stays";
}

TEST(QuarnBatchPictures, AnEarlierRunIsReplacedByNumber) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("one.txt",
                  process_text(deposition_line("A") + deposition_line("B") + deposition_line("C")));
    fixture.write("two.txt", process_text(deposition_line("X")));
    EXPECT_EQ(fixture.run({"-o", "out", "a.gds", "one.txt"}).error, "");
    const ProgramResult second = fixture.run({"-o", "out", "--format", "png", "a.gds", "two.txt"});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.error, "quarn-batch: out: 2 other pictures of an earlier run lie there\n");
    const std::vector<std::string> expected = {"000 The substrate.png",
                                               "001 Cross section after X deposition.png",
                                               "002 Cross section after B deposition.bmp",
                                               "003 Cross section after C deposition.bmp", "Polygon.gds"};
    EXPECT_EQ(fixture.list("out"), expected);
}

TEST(QuarnBatchPictures, LongTitlesAreShortenedAndCheckTellsThem) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line(std::string(300, 'A')) + deposition_line("B")));
    const std::string cut = "001 Cross section after " + std::string(227, 'A') + ".bmp";
    const ProgramResult check = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(check.status, 0);
    EXPECT_TRUE(contains(
        check.error,
        "quarn-batch: step 1 has a title too long for a file name: its picture will be \"" + cut + "\"\n"))
        << check.error;
    const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    const std::vector<std::string> expected = {"000 The substrate.bmp", cut,
                                               "002 Cross section after B deposition.bmp", "Polygon.gds"};
    EXPECT_EQ(fixture.list("out"), expected);
}

TEST(QuarnBatchPictures, OneThatFailsKeepsNoneOfTheRestBack) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    fs::create_directories(fixture.path("out/001 Cross section after A deposition.bmp"));
    const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 4);
    const std::string told = "Error while saving image(s) to output folder \"out\"";
    EXPECT_TRUE(contains(result.output,
                         "--- Handling \"Save images\" command ---\n"
                         "Saving images to folder \"out\". Please wait ...\n" +
                             told + "\n\n"));
    EXPECT_TRUE(contains(result.error, "out/001 Cross section after A deposition.bmp: Is a directory\n"));
    EXPECT_TRUE(contains(result.error, "quarn-batch: " + told + "\n"));
    EXPECT_TRUE(fixture.exists("out/000 The substrate.bmp"));
    EXPECT_TRUE(fixture.exists("out/002 Cross section after B deposition.bmp"));
    EXPECT_TRUE(fixture.exists("out/Polygon.gds"));
}

TEST(QuarnBatchPictures, AReaderThatGoesAwayLosesNone) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A")));
    ProgramRun run =
        program_start(fixture.call({"-o", "out", "a.gds", "p.txt"}), test_utf8(fixture.scratch.path));
    close(run.output_pipe);
    run.output_pipe = -1;
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.error, "quarn-batch: standard output: Broken pipe\n");
    EXPECT_EQ(fixture.list("out").size(), 3U);
}

// Ended at once at many moments, a run leaves no part of a file under the name of a whole one.
TEST(QuarnBatchPictures, NoMomentOfTheEndLeavesAPartOfAFile) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
    ASSERT_EQ(fixture.run({"-o", "whole", "--dump", "whole", "a.gds", "p.txt"}).status, 0);
    const std::vector<std::string> names = fixture.list("whole");
    ASSERT_EQ(names.size(), 5U);
    for (i32 i = 0; i < 8; ++i) {
        fs::remove_all(fixture.path("out"));
        ProgramRun run = program_start(fixture.call({"-o", "out", "--dump", "out", "a.gds", "p.txt"}),
                                       test_utf8(fixture.scratch.path));
        // From the first words on, later with each turn.
        program_wait_for(&run, "Running process");
        usleep(static_cast<useconds_t>(i) * 30000);
        program_signal(run, SIGKILL);
        program_finish(&run);
        for (const std::string &name : fixture.list("out")) {
            const bool temporary = text_matches(name, "quarn-*.tmp");
            EXPECT_TRUE(temporary || fixture.read("out/" + name) == fixture.read("whole/" + name)) << name;
        }
    }
}
