// quarn-batch with bad and odd input: clear words, the right status, no crash, no hang.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/app/batch_fixture.h"

namespace fs = std::filesystem;

static bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

TEST(QuarnBatchPaths, AnyNameOfAFileIsTaken) {
    // Blanks, a leading dash behind "--", Latin and other scripts, percent signs, bytes that are no UTF-8.
    const std::string names[] = {
        "two  words", "-o",           "\xC3\xA9t\xC3\xA9", "\xE6\x96\xAD\xE9\x9D\xA2",
        "100%s%n",    "\xFF\xFE raw", "quote\"'",          "\xF0\x9F\x94\xAC",
        "tab\there"};
    for (const std::string &name : names) {
        const BatchFixture fixture;
        fixture.write(name + ".gds", small_layout_bytes());
        fixture.write(name + ".txt", process_text(""));
        const ProgramResult result =
            fixture.run({"--no-images", "--output=" + name, "--", name + ".gds", name + ".txt"});
        EXPECT_EQ(result.status, 0) << name << ": " << result.output << result.error;
        EXPECT_TRUE(contains(result.output, "Loading GDS database " + name + ".gds and calculating"))
            << result.output;
        EXPECT_TRUE(contains(result.output, "Successfully read process file \"" + name + ".txt\"\n"))
            << result.output;
        EXPECT_TRUE(fixture.exists(name + "/Polygon.gds"));
    }
}

TEST(QuarnBatchPaths, FoldersAndMissingFilesAreRefused) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    fs::create_directory(fixture.path("folder"));
    struct Case {
        const char *layout, *process;
        i32 status;
        const char *reason;
    };
    const Case cases[] = {
        {"missing.gds", "p.txt", 2, "No such file or directory"},
        {"folder", "p.txt", 2, "Is a directory"},
        {"p.txt/a.gds", "p.txt", 2, "Not a directory"},
        {"", "p.txt", 2, "No such file or directory"},
        {"a.gds", "missing.txt", 3, "No such file or directory"},
        {"a.gds", "folder", 3, "Is a directory"},
        {"a.gds", "a.gds/p.txt", 3, "Not a directory"},
        {"a.gds", "", 3, "No such file or directory"},
    };
    for (const Case &c : cases) {
        const ProgramResult result = fixture.run({"--no-images", "-o", "out", c.layout, c.process});
        EXPECT_EQ(result.status, c.status) << c.layout << " " << c.process;
        EXPECT_TRUE(contains(result.error, c.reason)) << c.layout << " " << c.process << ": " << result.error;
        EXPECT_FALSE(fixture.exists("out"));
    }
}

TEST(QuarnBatchPaths, DevicesAreRefused) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const ProgramResult layout = fixture.run({"--no-images", "-o", "out", "/dev/zero", "p.txt"});
    EXPECT_EQ(layout.status, 2);
    EXPECT_TRUE(
        contains(layout.error, "/dev/zero: error 1: the file cannot be opened: Is a device, not a file"))
        << layout.error;
    const ProgramResult process = fixture.run({"--no-images", "-o", "out", "a.gds", "/dev/zero"});
    EXPECT_EQ(process.status, 3);
    EXPECT_TRUE(contains(process.output, "Failed to open process file: /dev/zero\n")) << process.output;
    EXPECT_TRUE(contains(process.error, "quarn-batch: /dev/zero: Is a device, not a file\n"))
        << process.error;
    const ProgramResult nothing = fixture.run({"--check", "a.gds", "/dev/null"});
    EXPECT_EQ(nothing.status, 3);
    EXPECT_TRUE(contains(nothing.output, "Missing gds, location/cut, or settings/gen command"))
        << "the null device is an empty file: " << nothing.output;
}

// Writes to a pipe once somebody reads it, in pieces that end anywhere.
static void write_slowly(const std::string &path, const std::string &bytes) {
    std::ofstream pipe(path, std::ios::binary);
    for (size_t at = 0; at < bytes.size(); at += 100) {
        pipe << bytes.substr(at, 100) << std::flush;
    }
}

TEST(QuarnBatchPaths, PipesAreRead) {
    const BatchFixture fixture;
    ASSERT_EQ(mkfifo(fixture.path("pipe.gds").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(fixture.path("pipe.txt").c_str(), 0600), 0);
    const std::string process = process_text(deposition_line("A") + deposition_line("B"));
    ProgramRun run = program_start(fixture.call({"--no-images", "-o", "out", "pipe.gds", "pipe.txt"}),
                                   test_utf8(fixture.scratch.path));
    write_slowly(fixture.path("pipe.gds"), small_layout_bytes());
    write_slowly(fixture.path("pipe.txt"), process);
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.status, 0) << result.output << result.error;
    EXPECT_TRUE(contains(result.output, "Executing B deposition")) << result.output;
    EXPECT_TRUE(fixture.exists("out/Polygon.gds"));
}

