#include <gtest/gtest.h>

#include <cmath>

#include "process/color_table.h"
#include "process/reader_state.h"
#include "tests/process/process_read.h"

class Film : public testing::Test {
protected:
    void SetUp() override { load_test_colors(); }
    void TearDown() override { color_table_free(); }
};

using ReadDeposition = Film;
using ReadCoating = Film;

TEST_F(ReadDeposition, FillsTheStep) {
    const ProcessRead read(
        HEAD + "deposition -name OXIDE -type ox -thickness 100 -sc 0.5 -color 255 0 0 50 -alpha 0.25\n");
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
    const ProcessStep &step = read.step(1);
    EXPECT_EQ(step.kind, STEP_DEPOSITION);
    EXPECT_STREQ(step.material, "OXIDE");
    EXPECT_STREQ(step.material_type, "ox");
    EXPECT_STREQ(step.label, "OXIDE");
    EXPECT_STREQ(step.title, "OXIDE deposition");
    EXPECT_EQ(step.thickness, 0.1F);
    EXPECT_EQ(step.step_coverage, 0.5F);
    EXPECT_EQ(step.color_r, 0.5F);
    EXPECT_EQ(step.color_g, 0.0F);
    EXPECT_EQ(step.color_b, 0.0F);
    EXPECT_EQ(step.alpha, 0.25F);
    EXPECT_EQ(step.dop, 0.0F);
    EXPECT_EQ(step.rr, 0.0F);
    EXPECT_EQ(step.name, nullptr);
    EXPECT_EQ(step.resist_ref, nullptr);
    EXPECT_EQ(step.target_materials.count, 0);
}

TEST_F(ReadCoating, FillsTheStep) {
    const ProcessRead read(
        HEAD + "coating -name SOG -type sg -thickness 250 -dop 0.75 -rr 0.5 -scolor dark -alpha 0.5\n");
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
    const ProcessStep &step = read.step(1);
    EXPECT_EQ(step.kind, STEP_COATING);
    EXPECT_STREQ(step.material, "SOG");
    EXPECT_STREQ(step.material_type, "sg");
    EXPECT_STREQ(step.label, "SOG");
    EXPECT_STREQ(step.title, "SOG coating");
    EXPECT_EQ(step.thickness, 0.25F);
    EXPECT_EQ(step.dop, 0.75F);
    EXPECT_EQ(step.rr, 0.5F);
    EXPECT_EQ(step.step_coverage, 0.0F);
    EXPECT_EQ(step.color_r, 51.0F / 255.0F);
    EXPECT_EQ(step.color_g, 102.0F / 255.0F);
    EXPECT_EQ(step.color_b, 153.0F / 255.0F);
    EXPECT_EQ(step.alpha, 0.5F);
}

TEST_F(Film, DefaultsOfWhatIsNotGiven) {
    const ProcessRead read(HEAD +
                           "deposition -name A -type a -thickness 1 -color 0 0 0 0\n"
                           "coating -name B -type b -thickness 1 -scolor red\n");
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_EQ(read.step(1).step_coverage, 0.0F);
    EXPECT_EQ(read.step(1).alpha, 1.0F);
    EXPECT_EQ(read.step(2).dop, 1.0F);
    EXPECT_EQ(read.step(2).rr, 0.0F);
    EXPECT_EQ(read.step(2).alpha, 1.0F);
}

