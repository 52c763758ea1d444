// Real layouts made by others, in a folder beside the project; skipped where it is not there.
#include <gtest/gtest.h>

#include <filesystem>

#include "gds/gds_flatten.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

struct Layout {
    const char *file;
    i32 result;
    f64 unit;
    i32 cells, polygons, srefs, arefs;
    const char *largest;
    i32 width, height;
};

// NOLINTNEXTLINE(readability-identifier-naming): the name is GoogleTest's
static void PrintTo(const Layout &layout, std::ostream *out) {
    *out << layout.file;
}

// Boundaries and paths are counted together. Where two figures of SREFs are added, the second one is
// those of a cell "$$$CONTEXT_INFO$$$", which other readers take for a note and leave out.
static const Layout LAYOUTS[] = {
    {"gdspy_photonics.gds", 0, 0.001, 7, 105 + 24, 8, 4, "Positive", 1574560, 988342},
    {"gdstk_proof_lib.gds", 0, 1e-06, 6, 146, 0, 0, "Cell.copy", 73545260, 64167575},
    {"gf180_sc_sdffrsnq_4.gds", 0, 0.001, 1, 130, 0, 0, "gf180mcu_fd_sc_mcu7t5v0__sdffrsnq_4", 31100, 4780},
    {"gf_alphabet_3top.gds", 0, 0.001, 3, 3, 0, 0, "C", 8000, 10000},
    {"ihp_S387.gds", 0, 0.0010000000000000005, 29, 1872 + 2, 151, 82, "S387", 275000, 1292500},
    {"nem_ohmux_10i_8b.gds", 0, 0.001, 10, 793, 812, 0, "nem_ohmux_invd0_10i_8b", 20180, 12645},
    {"openebl_johey5_v1.gds", 17, 0.0, -1, -1, -1, -1, "", 0, 0},
    {"openram_testLayoutA.gds", 0, 0.0009999999999999998, 5, 28 + 5, 6, 0, "testLayoutA", 17400, 15150},
    {"siepic_2x2_example.GDS", 27, 0.0010000000000000002, -1, 150 + 49, 33 + 24, 1, "", 0, 0},
    {"siepic_GSiP_RingResonator.gds", 0, 0.001, 13, 105 + 6, 14 + 10, 0, "Ring", 311000, 140000},
    {"sky130_hd_dfxtp_1.gds", 0, 0.001, 1, 144, 0, 0, "sky130_fd_sc_hd__dfxtp_1", 7740, 3200},
};

class GdsCorpus : public testing::TestWithParam<Layout> {
protected:
    void SetUp() override {
        const std::filesystem::path source =
            std::filesystem::path(__FILE__).parent_path().parent_path().parent_path();
        folder = source.parent_path() / "shared" / "corpus";
        std::error_code error;
        if (!std::filesystem::is_directory(folder, error)) {
            GTEST_SKIP() << "the folder of real layouts beside the project is not there";
        }
    }

    GdsLoaded load() const { return gds_load_path(test_wide((folder / GetParam().file).u8string())); }

    std::filesystem::path folder;
};

TEST_P(GdsCorpus, IsReadAsIndependentReadersReadIt) {
    const Layout &layout = GetParam();
    const GdsLoaded loaded = load();
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
    const GdsCell *largest = find_cell(loaded, layout.largest);
    ASSERT_NE(largest, nullptr);
    EXPECT_EQ(largest->bbox.x_max - largest->bbox.x_min, layout.width);
    EXPECT_EQ(largest->bbox.y_max - largest->bbox.y_min, layout.height);
}

TEST_P(GdsCorpus, CutAnywhereItIsReadOrRefused) {
    const GdsLoaded whole = load();
    const std::string bytes = test_file_read(test_wide((folder / GetParam().file).u8string()));
    const size_t step = bytes.size() / 40 + 1;
    for (size_t size = 0; size < bytes.size(); size += step) {
        const GdsLoaded loaded = gds_load_bytes(bytes.substr(0, size));
        EXPECT_TRUE(loaded.result == 0 || loaded.result == 3 || loaded.result == 27 ||
                    loaded.result == whole.result)
            << "result " << loaded.result << " after a cut at " << size;
    }
}

static std::string layout_name(const testing::TestParamInfo<Layout> &layout) {
    std::string name = layout.param.file;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Real, GdsCorpus, testing::ValuesIn(LAYOUTS), layout_name);
