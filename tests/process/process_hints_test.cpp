// What the hints say about a process file, and that they say nothing about good ones.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <set>

#include "platform/memory.h"
#include "platform/platform.h"
#include "process/color_table.h"
#include "process/command_forms.h"
#include "process/hints.h"
#include "process/process_arguments.h"
#include "tests/process/process_read.h"
#include "tests/support/test_support.h"

// What reading a text gave.
struct HintRead {
    std::vector<std::string> hints;
    std::string console;
    i32 result = -1;
};

static HintRead read_text(const std::string &text) {
    const ProcessRead process(text);
    HintRead read = {{}, process.console, process.result};
    for (const std::string &line : process.diagnostics) {
        if (line.find(", see above") == std::string::npos) {  // the number of faults is no hint
            read.hints.push_back(line);
        }
    }
    return read;
}

// One line below a good head, and what is said about it.
struct HintCase {
    std::string line;
    std::vector<std::string> hints;  // without "p.txt:4: "
};

static void expect_hints(const std::vector<HintCase> &cases, const std::string &head = HEAD,
                         i32 line_number = HEAD_LINES + 1) {
    for (const HintCase &c : cases) {
        const HintRead read = read_text(head + c.line + "\n");
        std::vector<std::string> expected;
        for (const std::string &hint : c.hints) {
            expected.push_back("p.txt:" + std::to_string(line_number) + ": " + hint);
        }
        EXPECT_EQ(read.hints, expected) << c.line;
    }
}

// A film whose other arguments are good.
static std::string film(const std::string &rest) {
    return "deposition -name A -type a -color 1 2 3 100 " + rest;
}

// A file that was not read for an interrupt is not called empty.
TEST(ProcessHints, NoneAfterAnInterrupt) {
    static std::atomic<i32> interrupted{1};
    platform_interrupt_watch(&interrupted, nullptr);
    const HintRead read = read_text(HEAD);
    platform_interrupt_watch(nullptr, nullptr);
    EXPECT_EQ(read.hints, std::vector<std::string>());
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 1);
}

TEST(ProcessHints, FiguresWithSomethingBehindThem) {
    expect_hints({
        {film("-thickness 5um"),
         {"-thickness: \"5um\" is read as 5: write the figure alone (its unit is the nanometre)"}},
        {film("-thickness 1,2"), {"-thickness: \"1,2\" is read as 1: write decimals with a point"}},
        {film("-thickness 100 -sc 0,5"), {"-sc: \"0,5\" is read as 0: write decimals with a point"}},
        {film("-thickness 100 -alpha 1.0.0"),
         {"-alpha: \"1.0.0\" is read as 1: write the figure alone (it is a plain number)"}},
        {"photo -name P -mask_id 1 -type 1 -res 0.2um -thickness 500",
         {"-res: \"0.2um\" is read as 0.2: write the figure alone (its unit is the micrometre)"}},
        {film("-thickness 1e2"), {}},
        {film("-thickness +100."), {}},
    });
    expect_hints({{"photo -name P -mask_id 1 -type 1 -res 200nm -thickness 500",
                   {"-res: \"200nm\" is read as 200: write the figure alone (its unit is the nanometre)"}}},
                 "settings -version 3 -use_nm\ngds -cell TOP\nlocation -x 0 -y 0 -dx 9000 -dy 5000\n");
}

TEST(ProcessHints, AHexadecimalFigure) {
    // Whether "0x10" is 16 or 0 is the C library's affair; that it is odd is said in any case.
    HintRead read = read_text(HEAD + film("-thickness 0x10") + "\n");
    ASSERT_EQ(read.hints.size(), 1U);
    EXPECT_EQ(read.hints[0].find("p.txt:4: -thickness: \"0x10\" is read as "), 0U) << read.hints[0];
}

TEST(ProcessHints, ThicknessAndDepthOutOfTheOrdinary) {
    expect_hints({
        {film("-thickness 0.5"), {"-thickness of 0.5 is less than 1 nm: its unit is the nanometre"}},
        {film("-thickness 0"), {"-thickness of 0 is less than 1 nm: its unit is the nanometre"}},
        {film("-thickness 1"), {}},
        {film("-thickness 100000"), {}},
        {film("-thickness 200000"), {"-thickness of 200000 is more than 100 um: its unit is the nanometre"}},
        {film("-thickness -50"), {"-thickness is negative (-50): write it without the sign"}},
        {film("-thickness nan"), {"-thickness: \"nan\" is no number to calculate with"}},
        {film("-thickness inf"), {"-thickness: \"inf\" is no number to calculate with"}},
        {film("-thickness 1e99"), {"-thickness: \"1e99\" is no number to calculate with"}},
    });
    const std::string head = HEAD + film("-thickness 9") + "\n";
    expect_hints(
        {
            {"etch -targets a -depth -3", {"-depth is negative (-3): write it without the sign"}},
            {"etch -targets a -depth 0.3", {"-depth of 0.3 is less than 1 nm: its unit is the nanometre"}},
            {"etch -targets a -depth 1e6", {}},  // down to whatever stops it
            {"etch -targets a -depth 3 -iso nan", {"-iso: \"nan\" is no number to calculate with"}},
        },
        head, HEAD_LINES + 2);
}

