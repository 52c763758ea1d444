#include "process/process_file.h"

#include <gtest/gtest.h>

#include "log/log.h"
#include "platform/memory.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "process/color_table.h"
#include "process/reader_state.h"
#include "tests/process/process_read.h"
#include "tests/support/test_support.h"

static const std::string FIRST_COMMAND =
    "First command in process file needs to be the \"gen\" settings command";
static const std::string UNKNOWN = "Unknown command";
static const std::string MISSING = "Missing gds, location/cut, or settings/gen command";
static const std::string DUPLICATE_SETTINGS = "Duplicate settings (gen) command found";
static const std::string SETTINGS = "settings -version 3\n";
static const std::string GDS = "gds -cell TOP\n";
static const std::string LOCATION = "location -x 0 -y 0 -dx 10 -dy 5\n";
static const std::string NO_WIDTH =
    faults(0, {"The maximum photo resolution (0.000 micron) can not exceed 25% of the cross section width",
               "The max patterning bias (0.000 micron) can not exceed 25% of the cross section width"});

TEST(ProcessReadFile, AHeadIsAWholeFile) {
    load_test_colors();
    const ProcessRead read(HEAD);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.stack.steps->count, 1);
    EXPECT_EQ(read.stack.steps->capacity, 512);
    EXPECT_STREQ(read.stack.cell_name, "TOP");
    EXPECT_EQ(read.stack.max_bias, F32_MIN_NORMAL);
    EXPECT_EQ(read.stack.min_resolution, F32_MAX);
    EXPECT_EQ(read.stack.max_resolution, F32_MIN_NORMAL);
    color_table_free();
}

TEST(ProcessReadFile, TheFirstStepIsTheSubstrate) {
    load_test_colors();
    const ProcessRead read(HEAD);
    const ProcessStep &step = read.step(0);
    EXPECT_EQ(step.kind, STEP_DEPOSITION);
    EXPECT_STREQ(step.material, "_SUB_");
    EXPECT_STREQ(step.label, "SUBSTRATE");
    EXPECT_EQ(step.title, nullptr);
    EXPECT_EQ(step.material_type, nullptr);
    EXPECT_EQ(step.name, nullptr);
    EXPECT_EQ(step.thickness, 0.05F * 10.0F);  // 5 % of the width
    EXPECT_EQ(step.color_r, 245.0F / 255.0F);
    EXPECT_EQ(step.color_g, 245.0F / 255.0F);
    EXPECT_EQ(step.color_b, 220.0F / 255.0F);
    EXPECT_EQ(step.alpha, 1.0F);
    color_table_free();
}

TEST(ProcessReadFile, WithoutColorsTheSubstrateIsSilentlyBlack) {
    color_table_free();
    const ProcessRead read(HEAD);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.step(0).color_r, 0.0F);
    EXPECT_EQ(read.step(0).color_g, 0.0F);
    EXPECT_EQ(read.step(0).color_b, 0.0F);
}

TEST(ProcessReadFile, StepsAreInFileOrder) {
    const ProcessRead read(HEAD +
                           "dump\n"
                           "coating -name A -type a -thickness 1 -color 0 0 0 0\n"
                           "deposition -name B -type b -thickness 1 -color 0 0 0 0\n"
                           "photo -name P -mask_id 1 -type 0 -res 0 -thickness 1\n"
                           "etch -targets a b -depth 1\n"
                           "strip\n"
                           "release -targets a\n");
    EXPECT_EQ(read.result, 0) << read.console;
    const i32 kinds[] = {STEP_DEPOSITION, STEP_DUMP, STEP_COATING, STEP_DEPOSITION,
                         STEP_PHOTO,      STEP_ETCH, STEP_STRIP,   STEP_RELEASE};
    ASSERT_EQ(read.stack.steps->count, 8);
    for (i32 i = 0; i < 8; ++i) {
        EXPECT_EQ(read.step(i).kind, kinds[i]) << i;
    }
}

TEST(ProcessReadFile, ManySteps) {
    std::string text = HEAD;
    for (i32 i = 0; i < 1500; ++i) {
        text += "deposition -name M" + std::to_string(i) + " -type t -thickness 1 -color 0 0 0 0\n";
    }
    const ProcessRead read(text + "etch -targets t -depth 1\n");
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_EQ(read.stack.steps->count, 1502);
    EXPECT_EQ(read.stack.steps->capacity, 2048);
    EXPECT_EQ(read.step(1501).target_materials.count, 1500);
    EXPECT_STREQ(read.step(1501).target_materials.items[1499], "M1499");
}

