#include "gds/gds_overview.h"

#include <gtest/gtest.h>

#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

// What is told of a stream that loads.
static std::string overview(const GdsBytes &stream) {
    const ConsoleCapture capture;
    const GdsLoaded loaded = gds_load_bytes(stream.bytes);
    EXPECT_EQ(loaded.result, 0);
    const std::string before = capture.diagnostics();
    gds_overview(loaded.database.get());
    return capture.diagnostics().substr(before.size());
}

TEST(GdsOverview, TellsUnitPlaceAndLayersOfCellsThatNoneRefersTo) {
    GdsBytes stream;
    stream.head(0.005).begin("PART").box(7, -100, 0, 200, 400).box(3, 0, 0, 1, 1).end();
    stream.begin("ARRAYED").box(65535, 0, 0, 10, 10).end();
    stream.begin("TOP").box(3, 1000, 1000, 2000, 3000).sref("PART", {0, 0});
    stream.aref("ARRAYED", 2, 1, {0, 0}, {40, 0}, {0, 20}).end();
    stream.begin("EMP\x1B[2J").end().close();
    // A unit of 0.005: PART reaches to x = -100, TOP's own box to (2000, 3000).
    EXPECT_EQ(overview(stream),
              "a database unit is 0.005 um\n"
              "cell \"TOP\" reaches from (-0.5, 0) um to (10, 15) um; layers 3, 7, 65535\n"
              "cell \"EMP\\x1b[2J\" reaches from (0, 0) um to (0, 0) um; no polygons\n");
}

TEST(GdsOverview, CutsLongLists) {
    GdsBytes stream;
    stream.head();
    for (i32 i = 0; i < 22; ++i) {
        stream.begin("C" + std::to_string(i));
        for (u16 layer = 100; layer < 141 && i == 19; ++layer) {
            stream.box(layer, 0, 0, 1000, 1000);
        }
        stream.end();
    }
    stream.close();
    const std::string told = overview(stream);
    EXPECT_NE(told.find("138, 139 and 1 more\n"), std::string::npos) << told;
    EXPECT_EQ(told.find("140"), std::string::npos) << told;
    EXPECT_EQ(told.find("C20"), std::string::npos) << told;
    const std::string tail = "\nand 2 more cells that no other one refers to\n";
    ASSERT_GT(told.size(), tail.size());
    EXPECT_EQ(told.substr(told.size() - tail.size()), tail);
}

TEST(GdsOverview, ACircleOfReferencesEnds) {
    GdsBytes stream;
    stream.head().begin("TOP").sref("A", {0, 0}).end();
    stream.begin("A").box(1, 0, 0, 2000, 1000).sref("B", {0, 0}).end();
    stream.begin("B").box(2, 0, 0, 1000, 500).sref("A", {0, 0}).end().close();
    EXPECT_EQ(overview(stream),
              "a database unit is 0.001 um\n"
              "cell \"TOP\" reaches from (0, 0) um to (2, 1) um; layers 1, 2\n");
}
