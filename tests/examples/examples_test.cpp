// The examples, run on a small grid and checked against figures that follow from the process file and
// the layout alone. Grid point (n, m) lies at x = n * W / N, y = m * W / N from the cut's corner.
#include <gtest/gtest.h>

#include <cstdint>

#include "tests/examples/example_run.h"

// Heights are sums of a few f32 numbers of about 1 to 5, printed with six decimals.
static const double CLOSE = 3e-6;

static void expect_layer(const Dump &dump, int n, int m, int slot, double bottom, double thickness) {
    ASSERT_TRUE(dump.columns.count(n)) << "column " << n << " is not in the dump";
    const DumpPoint &point = dump.columns.at(n).at(static_cast<size_t>(m));
    ASSERT_TRUE(point.layers.count(slot)) << "no layer " << slot << " at column " << n << ", row " << m;
    EXPECT_NEAR(point.layers.at(slot).bottom, bottom, CLOSE)
        << "bottom of layer " << slot << " at " << n << ", " << m;
    EXPECT_NEAR(point.layers.at(slot).thickness, thickness, CLOSE)
        << "thickness of layer " << slot << " at " << n << ", " << m;
}

static double thickness_at(const Dump &dump, int n, int m, int slot) {
    return dump.columns.at(n).at(static_cast<size_t>(m)).layers.at(slot).thickness;
}

// CMOS inverter: W = 8, N = 200, so 0.04 between points; the cut's corner is (0, 1.2).
// Substrate 0.05 * 8 = 0.4; slots: 1 silicon, 2 pad nitride, 3 resist, 4 trench oxide, 5 gate oxide,
// 6 polysilicon, 7 resist, 8 spacer, 9 insulator, 10 resist, 11 tungsten, 12 aluminium.

TEST(CmosInverter, ResistLiesOnTheActiveAreas) {
    const Dump dump = example_run("cmos-inverter", "cmos_inverter", "photo -name ACTIVE", 200);
    ASSERT_EQ(dump.exit_status, 0);
    // The n-channel area spans x 1.0 to 3.4 and ends at y 3.2: x = 1.6 is column 40, and row 50 lies on
    // the edge, where one row may go either way.
    expect_layer(dump, 40, 0, 3, 0.4 + 0.6 + 0.08, 0.5);
    expect_layer(dump, 40, 48, 3, 1.08, 0.5);
    expect_layer(dump, 40, 52, 3, 1.08, 0.0);
    // x = 0.8 and x = 4.0 lie outside both areas.
    for (const int n : {20, 100}) {
        for (int m = 0; m < 80; ++m) {
            expect_layer(dump, n, m, 3, 1.08, 0.0);
        }
    }
}

TEST(CmosInverter, TrenchesAreAsDeepAsTheirEtch) {
    Dump dump = example_run("cmos-inverter", "cmos_inverter", "strip -name ACTIVE", 200);
    ASSERT_EQ(dump.exit_status, 0);
    expect_layer(dump, 40, 0, 1, 0.4, 0.6);
    expect_layer(dump, 40, 0, 2, 1.0, 0.08);
    expect_layer(dump, 100, 0, 1, 0.4, 0.6 - 0.35);
    expect_layer(dump, 100, 0, 2, 1.0, 0.0);
    EXPECT_FALSE(dump.columns.at(40).at(0).layers.count(3)) << "the strip leaves the resist's slot empty";
}

TEST(CmosInverter, PlugsStandOnTheSilicon) {
    // On 220 columns column 40 is x = 1.4545, in the middle of the source contact (x 1.25 to 1.65, y 1.0
    // to 1.4).
    Dump dump = example_run("cmos-inverter", "cmos_inverter", "", 220);
    ASSERT_EQ(dump.exit_status, 0);
    const DumpPoint &contact = dump.columns.at(40).at(0);
    EXPECT_NEAR(contact.layers.at(11).bottom, 1.0, CLOSE) << "the hole ends on the silicon";
    EXPECT_GT(contact.layers.at(11).thickness, 0.6) << "tungsten fills the hole";
    EXPECT_NEAR(contact.layers.at(9).thickness, 0.0, CLOSE) << "no insulator in the hole";
    // Column 60, x = 2.18, lies over the gate: insulator, and no tungsten left by the plug etch.
    const DumpPoint &gate = dump.columns.at(60).at(20);
    EXPECT_NEAR(gate.layers.at(6).thickness, 0.26, 0.02) << "polysilicon";
    EXPECT_GT(gate.layers.at(9).thickness, 0.3);
    EXPECT_NEAR(gate.layers.at(11).thickness, 0.0, CLOSE);
    // Aluminium over the source contact (x 1.1 to 1.8), none over the gate.
    EXPECT_NEAR(contact.layers.at(12).thickness, 0.4, 0.05);
    EXPECT_NEAR(gate.layers.at(12).thickness, 0.0, CLOSE);
}

