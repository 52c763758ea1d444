#include <gtest/gtest.h>

#include "tests/process/process_read.h"

// Lines 4 to 6 define materials A and C of type ox and B of type ni; the command under test is line 7.
static const std::string MATERIALS = HEAD +
                                     "deposition -name A -type ox -thickness 1 -color 0 0 0 0\n"
                                     "deposition -name B -type ni -thickness 1 -color 0 0 0 0\n"
                                     "deposition -name C -type ox -thickness 1 -color 0 0 0 0\n";
static constexpr i32 LINE = 7;
static constexpr i32 STEP = 4;

struct PatterningFaultCase {
    const char *line;
    std::vector<std::string> messages;
};

static void expect_faults(const PatterningFaultCase &c) {
    const ProcessRead read(MATERIALS + c.line + "\n");
    EXPECT_EQ(read.console, faults(LINE, c.messages)) << c.line;
    EXPECT_EQ(read.result, c.messages.empty() ? 0 : 1) << c.line;
    EXPECT_EQ(read.stack.steps->count, STEP + 1) << "the step is appended all the same: " << c.line;
}

TEST(ReadPhoto, FillsTheStep) {
    const ProcessRead read(
        MATERIALS + "photo -name GATE -mask_id 12 -type 1 -res 0.25 -taper 80 -rr 0.5 -thickness 600\n");
    EXPECT_EQ(read.console, "");
    const ProcessStep &step = read.step(STEP);
    EXPECT_EQ(step.kind, STEP_PHOTO);
    EXPECT_STREQ(step.resist_ref, "GATE");
    EXPECT_STREQ(step.title, "GATE photo");
    EXPECT_STREQ(step.label, "PR");
    EXPECT_EQ(step.name, nullptr);
    EXPECT_EQ(step.material, nullptr);
    EXPECT_EQ(step.material_type, nullptr);
    EXPECT_EQ(step.mask_id, 12);
    EXPECT_EQ(step.mask_type, 1);
    EXPECT_EQ(step.resolution, 0.25F);
    EXPECT_EQ(step.taper, 80.0F);
    EXPECT_EQ(step.thickness, 0.6F);
    EXPECT_EQ(step.dop, 1.0F);
    EXPECT_EQ(step.rr, 0.5F);
    EXPECT_EQ(step.color_r, 0.8F);
    EXPECT_EQ(step.color_g, 0.8F);
    EXPECT_EQ(step.color_b, 0.9F);
    EXPECT_EQ(step.alpha, 1.0F);
}

TEST(ReadPhoto, DefaultsOfWhatIsNotGiven) {
    const ProcessRead read(MATERIALS + "photo -name P -mask_id 0 -type 0 -res 0 -thickness 600\n");
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_EQ(read.step(STEP).taper, 90.0F);
    EXPECT_EQ(read.step(STEP).dop, 1.0F);
    EXPECT_EQ(read.step(STEP).rr, 0.0F);
}

TEST(ReadPhoto, ResolutionAndReflowAreInTheFilesUnit) {
    const ProcessRead read(
        "settings -version 3 -use_nm\ngds -cell T\nlocation -x 0 -y 0 -dx 2000 -dy 500\n"
        "photo -name P -mask_id 1 -type 0 -res 250 -rr 500 -thickness 600\n");
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_EQ(read.step(1).resolution, 0.25F);
    EXPECT_EQ(read.step(1).rr, 0.5F);
    EXPECT_EQ(read.step(1).thickness, 0.6F);
}