TEST(QuarnBatchLayout, BadOnesSayWhatIsWrongOnStandardError) {
    const std::string good = small_layout_bytes();
    std::string lying = good;
    lying[1] = 3;  // the first record's length
    const std::string cases[] = {
        "", "x", std::string(100, '\0'), lying, "plain text, by mistake\n", std::string(70000, '\xFF')};
    for (const std::string &bytes : cases) {
        const BatchFixture fixture;
        fixture.write("bad.gds", bytes);
        const ProgramResult result = fixture.run({"--cells", "bad.gds"});
        EXPECT_EQ(result.status, 2) << result.output;
        EXPECT_TRUE(contains(result.output, "Loading GDS database failed with error: ")) << result.output;
        EXPECT_EQ(result.error.find("quarn-batch: "), 0U) << "in words: " << result.error;
    }
}

struct ProcessCase {
    const char *name;
    std::string text;
    i32 status;
    const char *expected;  // on standard output; may be empty
};

static std::vector<ProcessCase> process_cases() {
    const std::string head = process_text("");
    const std::string five_thousand(5000, 'x');
    auto location = [](const std::string &rest) {
        return "settings -version 3 -N 200\ngds -cell TOP\nlocation " + rest + "\n";
    };
    return {
        {"empty", "", 3, "Missing gds, location/cut, or settings/gen command"},
        {"comment only", "# nothing\n\n", 3, "Missing gds, location/cut, or settings/gen command"},
        {"no final newline", head + "dump", 0, "Completed in"},
        {"carriage returns",
         "settings -version 3 -N 200\r\ngds -cell TOP\r\nlocation -x 0 -y 0 -dx 10 -dy 2.5\r\n", 0,
         "All process steps completed"},
        {"long comment is read as lines", head + "#" + five_thousand + "\n", 3, "Unknown command"},
        {"long word", head + five_thousand + "\n", 3, "Unknown command"},
        {"long name", head + deposition_line(std::string(400, 'n')), 0, "Executing nnn"},
        {"binary bytes", std::string("\x00\x01\xFF\xFE\x80 -N \x00\n\n\xC3\x28", 14), 3, "Unknown command"},
        {"binary behind good lines", head + std::string("\xFF\x00\x7F\n", 4), 3, "Unknown command"},
        {"N too large", "settings -version 3 -N 99999999999999999999\n", 3,
         "Value of -N argument needs to be between 200 and 2000"},
        {"N negative", "settings -version 3 -N -5\n", 3, "Error in line 1"},
        {"width nan", location("-x 0 -y 0 -dx nan -dy 2"), 3, ""},
        {"width inf", location("-x 0 -y 0 -dx inf -dy 2"), 3, ""},
        {"corner nan", location("-x nan -y 0 -dx 10 -dy 2.5"), 0, ""},
        {"corner far away", location("-x 1e30 -y -1e30 -dx 10 -dy 2.5"), 0, "Found 0 polygons"},
        {"width tiny", location("-x 0 -y 0 -dx 1e-30 -dy 1e-30"), 0, ""},
        {"width huge", location("-x 0 -y 0 -dx 1e30 -dy 1e30"), 0, ""},
        {"width negative", location("-x 0 -y 0 -dx -10 -dy 2.5"), 3, "Invalid -dx argument"},
        {"thickness nan", head + "deposition -name A -type a -thickness nan -color 1 1 1 100 -sc 0.5\n", 0,
         ""},
        {"thickness inf", head + "deposition -name A -type a -thickness inf -color 1 1 1 100 -sc 0.5\n", 0,
         ""},
        {"thickness negative", head + "deposition -name A -type a -thickness -50 -color 1 1 1 100 -sc 0.5\n",
         0, ""},
        {"depth inf", head + deposition_line("A") + "etch -targets t_A -depth inf -iso 0.5\n", 0, ""},
        {"depth nan", head + deposition_line("A") + "etch -targets t_A -depth nan -iso 1\n", 0, ""},
        {"resolution nan", head + "photo -name P -mask_id 1 -type 1 -res nan -thickness 100\nstrip\n", 0, ""},
        {"coverage out of range", head + "deposition -name A -type a -thickness 5 -sc 1.5 -color 1 1 1 100\n",
         3, "step coverage need to be between 0.0 and 1.0"},
        {"unknown colour", head + "deposition -name A -type a -thickness 5 -sc 0 -scolor nosuchcolor\n", 3,
         "Color name is not a recognized X11 color"},
    };
}

