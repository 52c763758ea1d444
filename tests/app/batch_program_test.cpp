// quarn-batch from outside: its options, what it prints where, and how it ends.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/app/batch_fixture.h"

static const char *const LOAD_TEXT =
    "--- Handling \"Load GDS\" command ---\n\n"
    "Loading GDS database a.gds and calculating cell sizes. Please wait ...\n\n"
    "CELLS IN DATABASE:\n"
    "--> \"TOP\" with size dx = 12100 by dy = 2500 (database units)\n\n"
    "GDS database finished loading in # s\n\n";

static const char *const SET_UP_TEXT =
    "Successfully read process file \"p.txt\"\n\n"
    "Extracting polygons ...\n"
    "Found 1 polygons with smallest size 2.500 um\n\n"
    "GDS cell TOP at (0.000 um, 0.000 um)\n"
    "Grid size: 200 x 50\n"
    "Grid spacing: 0.050 um\n"
    "GDS cell: TOP\n\n";

static const char *const RUN_TEXT =
    "Running process ...\n\n"
    "Executing A deposition ... \n"
    "Completed in # s\n\n"
    "All process steps completed in # sec\n\n"
    "Use left and right arrows to browse through the process steps\n\n";

static std::string run_banner() {
    return "--- Handling \"Run\" command ---\n\n";
}

TEST(QuarnBatch, MakesAPictureOfEveryStep) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A")));
    const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(LOAD_TEXT + run_banner() + SET_UP_TEXT + RUN_TEXT +
                  "--- Handling \"Save images\" command ---\n"
                  "Saving images to folder \"out\". Please wait ...\n"
                  "Saving images completed\n"
                  "Saved polygons to \"Polygons.gds\" in the image output directory\n\n",
              mask_seconds(result.output));
    const std::vector<std::string> expected = {"000 The substrate.bmp",
                                               "001 Cross section after A deposition.bmp", "Polygon.gds"};
    EXPECT_EQ(fixture.list("out"), expected);
    // 54 bytes of header; 1920 pixels of 4 bytes a row.
    const size_t pixels = fixture.read("out/000 The substrate.bmp").size() - 54;
    EXPECT_EQ(pixels % (size_t{1920} * 4), 0U);
    const std::vector<std::string> here = {"a.gds", "out", "p.txt"};
    EXPECT_EQ(here, fixture.list()) << "nothing else is written";
}

TEST(QuarnBatch, WritesPng) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult result = fixture.run({"--format", "png", "--output=deep/er", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(fixture.read("deep/er/000 The substrate.png").substr(0, 4), "\x89PNG");
}

// The four bytes of a file from a place on, the first one uppermost.
static u32 number_at(const std::string &bytes, size_t place) {
    u32 number = 0;
    for (size_t i = 0; i < 4; ++i) {
        number = number * 256 + static_cast<u8>(bytes.at(place + i));
    }
    return number;
}

TEST(QuarnBatch, PicturesLookAsTheOptionsSay) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A")));
    const std::string name = "/001 Cross section after A deposition.png";
    std::string before;
    for (const char *folder : {"one", "two"}) {
        const ProgramResult result =
            fixture.run({"--format", "png", "--width", "400", "--quality", "fine", "--title", "T",
                         "--background", "none", "-o", folder, "a.gds", "p.txt"});
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(result.error, "");
        const std::string bytes = fixture.read(folder + name);
        ASSERT_GT(bytes.size(), 100U);
        EXPECT_EQ(number_at(bytes, 16), 400U) << "the width in the header";
        EXPECT_EQ(bytes[25], 6) << "colours with alpha";
        for (const std::string &note :
             {std::string("Software\0Quarn 3.0.0", 20), std::string("Layout\0a.gds", 12),
              std::string("Cell\0TOP", 8), std::string("Process file\0p.txt", 18),
              std::string("Cut\0x 0 y 0 dx 10 dy 2.5 um", 27),
              std::string("Step\0"
                          "1 A deposition",
                          19)}) {
            EXPECT_NE(bytes.find(note), std::string::npos) << note;
        }
        EXPECT_TRUE(before.empty() || before == bytes) << "two runs give the same files";
        before = bytes;
    }
}