TEST_F(Film, ThicknessIsNanometresInEveryFileAndReflowIsInItsUnit) {
    for (const bool use_nm : {false, true}) {
        const std::string head = use_nm ? "settings -version 3 -use_nm\n" : "settings -version 3\n";
        const ProcessRead read(head +
                               "gds -cell T\nlocation -x 0 -y 0 -dx 10 -dy 5\n"
                               "deposition -name A -type a -thickness 100 -color 0 0 0 0\n"
                               "coating -name B -type b -thickness 0.3 -rr 0.5 -color 0 0 0 0\n");
        EXPECT_EQ(read.step(1).thickness, 100.0F / 1000.0F);
        EXPECT_EQ(read.step(2).thickness, 0.3F / 1000.0F);
        EXPECT_EQ(read.step(2).rr, use_nm ? 0.5F / 1000.0F : 0.5F);
    }
    // 1000 nm is the largest reflow under -use_nm.
    const ProcessRead read(
        "settings -version 3 -use_nm\ngds -cell T\nlocation -x 0 -y 0 -dx 10 -dy 5\n"
        "coating -name B -type b -thickness 1 -rr 1000 -color 0 0 0 0\n"
        "coating -name C -type b -thickness 1 -rr 1001 -color 0 0 0 0\n");
    EXPECT_EQ(read.step(1).rr, 1.0F);
    EXPECT_EQ(read.console, faults(5, {"Value of -rr argument needs to be between 0.0 and 1.0"}));
}

struct FaultCase {
    const char *arguments;  // after "-name A -type a -thickness 1", for both commands
    std::vector<std::string> messages;
};

static const std::string BAD_COLOR = "Invalid value(s) in -color argument";
static const std::string COLOR_COUNT = "Argument -color with incorrect number of values";
static const std::string COLOR_NON_INTEGER = "Non integer value or values found reading argument -color";
static const std::string BAD_ALPHA = "Invalid -alpha argument";

TEST_F(Film, FaultsOfColorAndAlpha) {
    const FaultCase cases[] = {
        {"-color 255 255 255 100", {}},
        {"-color 256 0 0 100", {BAD_COLOR}},
        {"-color 0 256 0 100", {BAD_COLOR}},
        {"-color 0 0 256 100", {BAD_COLOR}},
        {"-color 0 0 0 101", {BAD_COLOR}},
        {"-color 999 999 999 999", {BAD_COLOR}},  // one a line
        {"-color 99999999999 0 0 99999999999", {BAD_COLOR}},
        {"-color 1 2 3", {COLOR_COUNT}},
        {"-color 300 2 3", {COLOR_COUNT, BAD_COLOR}},  // what was stored is checked
        {"-color", {"No integer value or values found reading argument -color"}},
        {"-color 1 2 -3 4", {"Not enough integer values found reading argument -color"}},
        {"-color 1 2.5 3 4", {COLOR_NON_INTEGER}},
        {"-color red", {COLOR_NON_INTEGER}},
        {"-color 300.5 1 1 1", {COLOR_NON_INTEGER, BAD_COLOR}},
        {"", {"Missing -color or -scolor argument"}},
        {"-color 0 0 0 0 -alpha 0", {}},
        {"-color 0 0 0 0 -alpha 1", {}},
        {"-color 0 0 0 0 -alpha 1.01", {BAD_ALPHA}},
        {"-color 0 0 0 0 -alpha -0.01", {BAD_ALPHA}},
        {"-color 0 0 0 0 -alpha inf", {BAD_ALPHA}},
        {"-color 0 0 0 0 -alpha nan", {}},
        {"-color 0 0 0 0 -alpha x", {"No decimal number found reading -alpha argument"}},
        {"-alpha 2", {"Missing -color or -scolor argument", BAD_ALPHA}},
        {"-Color 0 0 0 0", {"Invalid argument -Color", "Missing -color or -scolor argument"}},
    };
    for (const FaultCase &c : cases) {
        for (const char *command : {"deposition", "coating"}) {
            const ProcessRead read(HEAD + command + " -name A -type a -thickness 1 " + c.arguments + "\n");
            EXPECT_EQ(read.console, faults(4, c.messages)) << command << " " << c.arguments;
            EXPECT_EQ(read.stack.steps->count, 2) << "the step is appended all the same";
        }
    }
}

