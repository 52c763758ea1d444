// Tests of export/profile_csv.h.
#include "export/profile_csv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>

#include "sim/dump.h"
#include "tests/export/export_fixture.h"

TEST(ProfileCsv, HasAColumnForEachSideOfEachFilm) {
    const ExportFixture fixture(3, 2, 0.1F);
    test_layer(fixture.stack.get(), "SUBSTRATE", -0.5F, 0.0F);
    test_layer(fixture.stack.get(), "gone", 0.0F, 1.0F);
    Layer *a = test_layer(fixture.stack.get(), "A", 0.0F, 0.0123F);
    test_layer(fixture.stack.get(), "A", 1.0F, 1.0F);
    test_layer(fixture.stack.get(), "=b,\"c\"", 2.0F, 2.5F);
    test_layer_remove(fixture.stack.get(), 1);
    a->top[1] = 0.0F;      // absent there: the bottom once more
    a->top[3 + 1] = 9.0F;  // in the second row, which is not shown
    EXPECT_EQ(fixture.written(EXPORT_CSV),
              "x_um,SUBSTRATE bottom_nm,SUBSTRATE top_nm,A bottom_nm,A top_nm,A (2) bottom_nm,A (2) top_nm,"
              "\"'=b,\"\"c\"\" bottom_nm\",\"'=b,\"\"c\"\" top_nm\"\n"
              "0,-500,0,0,12.3,1000,1000,2000,2500\n"
              "0.1,-500,0,0,0,1000,1000,2000,2500\n"
              "0.2,-500,0,0,12.3,1000,1000,2000,2500\n");
}

TEST(ProfileCsv, OfAStackWithoutFilmsThereArePositions) {
    const ExportFixture fixture(2, 1, 0.5F);
    EXPECT_EQ(fixture.written(EXPORT_CSV), "x_um\n0\n0.5\n");
}

// The fields of a line.
static std::vector<std::string> split(const std::string &line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ',');) {
        fields.push_back(field);
    }
    return fields;
}

// A figure in nanometres as the dump prints the height.
static std::string as_dumped(const std::string &nanometres) {
    const f32 height = static_cast<f32>(std::strtod(nanometres.c_str(), nullptr) / 1000.0);
    char text[64];
    std::snprintf(text, sizeof(text), "%.6f", static_cast<f64>(height));
    return text;
}

// "BOT: ... TOP: ..." of a line of the dump about a point of the first row, by column and slot.
static std::map<std::pair<i32, i32>, std::pair<std::string, std::string>> read_dump(const std::string &text) {
    std::map<std::pair<i32, i32>, std::pair<std::string, std::string>> heights;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        i32 m = -1;
        i32 n = -1;
        i32 slot = -1;
        char bottom[32] = "";
        char top[32] = "";
        if (std::sscanf(line.c_str(), "M: %d\tN: %d\tL: %d\tBOT: %31s\tTOP: %31s", &m, &n, &slot, bottom,
                        top) == 5 &&
            m == 0) {
            heights[{n, slot}] = {bottom, top};
        }
    }
    return heights;
}

TEST(ProfileCsv, FiguresAreThoseOfTheDump) {
    const ExportFixture fixture(61, 2, 10.0F / 61.0F);
    TestRandom random = test_random_start(3);
    for (i32 slot = 0; slot < 3; ++slot) {
        Layer *layer = test_layer(fixture.stack.get(), "A", 0.0F, 0.0F);
        for (i32 i = 0; i < 2 * 61; ++i) {
            layer->bottom[i] = test_random_f32(&random, -2.0F, 2.0F);
            layer->top[i] = layer->bottom[i] + test_random_f32(&random, 0.0F, 0.001F);
        }
    }
    fixture.stack->dump_folder = fixture.folder.path.c_str();
    dump_run(fixture.stack.get());
    const auto dumped = read_dump(test_text_read(fixture.folder.file(L"VertexData.txt")));
    EXPECT_EQ(dumped.size(), 4U * 3U);  // columns 0, 20, 40 and 60 of three films
    std::istringstream table(fixture.written(EXPORT_CSV));
    std::string line;
    std::getline(table, line);
    for (i32 n = 0; std::getline(table, line); ++n) {
        const std::vector<std::string> fields = split(line);
        ASSERT_EQ(fields.size(), 7U);
        for (i32 slot = 0; slot < 3 && n % 20 == 0; ++slot) {
            const auto &heights = dumped.at({n, slot});
            EXPECT_EQ(as_dumped(fields[static_cast<size_t>(1 + 2 * slot)]), heights.first);
            EXPECT_EQ(as_dumped(fields[static_cast<size_t>(2 + 2 * slot)]), heights.second);
        }
    }
}

TEST(ProfileCsv, HeightsThatAreNoNumbersAreWritten) {
    const ExportFixture fixture(2, 1, 1.0F);
    Layer *layer = test_layer(fixture.stack.get(), "A", 0.0F, 1.0F);
    layer->top[0] = NAN;
    layer->top[1] = INFINITY;
    EXPECT_EQ(fixture.written(EXPORT_CSV), "x_um,A bottom_nm,A top_nm\n0,0,nan\n1,0,inf\n");
}