struct FileCase {
    std::string text;
    std::string console;
};

TEST(ProcessReadFile, FirstCommandRule) {
    const FileCase cases[] = {
        // Once, with its line; a later settings line is then a second one.
        {GDS + SETTINGS + LOCATION, faults(1, {FIRST_COMMAND}) + faults(2, {DUPLICATE_SETTINGS})},
        {"# c\n\n" + GDS + LOCATION, faults(3, {FIRST_COMMAND})},  // and none is missed at the end
        {"gen -version 3\n" + GDS + LOCATION, faults(1, {UNKNOWN}) + faults(2, {FIRST_COMMAND})},
        {"gen\n" + HEAD, faults(1, {UNKNOWN})},
        {HEAD + "gen\n", faults(4, {UNKNOWN})},
        {"foo\n" + GDS + LOCATION, faults(1, {FIRST_COMMAND, UNKNOWN})},
        {"Settings -version 3\n" + GDS + LOCATION, faults(1, {FIRST_COMMAND, UNKNOWN})},
        {"dump\n" + GDS + LOCATION, faults(1, {FIRST_COMMAND})},
        {"stop\n" + HEAD, faults(1, {FIRST_COMMAND, MISSING}) + NO_WIDTH},
        // A line without a word leaves the rule alone.
        {"\v\n" + HEAD, faults(1, {UNKNOWN})},
        {"\f \v\n" + GDS + LOCATION, faults(1, {UNKNOWN}) + faults(2, {FIRST_COMMAND})},
    };
    for (const FileCase &c : cases) {
        const ProcessRead read(c.text);
        EXPECT_EQ(read.console, c.console) << c.text;
        EXPECT_EQ(read.result, 1) << c.text;
    }
}

TEST(ProcessReadFile, LinesAndWords) {
    const FileCase cases[] = {
        {HEAD + "dump", ""},                                        // no line end
        {HEAD + "  dump  \n\tdump\n", ""},                          // leading blanks
        {HEAD + "dump\r\n", ""},                                    //
        {HEAD + "dump\rjunk -foo\n", ""},                           // a return cuts the line
        {HEAD + "dump\tjunk\n", ""},                                // a tab ends the word
        {HEAD + "dumped\n", faults(4, {UNKNOWN})},                  // whole words
        {HEAD + "Dump\n", faults(4, {UNKNOWN})},                    // letter case
        {HEAD + "cut\n", faults(4, {UNKNOWN})},                     //
        {HEAD + "# foo\n\n \t\r\n#\nfoo\n", faults(8, {UNKNOWN})},  // comments and blank lines count
        {HEAD + " # no comment\n", faults(4, {UNKNOWN})},           // only in the first column
        {HEAD + "-x\n", faults(4, {UNKNOWN})},                      //
        {"settings -version 3\r\ngds -cell TOP\r\nlocation -x 0 -y 0 -dx 10 -dy 5\r\n", ""},
    };
    for (const FileCase &c : cases) {
        const ProcessRead read(c.text);
        EXPECT_EQ(read.console, c.console) << c.text;
        EXPECT_EQ(read.result, c.console.empty() ? 0 : 1) << c.text;
    }
}

TEST(ProcessReadFile, ATabAfterTheCommandHidesTheFirstNameFromTheCheck) {
    const ProcessRead read(HEAD + "deposition\t-foo -name A -type a -thickness 1 -color 0 0 0 0\n");
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
}

TEST(ProcessReadFile, StopEndsTheFileButNotTheChecks) {
    const ProcessRead read(HEAD + "dump\nstop\nfoo\nlocation\n");
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.stack.steps->count, 2);
    const ProcessRead early(SETTINGS + "stop -foo\n" + GDS + LOCATION);
    EXPECT_EQ(early.console, faults(2, {MISSING}) + NO_WIDTH);
}