TEST(ProcessHints, WordsThatNothingTakes) {
    expect_hints({
        {film("-thickness 5 um"), {"\"um\" is ignored: no argument takes it"}},
        {"coating thin -name A -type a -thickness 100 -color 1 2 3 100 7 8",
         {"\"thin\" and 2 more words are ignored: no argument takes them"}},
        {"dump all", {"\"all\" is ignored: no argument takes it"}},
        {"stop -here now", {"\"-here\" and 1 more word are ignored: no argument takes them"}},
        {film("-thickness 5 # thin"),
         {"\"#\" and 1 more word are ignored: a comment needs a line of its own"}},
        {"gds -cell TOP -layer 5", {"\"-layer\" and 1 more word are ignored: no argument takes them"}},
    });
}

TEST(ProcessHints, ArgumentsGivenTwice) {
    expect_hints({
        {film("-thickness 5 -thickness 6"), {"-thickness is given 2 times: only the first counts"}},
        {film("-thickness 5 -sc 0 -scolor red"), {"-scolor is ignored beside -color"}},
        {"gds -cell A -cell B -cell C", {"-cell is given 3 times: only the first counts"}},
    });
}

TEST(ProcessHints, ArgumentsFoundInsideALongerWord) {
    load_test_colors();
    const std::string left = " to the left of that word, or change the word";
    expect_hints({
        {"deposition -name A -type a -thickness 5 -scolor red -sc 1",
         {"-sc is found inside \"-scolor\" and read from there: write -sc with its value" + left}},
        {"deposition -name A -type a -thickness 5 -scolor red",
         {"-sc is found inside \"-scolor\" and read from there: write -sc with its value" + left}},
        {"deposition -name LOW-sc 1 -type a -thickness 5 -color 1 2 3 100",
         {"-sc is found inside \"LOW-sc\" and read from there: write -sc with its value" + left,
          "\"1\" is ignored: no argument takes it"}},
        {"deposition -name A -type a -thickness 5 -sc 1 -scolor red", {}},
        {"coating -name A -type a -thickness 5 -scolor red", {}},
        {"strip -name B-name", {}},  // the first occurrence is the argument itself
        {"gds A-cell -cell TOP",
         {"-cell is found inside \"A-cell\" and read from there: write -cell with its value" + left,
          "\"A-cell\" is ignored: no argument takes it"}},
    });
    expect_hints({{"settings -version 3 -no-legend",
                   {"-legend is found inside \"-no-legend\" and read from there: write -legend" + left}}},
                 "", 1);
    color_table_free();
}