TEST(QuarnBatchProcess, OddFilesEndInOrder) {
    for (const ProcessCase &c : process_cases()) {
        const BatchFixture fixture;
        fixture.write("p.txt", c.text);
        const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
        EXPECT_EQ(result.status, c.status) << c.name << " (signal " << result.signal << ")\n"
                                           << result.output << result.error;
        EXPECT_TRUE(contains(result.output, c.expected)) << c.name << "\n" << result.output;
        EXPECT_EQ(fixture.exists("out/Polygon.gds"), c.status == 0) << c.name;
    }
}

// Hints stand on standard error with file and line, also with --check; output and status are those without.
TEST(QuarnBatchProcess, WhatIsReadOtherwiseThanItWasMeantIsHinted) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text("deposition -name A -type a -thickness 5um -color 1 1 1 100\n"
                                        "photo -name P -mask_id 77 -type 1 -res 0 -thickness 100\n"));
    fixture.write("good.txt", process_text("deposition -name A -type a -thickness 5 -color 1 1 1 100\n"
                                           "photo -name P -mask_id 1 -type 1 -res 0 -thickness 100\n"));
    const ProgramResult check = fixture.run({"--check", "a.gds", "p.txt"});
    EXPECT_EQ(check.status, 0) << check.error;
    EXPECT_EQ(
        check.error.find("quarn-batch: p.txt:4: -thickness: \"5um\" is read as 5: write the figure "
                         "alone (its unit is the nanometre)\n"
                         "quarn-batch: p.txt:5: layer 77 of -mask_id has no polygon in the layout; there: "),
        0U)
        << check.error;
    EXPECT_EQ(check.output.find("-mask_id"), std::string::npos) << check.output;
    const ProgramResult good = fixture.run({"--check", "a.gds", "good.txt"});
    EXPECT_EQ(good.error, "");
    const ProgramResult run = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(check.error, run.error);
}

TEST(QuarnBatchProcess, OddThicknessesAreDrawnWithoutACrash) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    const std::string line = "deposition -name A -type a -color 1 1 1 100 -sc 0.5 -thickness ";
    for (const char *thickness : {"nan", "inf", "-50", "1e30", "0"}) {
        fixture.write("p.txt", process_text(line + thickness + "\n"));
        const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
        EXPECT_EQ(result.status, 0) << thickness << " (signal " << result.signal << ")\n" << result.error;
    }
}

TEST(QuarnBatchProcess, ATitleWithASeparatorIsSaved) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("Si/SiO2")));
    const ProgramResult result = fixture.run({"-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(fixture.exists("out/001 Cross section after Si_SiO2 deposition.bmp"));
}

// The examples and the complete example of the reference are in order with the layouts that they name.
TEST(QuarnBatchProcess, ExamplesHaveNeitherFaultsNorHints) {
    const std::string root = QUARN_DATA_FOLDER "/../";
    const std::string reference = test_file_read(test_wide(root + "docs/process-file.md"));
    const std::string mark = "```process\n";
    size_t start = reference.find(mark);
    ASSERT_NE(start, std::string::npos);
    start += mark.size();
    const BatchFixture fixture;
    fixture.write("reference.txt", reference.substr(start, reference.find("```", start) - start));
    const std::string layout = "examples/cmos-inverter/cmos_inverter.gds";
    EXPECT_TRUE(contains(reference.substr(0, start), "`cmos_inverter.gds`"))
        << "the reference names its layout";
    const std::pair<std::string, std::string> runs[] = {
        {root + layout, "reference.txt"},
        {root + layout, root + "examples/cmos-inverter/cmos_inverter.txt"},
        {root + "examples/damascene/damascene.gds", root + "examples/damascene/damascene.txt"},
        {root + "examples/mems-cantilever/mems_cantilever.gds",
         root + "examples/mems-cantilever/mems_cantilever.txt"},
        {root + "examples/standard-cell/standard_cell.gds",
         root + "examples/standard-cell/standard_cell.txt"},
        {root + "examples/waveguide-lens/waveguide_lens.gds",
         root + "examples/waveguide-lens/waveguide_lens.txt"},
    };
    for (const auto &[gds, process] : runs) {
        const ProgramResult result = fixture.run({"--check", gds, process});
        EXPECT_EQ(result.status, 0) << process << "\n" << result.output;
        EXPECT_EQ(result.error, "") << process;
    }
}
