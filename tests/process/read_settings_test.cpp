#include "process/read_settings.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/process/process_read.h"

static const std::string PLACE = "gds -cell TOP\nlocation -x 0 -y 0 -dx 10 -dy 5\n";
static const std::string NEEDS_VERSION_3 =
    "This version of Quarn is only compatible with process files with version 3.";
static const std::string NO_VERSION = "No -version argument given. " + NEEDS_VERSION_3;
static const std::string BAD_N = "Value of -N argument needs to be between 200 and 2000";
static const std::string BAD_ANGLE = "Camera angle should be between 0 and 40 degrees";
static const std::string DUPLICATE_SETTINGS = "Duplicate settings (gen) command found";
static const std::string DUPLICATE_GDS = "Duplicate gds command found";
static const std::string DUPLICATE_LOCATION = "Duplicate location (cut) command found";

struct SettingsCase {
    const char *line;
    i32 grid_n, camera_angle, show_heights, show_legend;
    std::vector<std::string> messages;
};

TEST(ReadSettings, EveryArgumentAndFault) {
    // clang-format off
    const SettingsCase cases[] = {
        {"settings -version 3", 1000, 30, 0, 0, {}},
        {"settings -version 3 -N 500 -angle 20 -heights -legend", 500, 20, 1, 1, {}},
        {"settings -legend -angle 0 -N 200 -version 3", 200, 0, 0, 1, {}},
        {"settings -version 3 -N 2000 -angle 40", 2000, 40, 0, 0, {}},
        {"settings -version 3 -angle 89", 1000, 89, 0, 0, {}},
        {"settings -version 3 -angle 90", 1000, 90, 0, 0, {BAD_ANGLE}},
        {"settings -version 3 -N 199", 199, 30, 0, 0, {BAD_N}},
        {"settings -version 3 -N 2001", 2001, 30, 0, 0, {BAD_N}},
        {"settings -version 3 -N 99999999999", I32_MAX, 30, 0, 0, {BAD_N}},
        {"settings", 1000, 30, 0, 0, {NO_VERSION}},
        {"settings -version 2", 1000, 30, 0, 0, {NEEDS_VERSION_3}},
        {"settings -version 4", 1000, 30, 0, 0, {NEEDS_VERSION_3}},
        // The version in force before the first settings line is 0, which leaves a bad number out
        // silently; the range is checked all the same.
        {"settings -version 3.0", 1000, 30, 0, 0, {NEEDS_VERSION_3}},
        {"settings -version", 1000, 30, 0, 0, {"No integer value or values found reading argument -version", NEEDS_VERSION_3}},
        {"settings -version -N 500", 500, 30, 0, 0, {"Not enough integer values found reading argument -version", NEEDS_VERSION_3}},
        // After a good version the leading integer of a bad number is kept.
        {"settings -version 3 -N 500.5", 500, 30, 0, 0, {"Non integer value or values found reading argument -N"}},
        {"settings -version 3 -N x", 0, 30, 0, 0, {"Non integer value or values found reading argument -N", BAD_N}},
        {"settings -version 1 -N x -angle y", 0, 0, 0, 0, {NEEDS_VERSION_3, BAD_N}},
        {"settings -version 3 -N", 0, 30, 0, 0, {"No integer value or values found reading argument -N", BAD_N}},
        {"settings -version 3 -N -500", 0, 30, 0, 0, {"Not enough integer values found reading argument -N", BAD_N}},
        {"settings -version 3 -angle -5", 1000, 0, 0, 0, {"Not enough integer values found reading argument -angle"}},
        {"settings -version 3 -angle", 1000, 0, 0, 0, {"No integer value or values found reading argument -angle"}},
        // Flags and names are found inside longer words too.
        {"settings -version 3 -heightsx -Nope 500", 500, 30, 1, 0, {"Invalid argument -heightsx", "Invalid argument -Nope"}},
        {"settings -version 3 x-legend", 1000, 30, 0, 1, {}},
        {"settings -foo -N 1 -angle 99", 1, 99, 0, 0, {"Invalid argument -foo", NO_VERSION, BAD_N, BAD_ANGLE}},
    };
    // clang-format on
    for (const SettingsCase &c : cases) {
        const ProcessRead read(std::string(c.line) + "\n" + PLACE);
        EXPECT_EQ(read.console, faults(1, c.messages)) << c.line;
        EXPECT_EQ(read.result, c.messages.empty() ? 0 : 1) << c.line;
        EXPECT_EQ(read.stack.grid_n, c.grid_n) << c.line;
        EXPECT_EQ(read.stack.camera_angle, c.camera_angle) << c.line;
        EXPECT_EQ(read.stack.show_heights, c.show_heights) << c.line;
        EXPECT_EQ(read.stack.show_legend, c.show_legend) << c.line;
    }
}