TEST(QuarnBatch, AnUnknownBackgroundIsWrongUsage) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult result =
        fixture.run({"--no-images", "--background", "chocolat", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              "quarn-batch: --background: unknown color \"chocolat\"; did you mean \"chocolate\"?\n");
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatch, AnExistingFolderIsUsedAndOverwritten) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    std::filesystem::create_directory(fixture.path("out"));
    fixture.write("out/000 The substrate.bmp", "old");
    fixture.write("out/mine", "kept");
    const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(fixture.read("out/000 The substrate.bmp").substr(0, 2), "BM");
    EXPECT_EQ(fixture.read("out/mine"), "kept");
}

TEST(QuarnBatch, WithoutAFolderATimeStampedOneLiesBesideTheProcessFile) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    std::filesystem::create_directory(fixture.path("sub.d"));
    fixture.write("sub.d/my run.txt", process_text(""));
    const ProgramResult result = fixture.run({"a.gds", "sub.d/my run.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    std::vector<std::string> names = fixture.list("sub.d");
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0].substr(0, 7), "my run ");
    EXPECT_NE(result.output.find("Saving images to folder \"sub.d/" + names[0] + "\"."), std::string::npos)
        << "a path is shown as the user gave it";
}

TEST(QuarnBatch, NoImagesWritesPolygonsAndSaysNothingOfSaving) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A")));
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "a.gds", "p.txt"});
    call.environment = {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"};  // no graphics are needed
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(LOAD_TEXT + run_banner() + SET_UP_TEXT + RUN_TEXT, mask_seconds(result.output));
    EXPECT_EQ(fixture.list("out"), std::vector<std::string>{"Polygon.gds"});
}

TEST(QuarnBatch, NoImagesUsesTheTimeStampedFolderToo) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult result = fixture.run({"--no-images", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    std::vector<std::string> names = fixture.list();
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(names[1].substr(0, 2), "p ");
    EXPECT_EQ(fixture.list(names[1]), std::vector<std::string>{"Polygon.gds"});
}

TEST(QuarnBatch, PolygonsReadBackAsALayout) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    const ProgramResult result = fixture.run({"--cells", "out/Polygon.gds"});
    EXPECT_EQ(result.status, 0) << result.error;
    // Relative to the corner of the extracted region, which has a margin of one grid point of 50 units: 5050
    // by 2550, less one where micrometres turn back into units in single precision and are truncated.
    EXPECT_TRUE(text_matches(result.output, "*--> \"TOP\" with size dx = 50## by dy = 25## (*"))
        << result.output;
}

TEST(QuarnBatch, DumpsIntoTheCurrentFolder) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("dump\n"));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(fixture.exists("VertexData.txt"));
    EXPECT_NE(mask_seconds(result.output).find("Completed in # s\n\n"), std::string::npos);
}

TEST(QuarnBatch, CellsListsTheLayoutOnly) {
    const BatchFixture fixture;
    const ProgramResult result = fixture.run({"--cells", "a.gds"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(mask_seconds(result.output), LOAD_TEXT);
    EXPECT_EQ(result.error,
              "quarn-batch: a database unit is 0.001 um\n"
              "quarn-batch: cell \"TOP\" reaches from (0, 0) um to (12.1, 2.5) um; layers 1, 9\n");
    EXPECT_EQ(fixture.list().size(), 1U);
}

TEST(QuarnBatch, CheckSimulatesAndWritesNothing) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A") + "dump\n"));
    const ProgramResult result = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(mask_seconds(result.output), std::string(LOAD_TEXT) + SET_UP_TEXT);
    EXPECT_EQ(fixture.list().size(), 2U);
}

TEST(QuarnBatch, CheckReportsTheFaultsOfBothFiles) {
    const BatchFixture fixture;
    fixture.write("bad.gds", "no layout");
    fixture.write("p.txt", process_text("nonsense\nphoto\n"));
    const ProgramResult process_only = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(process_only.status, 3);
    EXPECT_NE(process_only.output.find("Error in line 4: Unknown command\n"), std::string::npos);

    const ProgramResult both = fixture.run({"--check", "bad.gds", "p.txt"});
    EXPECT_EQ(both.status, 2) << "the layout's failure wins";
    EXPECT_NE(both.output.find("Loading GDS database failed with error: "), std::string::npos);
    EXPECT_NE(both.output.find("Error in line 4: Unknown command\n"), std::string::npos);
    EXPECT_NE(both.output.find("Error in line 5: "), std::string::npos);

    fixture.write("p.txt", process_text(""));
    EXPECT_EQ(fixture.run({"--check", "bad.gds", "p.txt"}).status, 2);
    EXPECT_EQ(fixture.list().size(), 2U + 1U);
}

TEST(QuarnBatch, CheckFindsFaultsOfTheSetUp) {
    const BatchFixture fixture;
    std::string text = process_text("");
    text.replace(text.find("TOP"), 3, "Top");
    fixture.write("p.txt", text);
    const ProgramResult result = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.output.find("ERROR: The cell name Top specified in the process file was not found"),
              std::string::npos);
}