TEST(ProcessReadFile, LongLinesAreReadOnAsTheNextLines) {
    // 5001 characters: a comment of 1023, then 3 lines of 1023 and one of 909 without its mark.
    const ProcessRead comment(HEAD + "#" + std::string(5000, 'x') + "\nfoo\n");
    EXPECT_EQ(comment.console, faults(5, {UNKNOWN}) + faults(6, {UNKNOWN}) + faults(7, {UNKNOWN}) +
                                   faults(8, {UNKNOWN}) + faults(9, {UNKNOWN}));
    // 1023 characters fill the buffer; the line end alone is the next line, a blank one.
    const std::string cell(1023 - 10, 'c');
    const ProcessRead exact(SETTINGS + "gds -cell " + cell + "\n" + LOCATION + "foo\n");
    EXPECT_EQ(exact.console, faults(5, {UNKNOWN}));
    EXPECT_EQ(exact.stack.cell_name, cell);
    const std::string short_cell(1022 - 10, 'c');
    const ProcessRead fits(SETTINGS + "gds -cell " + short_cell + "\n" + LOCATION + "foo\n");
    EXPECT_EQ(fits.console, faults(4, {UNKNOWN}));
    EXPECT_EQ(fits.stack.cell_name, short_cell);
    // A long name is cut where its line is cut; the rest is a line of its own.
    const ProcessRead cut(SETTINGS + "gds -cell " + std::string(2000, 'c') + "\n" + LOCATION);
    EXPECT_EQ(cut.console, faults(3, {UNKNOWN}));
    EXPECT_EQ(cut.stack.cell_name, cell);
}

TEST(ProcessReadFile, ALongTokenIsShownWhole) {
    const std::string name = "-" + std::string(1000, 'x');
    const ProcessRead read(HEAD + "strip " + name + "\n");
    EXPECT_EQ(read.console, faults(4, {"No prior photo process", "Invalid argument " + name}));
}

TEST(ProcessReadFile, BinaryBytes) {
    const std::string nul(1, '\0');
    // A line ends at its first zero byte, as text does.
    const ProcessRead zero(HEAD + "dump" + nul + "junk\n" + nul + "foo\n" + "fo" + nul + "dump\n");
    EXPECT_EQ(zero.console, faults(6, {UNKNOWN}));
    EXPECT_EQ(zero.stack.steps->count, 2);
    // Bytes above 0x7F widen by sign.
    const ProcessRead high(HEAD + "strip -a\xE9\n");
    EXPECT_EQ(high.console_wide,
              L"Error in line 4: No prior photo process\r\nError in line 4: Invalid argument -a\xFFE9\r\n");
    std::string every;
    for (i32 i = 0; i < 256; ++i) {
        every.push_back(static_cast<char>(255 - i));
    }
    const ProcessRead all(HEAD + every + every);
    EXPECT_EQ(all.result, 1);
}

TEST(ProcessReadFile, WholeFileChecks) {
    const std::string photo = "photo -name P -mask_id 1 -type 0 -thickness 1 -res ";
    // clang-format off
    const FileCase cases[] = {
        {"", faults(0, {MISSING}) + NO_WIDTH},
        {"\n#\n\n", faults(3, {MISSING}) + NO_WIDTH},  // with the number of the last line
        {SETTINGS + GDS, faults(2, {MISSING}) + NO_WIDTH},
        {SETTINGS + LOCATION, faults(2, {MISSING})},
        {SETTINGS + GDS + LOCATION, ""},
        {HEAD + photo + "2.5\n", ""},  // exactly a quarter
        {HEAD + photo + "2.501\n", faults(0, {"The maximum photo resolution (2.501 micron) can not exceed 25% of the cross section width"})},
        {HEAD + photo + "inf\n", faults(0, {"The maximum photo resolution (inf micron) can not exceed 25% of the cross section width"})},
        {SETTINGS + LOCATION + photo + "3\n",
         faults(3, {MISSING}) + faults(0, {"The maximum photo resolution (3.000 micron) can not exceed 25% "
                                           "of the cross section width"})},
    };
    // clang-format on
    for (const FileCase &c : cases) {
        const ProcessRead read(c.text);
        EXPECT_EQ(read.console, c.console) << c.text;
        EXPECT_EQ(read.result, c.console.empty() ? 0 : 1) << c.text;
    }
}