TEST(ProcessHints, NamesThatNearlyExist) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"c.txt"), "red x 255, 0, 0\nfirebrick x 178, 34, 34\nbeige x 1, 1, 1\n");
    ASSERT_EQ(color_table_load_file(folder.file(L"c.txt").c_str()), 0);
    expect_hints({
        {"coating -name A -type a -thickness 5 -scolor FireBrick",
         {"there is no colour \"FireBrick\": did you mean firebrick?"}},
        {"coating -name A -type a -thickness 5 -scolor firebrik",
         {"there is no colour \"firebrik\": did you mean firebrick?"}},
        {"coating -name A -type a -thickness 5 -scolor chartreuse", {}},
        {"Strip", {"there is no command \"Strip\": did you mean \"strip\"?"}},
        {"depositoin -name A", {"there is no command \"depositoin\": did you mean \"deposition\"?"}},
        {"gen -version 3", {"the command is written \"settings\""}},
        {"cut -x 0", {"the command is written \"location\""}},
        {"implant", {}},
        {film("-thicknes 5"), {"deposition has no argument -thicknes: did you mean -thickness?"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 9 -dop 1", {}},
    });
    color_table_free();
}

TEST(ProcessHints, ADatatypeIsAnArgumentLikeOthers) {
    const std::string rest = "-type 1 -res 0 -thickness 9";
    expect_hints({
        {"photo -name P -mask_id 66 -datatype 44 " + rest, {}},
        {"photo -name POLY-datatype -mask_id 66 " + rest, {}},  // a name, and read as one
        {"photo -name POLY-datatype -mask_id 66 -datatype 20 " + rest, {}},
        {"photo -name P -mask_id 66 -datatype 20 -datatype 44 " + rest,
         {"-datatype is given 2 times: only the first counts"}},
        {"photo -name P -mask_id 66 -datatype 20 44 " + rest, {"\"44\" is ignored: no argument takes it"}},
        {"photo -name P -mask_id 66 -datatyp 44 " + rest,
         {"photo has no argument -datatyp: did you mean -datatype?"}},
        {"photo -name P -mask_id 66 -datatype 4,4 " + rest,
         {"-datatype: separate whole numbers by blanks, without commas"}},
        {"photo -name P -mask_id 66 -datatype\t44 " + rest,
         {"the tab beside \"-datatype\" is part of a word: separate words by blanks"}},
    });
}

TEST(ProcessHints, TabsWhereBlanksHaveToStand) {
    auto tab = [](const std::string &word) {
        return "the tab beside \"" + word + "\" is part of a word: separate words by blanks";
    };
    const std::string rest = "-type 1 -res 0 -thickness 9";
    expect_hints({
        {"photo -name P -mask_id\t1 " + rest, {tab("-mask_id")}},
        {"photo -name P -mask_id 1\t" + rest, {tab("1")}},
        {"photo -name P -mask_id \t1 " + rest, {tab("1")}},
        {"photo -name P -mask_id 1 " + rest + " -taper 80\t", {tab("80")}},
        {"strip -name\tP", {tab("-name")}},
        // Where names and decimals are read, and around the command, any white space will do.
        {"photo\t-name P\t-mask_id 1 " + rest + "\t", {}},
        {"\tstrip\t", {}},
        {"gds\t-cell\tTOP", {}},
        {"\t# comment", {"a comment has its \"#\" in the first column: take out what stands before it"}},
        {"  # comment", {"a comment has its \"#\" in the first column: take out what stands before it"}},
    });
    expect_hints({{"etch -targets a\t-depth 5", {tab("a")}}, {"etch -targets a -depth\t5", {tab("-depth")}}},
                 HEAD + film("-thickness 9") + "\n", HEAD_LINES + 2);
}

TEST(ProcessHints, BytesBeyondAscii) {
    auto space = [](i32 column) {
        return "the no-break space in column " + std::to_string(column) +
               " is part of a word: separate words by plain blanks";
    };
    const std::string shown =
        " has characters beyond ASCII: titles, file names and messages show others in their place";
    expect_hints({
        {"strip\xC2\xA0-name P", {space(6)}},
        {"strip -name\xC2\xA0P", {space(12)}},
        {"strip\xA0", {space(6)}},  // as in older character sets
        {"strip -name \xC3\xA9t\xC3\xA9", {"\"\xC3\xA9t\xC3\xA9\"" + shown}},
        {"strip \xE2\x80\x93name", {"\"\xE2\x80\x93name\" is ignored: no argument takes it"}},
    });
}

TEST(ProcessHints, CommasBetweenWholeNumbers) {
    expect_hints({{"coating -name A -type a -thickness 9 -color 1,2,3,100",
                   {"-color: separate whole numbers by blanks, without commas"}}});
}

TEST(ProcessHints, BytesThatEndALine) {
    expect_hints({
        {std::string("\0strip", 6),
         {"the line begins with a byte of value 0 and is not read: take the byte out"}},
        {std::string("dump \0strip", 11),
         {"what follows the byte of value 0 in column 6 is not read: take the byte out"}},
        {std::string("# \0strip", 8), {}},
        {"dump\rstrip",
         {"what follows the carriage return in column 5 is not read: end lines with a line feed"}},
        {"dump\r", {}},
        {"# a\rb", {}},
    });
    const HintRead last = read_text(HEAD + std::string("dump\0", 5));
    EXPECT_EQ(last.hints, std::vector<std::string>{"p.txt:4: what follows the byte of value 0 in column 5 is "
                                                   "not read: take the byte out"});
}

TEST(ProcessHints, MarksAtTheBeginning) {
    HintRead utf8 = read_text("\xEF\xBB\xBF" + HEAD);
    ASSERT_EQ(utf8.hints.size(), 1U);
    EXPECT_EQ(utf8.hints[0],
              "p.txt:1: the file begins with a UTF-8 byte order mark, which is taken for a part of the first "
              "word: save it without the mark");
    HintRead utf16 = read_text(std::string("\xFF\xFEs\0t\0o\0p\0\n\0d\0u\0m\0p\0\n\0", 22));
    ASSERT_EQ(utf16.hints.size(), 1U);
    EXPECT_EQ(utf16.hints[0],
              "p.txt:1: the file is UTF-16 text, which cannot be read: save it as UTF-8 or plain text");
}

TEST(ProcessHints, ALineThatDoesNotFit) {
    const std::string hint =
        "p.txt:4: the line has more than 1023 characters: what follows them is read as a line of its own, "
        "and "
        "counted as one";
    const std::string command = "strip -name ";
    auto line_of = [&command](size_t length) { return command + std::string(length - command.size(), 'n'); };
    EXPECT_EQ(read_text(HEAD + line_of(1022) + "\ndump\n").hints, std::vector<std::string>{});
    EXPECT_EQ(read_text(HEAD + line_of(1022)).hints, std::vector<std::string>{});
    EXPECT_EQ(read_text(HEAD + "#" + std::string(5000, '-') + "\n").hints, std::vector<std::string>{hint});
    EXPECT_EQ(read_text(HEAD + line_of(3000) + "\n").hints, std::vector<std::string>{hint});
}

TEST(ProcessHints, AFileWithoutCommands) {
    EXPECT_EQ(read_text("").hints, std::vector<std::string>{"p.txt: the file is empty"});
    EXPECT_EQ(read_text("# nothing\n\n").hints,
              std::vector<std::string>{"p.txt: the file has no command, only comments and empty lines"});
    EXPECT_EQ(read_text("stop\n").hints, std::vector<std::string>{});
}

TEST(ProcessHints, ControlCharactersAreShownByTheirNumbers) {
    expect_hints({{"strip a\x1b[31m\x07", {"\"a\\x1b[31m\\x07\" is ignored: no argument takes it"}}});
}

TEST(ProcessHints, OnlyTheFirstFiftyAreTold) {
    std::string text = HEAD;
    for (i32 i = 0; i < 2000; ++i) {
        text += "dump x\n";
    }
    HintRead read = read_text(text);
    ASSERT_EQ(read.hints.size(), 51U);
    EXPECT_EQ(read.hints[49], "p.txt:53: \"x\" is ignored: no argument takes it");
    EXPECT_EQ(read.hints[50], "p.txt: and 1950 more");
    // Exactly as many as are told leave nothing to count.
    text = HEAD;
    for (i32 i = 0; i < HINTS_MOST; ++i) {
        text += "dump x\n";
    }
    EXPECT_EQ(read_text(text).hints.size(), 50U);
}

TEST(ProcessHints, TheOutcomeIsThatOfTheFileWithoutThem) {
    const HintRead odd = read_text(HEAD + film("-thickness 5um thin") + "\ndump all\n");
    EXPECT_EQ(odd.hints.size(), 3U);
    EXPECT_EQ(odd.result, 0);
    EXPECT_EQ(odd.console, "");
}

// Every listed argument is one that its reader takes: at worst it lacks a value, but it is not invalid. The
// exception is known and kept.
TEST(ProcessHints, TheListedArgumentsAreThoseOfTheReaders) {
    for (const CommandForm *form = COMMAND_FORMS; form->word != nullptr; ++form) {
        for (const ArgumentForm *argument = form->arguments; argument->name != nullptr; ++argument) {
            const HintRead read = read_text(std::string(form->word) + " " + argument->name + "\n");
            const bool invalid = read.console.find("Invalid argument") != std::string::npos;
            const bool kept = std::string(form->word) == "photo" && std::string(argument->name) == "-dop";
            EXPECT_EQ(invalid, kept) << form->word << " " << argument->name;
        }
        const HintRead unknown = read_text(std::string(form->word) + " -unknown\n");
        const bool refused = unknown.console.find("Invalid argument -unknown") != std::string::npos;
        EXPECT_EQ(refused, form->checked) << form->word;
    }
}

TEST(ProcessHints, TheExamplesNeedNone) {
    ASSERT_EQ(color_table_load_file(test_wide(QUARN_DATA_FOLDER "/colors.txt").c_str()), 0);
    i32 files = 0;
    for (const std::filesystem::directory_entry &entry :
         std::filesystem::recursive_directory_iterator(QUARN_EXAMPLES_FOLDER)) {
        if (entry.path().extension() == ".txt" && entry.path().filename() != "CMakeLists.txt") {
            const HintRead read = read_text(test_file_read(test_wide(entry.path().string())));
            EXPECT_EQ(read.hints, std::vector<std::string>{}) << entry.path();
            EXPECT_EQ(read.result, 0) << entry.path() << read.console;
            ++files;
        }
    }
    EXPECT_GE(files, 4);
    color_table_free();
}