TEST_F(ReadDeposition, Faults) {
    const std::string no_step_coverage = "No decimal number found reading -sc argument";
    const std::string bad_step_coverage =
        "Invalid -sc argument: step coverage need to be between 0.0 and 1.0";
    const std::string unknown_color = "Color name is not a recognized X11 color";
    const std::string no_thickness = "No decimal number found reading -thickness argument";
    // clang-format off
    const FaultCase cases[] = {
        {"-name A -type a -thickness 1 -sc 0 -scolor red", {}},
        {"-name A -type a -thickness 1 -sc 1 -scolor red", {}},
        {"-name A -type a -thickness 1 -sc 1.5 -scolor red", {bad_step_coverage}},
        {"-name A -type a -thickness 1 -sc -0.5 -scolor red", {bad_step_coverage}},
        {"-name A -type a -thickness 1 -sc nan -scolor red", {}},
        {"-name A -type a -thickness 1 -sc 5um -scolor red", {bad_step_coverage}},
        // "-sc" is found in "-scolor".
        {"-name A -type a -thickness 1 -scolor red", {no_step_coverage}},
        {"-name A -type a -thickness 1 -scolor red -sc 0.5", {no_step_coverage}},
        {"-name A -type a -thickness 1 -sc 0 -scolor Red", {unknown_color}},
        {"-name A -type a -thickness 1 -sc 0 -scolor", {"No string found reading -scolor argument", unknown_color}},
        {"-name A -type a -thickness 1 -sc 0 -scolor -alpha 1", {"Invalid character '-' in argument", unknown_color}},
        {"-name A -type a -thickness 1 -sc 0 -scolor none -color 0 0 0 0", {}},  // -color goes first
        {"-name A -type a -thickness -1 -color 0 0 0 0", {}},                    // negative is accepted
        {"-name A -type a -thickness x -color 0 0 0 0", {no_thickness}},
        {"-name A -type a -color 0 0 0 0", {"Argument -thickness not found"}},
        {"-name A -thickness 1 -color 0 0 0 0", {"Argument -type not found"}},
        {"-type a -thickness 1 -color 0 0 0 0", {"Argument -name not found"}},
        {"-name -type a -thickness 1 -color 0 0 0 0", {"Invalid character '-' in argument"}},
        {"-name A -type a -thickness 1 -color 0 0 0 0 -dop 1", {"Invalid argument -dop"}},
        {"-name A -type a -thickness 1 -color 0 0 0 0 -rr 1", {"Invalid argument -rr"}},
        {"-foo -thickness x -sc 2 -alpha 3",
         {"Invalid argument -foo", "Argument -name not found", "Argument -type not found", no_thickness,
          bad_step_coverage, "Missing -color or -scolor argument", BAD_ALPHA}},
    };
    // clang-format on
    for (const FaultCase &c : cases) {
        const ProcessRead read(HEAD + "deposition " + c.arguments + "\n");
        EXPECT_EQ(read.console, faults(4, c.messages)) << c.arguments;
        EXPECT_EQ(read.result, c.messages.empty() ? 0 : 1) << c.arguments;
    }
}

TEST_F(ReadCoating, Faults) {
    const std::string bad_reflow = "Value of -rr argument needs to be between 0.0 and 1.0";
    const FaultCase cases[] = {
        {"-name A -type a -thickness 1 -scolor red", {}},  // "-sc" means nothing to a coating
        {"-name A -type a -thickness 1 -scolor Red", {"Color name is unrecognized"}},
        {"-name A -type a -thickness 1 -scolor red -dop 0 -rr 0", {}},
        {"-name A -type a -thickness 1 -scolor red -dop 1 -rr 1", {}},
        {"-name A -type a -thickness 1 -scolor red -dop 1.1", {"Invalid -dop argument"}},
        {"-name A -type a -thickness 1 -scolor red -dop -1", {"Invalid -dop argument"}},
        {"-name A -type a -thickness 1 -scolor red -rr 1.1", {bad_reflow}},
        {"-name A -type a -thickness 1 -scolor red -rr -1", {bad_reflow}},
        {"-name A -type a -thickness 1 -scolor red -dop nan -rr nan", {}},
        {"-name A -type a -thickness 1 -scolor red -dop x -rr y",
         {"No decimal number found reading -dop argument", "No decimal number found reading -rr argument"}},
        {"-name A -type a -thickness 1 -scolor red -sc 1", {"Invalid argument -sc"}},
        {"-foo -dop 2 -rr 2 -alpha 3",
         {"Invalid argument -foo", "Argument -name not found", "Argument -type not found",
          "Argument -thickness not found", "Invalid -dop argument", bad_reflow,
          "Missing -color or -scolor argument", BAD_ALPHA}},
    };
    for (const FaultCase &c : cases) {
        const ProcessRead read(HEAD + "coating " + c.arguments + "\n");
        EXPECT_EQ(read.console, faults(4, c.messages)) << c.arguments;
    }
}

