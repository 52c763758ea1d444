// Whole layouts: those of the project's own examples, some made here, and real ones made by others, which lie
// in the folder that the environment names in QUARN_LAYOUTS and are skipped without it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "gds/gds_flatten.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

namespace fs = std::filesystem;

// One cell with every kind of element and of path.
static std::string all_elements() {
    GdsBytes bytes;
    bytes.head().begin("PART").box(3, 0, 0, 40, 20).end().begin("TOP");
    for (const u16 type : {u16{0}, u16{1}, u16{2}, u16{4}}) {
        bytes.path(6, type, 10, {{100, 100 * type}, {300, 100 * type}, {300, 100 * type + 50}});
    }
    bytes.sref("PART", {-100, 0}, GDS_REFLECTION, 2.0, 90.0);
    bytes.aref("PART", 4, 3, {0, 1000}, {200, 1000}, {0, 1090});
    bytes.record(GDS_RECORD_TEXT).record_u16(GDS_RECORD_LAYER, {1}).xy({{1, 1}}).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_NODE).xy({{1, 1}}).record(GDS_RECORD_ENDEL);
    return bytes.end().close().bytes;
}

// Six levels, each a row of two of the one below.
static std::string six_levels() {
    GdsBytes bytes;
    bytes.head().begin("L0").box(1, 0, 0, 10, 10).end();
    for (i32 i = 1; i < 6; ++i) {
        const i32 width = 10 << i;  // of two of the level below
        bytes.begin("L" + std::to_string(i));
        bytes.aref("L" + std::to_string(i - 1), 2, 1, {0, 0}, {width, 0}, {0, 10}).end();
    }
    return bytes.close().bytes;
}

using LayoutMaker = std::string (*)();

enum LayoutSource { OF_THE_EXAMPLES, OF_OTHERS, MADE_HERE };

struct Layout {
    LayoutSource source;
    i32 result;
    const char *file;
    LayoutMaker make;  // null for files
    f64 unit;
    i32 cells, polygons, srefs, arefs;
    const char *measured;
    i32 width, height;
};

// NOLINTNEXTLINE(readability-identifier-naming): the name is GoogleTest's
static void PrintTo(const Layout &layout, std::ostream *out) {
    *out << layout.file;
}

// Boundaries and paths are counted together. Where two figures of SREFs are added, the second one is
// those of a cell "$$$CONTEXT_INFO$$$", which other readers take for a note and leave out.
// clang-format off
static const Layout LAYOUTS[] = {
    {OF_THE_EXAMPLES, 0, "cmos-inverter/cmos_inverter.gds", nullptr, 0.001, 3, 7 + 1, 3, 1, "INVERTER", 5800 + 1200, 5000},
    {OF_THE_EXAMPLES, 0, "damascene/damascene.gds", nullptr, 0.001, 4, 1 + 3, 5, 2, "VIA", 120, 120},
    {OF_THE_EXAMPLES, 0, "mems-cantilever/mems_cantilever.gds", nullptr, 0.001, 2, 5, 0, 1, "CANTILEVER", 34000, 14000},
    {OF_THE_EXAMPLES, 0, "standard-cell/standard_cell.gds", nullptr, 0.001, 4, 14 + 7, 12, 0, "VIA", 240, 240},
    {OF_THE_EXAMPLES, 0, "waveguide-lens/waveguide_lens.gds", nullptr, 0.001, 2, 1 + 3, 2, 0, "LENS", 2000, 2000},
    {MADE_HERE, 0, "all_elements", all_elements, 0.001, 2, 1 + 4, 1, 1, "PART", 40, 20},
    {MADE_HERE, 0, "six_levels", six_levels, 0.001, 6, 1, 0, 5, "L5", 320, 10},
    {OF_OTHERS, 0, "gdspy_photonics.gds", nullptr, 0.001, 7, 105 + 24, 8, 4, "Positive", 1574560, 988342},
    {OF_OTHERS, 0, "gdstk_proof_lib.gds", nullptr, 1e-06, 6, 146, 0, 0, "Cell.copy", 73545260, 64167575},
    {OF_OTHERS, 0, "gf180_sc_sdffrsnq_4.gds", nullptr, 0.001, 1, 130, 0, 0, "gf180mcu_fd_sc_mcu7t5v0__sdffrsnq_4", 31100, 4780},
    {OF_OTHERS, 0, "gf_alphabet_3top.gds", nullptr, 0.001, 3, 3, 0, 0, "C", 8000, 10000},
    {OF_OTHERS, 0, "ihp_S387.gds", nullptr, 0.0010000000000000005, 29, 1872 + 2, 151, 82, "S387", 275000, 1292500},
    {OF_OTHERS, 0, "nem_ohmux_10i_8b.gds", nullptr, 0.001, 10, 793, 812, 0, "nem_ohmux_invd0_10i_8b", 20180, 12645},
    {OF_OTHERS, 17, "openebl_johey5_v1.gds", nullptr, 0.0, -1, -1, -1, -1, "", 0, 0},
    {OF_OTHERS, 0, "openram_testLayoutA.gds", nullptr, 0.0009999999999999998, 5, 28 + 5, 6, 0, "testLayoutA", 17400, 15150},
    {OF_OTHERS, 27, "siepic_2x2_example.GDS", nullptr, 0.0010000000000000002, -1, 150 + 49, 33 + 24, 1, "", 0, 0},
    {OF_OTHERS, 0, "siepic_GSiP_RingResonator.gds", nullptr, 0.001, 13, 105 + 6, 14 + 10, 0, "Ring", 311000, 140000},
    {OF_OTHERS, 0, "sky130_hd_dfxtp_1.gds", nullptr, 0.001, 1, 144, 0, 0, "sky130_fd_sc_hd__dfxtp_1", 7740, 3200},
};
// clang-format on