TEST(ReadPhoto, Faults) {
    const std::string bad_type =
        "Invalid -type argument: mask type needs to be  1 (dark type) or 0 (clear type)";
    const std::string bad_resolution = "Invalid -res argument: needs to be a positive number";
    // clang-format off
    const PatterningFaultCase cases[] = {
        {"photo -name P -mask_id 1 -type 0 -res 0 -thickness 1", {}},
        {"photo -name P -mask_id 1 -type 2 -res 0 -thickness 1", {bad_type}},
        {"photo -name P -mask_id 1 -type 2.5 -res 0 -thickness 1", {"Non integer value or values found reading argument -type", bad_type}},
        {"photo -name P -mask_id 1 -type 99999999999 -res 0 -thickness 1", {bad_type}},
        // An unreadable mask or type is 0, a good value.
        {"photo -name P -mask_id -type 1 -res 0 -thickness 1", {"Not enough integer values found reading argument -mask_id"}},
        {"photo -name P -mask_id 1 -type -res 0 -thickness 1", {"Not enough integer values found reading argument -type"}},
        {"photo -name P -mask_id -3 -type 1 -res 0 -thickness 1", {"Not enough integer values found reading argument -mask_id"}},
        // A minus behind a tab is the only way to a negative number.
        {"photo -name P -mask_id \t-3 -type 1 -res 0 -thickness 1",
         {"Non integer value or values found reading argument -mask_id",
          "Invalid -mask_id value for the mask layer number"}},
        {"photo -name P -type 1 -res 0 -thickness 1", {"Argument -mask_id not found"}},
        {"photo -name P -mask_id 1 -res 0 -thickness 1", {"Argument -type not found"}},
        {"photo -mask_id 1 -type 1 -res 0 -thickness 1", {"Argument -name not found"}},
        {"photo -name P -mask_id 1 -type 1 -thickness 1", {"Argument -res not found"}},
        {"photo -name P -mask_id 1 -type 1 -res x -thickness 1", {"No decimal number found reading -res argument"}},
        {"photo -name P -mask_id 1 -type 1 -res -0.1 -thickness 1", {bad_resolution}},
        {"photo -name P -mask_id 1 -type 1 -res nan -thickness 1", {}},
        {"photo -name P -mask_id 1 -type 1 -res 0", {"Argument -thickness not found"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness x", {"No decimal number found reading -thickness argument"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 1 -rr 1.5", {"Invalid -rr argument"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 1 -rr -0.5", {"Invalid -rr argument"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 1 -rr x", {"No decimal number found reading -rr argument"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 1 -dop 1.5", {"Invalid argument -dop", "Invalid -dop argument"}},
        {"photo -name P -mask_id 1 -type 1 -res 0 -thickness 1 -taper", {"No integer value or values found reading argument -taper"}},
        {"photo -foo -res -1 -taper -5 -thickness q -dop 2 -rr 2",
         {"Invalid argument -foo", "Invalid argument -dop", "Argument -name not found",
          "Argument -mask_id not found", "Argument -type not found", bad_resolution,
          "Not enough integer values found reading argument -taper",
          "No decimal number found reading -thickness argument", "Invalid -dop argument",
          "Invalid -rr argument"}},
    };
    // clang-format on
    for (const PatterningFaultCase &c : cases) {
        expect_faults(c);
    }
}

TEST(ReadPhoto, ADatatypeIsOptionalAndAWordOfItsOwn) {
    struct Case {
        const char *name, *argument;
        bool one;
        i32 datatype;
    };
    const Case cases[] = {
        {"P", "", false, 0},
        {"P", "-datatype 0", true, 0},
        {"P", "-datatype 44", true, 44},
        {"P", "-datatype 65535", true, 65535},
        {"P", "-datatype 20 -datatype 44", true, 20},
        {"P", "  -datatype   7", true, 7},
        // Inside another word, and behind a tab, which is part of a word, it is no argument.
        {"POLY-datatype", "", false, 0},
        {"POLY-datatype", "-datatype 20", true, 20},
        {"P", "\t-datatype 44", false, 0},
    };
    for (const Case &c : cases) {
        const ProcessRead read(MATERIALS + "photo -name " + c.name +
                               " -type 1 -res 0 -thickness 1 -mask_id 66 " + c.argument + "\n");
        EXPECT_EQ(read.result, 0) << c.argument << read.console;
        EXPECT_EQ(read.step(STEP).one_datatype, c.one) << c.name << " " << c.argument;
        EXPECT_EQ(read.step(STEP).mask_datatype, c.datatype) << c.name << " " << c.argument;
        EXPECT_EQ(read.step(STEP).mask_id, 66) << c.argument;
    }
}

TEST(ReadPhoto, DatatypeFaults) {
    const std::string range = "Invalid -datatype value for the mask datatype number";
    const std::string rest = "photo -name P -mask_id 1 -type 0 -res 0 -thickness 1 ";
    struct Case {
        const char *argument;
        std::string message;
    };
    const Case cases[] = {
        {"-datatype 65536", range},
        {"-datatype 99999999999", range},
        {"-datatype", "No integer value or values found reading argument -datatype"},
        {"-datatype -1", "Not enough integer values found reading argument -datatype"},
        {"-datatype -rr 0", "Not enough integer values found reading argument -datatype"},
        {"-datatype 44.0", "Non integer value or values found reading argument -datatype"},
        {"-datatype x", "Non integer value or values found reading argument -datatype"},
        {"-datatype 66/44", "Non integer value or values found reading argument -datatype"},
        {"-Datatype 44", "Invalid argument -Datatype"},
        {"-datatypes 44", "Invalid argument -datatypes"},
    };
    for (const Case &c : cases) {
        const std::string line = rest + c.argument;
        expect_faults({line.c_str(), {c.message}});
    }
    expect_faults(
        {"coating -name X -type x -thickness 1 -color 0 0 0 0 -datatype 1", {"Invalid argument -datatype"}});
}

TEST(ReadPhoto, AnUnlistedDopIsReportedAndUsed) {
    const ProcessRead read(MATERIALS + "photo -name P -mask_id 1 -type 0 -res 0 -thickness 1 -dop 0.25\n");
    EXPECT_EQ(read.console, faults(LINE, {"Invalid argument -dop"}));
    EXPECT_EQ(read.step(STEP).dop, 0.25F);
}

struct TaperCase {
    const char *arguments;
    f32 taper;
};

TEST(ReadPhoto, ATaperThatCannotBeReadKeeps90) {
    // clang-format off
    const TaperCase cases[] = {
        {"-taper 0", 0.0F},
        {"-taper 120", 120.0F},
        {"-taper -80", 90.0F},
        {"-taper", 90.0F},
        {"-taper 80.9", 80.0F},
        {"-taper 16777217", 16777216.0F},
        {"-rr 0 -taper 1", 1.0F},
        {"-taper -rr 0.5", 90.0F},
    };
    // clang-format on
    for (const TaperCase &c : cases) {
        const ProcessRead read(MATERIALS + "photo -name P -mask_id 1 -type 0 -res 0 -thickness 1 " +
                               c.arguments + "\n");
        EXPECT_EQ(read.step(STEP).taper, c.taper) << c.arguments;
    }
}

static const std::string PHOTO = "photo -name P -mask_id 1 -type 0 -res 0.5 -thickness 1\n";
static const std::string STRIP_MISSING = "Strip process missing after previous photo command";
static const std::string NO_PHOTO = "No prior photo process";

TEST(ReadPhoto, NeedsAStripBeforeTheNext) {
    const ProcessRead read(HEAD + PHOTO + PHOTO + PHOTO + "strip\n" + PHOTO + "strip\nstrip\n");
    EXPECT_EQ(read.console, faults(5, {STRIP_MISSING}) + faults(6, {STRIP_MISSING}) + faults(10, {NO_PHOTO}));
}

TEST(ReadPhoto, TheMissingStripIsReportedAfterTheArgumentNames) {
    const ProcessRead read(HEAD + PHOTO + "photo -foo -mask_id 1 -type 0 -res 0.5 -thickness 1\n");
    EXPECT_EQ(read.console, faults(5, {"Invalid argument -foo", STRIP_MISSING, "Argument -name not found"}));
}

TEST(ReadPhoto, TheLastResistMayStay) {
    const ProcessRead read(HEAD + PHOTO);
    EXPECT_EQ(read.result, 0) << read.console;
}

TEST(ReadPhoto, KeepsTheExtremesOfTheResolution) {
    const std::string rest = " -name P -mask_id 1 -type 0 -thickness 1\nstrip\n";
    const ProcessRead read(HEAD + "photo -res 0.5" + rest + "photo -res 0.125" + rest + "photo -res 2" +
                           rest);
    EXPECT_EQ(read.stack.min_resolution, 0.125F);
    EXPECT_EQ(read.stack.max_resolution, 2.0F);
    const ProcessRead bad(HEAD + "photo -res 0.5" + rest + "photo -res -1" + rest);
    EXPECT_EQ(bad.stack.min_resolution, -1.0F) << "also one that is reported";
    const ProcessRead unread(HEAD + "photo -res 0.5" + rest + "photo -res x" + rest);
    EXPECT_EQ(unread.stack.min_resolution, 0.0F) << "an unreadable one is 0";
    const ProcessRead not_a_number(HEAD + "photo -res nan" + rest);
    EXPECT_EQ(not_a_number.stack.min_resolution, F32_MAX);
    EXPECT_EQ(not_a_number.stack.max_resolution, F32_MIN_NORMAL);
    const ProcessRead zero(HEAD + "photo -res 0" + rest);
    EXPECT_EQ(zero.result, 0) << zero.console;
    EXPECT_EQ(zero.stack.min_resolution, 0.0F);
    EXPECT_EQ(zero.stack.max_resolution, F32_MIN_NORMAL);
}

struct StripCase {
    const char *line;
    const char *name, *title;
    std::vector<std::string> messages;
};

TEST(ReadStrip, FillsTheStep) {
    // clang-format off
    const StripCase cases[] = {
        {"strip", "(none)", "photoresist strip", {}},
        {"strip -name GATE", "GATE", "GATE photoresist strip", {}},
        {"strip -name", "", " photoresist strip", {"No string found reading -name argument"}},
        {"strip -name -x", "-x", "-x photoresist strip", {"Invalid argument -x", "Invalid character '-' in argument"}},
        {"strip -foo", "(none)", "photoresist strip", {"Invalid argument -foo"}},
    };
    // clang-format on
    for (const StripCase &c : cases) {
        const ProcessRead read(HEAD + PHOTO + c.line + "\n");
        EXPECT_EQ(read.console, faults(5, c.messages)) << c.line;
        const ProcessStep &step = read.step(2);
        EXPECT_EQ(step.kind, STEP_STRIP);
        EXPECT_STREQ(step.resist_ref, "stand alone");
        EXPECT_EQ(text_of(step.name), c.name) << c.line;
        EXPECT_EQ(text_of(step.title), c.title) << c.line;
        EXPECT_EQ(step.label, nullptr);
    }
}

TEST(ReadStrip, ThePairingFaultComesBeforeTheArgumentNames) {
    const ProcessRead read(HEAD + "strip -foo\n");
    EXPECT_EQ(read.console, faults(4, {NO_PHOTO, "Invalid argument -foo"}));
    EXPECT_EQ(read.result, 1);
}

struct EtchCase {
    const char *line;
    f32 depth, iso;
    const char *name, *title;
    std::vector<std::string> materials, messages;
};

TEST(ReadEtch, FillsTheStepAndReportsFaults) {
    const std::string bad_iso =
        "The value of the -iso argument needs to be between 0.0 (anisotropic) and 1.0 (full isotropic)";
    // clang-format off
    const EtchCase cases[] = {
        {"etch -targets ox -depth 300", 0.3F, 0.0F, "(none)", "etching of ox", {"A", "C"}, {}},
        {"etch -targets ni  ox -depth 300 -iso 0.5", 0.3F, 0.5F, "(none)", "etching of ni ox", {"B", "A", "C"}, {}},
        {"etch -name ONE -targets ox -depth 300 -iso 1", 0.3F, 1.0F, "ONE", "ONE etching", {"A", "C"}, {}},
        {"etch -targets si -depth 300", 0.3F, 0.0F, "(none)", "etching of si", {}, {"Target etch type si is undefined"}},
        {"etch -targets ox si ni -depth 300", 0.3F, 0.0F, "(none)", "etching of ox si ni", {"A", "C", "B"}, {"Target etch type si is undefined"}},
        {"etch -depth 300", 0.3F, 0.0F, "(none)", "etching of ", {}, {"Argument -targets not found"}},
        {"etch -targets -depth 300", 0.3F, 0.0F, "(none)", "etching of ", {}, {}},
        {"etch -targets ni", 0.0F, 0.0F, "(none)", "etching of ni", {"B"}, {"Argument -depth not found"}},
        {"etch -targets ni -depth x", 0.0F, 0.0F, "(none)", "etching of ni", {"B"}, {"No decimal number found reading -depth argument"}},
        {"etch -targets ni -depth -5", -5.0F / 1000.0F, 0.0F, "(none)", "etching of ni", {"B"}, {}},
        {"etch -targets ni -depth 5 -iso 1.5", 0.005F, 1.5F, "(none)", "etching of ni", {"B"}, {bad_iso}},
        {"etch -targets ni -depth 5 -iso -1", 0.005F, -1.0F, "(none)", "etching of ni", {"B"}, {bad_iso}},
        {"etch -targets ni -depth 5 -iso", 0.005F, 0.0F, "(none)", "etching of ni", {"B"}, {"No decimal number found reading -iso argument"}},
        {"etch -targets ni -depth 5 -name", 0.005F, 0.0F, "", " etching", {"B"}, {"No string found reading -name argument"}},
        {"etch -foo -iso 2",
         0.0F,
         2.0F,
         "(none)",
         "etching of ",
         {},
         {"Invalid argument -foo", "Argument -targets not found", "Argument -depth not found", bad_iso}},
    };
    // clang-format on
    for (const EtchCase &c : cases) {
        const ProcessRead read(MATERIALS + c.line + "\n");
        EXPECT_EQ(read.console, faults(LINE, c.messages)) << c.line;
        const ProcessStep &step = read.step(STEP);
        EXPECT_EQ(step.kind, STEP_ETCH);
        EXPECT_EQ(step.depth, c.depth) << c.line;
        EXPECT_EQ(step.iso, c.iso) << c.line;
        EXPECT_EQ(text_of(step.name), c.name) << c.line;
        EXPECT_EQ(text_of(step.title), c.title) << c.line;
        EXPECT_EQ(names_of(step.target_materials), c.materials) << c.line;
        EXPECT_EQ(step.target_materials.capacity, 512);
    }
}

TEST(ReadEtch, DepthIsNanometresInEveryFile) {
    const ProcessRead read(
        "settings -version 3 -use_nm\ngds -cell T\nlocation -x 0 -y 0 -dx 2000 -dy 500\n"
        "deposition -name A -type ox -thickness 1 -color 0 0 0 0\n"
        "etch -targets ox -depth 300\n");
    EXPECT_EQ(read.result, 0) << read.console;
    EXPECT_EQ(read.step(2).depth, 0.3F);
}

TEST(ReadEtch, OnlyMaterialsAboveAreTargets) {
    const ProcessRead read(HEAD +
                           "etch -targets ox -depth 300\n"
                           "deposition -name A -type ox -thickness 1 -color 0 0 0 0\n"
                           "etch -targets ox -depth 300\n"
                           "deposition -name B -type ox -thickness 1 -color 0 0 0 0\n");
    EXPECT_EQ(read.console, faults(4, {"Target etch type ox is undefined"}));
    EXPECT_EQ(names_of(read.step(1).target_materials), std::vector<std::string>());
    EXPECT_EQ(names_of(read.step(3).target_materials), std::vector<std::string>{"A"});
}

TEST(ReadRelease, FillsTheStepAndReportsFaults) {
    // clang-format off
    const EtchCase cases[] = {
        {"release -targets ox", 0.0F, 0.0F, "(none)", "etching of ox", {"A", "C"}, {}},
        {"release -targets ox ni -name FREE", 0.0F, 0.0F, "FREE", "FREE etching", {"A", "C", "B"}, {}},
        {"release -targets ox ni", 0.0F, 0.0F, "(none)", "etching of ox ni", {"A", "C", "B"}, {}},
        {"release -targets si", 0.0F, 0.0F, "(none)", "etching of si", {}, {"Target etch type si is undefined"}},
        {"release -name FREE", 0.0F, 0.0F, "FREE", "FREE etching", {}, {"Argument -targets not found"}},
        {"release", 0.0F, 0.0F, "(none)", "etching of ", {}, {"Argument -targets not found"}},
        // Neither depth nor isotropy is read, nor are they known names.
        {"release -targets ox -depth 5 -iso 1",
         0.0F,
         0.0F,
         "(none)",
         "etching of ox",
         {"A", "C"},
         {"Invalid argument -depth", "Invalid argument -iso"}},
    };
    // clang-format on
    for (const EtchCase &c : cases) {
        const ProcessRead read(MATERIALS + c.line + "\n");
        EXPECT_EQ(read.console, faults(LINE, c.messages)) << c.line;
        const ProcessStep &step = read.step(STEP);
        EXPECT_EQ(step.kind, STEP_RELEASE);
        EXPECT_EQ(step.depth, c.depth) << c.line;
        EXPECT_EQ(step.iso, c.iso) << c.line;
        EXPECT_EQ(text_of(step.name), c.name) << c.line;
        EXPECT_EQ(text_of(step.title), c.title) << c.line;
        EXPECT_EQ(names_of(step.target_materials), c.materials) << c.line;
    }
}

TEST(ReadDump, HasNothingButItsKind) {
    const ProcessRead read(HEAD + "dump -foo bar\n");
    EXPECT_EQ(read.console, "") << "its arguments are not checked";
    EXPECT_EQ(read.step(1).kind, STEP_DUMP);
    EXPECT_EQ(read.step(1).title, nullptr);
    EXPECT_EQ(read.step(1).name, nullptr);
}