TEST(QuarnBatch, HelpAndVersionGoToStandardOutput) {
    const BatchFixture fixture;
    const ProgramResult help = fixture.run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.error, "");
    for (const char *option :
         {"-o, --output DIR", "--format", "--no-images", "--check", "--cells", "--dump", "--data", "--width",
          "--quality", "--z-scale", "--title", "--background", "--help", "--version"}) {
        EXPECT_NE(help.output.find(option), std::string::npos) << option;
    }
    const ProgramResult version = fixture.run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "Quarn 3.0.0\n");
    EXPECT_EQ(version.error, "");
}

TEST(QuarnBatch, WrongUsageIsToldOnStandardError) {
    const BatchFixture fixture;
    const std::vector<std::vector<std::string>> lines = {{},
                                                         {"a.gds"},
                                                         {"a.gds", "p.txt", "c"},
                                                         {"--bogus", "a.gds", "p.txt"},
                                                         {"--format", "gif", "a.gds", "p.txt"}};
    for (const auto &line : lines) {
        const ProgramResult result = fixture.run(line);
        EXPECT_EQ(result.status, 1) << testing::PrintToString(line);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error.find("quarn-batch: "), 0U) << result.error;
        EXPECT_NE(result.error.find("Try 'quarn-batch --help'"), std::string::npos) << result.error;
    }
}

TEST(QuarnBatch, ProcessFaultsEndWithThree) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("nonsense\n"));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    const std::string tail =
        "Error in line 4: Unknown command\n"
        "Opening process file p.txt failed with error(s) given above\n\n"
        "Run process canceled\n\n";
    EXPECT_EQ(LOAD_TEXT + run_banner() + tail, mask_seconds(result.output));
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatch, LayoutThatDoesNotLoadEndsWithTwo) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "missing.gds", "p.txt"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output,
              "--- Handling \"Load GDS\" command ---\n\n"
              "Loading GDS database missing.gds and calculating cell sizes. Please wait ...\n\n"
              "Loading GDS database failed with error: 1\n\n");
    EXPECT_EQ(result.error.find("quarn-batch: "), 0U) << result.error;
    EXPECT_NE(result.error.find("missing.gds"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("No such file or directory"), std::string::npos) << result.error;
    EXPECT_FALSE(fixture.exists("out"));
}

TEST(QuarnBatchInstall, TheInstalledTreeIsWholeAndFindsItsData) {
    const BatchFixture fixture;
    ProgramCall install = fixture.call({"--install", QUARN_BUILD_FOLDER, "--prefix", fixture.path("prefix")});
    install.program = QUARN_CMAKE_PROGRAM;
    const ProgramResult installed = fixture.run_call(install);
    ASSERT_EQ(installed.status, 0) << installed.output << installed.error;
    for (const char *file :
         {"share/quarn/surface.shader", "share/quarn/point.shader", "share/doc/quarn/process-file.md"}) {
        EXPECT_TRUE(fixture.exists(std::string("prefix/") + file)) << file;
    }
    const std::string example = fixture.path("prefix/share/quarn/examples/cmos-inverter/cmos_inverter");
    ProgramCall check = fixture.call({"--check", example + ".gds", example + ".txt"});
    check.program = fixture.path("prefix/bin/quarn-batch");
    const ProgramResult result = fixture.run_call(check);
    EXPECT_EQ(result.status, 0) << result.output << result.error;
}