TEST(ProcessReadFile, EachReadStartsAnew) {
    {
        const ProcessRead first("settings -version 3 -use_nm\n" + GDS + LOCATION +
                                "deposition -name A -type ox -thickness 1 -color 0 0 0 0\n"
                                "photo -name P -mask_id 1 -type 0 -thickness 1 -res 0.001\nstop\n");
        EXPECT_EQ(first.result, 0) << first.console;
    }
    const ProcessRead second(HEAD +
                             "deposition -name A -type ni -thickness 1 -color 0 0 0 0\n"
                             "photo -name P -mask_id 1 -type 0 -thickness 1 -res 1\n"
                             "etch -targets ox -depth 1\n");
    EXPECT_EQ(second.console, faults(6, {"Target etch type ox is undefined"}));
    EXPECT_EQ(second.stack.width, 10.0F);
    EXPECT_EQ(second.stack.min_resolution, 1.0F);
    const ProcessRead third(HEAD);
    EXPECT_EQ(third.result, 0) << "a fault of the read before is forgotten";
}

TEST(ProcessReadFile, AFileThatCannotBeOpened) {
    const TemporaryFolder folder;
    for (const std::wstring &path : {folder.file(L"n\u00f6n\u0119.txt"), folder.path}) {
        Stack stack = {};
        const ConsoleCapture capture;
        EXPECT_EQ(process_read_file(&stack, path.c_str()), 1);
        EXPECT_EQ(capture.wide(), L"Failed to open process file: " + path + L"\r\n");
        EXPECT_NE(capture.diagnostics().find(test_utf8(path) + ": "), std::string::npos)
            << capture.diagnostics();
        EXPECT_EQ(stack.steps, nullptr) << "nothing else is done";
        EXPECT_EQ(stack.cell_name, nullptr);
    }
}

TEST(ProcessReadFile, APathNeedNotBeAscii) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"\u30d7\u30ed\u30bb\u30b9.txt");
    test_file_write(path, HEAD);
    ReadStack read;
    EXPECT_EQ(process_read_file(&read.stack, path.c_str()), 0);
}

// A file that uses every command and every list.
static const std::string EVERYTHING = HEAD +
                                      "deposition -name A -type ox -thickness 1 -sc 0 -scolor red\n"
                                      "coating -name B -type b -thickness 1 -color 0 0 0 0\n"
                                      "photo -name P -mask_id 1 -type 0 -res 0 -thickness 1\n"
                                      "etch -targets ox b -depth 1\n"
                                      "strip -name P\n"
                                      "release -targets ox -name R\n"
                                      "dump\n";

TEST(ProcessReadFile, NothingLeaksWhetherSoundOrRefused) {
    load_test_colors();
    const std::string texts[] = {"", HEAD, EVERYTHING, HEAD + HEAD,
                                 EVERYTHING + "foo\ngds\netch\n" + EVERYTHING};
    for (const std::string &text : texts) {
        const i64 blocks = memory_live_blocks();
        { const ProcessRead read(text); }
        EXPECT_EQ(memory_live_blocks(), blocks) << text;
    }
    color_table_free();
}

TEST(ProcessReadFile, AFileCutAnywhereIsReadWithoutHarm) {
    for (size_t length = 0; length <= EVERYTHING.size(); ++length) {
        const i64 blocks = memory_live_blocks();
        {
            const ProcessRead read(EVERYTHING.substr(0, length));
            EXPECT_GE(read.stack.steps->count, 1);
            EXPECT_TRUE(read.result == 1 || length >= HEAD.size() - 2) << length;
        }
        EXPECT_EQ(memory_live_blocks(), blocks) << length;
    }
}

// How a read went that ran out of memory at some allocation.
static bool ended_for_memory = false;

static bool ended_as_expected(int status) {
    ended_for_memory =
        testing::ExitedWithCode(TEST_OUT_OF_MEMORY)(status) || testing::ExitedWithCode(-1)(status);
    return ended_for_memory || testing::ExitedWithCode(0)(status);
}

// Reads the file with room for one allocation more each time, until the read comes to its end.
static void expect_end_at_every_allocation(const std::string &text, i32 allocations_at_least) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"p.txt");
    test_file_write(path, text);
    i32 trip = 0;
    do {
        EXPECT_EXIT(
            {
                load_test_colors();
                memory_trip_after(trip);
                Stack stack = {};
                i32 result = process_read_file(&stack, path.c_str());
                std::fprintf(stderr, "read with result %d", result);
                std::_Exit(0);
            },
            ended_as_expected, "Memory allocation error|read with result [01]")
            << "allocation " << trip;
        ++trip;
    } while (ended_for_memory && trip < 1000);
    EXPECT_GT(trip, allocations_at_least);
    EXPECT_LT(trip, 1000);
}