TEST_F(Film, AColorIsTheSingleQuotientOfValueTimesPercentage) {
    const ProcessRead read(HEAD + "deposition -name A -type a -thickness 1 -color 10 200 255 70\n");
    EXPECT_EQ(read.step(1).color_r, 700.0F / 25500.0F);
    EXPECT_EQ(read.step(1).color_g, 14000.0F / 25500.0F);
    EXPECT_EQ(read.step(1).color_b, 17850.0F / 25500.0F);
}

TEST_F(Film, AHugeColorDoesNotOverflow) {
    const ProcessRead read(HEAD +
                           "deposition -name A -type a -thickness 1 -color 2147483647 0 0 2147483647\n");
    EXPECT_EQ(read.step(1).color_r, static_cast<f32>(2147483647.0 * 2147483647.0 / 25500.0));
}

TEST_F(Film, AnUnknownColorNameLeavesBlack) {
    const ProcessRead read(HEAD + "coating -name A -type a -thickness 1 -scolor nothing\n");
    EXPECT_EQ(read.step(1).color_r, 0.0F);
    EXPECT_EQ(read.step(1).color_g, 0.0F);
    EXPECT_EQ(read.step(1).color_b, 0.0F);
}

static std::string already_defined(const std::string &name) {
    return "Material " + name + " in -name argument already defined. Choose another name.";
}

TEST_F(Film, AMaterialNameCanBeUsedOnce) {
    const std::string rest = " -type a -thickness 1 -color 0 0 0 0\n";
    const ProcessRead read(HEAD + "deposition -name A" + rest + "coating -name A" + rest +
                           "deposition -name A" + rest + "deposition -name a" + rest + "coating -name _SUB_" +
                           rest + "deposition -name SUBSTRATE" + rest);
    EXPECT_EQ(read.console, faults(5, {already_defined("A")}) + faults(6, {already_defined("A")}) +
                                faults(8, {already_defined("_SUB_")}));
    EXPECT_EQ(read.stack.steps->count, 7);
    EXPECT_STREQ(read.step(2).material, "A");
}

TEST_F(Film, AnEmptyNameIsAMaterialToo) {
    const std::string line = "deposition -type a -thickness 1 -color 0 0 0 0\n";
    const ProcessRead read(HEAD + line + line);
    EXPECT_EQ(read.console, faults(4, {"Argument -name not found"}) +
                                faults(5, {"Argument -name not found", already_defined("")}));
    EXPECT_STREQ(read.step(1).material, "");
    EXPECT_STREQ(read.step(1).title, " deposition");
}

TEST_F(Film, TheThicknessOfAllFilmsIsAddedUp) {
    const std::string rest = " -type a -color 0 0 0 0\n";
    const ProcessRead read(HEAD + "deposition -name A -thickness 100" + rest +
                           "coating -name B -thickness 20" + rest +
                           "photo -name P -mask_id 1 -type 0 -res 0 -thickness 500\nstrip\n");
    EXPECT_EQ(g_reader.deposited_thickness, 0.1F + 0.02F);
    const ProcessRead next(HEAD);
    EXPECT_EQ(g_reader.deposited_thickness, 0.0F);
}