TEST(ReadSettings, ASecondLineSetsEveryValueAnew) {
    const ProcessRead read(
        "settings -version 3 -N 500 -angle 60 -use_nm -heights -legend\n"
        "settings\n" +
        PLACE);
    EXPECT_EQ(read.console, faults(2, {DUPLICATE_SETTINGS, NO_VERSION}));
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(read.stack.grid_n, 1000);
    EXPECT_EQ(read.stack.camera_angle, 30);
    EXPECT_EQ(read.stack.show_heights, 0);
    EXPECT_EQ(read.stack.show_legend, 0);
    EXPECT_EQ(read.stack.width, 10.0F) << "the unit is micrometres again";
}

TEST(ReadSettings, ASecondLineIsReadUnderTheVersionBefore) {
    const std::string first = "settings -version 3\n";
    const ProcessRead strict(first + "settings -version 3.5\n" + PLACE);
    EXPECT_EQ(strict.console,
              faults(2, {DUPLICATE_SETTINGS, "Non integer value or values found reading argument -version"}))
        << "the leading 3 is kept";
    // Without a version the file's version is 0 again, and bad numbers are left out silently.
    const ProcessRead lax(first + "settings -angle 5.5\nsettings -version x\n" + PLACE);
    EXPECT_EQ(lax.console,
              faults(2, {DUPLICATE_SETTINGS, NO_VERSION}) + faults(3, {DUPLICATE_SETTINGS, NEEDS_VERSION_3}));
    EXPECT_EQ(lax.stack.camera_angle, 30);
}

TEST(ReadSettings, TheUnitHoldsForTheLinesBelowOnly) {
    const ProcessRead read(
        "gds -cell TOP\n"
        "location -x 500 -y 250 -dx 2000 -dy 1000\n"
        "settings -version 3 -use_nm\n");
    EXPECT_EQ(read.stack.width, 2000.0F);
    const ProcessRead after(
        "settings -version 3 -use_nm\n"
        "gds -cell TOP\n"
        "location -x 500 -y -250 -dx 2000 -dy 1000\n");
    EXPECT_EQ(after.result, 0) << after.console;
    EXPECT_EQ(after.stack.origin_x, 0.5F);
    EXPECT_EQ(after.stack.origin_y, -0.25F);
    EXPECT_EQ(after.stack.width, 2.0F);
    EXPECT_EQ(after.stack.depth, 1.0F);
}

struct GdsCase {
    const char *line, *cell;
    std::vector<std::string> messages;
};

TEST(ReadGds, NamesTheCell) {
    const GdsCase cases[] = {
        {"gds -cell TOP", "TOP", {}},
        {"gds -cell top$1 -cell B -foo", "top$1", {}},  // names of arguments are not checked
        {"gds", "", {"Argument -cell not found"}},
        {"gds -cell", "", {"No string found reading -cell argument"}},
        {"gds -cell -x", "-x", {"Invalid character '-' in argument"}},
    };
    for (const GdsCase &c : cases) {
        const ProcessRead read("settings -version 3\n" + std::string(c.line) +
                               "\nlocation -x 0 -y 0 -dx 10 -dy 5\n");
        EXPECT_EQ(read.console, faults(2, c.messages)) << c.line;
        EXPECT_EQ(text_of(read.stack.cell_name), c.cell) << c.line;
    }
}

TEST(ReadGds, ASecondLineIsReportedAndReplacesTheCell) {
    const ProcessRead read(HEAD + "gds -cell B\n");
    EXPECT_EQ(read.console, faults(4, {DUPLICATE_GDS}));
    EXPECT_STREQ(read.stack.cell_name, "B");
    const ProcessRead missing(HEAD + "gds\n");
    EXPECT_EQ(missing.console, faults(4, {DUPLICATE_GDS, "Argument -cell not found"}));
    EXPECT_STREQ(missing.stack.cell_name, "");
}

struct LocationCase {
    const char *line;
    f32 x, y, width, depth;
    std::vector<std::string> messages;
    bool too_wide;  // the limit of a quarter of the width is broken as well
};

static std::string quarter_faults() {
    return faults(
        0, {"The maximum photo resolution (0.000 micron) can not exceed 25% of the cross section width",
            "The max patterning bias (0.000 micron) can not exceed 25% of the cross section width"});
}

