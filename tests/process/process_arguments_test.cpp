#include "process/process_arguments.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/memory.h"
#include "process/process_error.h"
#include "process/reader_state.h"
#include "tests/process/process_read.h"
#include "tests/support/test_support.h"

// A reader in line 7 of a file of version 3.
class Arguments : public testing::Test {
protected:
    ConsoleCapture console;
    i64 blocks_before = memory_live_blocks();

    void SetUp() override {
        reader_state_start();
        g_reader.line_number = 7;
        g_reader.version = 3;
    }
    void TearDown() override {
        reader_state_end();
        EXPECT_EQ(memory_live_blocks(), blocks_before) << "everything must be given back";
    }
    // What was reported since the last call.
    std::string reported() {
        std::string text = console.narrow();
        console.reset();
        return text;
    }
};

using CheckArguments = Arguments;
using ReadStringArgument = Arguments;
using ReadIntegerArguments = Arguments;
using ReadDecimalArgument = Arguments;
using ReadLengthArgument = Arguments;
using ReadTargetsArgument = Arguments;
using ProcessError = Arguments;

struct TextCase {
    const char *line;
    std::vector<std::string> messages;
};

TEST_F(ProcessError, NamesTheLineFromOneUpAndRemembersTheFault) {
    EXPECT_FALSE(g_reader.fault_seen);
    process_error("%s %d", "bad", 5);
    EXPECT_EQ(reported(), "Error in line 7: bad 5\r\n");
    EXPECT_TRUE(g_reader.fault_seen);
    g_reader.line_number = 1;
    process_error("x");
    EXPECT_EQ(reported(), "Error in line 1: x\r\n");
    g_reader.line_number = 0;
    process_error("100%%");
    EXPECT_EQ(reported(), "Error: 100%\r\n");
}

TEST_F(CheckArguments, ReportsEveryUnknownName) {
    const char *const allowed[] = {"-name", "-x", nullptr};
    const TextCase cases[] = {
        {"c -name a -x 1", {}},
        {"c", {}},
        {"", {}},
        {"c -foo -bar", {"Invalid argument -foo", "Invalid argument -bar"}},
        {"c -foo -foo", {"Invalid argument -foo", "Invalid argument -foo"}},
        {"c -Name", {"Invalid argument -Name"}},
        {"c -nam", {"Invalid argument -nam"}},
        {"c -named", {"Invalid argument -named"}},
        {"c -5 - -- -_x -.5 -\xE9 a-foo", {}},  // no letter after the dash, or no dash in front
        {"c -a -z -A -Z",                       // the letters at the ends
         {"Invalid argument -a", "Invalid argument -z", "Invalid argument -A", "Invalid argument -Z"}},
        {"c -@ -[ -` -{", {}},  // their neighbours
        {"c -name -5", {}},
        {"c\t-foo", {}},                                // one word with the tab in it
        {"c -name\ta", {"Invalid argument -name\ta"}},  // a tab does not end a word
        {"c   -foo   ", {"Invalid argument -foo"}},
        {"-foo", {"Invalid argument -foo"}},
    };
    for (const TextCase &c : cases) {
        check_arguments(c.line, allowed);
        EXPECT_EQ(reported(), faults(7, c.messages)) << c.line;
    }
}

struct StringCase {
    const char *line, *value;
    std::vector<std::string> messages;
};

TEST_F(ReadStringArgument, GivesTheWordAfterTheName) {
    const StringCase cases[] = {
        {"c -name abc -x 1", "abc", {}},
        {"c -name   abc", "abc", {}},
        {"c -name\tabc\tdef", "abc", {}},  // texts end at tabs
        {"c -names abc", "abc", {}},       // found inside a longer word, all of which is passed over
        {"c a-name abc", "abc", {}},
        {"c -name a -name b", "a", {}},
        {"c -x 1", "", {"Argument -name not found"}},
        {"c -Name a", "", {"Argument -name not found"}},
        {"c -name", "", {"No string found reading -name argument"}},
        {"c -name \t ", "", {"No string found reading -name argument"}},
        {"c -name=abc", "", {"No string found reading -name argument"}},
        {"c -name -type", "-type", {"Invalid character '-' in argument"}},
        {"c -name -5", "-5", {"Invalid character '-' in argument"}},
        {"c -name a-b", "a-b", {}},
    };
    for (const StringCase &c : cases) {
        const NarrowText value = read_string_argument(c.line, "-name");
        EXPECT_STREQ(value.get(), c.value) << c.line;
        EXPECT_EQ(reported(), faults(7, c.messages)) << c.line;
    }
}

TEST_F(ReadStringArgument, AWordHasAtMost1023Characters) {
    const std::string line = "-n " + std::string(2000, 'x');
    EXPECT_EQ(std::string(read_string_argument(line.c_str(), "-n").get()), std::string(1023, 'x'));
}

struct IntegerCase {
    const char *line;
    i32 count;
    std::vector<i32> values;  // all start at 77
    std::vector<std::string> messages;
};