TEST(ProcessReadFileDeathTest, LackOfMemoryAtAnyAllocationEndsTheProgram) {
    TEST_NEEDS_FORK();
    // The list of steps, the table of materials, their records and arrays, and a text or more a line.
    expect_end_at_every_allocation(EVERYTHING, 40);
}

TEST(ProcessReadFileDeathTest, LackOfMemoryWhileAFaultIsToldEndsTheProgram) {
    TEST_NEEDS_FORK();
    // Three faults (the first command, gds, missing lines), two of the whole file: two texts each.
    expect_end_at_every_allocation("gds\n", 10);
}

// The examples in the user's reference are whole files: blocks marked "process".
TEST(ProcessReadFile, TheDocumentedExampleIsSound) {
    color_table_free();
    ASSERT_EQ(color_table_load_file(test_wide(QUARN_DATA_FOLDER "/colors.txt").c_str()), 0);
    const std::string reference = test_file_read(test_wide(QUARN_DOCS_FOLDER "/process-file.md"));
    const std::string mark = "```process\n";
    size_t start = reference.find(mark);
    ASSERT_NE(start, std::string::npos) << "the reference must have an example";
    start += mark.size();
    const ProcessRead read(reference.substr(start, reference.find("```", start) - start));
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.stack.steps->count, 8) << "the substrate and seven steps";
    color_table_free();
}

TEST(ProcessReadStream, AFileThatCannotBeReadIsNotTakenForWhole) {
#ifdef _WIN32
    GTEST_SKIP() << "the C library takes such a file for an empty one";
#endif
    const TemporaryFolder folder;
    // A file that is open for writing only refuses to be read.
    const OwnedFile file(platform_file_open(folder.file(L"p.txt").c_str(), "w"));
    ASSERT_NE(file, nullptr);
    ReadStack read;
    const ConsoleCapture capture;
    EXPECT_EQ(process_read_stream(&read.stack, file.get()), 1);
    EXPECT_NE(capture.diagnostics().find("cannot be read beyond line 0: "), std::string::npos)
        << capture.diagnostics();
}

TEST(ProcessReadFile, ALineWithoutEndIsAFault) {
    // Lines 4 to 1003 are the first 1000 pieces of 1023 blanks; reading stops there.
    const ProcessRead endless(HEAD + std::string(3000000, ' ') + "\nnonsense\n");
    EXPECT_EQ(endless.result, 1);
    EXPECT_EQ(endless.console, faults(HEAD_LINES + 1000, {"Line without end"}));
    const ProcessRead zeros(HEAD + std::string(3000000, '\0'));
    EXPECT_EQ(zeros.result, 1);
    EXPECT_NE(zeros.console.find("Line without end"), std::string::npos) << zeros.console;
    // 500 pieces twice are two long lines.
    const std::string half = std::string(500 * 1023, ' ') + "\n";
    EXPECT_EQ(ProcessRead(HEAD + half + half + half).result, 0);
    // A line end that fills the buffer, or comes just before, ends the line too.
    for (const size_t length : {1021U, 1022U, 1023U}) {
        std::string many = HEAD;
        for (i32 i = 0; i < 1100; ++i) {
            many += std::string(length, ' ') + "\n";
        }
        EXPECT_EQ(ProcessRead(many).result, 0) << length;
    }
}

TEST(ProcessReadFile, TheNumberOfFaultsIsADiagnostic) {
    using Lines = std::vector<std::string>;
    EXPECT_EQ(ProcessRead(HEAD).diagnostics, Lines{});
    EXPECT_EQ(ProcessRead(HEAD + "nonsense\n").diagnostics, Lines{"p.txt: 1 fault, see above"});
    EXPECT_EQ(ProcessRead(HEAD + "nonsense\ndump\nfolly\nstrip\n").diagnostics,
              Lines{"p.txt: 3 faults, see above"});
    EXPECT_EQ(ProcessRead(HEAD).diagnostics, Lines{}) << "the count starts anew";
}