TEST(ReadLocation, EveryArgumentAndFault) {
    const std::string no_decimal = "No decimal number found reading ";
    // clang-format off
    const LocationCase cases[] = {
        {"location -x 1.5 -y -2 -dx 10 -dy 5", 1.5F, -2.0F, 10.0F, 5.0F, {}, false},
        {"location -dy 5 -dx 10 -y -2 -x 1.5", 1.5F, -2.0F, 10.0F, 5.0F, {}, false},
        {"location -x 0 -y 0 -dx 10 -dy 1", 0.0F, 0.0F, 10.0F, 2.5F, {}, false},    // at least a quarter
        {"location -x 0 -y 0 -dx 10 -dy 20", 0.0F, 0.0F, 10.0F, 10.0F, {}, false},  // at most the width
        {"location -x 0 -y 0 -dx 10 -dy 2.5", 0.0F, 0.0F, 10.0F, 2.5F, {}, false},
        {"location -x 0 -y 0 -dx 0.1 -dy 0.01", 0.0F, 0.0F, 0.1F, 0.25F * 0.1F, {}, false},
        {"location -x 0 -y 0 -dx 10 -dy 0", 0.0F, 0.0F, 10.0F, 2.5F, {"Invalid -dy argument"}, false},
        {"location -x 0 -y 0 -dx 10 -dy -1", 0.0F, 0.0F, 10.0F, 2.5F, {"Invalid -dy argument"}, false},
        {"location -x 0 -y 0 -dx 0 -dy 0", 0.0F, 0.0F, 0.0F, 0.0F, {"Invalid -dx argument", "Invalid -dy argument"}, true},
        // A negative width: the depth becomes the width -4, which is below a quarter of it, -1.
        {"location -x 0 -y 0 -dx -4 -dy 1", 0.0F, 0.0F, -4.0F, -1.0F, {"Invalid -dx argument"}, true},
        {"location",
         0.0F,
         0.0F,
         0.0F,
         0.0F,
         {"Argument -x not found", "Argument -y not found", "Argument -dx not found",
          "Argument -dy not found", "Invalid -dx argument", "Invalid -dy argument"},
         true},
        {"location -x a -y -dx b -dy",
         0.0F,
         0.0F,
         0.0F,
         0.0F,
         {no_decimal + "-x argument", no_decimal + "-y argument", no_decimal + "-dx argument",
          no_decimal + "-dy argument", "Invalid -dx argument", "Invalid -dy argument"},
         true},
        {"location -x 0 -y 0 -dx 10 -dy 5 -dz 1", 0.0F, 0.0F, 10.0F, 5.0F, {"Invalid argument -dz"}, false},
    };
    // clang-format on
    for (const LocationCase &c : cases) {
        const ProcessRead read("settings -version 3\ngds -cell TOP\n" + std::string(c.line) + "\n");
        EXPECT_EQ(read.console, faults(3, c.messages) + (c.too_wide ? quarter_faults() : "")) << c.line;
        EXPECT_EQ(read.result, c.messages.empty() ? 0 : 1) << c.line;
        EXPECT_EQ(read.stack.origin_x, c.x) << c.line;
        EXPECT_EQ(read.stack.origin_y, c.y) << c.line;
        EXPECT_EQ(read.stack.width, c.width) << c.line;
        EXPECT_EQ(read.stack.depth, c.depth) << c.line;
    }
}

TEST(ReadLocation, ASecondLineKeepsOlderValuesThatItLacksAndChecksThem) {
    const ProcessRead read(
        "settings -version 3\ngds -cell TOP\n"
        "location -x 1 -y 2 -dx -8 -dy 4\n"
        "location -x 3 -dy q\n");
    // Line 3: the depth becomes the width -8, then a quarter of it, -2. Line 4 keeps both.
    EXPECT_EQ(read.console,
              faults(3, {"Invalid -dx argument"}) +
                  faults(4, {DUPLICATE_LOCATION, "Argument -y not found", "Argument -dx not found",
                             "No decimal number found reading -dy argument", "Invalid -dx argument",
                             "Invalid -dy argument"}) +
                  quarter_faults());
    EXPECT_EQ(read.stack.origin_x, 3.0F);
    EXPECT_EQ(read.stack.origin_y, 2.0F);
    EXPECT_EQ(read.stack.width, -8.0F);
    EXPECT_EQ(read.stack.depth, -2.0F);
}

TEST(ReadLocation, NotANumberPassesEveryComparison) {
    const ProcessRead read("settings -version 3\ngds -cell TOP\nlocation -x nan -y inf -dx nan -dy 1\n");
    EXPECT_EQ(read.console, "");
    EXPECT_EQ(read.result, 0);
    EXPECT_TRUE(std::isnan(read.stack.origin_x));
    EXPECT_TRUE(std::isinf(read.stack.origin_y));
    EXPECT_TRUE(std::isnan(read.stack.width));
    EXPECT_EQ(read.stack.depth, 1.0F);
}