class GdsCorpus : public testing::TestWithParam<Layout> {
protected:
    void SetUp() override {
        const Layout &layout = GetParam();
        if (layout.source == MADE_HERE) {
            bytes = layout.make();
            return;
        }
        fs::path folder = fs::u8path(QUARN_EXAMPLES_FOLDER);
        if (layout.source == OF_OTHERS) {
            const char *named = std::getenv("QUARN_LAYOUTS");
            if (named == nullptr) {
                GTEST_SKIP() << "QUARN_LAYOUTS names no folder of real layouts";
            }
            folder = fs::u8path(named);
        }
        bytes = test_file_read(test_wide((folder / layout.file).u8string()));
        ASSERT_FALSE(bytes.empty());
    }

    std::string bytes;
};

TEST_P(GdsCorpus, IsReadAsIndependentReadersReadIt) {
    const Layout &layout = GetParam();
    const GdsLoaded loaded = gds_load_bytes(bytes);
    ASSERT_EQ(loaded.result, layout.result);
    const GdsDatabase *database = loaded.database.get();
    i32 polygons = 0;
    i32 srefs = 0;
    i32 arefs = 0;
    for (i32 i = 0; i < database->cell_count; ++i) {
        polygons += database->cells[i].polygon_count;
        srefs += database->cells[i].sref_count;
        arefs += database->cells[i].aref_count;
    }
    if (layout.polygons >= 0) {
        EXPECT_DOUBLE_EQ(database->unit, layout.unit);
        EXPECT_EQ(polygons, layout.polygons);
        EXPECT_EQ(srefs, layout.srefs);
        EXPECT_EQ(arefs, layout.arefs);
    }
    if (layout.result != 0) {
        return;
    }
    EXPECT_EQ(database->cell_count, layout.cells);
    const GdsCell *measured = find_cell(loaded, layout.measured);
    ASSERT_NE(measured, nullptr);
    EXPECT_EQ(measured->bbox.x_max - measured->bbox.x_min, layout.width);
    EXPECT_EQ(measured->bbox.y_max - measured->bbox.y_min, layout.height);
}

TEST_P(GdsCorpus, CutAnywhereItIsReadOrRefused) {
    const GdsLoaded whole = gds_load_bytes(bytes);
    const size_t step = bytes.size() / 40 + 1;
    for (size_t size = 0; size < bytes.size(); size += step) {
        const GdsLoaded loaded = gds_load_bytes(bytes.substr(0, size));
        EXPECT_TRUE(loaded.result == 0 || loaded.result == 3 || loaded.result == 27 ||
                    loaded.result == whole.result)
            << "result " << loaded.result << " after a cut at " << size;
    }
}

static std::string layout_name(const testing::TestParamInfo<Layout> &layout) {
    std::string name = fs::path(layout.param.file).filename().string();
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Whole, GdsCorpus, testing::ValuesIn(LAYOUTS), layout_name);