// MEMS cantilever: W = 40, N = 200, so 0.2 between points; corner (0, 0). Substrate 2.0; slots: 1
// nitride, 2 electrode, 4 sacrificial oxide, 6 beam, 7 gold.

TEST(MemsCantilever, BeamIsFreeAboveTheElectrode) {
    Dump dump = example_run("mems-cantilever", "mems_cantilever", "", 200);
    ASSERT_EQ(dump.exit_status, 0);
    EXPECT_FALSE(dump.columns.at(120).at(0).layers.count(4)) << "the oxide is released";
    // x = 24 (column 120), y = 0: electrode on nitride, then a gap as high as the oxide was.
    const double electrode_top = 2.0 + 0.6 + 0.5;
    expect_layer(dump, 120, 0, 2, 2.6, 0.5);
    expect_layer(dump, 120, 0, 6, electrode_top + 2.0, 2.0);
    // x = 8 (column 40): the anchor stands on the nitride.
    expect_layer(dump, 40, 0, 6, 2.6, 2.0);
    expect_layer(dump, 40, 0, 7, 2.6 + 2.0, 0.5);
    // x = 36 (column 180) is beyond the beam's end; x = 24, y = 2.4 (row 12) is a release hole.
    EXPECT_NEAR(thickness_at(dump, 180, 0, 6), 0.0, CLOSE);
    EXPECT_NEAR(thickness_at(dump, 120, 12, 6), 0.0, CLOSE);
}

TEST(MemsCantilever, WetEtchReachesUnderTheBeam) {
    const Dump before = example_run("mems-cantilever", "mems_cantilever", "etch -name OXIDE", 200);
    const Dump after = example_run("mems-cantilever", "mems_cantilever", "etch -name UNDERCUT", 200);
    ASSERT_EQ(before.exit_status, 0);
    ASSERT_EQ(after.exit_status, 0);
    // The beam ends at y = 5 (row 25), where the oxide is 2.0 - 1.7 high outside. Row 21 lies 0.8 inside,
    // nearer than the 1.5 that the wet etch reaches: lowered to the same height. The point (16, 0) is farther
    // from every edge and hole: whole, and 0.5 thicker, since the electrode's step at x = 17 is nearer than
    // the 1.8 that the oxide spreads sideways.
    EXPECT_NEAR(thickness_at(before, 140, 21, 4), 2.0, CLOSE);
    EXPECT_NEAR(thickness_at(after, 140, 21, 4), 0.3, CLOSE);
    EXPECT_NEAR(thickness_at(after, 140, 21, 6), 2.0, CLOSE) << "the beam itself stays";
    EXPECT_NEAR(thickness_at(after, 80, 0, 4), 2.5, CLOSE);
}

// Damascene: W = 3, N = 200, so 0.015 between points; corner (0, 0.3). Substrate 0.15; slots: 1 first
// dielectric, 3 barrier, 4 copper, 5 cap, 6 second dielectric, 9 barrier, 10 copper.

TEST(Damascene, FirstLevelLinesLieInTheirTrenches) {
    const Dump dump = example_run("damascene", "damascene", "etch -name BARRIER1", 200);
    ASSERT_EQ(dump.exit_status, 0);
    // The first line is centred on x = 0.3 (column 20): trench 0.22 deep in 0.35 of dielectric.
    expect_layer(dump, 20, 0, 1, 0.15, 0.35 - 0.22);
    expect_layer(dump, 20, 0, 3, 0.15 + 0.13, 0.02);
    const double copper = thickness_at(dump, 20, 0, 4);
    EXPECT_GT(copper, 0.1);
    EXPECT_LT(copper, 0.22) << "the polish ends below the dielectric's surface";
    // x = 0.6 (column 40) lies between two lines: no metal is left on the dielectric.
    expect_layer(dump, 40, 0, 1, 0.15, 0.35);
    EXPECT_NEAR(thickness_at(dump, 40, 0, 3), 0.0, CLOSE);
    EXPECT_NEAR(thickness_at(dump, 40, 0, 4), 0.0, CLOSE);
}

TEST(Damascene, ViaLandsOnTheFirstLevel) {
    Dump dump = example_run("damascene", "damascene", "", 200);
    ASSERT_EQ(dump.exit_status, 0);
    // The via at (0.3, 0.3) is column 20, row 0: the second barrier lies on the first copper.
    const DumpPoint &via = dump.columns.at(20).at(0);
    EXPECT_NEAR(via.layers.at(9).bottom, via.layers.at(4).top, CLOSE);
    EXPECT_NEAR(via.layers.at(5).thickness, 0.0, CLOSE) << "the cap is opened";
    EXPECT_GT(via.layers.at(10).thickness, 0.3);
    // (0.3, 0.6), row 20, is on the line but has no via: the cap is whole.
    EXPECT_NEAR(thickness_at(dump, 20, 20, 5), 0.04, 0.002);
}

// Waveguide and lens: W = 11, N = 200, so 0.055 between points; corner (0.5, 1.6). Substrate 0.55;
// slots: 1 cladding, 2 core.