static const std::string NON_INTEGER = "Non integer value or values found reading argument -n";
static const std::string NOT_ENOUGH = "Not enough integer values found reading argument -n";
static const std::string WRONG_NUMBER = "Argument -n with incorrect number of values";
static const std::string NO_INTEGER = "No integer value or values found reading argument -n";

TEST_F(ReadIntegerArguments, StoreWhatCanBeRead) {
    const IntegerCase cases[] = {
        {"c -n 5", 1, {5}, {}},
        {"c -n 5 -x 1", 1, {5}, {}},
        {"c -n 5 6 7", 2, {5, 6}, {}},  // more values are not looked at
        {"c -n 5 junk", 1, {5}, {}},
        {"c -n   5   6", 2, {5, 6}, {}},
        {"c -nx 5", 1, {5}, {}},  // inside a longer word
        {"c -n 007", 1, {7}, {}},
        {"c -x 1", 1, {77}, {"Argument -n not found"}},
        {"c -n", 1, {77}, {NO_INTEGER}},
        {"c -n    ", 1, {77}, {NO_INTEGER}},
        {"c -n 5 6", 3, {5, 6, 77}, {WRONG_NUMBER}},
        {"c -n -x 1", 1, {77}, {NOT_ENOUGH}},
        {"c -n -5", 1, {77}, {NOT_ENOUGH}},
        {"c -n 5 -x 1", 2, {5, 77}, {NOT_ENOUGH}},
        {"c -n 1.9", 1, {1}, {NON_INTEGER}},
        {"c -n .5", 1, {0}, {NON_INTEGER}},
        {"c -n 12um", 1, {12}, {NON_INTEGER}},
        {"c -n abc", 1, {0}, {NON_INTEGER}},
        {"c -n +5", 1, {5}, {NON_INTEGER}},
        {"c -n 0x10", 1, {0}, {NON_INTEGER}},
        {"c -n 5\t", 1, {5}, {NON_INTEGER}},
        {"c -n \t-5", 1, {-5}, {NON_INTEGER}},  // the word begins with the tab
        {"c -n\t5", 1, {77}, {NO_INTEGER}},     // the tab belongs to the name's word
        {"c -n 1 2.5 3", 3, {1, 2, 77}, {NON_INTEGER}},
        {"c -n 2147483647", 1, {2147483647}, {}},
        {"c -n 2147483648", 1, {2147483647}, {}},  // too large: the largest
        {"c -n 99999999999999999999999", 1, {2147483647}, {}},
        {"c -n \t-99999999999999999999999", 1, {I32_MIN}, {NON_INTEGER}},
    };
    for (const IntegerCase &c : cases) {
        std::vector<i32> values(static_cast<size_t>(c.count), 77);
        read_integer_arguments(c.line, "-n", values.data(), c.count);
        EXPECT_EQ(values, c.values) << c.line;
        EXPECT_EQ(reported(), faults(7, c.messages)) << c.line;
    }
}

TEST_F(ReadIntegerArguments, FilesOlderThanVersion2LeaveBadValuesOutSilently) {
    for (const i32 version : {0, 1, 2}) {
        g_reader.version = version;
        i32 values[3] = {77, 77, 77};
        read_integer_arguments("c -n 4 1.5 6", "-n", values, 3);
        EXPECT_EQ(values[0], 4) << version;
        EXPECT_EQ(values[1], version < 2 ? 77 : 1) << version;
        EXPECT_EQ(values[2], 77) << version;
        EXPECT_EQ(reported(), version < 2 ? "" : faults(7, {NON_INTEGER})) << version;
        EXPECT_EQ(g_reader.fault_seen, version == 2);
    }
}

struct DecimalCase {
    const char *line;
    bool read;
    f32 value;  // starts at 77
    std::vector<std::string> messages;
};

TEST_F(ReadDecimalArgument, ReadsAsTheCLibraryDoes) {
    const std::string none = "No decimal number found reading -d argument";
    const DecimalCase cases[] = {
        {"c -d 1.5", true, 1.5F, {}},
        {"c -d\t1.5", true, 1.5F, {}},
        {"c -d -2.5e-1", true, -0.25F, {}},
        {"c -d +3", true, 3.0F, {}},
        {"c -d .5", true, 0.5F, {}},
        {"c -d 5um", true, 5.0F, {}},
        {"c -d 0.1", true, 0.1F, {}},
        {"c -d 1,5", true, 1.0F, {}},
        {"c -dx 4", true, 4.0F, {}},
        {"c -d inf", true, INFINITY, {}},
        {"c -d -INFINITY", true, -INFINITY, {}},
        {"c -d 1e99", true, INFINITY, {}},
        {"c -d um", false, 77.0F, {none}},
        {"c -d", false, 77.0F, {none}},
        {"c -d -x 4", false, 77.0F, {none}},
        {"c -x 4", false, 77.0F, {"Argument -d not found"}},
    };
    for (const DecimalCase &c : cases) {
        f32 value = 77.0F;
        EXPECT_EQ(read_decimal_argument(c.line, "-d", &value), c.read) << c.line;
        EXPECT_EQ(value, c.value) << c.line;
        EXPECT_EQ(reported(), faults(7, c.messages)) << c.line;
    }
    f32 value = 77.0F;
    EXPECT_TRUE(read_decimal_argument("c -d nan", "-d", &value));
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(reported(), "");
}

TEST_F(ReadDecimalArgument, AnOptionalOneMayBeAbsent) {
    f32 value = 77.0F;
    EXPECT_FALSE(read_optional_decimal("c -x 4", "-d", &value));
    EXPECT_EQ(reported(), "");
    EXPECT_FALSE(read_optional_decimal("c -d x", "-d", &value));
    EXPECT_EQ(reported(), faults(7, {"No decimal number found reading -d argument"}));
    EXPECT_EQ(value, 77.0F);
    EXPECT_TRUE(read_optional_decimal("c -d 4", "-d", &value));
    EXPECT_EQ(value, 4.0F);
}

TEST_F(ReadLengthArgument, FollowsTheUnitOfTheFile) {
    f32 value = 0.0F;
    read_length_argument("c -d 4", "-d", &value);
    EXPECT_EQ(value, 4.0F);
    g_reader.units = UNIT_NANOMETRES;
    read_length_argument("c -d 4", "-d", &value);
    EXPECT_EQ(value, 4.0F / 1000.0F);
    EXPECT_EQ(reported(), "");
    g_reader.units = UNIT_UNSET;
    read_length_argument("c -d 4", "-d", &value);
    EXPECT_EQ(value, 4.0F) << "kept as read";
    EXPECT_EQ(reported(), faults(7, {"No units specified. Make sure gen command is given above with valid "
                                     "-use_nm argument."}));
}

TEST_F(ReadLengthArgument, AMissingOneIsNotScaledAgain) {
    g_reader.units = UNIT_NANOMETRES;
    f32 value = 8.0F;
    EXPECT_FALSE(read_length_argument("c", "-d", &value));
    EXPECT_FALSE(read_length_argument("c -d x", "-d", &value));
    EXPECT_FALSE(read_optional_length("c", "-d", &value));
    EXPECT_EQ(value, 8.0F);
    EXPECT_EQ(reported(),
              faults(7, {"Argument -d not found", "No decimal number found reading -d argument"}));
}

TEST_F(ReadLengthArgument, NanometresWhateverTheUnit) {
    for (const UnitMode units : {UNIT_UNSET, UNIT_MICROMETRES, UNIT_NANOMETRES}) {
        g_reader.units = units;
        f32 value = 0.0F;
        EXPECT_TRUE(read_nanometre_argument("c -d 100", "-d", &value));
        EXPECT_EQ(value, 0.1F);
    }
    EXPECT_EQ(reported(), "");
}

struct TargetCase {
    const char *line;
    std::vector<std::string> materials, targets, messages;
};

TEST_F(ReadTargetsArgument, NamesTheMaterialsOfEachTypeInFileOrder) {
    material_table_add(g_reader.materials, "_SUB_", nullptr);
    material_table_add(g_reader.materials, "A", "ox");
    material_table_add(g_reader.materials, "B", "ni");
    material_table_add(g_reader.materials, "C", "ox");
    const TargetCase cases[] = {
        {"etch -targets ox", {"A", "C"}, {"ox"}, {}},
        {"etch -targets ni ox -depth 5 ox", {"B", "A", "C"}, {"ni", "ox"}, {}},
        {"etch -targets ox ox", {"A", "C", "A", "C"}, {"ox", "ox"}, {}},
        {"etch -targets  ni   ox  ", {"B", "A", "C"}, {"ni", "ox"}, {}},
        {"etch -targets si ni", {"B"}, {"si", "ni"}, {"Target etch type si is undefined"}},
        {"etch -targets OX", {}, {"OX"}, {"Target etch type OX is undefined"}},
        {"etch -targets A", {}, {"A"}, {"Target etch type A is undefined"}},  // a name is no type
        {"etch -targets _SUB_", {}, {"_SUB_"}, {"Target etch type _SUB_ is undefined"}},
        {"etch -targets ni\tox", {}, {"ni\tox"}, {"Target etch type ni\tox is undefined"}},
        {"etch -targets", {}, {}, {}},
        {"etch -targets -depth 5", {}, {}, {}},
        {"etch -depth 5", {}, {}, {"Argument -targets not found"}},
    };
    for (const TargetCase &c : cases) {
        NameList materials = {}, targets = {};
        const Owned<NameList> materials_owner(&materials), targets_owner(&targets);
        read_targets_argument(c.line, &materials, &targets);
        EXPECT_EQ(names_of(materials), c.materials) << c.line;
        EXPECT_EQ(names_of(targets), c.targets) << c.line;
        EXPECT_EQ(reported(), faults(7, c.messages)) << c.line;
    }
}