TEST(WaveguideLens, RidgeStandsOnTheSlab) {
    const Dump dump = example_run("waveguide-lens", "waveguide_lens", "strip -name GUIDE", 200);
    ASSERT_EQ(dump.exit_status, 0);
    expect_layer(dump, 0, 0, 1, 0.55, 1.5);
    expect_layer(dump, 0, 0, 2, 2.05, 1.1 - 0.7);
    // The ridge is 0.9 wide about x = 2.5; column 40 is x = 2.7, 0.25 from its edge. The resist wall of
    // 65 degrees is 0.25 * 2.14 = 0.54 high there, more than the 0.35 that the etch takes of it.
    expect_layer(dump, 40, 0, 2, 2.05, 1.1);
}

// Standard cell: W = 6.8; on 220 columns they lie 0.0309 apart; corner (0, 1.2). Substrate 0.34; slots: 1
// silicon, 6 polysilicon, 8 spacer, 9 first insulator, 11 tungsten of the contacts, 12 first metal, 14 second
// insulator, 16 tungsten of the vias, 17 second metal.

TEST(StandardCell, ContactsAndViasOpenWhereTheirDatatypeIs) {
    Dump dump = example_run("standard-cell", "standard_cell", "", 220);
    ASSERT_EQ(dump.exit_status, 0);
    const double silicon = 0.34 + 0.45;
    // Column 20, x = 0.618, is in the contact at 0.65 +- 0.11, with metal and no via.
    const DumpPoint &contact = dump.columns.at(20).at(0);
    EXPECT_NEAR(contact.layers.at(11).bottom, silicon, CLOSE) << "the hole ends on the silicon";
    EXPECT_GT(contact.layers.at(11).thickness, 0.4) << "tungsten fills it";
    EXPECT_NEAR(contact.layers.at(9).thickness, 0.0, CLOSE);
    EXPECT_NEAR(contact.layers.at(12).thickness, 0.26, 0.03);
    EXPECT_NEAR(contact.layers.at(16).thickness, 0.0, CLOSE) << "no via";
    EXPECT_GT(contact.layers.at(14).thickness, 0.2);
    // Column 40, x = 1.236, is in the gate at 1.2 +- 0.1: the poly is there, of the contacts' layer, and so
    // no hole may open.
    const DumpPoint &gate = dump.columns.at(40).at(0);
    EXPECT_NEAR(gate.layers.at(6).thickness, 0.2, 0.02);
    EXPECT_GT(gate.layers.at(9).thickness, 0.2) << "the insulator is whole";
    EXPECT_NEAR(gate.layers.at(11).thickness, 0.0, CLOSE);
    EXPECT_NEAR(gate.layers.at(12).thickness, 0.0, CLOSE);
    // Column 200, x = 6.182, is in the second output: contact, metal, via at 6.15 +- 0.12, second metal.
    const DumpPoint &output = dump.columns.at(200).at(0);
    EXPECT_NEAR(output.layers.at(11).bottom, silicon, CLOSE);
    EXPECT_NEAR(output.layers.at(16).bottom, output.layers.at(12).top, CLOSE) << "the via lands on the metal";
    EXPECT_NEAR(output.layers.at(14).thickness, 0.0, CLOSE);
    EXPECT_GT(output.layers.at(16).thickness, 0.2);
    EXPECT_NEAR(output.layers.at(17).bottom, output.layers.at(16).top, CLOSE);
    EXPECT_NEAR(output.layers.at(17).thickness, 0.3, 0.03);
}

TEST(Examples, GiveTheSameDumpEachTime) {
    const Dump first = example_run("waveguide-lens", "waveguide_lens", "", 200);
    const Dump second = example_run("waveguide-lens", "waveguide_lens", "", 200);
    ASSERT_EQ(first.exit_status, 0);
    EXPECT_FALSE(first.text.empty());
    EXPECT_EQ(first.text, second.text);
}

// FNV-1a of a text; Fowler, Noll, Vo.
static uint64_t text_hash(const std::string &text) {
    uint64_t hash = 14695981039346656037ULL;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    }
    return hash;
}

// The dumps are text with ten decimals, so a height that differs in its last bit shows. The hashes are
// those of a release build; every other build and system has to give the same.
TEST(Examples, HeightsAreTheSameInEveryBuild) {
    const struct {
        const char *folder;
        const char *name;
        uint64_t hash;
    } cases[] = {
        {"cmos-inverter", "cmos_inverter", 12127606549075411110ULL},
        {"mems-cantilever", "mems_cantilever", 3785349730491828766ULL},
        {"damascene", "damascene", 12357074772368267835ULL},
        {"waveguide-lens", "waveguide_lens", 6301895848756098288ULL},
        {"standard-cell", "standard_cell", 211539323278950582ULL},
    };
    for (const auto &example : cases) {
        const Dump dump = example_run(example.folder, example.name, "", 200);
        ASSERT_EQ(dump.exit_status, 0);
        EXPECT_EQ(text_hash(dump.text), example.hash) << example.name;
    }
}
